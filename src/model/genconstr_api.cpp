// Exported functions that add and delete general constraints.
#include <cmath>

#include "model/genconstr.h"
#include "model/model_call.h"
#include "model/validate.h"

using namespace tarvik;

namespace {

constexpr const char *kAdding = "Problem adding general constraint";

int addExtremum(TVKmodel *model, int type, const char *name, int resvar, int nvars, const int *vars,
                double constant) {
  return modelCall(model, kAdding, [&](Model &m) {
    checkNoNanValue(constant);
    GenConstr g;
    g.type = type;
    g.resVar = resvar;
    g.vars = operandList(nvars, vars);
    g.constant = clampToUserInf(constant);
    addGenConstr(m, std::move(g), name);
  });
}

int addLogical(TVKmodel *model, int type, const char *name, int resvar, int nvars,
               const int *vars) {
  return modelCall(model, kAdding, [&](Model &m) {
    GenConstr g;
    g.type = type;
    g.resVar = resvar;
    g.vars = operandList(nvars, vars);
    addGenConstr(m, std::move(g), name);
  });
}

int addFunction(TVKmodel *model, int type, const char *name, int xvar, int yvar, double a,
                const char *options) {
  return modelCall(model, kAdding, [&](Model &m) {
    GenConstr g;
    g.type = type;
    g.resVar = yvar;
    g.vars.assign(1, xvar);
    g.constant = a;
    addFuncConstr(m, std::move(g), options, name);
  });
}

}  // namespace

