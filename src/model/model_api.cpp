// Exported functions on the model handle: create, load, check, reset, update, free.
#include <string>

#include "model/model_call.h"
#include "model/validate.h"

using namespace tarvik;

namespace {

void requireStarted(Env &env) {
  if (!env.started()) throw Error(TVK_ERROR_NOT_STARTED);
}

void logModelCall(Env &env, const char *function, const TVKmodel *model) {
  if (env.get(Int::TARV_PAR_LOGMODELS)) {
    env.log("MODEL LOG: %s %p\n", function, static_cast<const void *>(model));
  }
}

void copyNames(NameList &target, const char *const *names, int count) {
  if (!names) return;
  for (int k = 0; k < count; ++k) target.append(names[k] ? names[k] : "");
}

template <class T>
void copyArray(Vec<T> &target, const T *values, int count) {
  if (values) target.assign(values, values + count);
}

struct LoadArguments {
  const char *name;
  int numVars, numConstrs, objSense;
  double objCon;
  const double *obj;
  const char *sense;
  const double *rhs;
  const int *vlen, *vind;
  const double *vval, *lb, *ub;
  const char *vtype;
  const char *const *varNames, *const *constrNames;
};

void checkDimensions(int numVars, int numConstrs) {
  if (numVars < 0 || numConstrs < 0) throw Error(TVK_ERROR_INVALID_ARGUMENT);
}

// The columns by begin and length, with the checks of the loading functions.
template <class Offset>
void copyMatrix(SparseMatrix &a, const LoadArguments &args, const Offset *vbeg) {
  Vec<int> lastColumn(args.numConstrs, -1);
  for (int j = 0; j < args.numVars; ++j) {
    const auto begin = static_cast<std::int64_t>(vbeg[j]);
    if (begin < 0 || args.vlen[j] < 0) throw Error(TVK_ERROR_INVALID_ARGUMENT);
    for (std::int64_t k = begin; k < begin + args.vlen[j]; ++k) {
      const int row = args.vind[k];
      if (row < 0 || row >= args.numConstrs) throw Error(TVK_ERROR_INDEX_OUT_OF_RANGE);
      if (lastColumn[row] == j) throw Error(TVK_ERROR_DUPLICATES);
      lastColumn[row] = j;
    }
    checkFinite(args.vval + begin, args.vlen[j]);
    a.append(args.vlen[j], args.vind + begin, args.vval + begin);
  }
}

template <class Offset>
TVKmodel *loadModel(Env &env, const LoadArguments &args, const Offset *vbeg) {
  checkDimensions(args.numVars, args.numConstrs);
  if (args.numVars > 0) requireArgument(vbeg && args.vlen && args.vind && args.vval);
  if (args.numConstrs > 0) requireArgument(args.sense && args.rhs);
  checkFiniteValue(args.objCon);
  checkNoNan(args.obj, args.numVars);
  checkNoNan(args.lb, args.numVars);
  checkNoNan(args.ub, args.numVars);
  checkNoNan(args.rhs, args.numConstrs);
  ModelInput input;
  input.name = args.name ? args.name : "";
  input.objSense = args.objSense;
  input.objCon = args.objCon;
  input.numVars = args.numVars;
  input.numConstrs = args.numConstrs;
  copyMatrix(input.a, args, vbeg);
  copyArray(input.obj, args.obj, args.numVars);
  copyArray(input.lb, args.lb, args.numVars);
  copyArray(input.ub, args.ub, args.numVars);
  copyArray(input.vtype, args.vtype, args.numVars);
  copyArray(input.rhs, args.rhs, args.numConstrs);
  copyArray(input.sense, args.sense, args.numConstrs);
  copyNames(input.varNames, args.varNames, args.numVars);
  copyNames(input.constrNames, args.constrNames, args.numConstrs);
  return Model::create(env, std::move(input), true);
}

template <class Offset>
int loadCall(TVKenv *env, TVKmodel **modelP, const char *function, const LoadArguments &args,
             const Offset *vbeg) {
  if (modelP) *modelP = nullptr;
  return envCall(env, nullptr, [&](Env &e) {
    requireStarted(e);
    requireArgument(modelP != nullptr);
    *modelP = loadModel(e, args, vbeg);
    logModelCall(e, function, *modelP);
  });
}

}  // namespace

