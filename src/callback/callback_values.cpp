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
  *static_cast<double *>(result) = value + 0.0;  // the sense may have given a zero its sign
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

// False where there is no point.
bool storePoint(const MipCallbackValues &mip, void *result) {
  if (!mip.point) return false;
  const Vec<double> &point = mip.point();
  std::copy(point.begin(), point.end(), static_cast<double *>(result));
  return !point.empty();
}

// What is told everywhere in a search, under a code of its own for each place.
bool commonMipValue(const CallbackContext &context, int what, void *result) {
  const MipCallbackValues &mip = *context.mip;
  switch (what) {
    case TVK_CB_MIP_BESTOBJ:
    case TVK_CB_MIPSOL_BESTOBJ:
    case TVK_CB_MIPNODE_BESTOBJ:
      return storeDouble(result, context.objSense * mip.bestObjective);
    case TVK_CB_MIP_BESTBOUND:
    case TVK_CB_MIPSOL_BESTBOUND:
    case TVK_CB_MIPSOL_BESTBOUND2:
    case TVK_CB_MIPNODE_BESTBOUND:
    case TVK_CB_MIPNODE_BESTBOUND2:
      return storeDouble(result, context.objSense * mip.bestBound);
    case TVK_CB_MIP_NODECOUNT:
    case TVK_CB_MIPSOL_NODECOUNT:
    case TVK_CB_MIPNODE_NODECOUNT:
      return storeDouble(result, mip.explored);
    case TVK_CB_MIP_SOLCOUNT:
    case TVK_CB_MIPSOL_SOLCOUNT:
    case TVK_CB_MIPNODE_SOLCOUNT:
      return storeInt(result, mip.solutions);
    case TVK_CB_MIP_OPENSCENARIOS:
    case TVK_CB_MIPSOL_OPENSCENARIOS:
    case TVK_CB_MIPNODE_OPENSCENARIOS:
      return storeInt(result, 0);
    case TVK_CB_MIP_PHASE:
    case TVK_CB_MIPSOL_PHASE:
    case TVK_CB_MIPNODE_PHASE:
      return storeInt(result, mip.phase);
    case TVK_CB_MIP_PROGRESSTIME:
    case TVK_CB_MIPSOL_PROGRESSTIME:
      return storeDouble(result, context.progressTime);
    default:
      return false;
  }
}

bool mipValue(const CallbackContext &context, int what, void *result) {
  const MipCallbackValues &mip = *context.mip;
  const double sense = context.objSense;
  switch (what) {
    case TVK_CB_MIP_CUTCOUNT:
      return storeInt(result, mip.cuts);
    case TVK_CB_MIP_OPENNODECOUNT:
      return storeDouble(result, mip.unexplored);
    case TVK_CB_MIP_ITERCOUNT:
      return storeDouble(result, mip.iterations);
    case TVK_CB_MIP_COUNTER1:
      return storeDouble(result, context.calls);
    case TVK_CB_MIP_COUNTER2:
      return storeDouble(result, context.seconds);
    case TVK_CB_MIP_COUNTER3:
      return storeInt(result, mip.depth);
    case TVK_CB_MIP_NODEBOUND:
      return storeDouble(result, sense * mip.nodeBound);
    case TVK_CB_MIP_COUNTER5:
    case TVK_CB_MIPNODE_BRANCH:
      return storeInt(result, mip.infeasibilities);
    case TVK_CB_MIP_COUNTER6:
      return storeInt(result, mip.workers);
    case TVK_CB_MIP_OBJVAL:
      return storeDouble(result, sense * std::max(mip.nodeBound, mip.bestBound));
    case TVK_CB_MIPSOL_SOL:
    case TVK_CB_MIPNODE_SOL:
      return storePoint(mip, result);
    case TVK_CB_MIPSOL_OBJ:
      return storeDouble(result, sense * mip.objective);
    case TVK_CB_MIPSOL_COUNTER:
      return storeInt(result, mip.solutionsTold);
    case TVK_CB_MIPNODE_STATUS:
      return storeInt(result, mip.nodeStatus);
    default:
      return commonMipValue(context, what, result);
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
      // Each place has a thousand codes of its own.
      if (context.mip) return what / 1000 == context.where && mipValue(context, what, result);
      if (context.presolve) return presolveValue(*context.presolve, what, result);
      return context.simplex && simplexValue(*context.simplex, context.objSense, what, result);
  }
}

}  // namespace tarvik
