// Whole objectives, further objectives, piecewise-linear objectives and scenarios in the pending
// record.
#pragma once

#include "model/edits.h"

namespace tarvik {

// The pending changes of one objective or scenario, made when there are none yet.
PendingObjective &pendingObjective(PendingChanges &p, int number);
PendingScenario &pendingScenario(PendingChanges &p, int number);

struct LinearTerms {
  int count = 0;
  const int *ind = nullptr;
  const double *val = nullptr;
};

struct ObjectiveSettings {
  int priority = 0;
  double weight = 1, absTol = 0, relTol = 0;
  const char *name = nullptr;
  double con = 0;
};

void setObjective(Model &model, int sense, double constant, const LinearTerms &linear, int numQuad,
                  const int *qrow, const int *qcol, const double *qval);
void setObjectiveN(Model &model, int number, const ObjectiveSettings &settings,
                   const LinearTerms &linear);
void setPwlObjective(Model &model, int var, int count, const double *x, const double *y);

// Piecewise-linear objectives are checked when a model is prepared for solving: logs and throws
// 10026 for points that make no sense.
void checkPwlObjectives(Model &model);

}  // namespace tarvik
