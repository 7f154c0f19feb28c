// Exported functions: optimization and its interruption.
#include "env/interrupt.h"
#include "model/model_call.h"
#include "opt/optimize.h"

extern "C" {

int TVKoptimize(TVKmodel *model) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &m) { tarvik::optimize(m); });
}

int TVKterminate(TVKmodel *model) {
  if (!model || model->marker() != tarvik::kModelMarker) return 0;
  TVKenv *env = model->envHandle();
  if (!env || tarvik::checkEnv(env) != 0) return 0;
  env->requestTermination();
  return 0;
}

int TVKsetsignal(TVKmodel *model) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &m) {
    if (m.env().get(tarvik::Int::TARV_PAR_NOSIGNALS) == 0) tarvik::installInterrupt(m.env());
  });
}

}  // extern "C"
