#include "opt/warm_engine.h"

namespace tarvik {

Simplex &WarmEngine::open(const LpModel &lp, const SimplexOptions &options) {
  if (!engine_ || engine_->options().scaleFlag != options.scaleFlag ||
      engine_->options().seed != options.seed || (engine_->extended() && options.quad == 0))
    return openFresh(lp, options);
  engine_->options() = options;
  engine_->restartCounting();
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
