// How far a point is from satisfying a model: activities in compensated arithmetic (Dekker 1971,
// Neumaier 1974) and the violation of every kind of constraint.
#pragma once

#include "base/compensated_sum.h"
#include "model/model_data.h"

namespace tarvik {

// rhs - activity of every linear (quadratic) constraint.
Vec<double> linearSlacks(const ModelData &data, const Vec<double> &x);
double quadraticSlack(const QConstr &qc, const Vec<double> &x);

// From a slack and a sense, bounds and type: never negative.
double slackViolation(char sense, double slack);
double boundViolation(const ModelData &data, int var, double x);
double integralityViolation(const ModelData &data, int var, double x);
double sosViolation(const Sos &sos, const Vec<double> &x);
double genConstrViolation(const GenConstr &g, const Vec<double> &x);
double coneViolation(const Cone &cone, const Vec<double> &x);

// The largest violation of each kind.
struct ViolationMaxima {
  double constr = 0, qconstr = 0, bound = 0, integrality = 0, sos = 0, genConstr = 0, nonlinear = 0;
  bool hugeIntegers = false;          // an integer variable beyond 2e9
  bool approximatedFunction = false;  // genConstr comes from a function constraint
};

ViolationMaxima violationMaxima(const ModelData &data, const Vec<double> &x);

}  // namespace tarvik
