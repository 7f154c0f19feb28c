// What a linear solve starts from: the basis of the last solve or of the caller, the start
// vectors, or nothing, as the parameters LPWarmStart and TARV_PAR_SPXSTARTUSE decide; the log
// tells what is used and what is discarded.
#pragma once

#include "lp/lp_model.h"
#include "model/model.h"

namespace tarvik {

struct WarmStart {
  Basis basis;              // empty: start from scratch, or from the vectors
  Vec<double> values;       // of superbasic variables; empty when none are known
  Vec<double> edgeWeights;  // by variable, of the basic ones; empty when none are known
  // Start vectors to make a basis from; empty: not to be used.
  Vec<double> primal, dual;

  bool hasVectors() const { return !primal.empty() || !dual.empty(); }
};

// Decides for the method that is going to run (a value of the parameter Method), logs, and drops
// from the store what is not to be used. To be called before the store's results are cleared.
WarmStart takeWarmStart(Model &model, int method);

// Makes the basis from the start vectors, if there are any.
void makeBasisFromVectors(const LpModel &lp, Env &env, WarmStart &start);

}  // namespace tarvik
