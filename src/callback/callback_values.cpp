#include "callback/callback_values.h"

#include <algorithm>
#include <iterator>

namespace tarvik {

namespace {

constexpr int kAnywhere = CallbackContext::kNowhere;
constexpr WhatType kInt = WhatType::Int;
constexpr WhatType kDouble = WhatType::Double;

constexpr WhatInfo kWhat[] = {
    {TVK_CB_PRE_COLDEL, TVK_CB_PRESOLVE, kInt, false},
    {TVK_CB_PRE_ROWDEL, TVK_CB_PRESOLVE, kInt, false},
    {TVK_CB_PRE_SENSECHG, TVK_CB_PRESOLVE, kInt, false},
    {TVK_CB_PRE_BOUNDCHG, TVK_CB_PRESOLVE, kInt, false},
    {TVK_CB_PRE_COEFCHG, TVK_CB_PRESOLVE, kInt, false},
    {TVK_CB_SPX_ITERCOUNT, TVK_CB_SIMPLEX, kDouble, false},
    {TVK_CB_SPX_OBJVAL, TVK_CB_SIMPLEX, kDouble, false},
    {TVK_CB_SPX_PRIMINF, TVK_CB_SIMPLEX, kDouble, false},
    {TVK_CB_SPX_DUALINF, TVK_CB_SIMPLEX, kDouble, false},
    {TVK_CB_SPX_PERTURBED, TVK_CB_SIMPLEX, kInt, false},
    {TVK_CB_MIP_BESTOBJ, TVK_CB_MIP, kDouble, false},
    {TVK_CB_MIP_BESTBOUND, TVK_CB_MIP, kDouble, false},
    {TVK_CB_MIP_NODECOUNT, TVK_CB_MIP, kDouble, false},
    {TVK_CB_MIP_SOLCOUNT, TVK_CB_MIP, kInt, false},
    {TVK_CB_MIP_CUTCOUNT, TVK_CB_MIP, kInt, false},
    {TVK_CB_MIP_OPENNODECOUNT, TVK_CB_MIP, kDouble, false},
    {TVK_CB_MIP_ITERCOUNT, TVK_CB_MIP, kDouble, false},
    {TVK_CB_MIP_OPENSCENARIOS, TVK_CB_MIP, kInt, false},
    {TVK_CB_MIP_PHASE, TVK_CB_MIP, kInt, false},
    {TVK_CB_MIP_PROGRESSTIME, TVK_CB_MIP, kDouble, false},
    {TVK_CB_MIP_COUNTER1, TVK_CB_MIP, kDouble, false},
    {TVK_CB_MIP_COUNTER2, TVK_CB_MIP, kDouble, false},
    {TVK_CB_MIP_COUNTER3, TVK_CB_MIP, kDouble, false},
    {TVK_CB_MIP_NODEBOUND, TVK_CB_MIP, kDouble, false},
    {TVK_CB_MIP_COUNTER5, TVK_CB_MIP, kDouble, false},
    {TVK_CB_MIP_COUNTER6, TVK_CB_MIP, kDouble, false},
    {TVK_CB_MIP_OBJVAL, TVK_CB_MIP, kDouble, false},
    {TVK_CB_MIPSOL_SOL, TVK_CB_MIPSOL, kDouble, true},
    {TVK_CB_MIPSOL_OBJ, TVK_CB_MIPSOL, kDouble, false},
    {TVK_CB_MIPSOL_BESTOBJ, TVK_CB_MIPSOL, kDouble, false},
    {TVK_CB_MIPSOL_BESTBOUND, TVK_CB_MIPSOL, kDouble, false},
    {TVK_CB_MIPSOL_NODECOUNT, TVK_CB_MIPSOL, kDouble, false},
    {TVK_CB_MIPSOL_SOLCOUNT, TVK_CB_MIPSOL, kInt, false},
    {TVK_CB_MIPSOL_OPENSCENARIOS, TVK_CB_MIPSOL, kInt, false},
    {TVK_CB_MIPSOL_PHASE, TVK_CB_MIPSOL, kInt, false},
    {TVK_CB_MIPSOL_COUNTER, TVK_CB_MIPSOL, kInt, false},
    {TVK_CB_MIPSOL_PROGRESSTIME, TVK_CB_MIPSOL, kDouble, false},
    {TVK_CB_MIPSOL_BESTBOUND2, TVK_CB_MIPSOL, kDouble, false},
    {TVK_CB_MIPNODE_STATUS, TVK_CB_MIPNODE, kInt, false},
    {TVK_CB_MIPNODE_SOL, TVK_CB_MIPNODE, kDouble, true},
    {TVK_CB_MIPNODE_BESTOBJ, TVK_CB_MIPNODE, kDouble, false},
    {TVK_CB_MIPNODE_BESTBOUND, TVK_CB_MIPNODE, kDouble, false},
    {TVK_CB_MIPNODE_NODECOUNT, TVK_CB_MIPNODE, kDouble, false},
    {TVK_CB_MIPNODE_SOLCOUNT, TVK_CB_MIPNODE, kInt, false},
    {TVK_CB_MIPNODE_BRANCH, TVK_CB_MIPNODE, kInt, false},
    {TVK_CB_MIPNODE_OPENSCENARIOS, TVK_CB_MIPNODE, kInt, false},
    {TVK_CB_MIPNODE_PHASE, TVK_CB_MIPNODE, kInt, false},
    {TVK_CB_MIPNODE_BESTBOUND2, TVK_CB_MIPNODE, kDouble, false},
    {TVK_CB_MSG_STRING, TVK_CB_MESSAGE, WhatType::String, false},
    {TVK_CB_RUNTIME, kAnywhere, kDouble, false},
    {TVK_CB_WORK, kAnywhere, kDouble, false},
    {TVK_CB_BARRIER_ITERCOUNT, TVK_CB_BARRIER, kInt, false},
    {TVK_CB_BARRIER_PRIMOBJ, TVK_CB_BARRIER, kDouble, false},
    {TVK_CB_BARRIER_DUALOBJ, TVK_CB_BARRIER, kDouble, false},
    {TVK_CB_BARRIER_PRIMINF, TVK_CB_BARRIER, kDouble, false},
    {TVK_CB_BARRIER_DUALINF, TVK_CB_BARRIER, kDouble, false},
    {TVK_CB_BARRIER_COMPL, TVK_CB_BARRIER, kDouble, false},
    {TVK_CB_MULTIOBJ_DONECOUNT, TVK_CB_MULTIOBJ, kInt, false},
    {TVK_CB_MULTIOBJ_SOLCOUNT, TVK_CB_MULTIOBJ, kInt, false},
    {TVK_CB_MULTIOBJ_SOL, TVK_CB_MULTIOBJ, kDouble, true},
    {TVK_CB_IIS_CONSTRMIN, TVK_CB_IIS, kInt, false},
    {TVK_CB_IIS_CONSTRMAX, TVK_CB_IIS, kInt, false},
    {TVK_CB_IIS_CONSTRGUESS, TVK_CB_IIS, kInt, false},
    {TVK_CB_IIS_BOUNDMIN, TVK_CB_IIS, kInt, false},
    {TVK_CB_IIS_BOUNDMAX, TVK_CB_IIS, kInt, false},
    {TVK_CB_IIS_BOUNDGUESS, TVK_CB_IIS, kInt, false},
};

bool storeInt(void *result, int value) {
  *static_cast<int *>(result) = value;
  return true;
}

bool storeDouble(void *result, double value) {
  *static_cast<double *>(result) = value;
  return true;
}

bool presolveValue(const PresolveProgress &progress, int what, void *result) {
  switch (what) {
    case TVK_CB_PRE_COLDEL:
      return storeInt(result, progress.colsRemoved);
    case TVK_CB_PRE_ROWDEL:
      return storeInt(result, progress.rowsRemoved);
    case TVK_CB_PRE_SENSECHG:
      return storeInt(result, progress.sensesChanged);
    case TVK_CB_PRE_BOUNDCHG:
      return storeInt(result, progress.boundsChanged);
    case TVK_CB_PRE_COEFCHG:
      return storeInt(result, progress.coefsChanged);
    default:
      return false;
  }
}

bool simplexValue(const SimplexProgress &progress, double objSense, int what, void *result) {
  switch (what) {
    case TVK_CB_SPX_ITERCOUNT:
      return storeDouble(result, progress.iterations);
    case TVK_CB_SPX_OBJVAL:
      return storeDouble(result, objSense * progress.objective);
    case TVK_CB_SPX_PRIMINF:
      return storeDouble(result, progress.primalInfeasibility);
    case TVK_CB_SPX_DUALINF:
      return storeDouble(result, progress.dualInfeasibility);
    case TVK_CB_SPX_PERTURBED:
      return storeInt(result, progress.perturbed);
    default:
      return false;
  }
}

}  // namespace

const WhatInfo *whatInfo(int what) {
  const auto *found = std::find_if(std::begin(kWhat), std::end(kWhat),
                                   [&](const WhatInfo &info) { return info.what == what; });
  return found == std::end(kWhat) ? nullptr : found;
}

bool callbackValue(CallbackContext &context, int what, void *result) {
  const SolveControl *control = context.control;
  switch (what) {
    case TVK_CB_RUNTIME:
      return storeDouble(result, control ? control->limits.seconds() : 0);
    case TVK_CB_WORK:
      return storeDouble(result, control ? control->work.workUnits() : 0);
    case TVK_CB_MSG_STRING:
      if (context.where != TVK_CB_MESSAGE) return false;
      *static_cast<char **>(result) = context.message;
      return true;
    default:
      if (context.presolve) return presolveValue(*context.presolve, what, result);
      return context.simplex && simplexValue(*context.simplex, context.objSense, what, result);
  }
}

}  // namespace tarvik
