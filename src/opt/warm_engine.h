// The simplex engine that stays loaded with a full model from one solve to the next, so that a
// re-solve begins from factors that are already there. It is loaded on first use: a solve that
// went through presolve never pays for it.
#pragma once

#include <optional>

#include "simplex/simplex.h"

namespace tarvik {

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
  // Factors that have scaled a part of the model well, under this flag; 0 for the other rows and
  // columns. Loading the model with a basis begins from them.
  void learnScaling(Scaling known, int scaleFlag);
  void drop();

 private:
  std::optional<Simplex> engine_;
  std::optional<Scaling> knownScaling_;  // until the engine is loaded
  int knownScaleFlag_ = 0;
};

}  // namespace tarvik
