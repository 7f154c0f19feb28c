// Exported queries of general constraints; every output may be null.
#include "attr/queries.h"
#include "model/genconstr.h"
#include "model/model_call.h"

using namespace tarvik;

namespace {

template <class T>
void put(T *out, const T &value) {
  if (out) *out = value;
}

template <class T>
void putAll(T *out, const Vec<T> &values) {
  if (out) std::copy(values.begin(), values.end(), out);
}

template <class Read>
int query(TVKmodel *model, int id, int type, Read &&read) {
  return modelCall(model, "Failed to retrieve general constraint",
                   [&](Model &m) { read(getGenConstr(m, id, type)); });
}

int queryOperands(TVKmodel *model, int id, int type, int *resvarP, int *nvarsP, int *vars,
                  double *constantP) {
  return query(model, id, type, [&](GenConstr &g) {
    put(resvarP, g.resVar);
    put(nvarsP, static_cast<int>(g.vars.size()));
    putAll(vars, g.vars);
    put(constantP, g.constant);
  });
}

void putFunction(GenConstr &g, int *xvarP, int *yvarP, char **optionsP) {
  put(xvarP, g.vars[0]);
  put(yvarP, g.resVar);
  if (!optionsP) return;
  g.optionsText = formatFuncOptions(g.options);
  *optionsP = g.optionsText.data();
}

int queryFunction(TVKmodel *model, int id, int type, int *xvarP, int *yvarP, double *aP,
                  char **optionsP) {
  return query(model, id, type, [&](GenConstr &g) {
    putFunction(g, xvarP, yvarP, optionsP);
    put(aP, g.constant);
  });
}

}  // namespace

extern "C" {

int TVKgetgenconstrMax(TVKmodel *model, int id, int *resvarP, int *nvarsP, int *vars,
                       double *constantP) {
  return queryOperands(model, id, TVK_GENCONSTR_MAX, resvarP, nvarsP, vars, constantP);
}

int TVKgetgenconstrMin(TVKmodel *model, int id, int *resvarP, int *nvarsP, int *vars,
                       double *constantP) {
  return queryOperands(model, id, TVK_GENCONSTR_MIN, resvarP, nvarsP, vars, constantP);
}

int TVKgetgenconstrAbs(TVKmodel *model, int id, int *resvarP, int *argvarP) {
  return queryOperands(model, id, TVK_GENCONSTR_ABS, resvarP, nullptr, argvarP, nullptr);
}

int TVKgetgenconstrAnd(TVKmodel *model, int id, int *resvarP, int *nvarsP, int *vars) {
  return queryOperands(model, id, TVK_GENCONSTR_AND, resvarP, nvarsP, vars, nullptr);
}

int TVKgetgenconstrOr(TVKmodel *model, int id, int *resvarP, int *nvarsP, int *vars) {
  return queryOperands(model, id, TVK_GENCONSTR_OR, resvarP, nvarsP, vars, nullptr);
}

int TVKgetgenconstrNorm(TVKmodel *model, int id, int *resvarP, int *nvarsP, int *vars,
                        double *whichP) {
  return queryOperands(model, id, TVK_GENCONSTR_NORM, resvarP, nvarsP, vars, whichP);
}

int TVKgetgenconstrIndicator(TVKmodel *model, int id, int *binvarP, int *binvalP, int *nvarsP,
                             int *ind, double *val, char *senseP, double *rhsP) {
  return query(model, id, TVK_GENCONSTR_INDICATOR, [&](GenConstr &g) {
    put(binvarP, g.resVar);
    put(binvalP, g.binVal);
    put(nvarsP, static_cast<int>(g.vars.size()));
    putAll(ind, g.vars);
    putAll(val, g.coef);
    put(senseP, g.sense);
    put(rhsP, g.constant);
  });
}

int TVKgetgenconstrPWL(TVKmodel *model, int id, int *xvarP, int *yvarP, int *nptsP, double *xpts,
                       double *ypts) {
  return query(model, id, TVK_GENCONSTR_PWL, [&](GenConstr &g) {
    put(xvarP, g.vars[0]);
    put(yvarP, g.resVar);
    put(nptsP, static_cast<int>(g.coef.size()));
    putAll(xpts, g.coef);
    putAll(ypts, g.pwlY);
  });
}

int TVKgetgenconstrPoly(TVKmodel *model, int id, int *xvarP, int *yvarP, int *plenP, double *p,
                        char **optionsP) {
  return query(model, id, TVK_GENCONSTR_POLY, [&](GenConstr &g) {
    putFunction(g, xvarP, yvarP, optionsP);
    put(plenP, static_cast<int>(g.coef.size()));
    putAll(p, g.coef);
  });
}

int TVKgetgenconstrExp(TVKmodel *model, int id, int *xvarP, int *yvarP, char **optionsP) {
  return queryFunction(model, id, TVK_GENCONSTR_EXP, xvarP, yvarP, nullptr, optionsP);
}

int TVKgetgenconstrLog(TVKmodel *model, int id, int *xvarP, int *yvarP, char **optionsP) {
  return queryFunction(model, id, TVK_GENCONSTR_LOG, xvarP, yvarP, nullptr, optionsP);
}

int TVKgetgenconstrSin(TVKmodel *model, int id, int *xvarP, int *yvarP, char **optionsP) {
  return queryFunction(model, id, TVK_GENCONSTR_SIN, xvarP, yvarP, nullptr, optionsP);
}

int TVKgetgenconstrCos(TVKmodel *model, int id, int *xvarP, int *yvarP, char **optionsP) {
  return queryFunction(model, id, TVK_GENCONSTR_COS, xvarP, yvarP, nullptr, optionsP);
}

int TVKgetgenconstrTan(TVKmodel *model, int id, int *xvarP, int *yvarP, char **optionsP) {
  return queryFunction(model, id, TVK_GENCONSTR_TAN, xvarP, yvarP, nullptr, optionsP);
}

int TVKgetgenconstrLogistic(TVKmodel *model, int id, int *xvarP, int *yvarP, char **optionsP) {
  return queryFunction(model, id, TVK_GENCONSTR_LOGISTIC, xvarP, yvarP, nullptr, optionsP);
}

int TVKgetgenconstrExpA(TVKmodel *model, int id, int *xvarP, int *yvarP, double *aP,
                        char **optionsP) {
  return queryFunction(model, id, TVK_GENCONSTR_EXPA, xvarP, yvarP, aP, optionsP);
}

int TVKgetgenconstrLogA(TVKmodel *model, int id, int *xvarP, int *yvarP, double *aP,
                        char **optionsP) {
  return queryFunction(model, id, TVK_GENCONSTR_LOGA, xvarP, yvarP, aP, optionsP);
}

int TVKgetgenconstrPow(TVKmodel *model, int id, int *xvarP, int *yvarP, double *aP,
                       char **optionsP) {
  return queryFunction(model, id, TVK_GENCONSTR_POW, xvarP, yvarP, aP, optionsP);
}

}  // extern "C"