extern "C" {

int TVKcheckmodel(TVKmodel *model) {
  if (const int code = checkModel(model)) return code;
  model->env().clearErrorAtEntry();
  return 0;
}

int TVKnewmodel(TVKenv *env, TVKmodel **modelP, const char *Pname, int numvars, const double *obj,
                const double *lb, const double *ub, const char *vtype,
                const char *const *varnames) {
  if (modelP) *modelP = nullptr;
  return envCall(env, nullptr, [&](Env &e) {
    requireStarted(e);
    checkDimensions(numvars, 0);
    requireArgument(modelP != nullptr);
    checkNoNan(obj, numvars);
    checkNoNan(lb, numvars);
    checkNoNan(ub, numvars);
    ModelInput input;
    input.name = Pname ? Pname : "";
    input.numVars = numvars;
    copyArray(input.obj, obj, numvars);
    copyArray(input.lb, lb, numvars);
    copyArray(input.ub, ub, numvars);
    copyArray(input.vtype, vtype, numvars);
    copyNames(input.varNames, varnames, numvars);
    *modelP = Model::create(e, std::move(input), true);
    logModelCall(e, "TVKnewmodel", *modelP);
  });
}

int TVKloadmodel(TVKenv *env, TVKmodel **modelP, const char *Pname, int numvars, int numconstrs,
                 int objsense, double objcon, const double *obj, const char *sense,
                 const double *rhs, const int *vbeg, const int *vlen, const int *vind,
                 const double *vval, const double *lb, const double *ub, const char *vtype,
                 const char *const *varnames, const char *const *constrnames) {
  return loadCall(env, modelP, "TVKloadmodel",
                  {Pname, numvars, numconstrs, objsense, objcon, obj, sense, rhs, vlen, vind, vval,
                   lb, ub, vtype, varnames, constrnames},
                  vbeg);
}

int TVKXloadmodel(TVKenv *env, TVKmodel **modelP, const char *Pname, int numvars, int numconstrs,
                  int objsense, double objcon, const double *obj, const char *sense,
                  const double *rhs, const size_t *vbeg, const int *vlen, const int *vind,
                  const double *vval, const double *lb, const double *ub, const char *vtype,
                  const char *const *varnames, const char *const *constrnames) {
  return loadCall(env, modelP, "TVKXloadmodel",
                  {Pname, numvars, numconstrs, objsense, objcon, obj, sense, rhs, vlen, vind, vval,
                   lb, ub, vtype, varnames, constrnames},
                  vbeg);
}

int TVKfreemodel(TVKmodel *model) {
  if (!model) return 0;
  if (const int code = checkModel(model)) return code;
  if (model->optimizing) return TVK_ERROR_OPTIMIZATION_IN_PROGRESS;
  logModelCall(model->env(), "TVKfreemodel", model);
  Model::destroy(model);
  return 0;
}

int TVKreset(TVKmodel *model, int clearall) {
  return modelCall(model, "Problem resetting model", [&](Model &m) { m.reset(clearall != 0); });
}

int TVKresetmodel(TVKmodel *model) { return TVKreset(model, 0); }

int TVKupdatemodel(TVKmodel *model) {
  return modelCall(model, "Problem updating model", [](Model &m) { m.update(); });
}

TVKenv *TVKgetenv(TVKmodel *model) { return checkModel(model) ? nullptr : model->envHandle(); }

const char *TVKgetmerrormsg(TVKmodel *model) {
  if (!model || model->marker() != kModelMarker || !model->hasEnv()) return "";
  return checkEnv(model->envHandle()) ? "" : model->env().errorMessage();
}

int TVKsetlogcallbackfunc(TVKmodel *model, TVKlogcallback cb, void *userdata) {
  int code = checkModel(model);
  if (code == 0) return TVKsetlogcallbackfuncenv(model->envHandle(), cb, userdata);
  if (code == TVK_ERROR_OPTIMIZATION_IN_PROGRESS)
    model->env().recordError(code, false, "Unable to set log callback");
  return code;
}

}  // extern "C"
