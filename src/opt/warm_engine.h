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
  void drop() { engine_.reset(); }

 private:
  std::optional<Simplex> engine_;
};

}  // namespace tarvik
