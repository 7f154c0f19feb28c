// The lines that frame a solve: what runs where at its beginning, what came out at its end.
#pragma once

#include "env/env.h"
#include "model/model_data.h"

namespace tarvik {

// Version, processor and thread count.
void logHeader(Env &env);
// "Optimize a model with ...".
void logModelSize(Env &env, const ModelData &data);
// What there is beside rows and columns, and the types of the variables.
void logModelContents(Env &env, const ModelData &data);

struct LpSummary {
  int status = 0;  // a TVK_ status code
  double iterations = 0;
  double seconds = 0;
  double workUnits = 0;
  double objective = 0;  // in the caller's sense
  // Violations of the solution in the user's scale, for the warnings.
  double primalViolation = 0, primalResidual = 0;
  double dualViolation = 0, dualResidual = 0;
};
void logLpSummary(Env &env, const LpSummary &summary);
// The closing line of an LP solve that ran out of memory.
void logOutOfMemory(Env &env);

}  // namespace tarvik
