// Exported functions: optimization and its interruption.
#include "env/interrupt.h"
#include "model/model_call.h"
#include "opt/background_solve.h"
#include "opt/optimize.h"

extern "C" {

int TVKoptimize(TVKmodel *model) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &m) { tarvik::optimize(m); });
}

int TVKoptimizeasync(TVKmodel *model) {
  return tarvik::modelCall(model, nullptr,
                           [](tarvik::Model &m) { tarvik::startBackgroundSolve(m); });
}

// No model check, which would refuse a running model: waiting for it is what this is for.
int TVKsync(TVKmodel *model) {
  if (!model) return TVK_ERROR_NULL_ARGUMENT;
  if (model->marker() != tarvik::kModelMarker) return TVK_ERROR_INVALID_ARGUMENT;
  if (!model->background) return 0;
  return tarvik::framedCall(model->env(), nullptr, [&] { tarvik::syncBackgroundSolve(*model); });
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
