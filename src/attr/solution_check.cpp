#include "attr/solution_check.h"

#include <cmath>
#include <string>

#include "attr/statistics.h"
#include "attr/violations.h"

namespace tarvik {

namespace {

// The statistic that most likely explains violated constraints or bounds.
void logCause(Model &model) {
  const ModelStatistics &s = modelStatistics(model);
  Env &env = model.env();
  const bool wide = std::log10(s.matrix.max + 1e-10) - std::log10(s.matrix.min + 1e-10) >= 12;
  if (wide)
    env.log("         (possibly due to large matrix coefficient range)\n");
  else if (s.matrix.max > 1e8)
    env.log("         (possibly due to large matrix coefficients)\n");
  else if (s.bounds.max > 1e9)
    env.log("         (possibly due to large variable bounds)\n");
  else if (s.rhs.max > 1e9)
    env.log("         (possibly due to large right hand sides)\n");
  else if (env.get(Int::Presolve) != 0)
    env.log("         (model may be infeasible or unbounded - try turning presolve off)\n");
}

void logFunctionHint(Env &env) {
  env.log("  Piecewise linearization of function constraints often causes big violation.\n");
  env.log("  Try turning presolve on to tighten the bounds of the functional variables.\n");
  env.log("  Try to adjust the settings of the related parameters, such as FuncPieces.\n");
}

void printViolations(Model &model, const ViolationMaxima &v) {
  const ModelData &data = model.data();
  const auto part = [](bool present, const char *label, double value) -> std::string {
    if (!present) return "";
    char text[64];
    std::snprintf(text, sizeof text, ", %s %.4e", label, value);
    return text;
  };
  bool hasNonlinear = false, hasGeneral = false;
  for (const GenConstr &g : data.genConstrs) {
    const bool nonlinear = g.isFunction() && g.options.nonlinear == 1;
    hasNonlinear = hasNonlinear || nonlinear;
    hasGeneral = hasGeneral || !nonlinear;
  }
  const std::string tail = part(!data.sos.empty(), "sos", v.sos) +
                           part(hasGeneral, "genconstr", v.genConstr) +
                           part(hasNonlinear, "nlconstr", v.nonlinear);
  if (data.qconstrs.empty() && data.cones.empty()) {
    model.env().log("Violations: const %.4e, bound %.4e, int %.4e%s\n", v.constr, v.bound,
                    v.integrality, tail.c_str());
  } else {
    model.env().log("Violations: const %.4e (qconstr = %.4e), bound %.4e, int %.4e%s\n", v.constr,
                    v.qconstr, v.bound, v.integrality, tail.c_str());
  }
}

}  // namespace

void checkFinalSolution(Model &model, const Vec<double> &x) {
  Env &env = model.env();
  if (!env.logReachesAnybody()) return;
  const ViolationMaxima v = violationMaxima(model.data(), x);
  const double feasTol = env.get(Dbl::FeasibilityTol), intTol = env.get(Dbl::IntFeasTol);
  bool any = false;
  const auto exceeds = [&](double violation, double tolerance, const char *kind) {
    if (violation <= tolerance) return false;
    env.log("Warning: max %s violation (%.4e) exceeds tolerance\n", kind, violation);
    any = true;
    return true;
  };
  if (exceeds(v.bound, feasTol, "bound")) logCause(model);
  if (exceeds(std::max(v.constr, v.qconstr), feasTol, "constraint")) logCause(model);
  if (exceeds(v.integrality, intTol, "integrality")) logCause(model);
  if (exceeds(v.sos, feasTol, "SOS")) logCause(model);
  if (exceeds(v.genConstr, feasTol, "general constraint") && v.approximatedFunction)
    logFunctionHint(env);
  exceeds(v.nonlinear, feasTol, "nonlinear constraint");
  if (v.hugeIntegers) {
    env.log("Warning: some integer variables take values larger than the maximum\n");
    env.log("         supported value (%d)\n", kMaxInt);
  }
  if (any) printViolations(model, v);
}

}  // namespace tarvik
