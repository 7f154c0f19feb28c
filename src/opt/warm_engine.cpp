#include "opt/warm_engine.h"

#include <utility>

namespace tarvik {

Simplex &WarmEngine::open(const LpModel &lp, const SimplexOptions &options, const Basis &basis,
                          const Vec<double> *superbasicValues) {
  if (!engine_ || engine_->options().scaleFlag != options.scaleFlag ||
      engine_->options().seed != options.seed || (engine_->extended() && options.quad == 0)) {
    engine_.reset();
    Simplex loaded(options);
    loaded.load(lp, basis, superbasicValues);
    engine_.emplace(std::move(loaded));
    return *engine_;
  }
  const bool sameTolerances = engine_->options().primalTol == options.primalTol &&
                              engine_->options().dualTol == options.dualTol;
  engine_->options() = options;
  engine_->restartCounting();
  if (!sameTolerances || !engine_->standsAt(basis)) engine_->setBasis(basis, superbasicValues);
  return *engine_;
}

Simplex &WarmEngine::openFresh(const LpModel &lp, const SimplexOptions &options) {
  engine_.reset();
  Simplex loaded(options);
  loaded.load(lp);
  engine_.emplace(std::move(loaded));
  return *engine_;
}

}  // namespace tarvik
