// Exported function: strong branching.
#include "opt/strong_branch.h"

#include "model/model_call.h"

extern "C" int TVKstrongbranch(TVKmodel *model, int num, const int *cand, double *downobjbd,
                               double *upobjbd, int *statusP) {
  if (!statusP) return TVK_ERROR_NULL_ARGUMENT;
  *statusP = 0;
  return tarvik::modelCall(model, nullptr, [&](tarvik::Model &m) {
    *statusP = static_cast<int>(tarvik::strongBranch(m, num, cand, downobjbd, upobjbd));
  });
}