extern "C" {

int TVKaddgenconstrMax(TVKmodel *model, const char *name, int resvar, int nvars, const int *vars,
                       double constant) {
  return addExtremum(model, TVK_GENCONSTR_MAX, name, resvar, nvars, vars, constant);
}

int TVKaddgenconstrMin(TVKmodel *model, const char *name, int resvar, int nvars, const int *vars,
                       double constant) {
  return addExtremum(model, TVK_GENCONSTR_MIN, name, resvar, nvars, vars, constant);
}

int TVKaddgenconstrAbs(TVKmodel *model, const char *name, int resvar, int argvar) {
  return addLogical(model, TVK_GENCONSTR_ABS, name, resvar, 1, &argvar);
}

int TVKaddgenconstrAnd(TVKmodel *model, const char *name, int resvar, int nvars, const int *vars) {
  return addLogical(model, TVK_GENCONSTR_AND, name, resvar, nvars, vars);
}

int TVKaddgenconstrOr(TVKmodel *model, const char *name, int resvar, int nvars, const int *vars) {
  return addLogical(model, TVK_GENCONSTR_OR, name, resvar, nvars, vars);
}

int TVKaddgenconstrNorm(TVKmodel *model, const char *name, int resvar, int nvars, const int *vars,
                        double which) {
  return modelCall(model, kAdding, [&](Model &m) {
    if (which != 0 && which != 1 && which != 2 && !(which >= kUserInf))
      throw Error(TVK_ERROR_VALUE_OUT_OF_RANGE, "Only 0, 1, 2, and INF norms supported");
    GenConstr g;
    g.type = TVK_GENCONSTR_NORM;
    g.resVar = resvar;
    g.vars = operandList(nvars, vars);
    g.constant = which >= kUserInf ? kUserInf : which;
    addGenConstr(m, std::move(g), name);
  });
}

int TVKaddgenconstrIndicator(TVKmodel *model, const char *name, int binvar, int binval, int nvars,
                             const int *ind, const double *val, char sense, double rhs) {
  return modelCall(model, kAdding, [&](Model &m) {
    if (binval != 0 && binval != 1) {
      throw Error(TVK_ERROR_INVALID_ARGUMENT,
                  "Value of the binary variable of an indicator constraint must be 0 or 1");
    }
    GenConstr g;
    g.type = TVK_GENCONSTR_INDICATOR;
    g.resVar = binvar;
    g.binVal = binval;
    g.vars = operandList(nvars, ind);
    requireArgument(nvars == 0 || val);
    checkFinite(val, nvars);
    checkNoNanValue(rhs);
    g.coef.assign(val, val + nvars);
    g.sense = checkedSense(sense);
    g.constant = clampToUserInf(rhs);
    addGenConstr(m, std::move(g), name);
  });
}

int TVKaddgenconstrPWL(TVKmodel *model, const char *name, int xvar, int yvar, int npts,
                       const double *xpts, const double *ypts) {
  return modelCall(model, kAdding, [&](Model &m) {
    if (npts < 1) {
      m.env().log("Error: no points for PWL constraint\n");
      throw Error(TVK_ERROR_INVALID_ARGUMENT, "no points for PWL constraint");
    }
    requireArgument(xpts && ypts);
    checkFinite(xpts, npts);
    checkFinite(ypts, npts);
    for (int k = 1; k < npts; ++k) {
      if (xpts[k] < xpts[k - 1])
        throw Error(TVK_ERROR_INVALID_ARGUMENT, "x values for PWL constraint aren't sorted");
    }
    GenConstr g;
    g.type = TVK_GENCONSTR_PWL;
    g.resVar = yvar;
    g.vars.assign(1, xvar);
    g.coef.assign(xpts, xpts + npts);
    g.pwlY.assign(ypts, ypts + npts);
    addGenConstr(m, std::move(g), name);
  });
}

int TVKaddgenconstrPoly(TVKmodel *model, const char *name, int xvar, int yvar, int plen,
                        const double *p, const char *options) {
  return modelCall(model, kAdding, [&](Model &m) {
    GenConstr g;
    g.type = TVK_GENCONSTR_POLY;
    g.resVar = yvar;
    g.vars.assign(1, xvar);
    if (plen > 0 && p) g.coef.assign(p, p + plen);
    addFuncConstr(m, std::move(g), options, name);
  });
}

int TVKaddgenconstrExp(TVKmodel *model, const char *name, int xvar, int yvar, const char *options) {
  return addFunction(model, TVK_GENCONSTR_EXP, name, xvar, yvar, 0, options);
}

int TVKaddgenconstrLog(TVKmodel *model, const char *name, int xvar, int yvar, const char *options) {
  return addFunction(model, TVK_GENCONSTR_LOG, name, xvar, yvar, 0, options);
}

int TVKaddgenconstrSin(TVKmodel *model, const char *name, int xvar, int yvar, const char *options) {
  return addFunction(model, TVK_GENCONSTR_SIN, name, xvar, yvar, 0, options);
}

int TVKaddgenconstrCos(TVKmodel *model, const char *name, int xvar, int yvar, const char *options) {
  return addFunction(model, TVK_GENCONSTR_COS, name, xvar, yvar, 0, options);
}

int TVKaddgenconstrTan(TVKmodel *model, const char *name, int xvar, int yvar, const char *options) {
  return addFunction(model, TVK_GENCONSTR_TAN, name, xvar, yvar, 0, options);
}

int TVKaddgenconstrLogistic(TVKmodel *model, const char *name, int xvar, int yvar,
                            const char *options) {
  return addFunction(model, TVK_GENCONSTR_LOGISTIC, name, xvar, yvar, 0, options);
}

int TVKaddgenconstrExpA(TVKmodel *model, const char *name, int xvar, int yvar, double a,
                        const char *options) {
  return addFunction(model, TVK_GENCONSTR_EXPA, name, xvar, yvar, a, options);
}

int TVKaddgenconstrLogA(TVKmodel *model, const char *name, int xvar, int yvar, double a,
                        const char *options) {
  return addFunction(model, TVK_GENCONSTR_LOGA, name, xvar, yvar, a, options);
}

int TVKaddgenconstrPow(TVKmodel *model, const char *name, int xvar, int yvar, double a,
                       const char *options) {
  return addFunction(model, TVK_GENCONSTR_POW, name, xvar, yvar, a, options);
}

int TVKdelgenconstrs(TVKmodel *model, int numdel, const int *ind) {
  return modelCall(model, "Problem deleting general constraints",
                   [&](Model &m) { deleteElements(m, ElementKind::GenConstr, numdel, ind); });
}

}  // extern "C"
