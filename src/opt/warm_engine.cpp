#include "opt/warm_engine.h"

namespace tarvik {

Simplex &WarmEngine::open(const LpModel &lp, const SimplexOptions &options, const Basis &basis,
                          const Vec<double> *superbasicValues) {
  if (!engine_ || engine_->options().scaleFlag != options.scaleFlag ||
      engine_->options().seed != options.seed || (engine_->extended() && options.quad == 0))
    return load(lp, options, basis, superbasicValues);
  const bool sameTolerances = engine_->options().primalTol == options.primalTol &&
                              engine_->options().dualTol == options.dualTol;
  engine_->options() = options;
  engine_->restartCounting();
  if (!sameTolerances || !engine_->standsAt(basis)) engine_->setBasis(basis, superbasicValues);
  return *engine_;
}

Simplex &WarmEngine::load(const LpModel &lp, const SimplexOptions &options, const Basis &basis,
                          const Vec<double> *superbasicValues) {
  engine_.reset();
  Simplex loaded(options);
  const bool useful = known_ && known_->scaleFlag == options.scaleFlag;
  loaded.load(lp, basis, superbasicValues, useful ? &known_->scaling : nullptr);
  if (useful) loaded.guessEdgeWeights(known_->weights);
  engine_.emplace(std::move(loaded));
  known_.reset();
  return *engine_;
}

void WarmEngine::drop() {
  engine_.reset();
  known_.reset();
}

Simplex &WarmEngine::openFresh(const LpModel &lp, const SimplexOptions &options) {
  engine_.reset();
  Simplex loaded(options);
  loaded.load(lp);
  engine_.emplace(std::move(loaded));
  return *engine_;
}

}  // namespace tarvik
