// What a linear solve starts from: the basis of the last solve or of the caller, the start
// vectors, or nothing, as the parameter LPWarmStart decides; the log tells what is discarded.
#pragma once

#include "lp/lp_model.h"
#include "model/model.h"

namespace tarvik {

struct WarmStart {
  Basis basis;         // empty: start from scratch
  Vec<double> values;  // of superbasic variables; empty when none are known
};

// Decides, logs, and drops from the store what is not to be used. To be called before the
// store's results are cleared.
WarmStart takeWarmStart(Model &model);

}  // namespace tarvik
