#include "opt/warm_engine.h"

#include <utility>

namespace tarvik {

Simplex &WarmEngine::open(const LpModel &lp, const SimplexOptions &options, const Basis &basis,
                          const Vec<double> *superbasicValues) {
  if (!engine_ || engine_->options().scaleFlag != options.scaleFlag ||
      engine_->options().seed != options.seed || (engine_->extended() && options.quad == 0)) {
    engine_.reset();
    Simplex loaded(options);
    const bool useful = knownScaling_ && knownScaleFlag_ == options.scaleFlag;
    loaded.load(lp, basis, superbasicValues, useful ? &*knownScaling_ : nullptr);
    engine_.emplace(std::move(loaded));
    knownScaling_.reset();
    return *engine_;
  }
  const bool sameTolerances = engine_->options().primalTol == options.primalTol &&
                              engine_->options().dualTol == options.dualTol;
  engine_->options() = options;
  engine_->restartCounting();
  if (!sameTolerances || !engine_->standsAt(basis)) engine_->setBasis(basis, superbasicValues);
  return *engine_;
}

void WarmEngine::learnScaling(Scaling known, int scaleFlag) {
  if (scaleFlag == 0) return;
  knownScaling_ = std::move(known);
  knownScaleFlag_ = scaleFlag;
}

void WarmEngine::drop() {
  engine_.reset();
  knownScaling_.reset();
}

Simplex &WarmEngine::openFresh(const LpModel &lp, const SimplexOptions &options) {
  engine_.reset();
  Simplex loaded(options);
  loaded.load(lp);
  engine_.emplace(std::move(loaded));
  return *engine_;
}

}  // namespace tarvik
