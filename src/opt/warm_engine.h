// The simplex engine that stays loaded with a full model from one solve to the next, so that a
// re-solve begins from factors that are already there. It is loaded on first use: a solve that
// went through presolve never pays for it.
#pragma once

#include <optional>
#include <utility>

#include "simplex/simplex.h"

namespace tarvik {

// What the solve of a part of a model tells about the whole.
struct PartialKnowledge {
  Scaling scaling;    // that has suited the part; 0 for other rows and columns
  int scaleFlag = 0;  // under which
  Vec<BasicWeight> weights;
};

class WarmEngine {
 public:
  // The engine holding lp, with this basis (see Simplex::setBasis); loads it when that has not been
  // done, or when an option that shapes the loaded data differs. Counters begin at zero.
  Simplex &open(const LpModel &lp, const SimplexOptions &options, const Basis &basis,
                const Vec<double> *superbasicValues);
  // The same, but from scratch with the slack basis.
  Simplex &openFresh(const LpModel &lp, const SimplexOptions &options);
  // The loaded engine, or null.
  Simplex *get() { return engine_ ? &*engine_ : nullptr; }
  // Loading the model with a basis begins from it. The columns are the same then; rows may have
  // been appended.
  void learn(PartialKnowledge known) { known_ = std::move(known); }
  void drop();

 private:
  Simplex &load(const LpModel &lp, const SimplexOptions &options, const Basis &basis,
                const Vec<double> *superbasicValues);

  std::optional<Simplex> engine_;
  std::optional<PartialKnowledge> known_;  // until the engine is loaded
};

}  // namespace tarvik
