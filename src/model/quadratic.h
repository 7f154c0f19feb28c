// Quadratic constraints, cones and special ordered sets: checks and queueing.
#pragma once

#include "model/edits.h"

namespace tarvik {

struct QConstrInput {
  int numLinear = 0;
  const int *lind = nullptr;
  const double *lval = nullptr;
  int numQuad = 0;
  const int *qrow = nullptr, *qcol = nullptr;
  const double *qval = nullptr;
  char sense = '<';
  double rhs = 0;
  const char *name = nullptr;
};

void addQConstr(Model &model, const QConstrInput &input);
void addCone(Model &model, int count, const int *vars);

struct SosBatch {
  int count = 0, numMembers = 0;
  const int *types = nullptr, *beg = nullptr, *ind = nullptr;
  const double *weight = nullptr;
};
void addSos(Model &model, const SosBatch &batch);

}  // namespace tarvik
