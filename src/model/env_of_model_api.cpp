// Exported functions: the child environments of a model. They belong to the model's own
// environment and are freed with it.
#include "env/env_lifecycle.h"
#include "model/model_call.h"

using namespace tarvik;

extern "C" {

TVKenv *TVKgetconcurrentenv(TVKmodel *model, int num) {
  TVKenv *child = nullptr;
  modelCall(model, nullptr, [&](Model &m) {
    if (num < 0 || num >= TVK_MAX_CONCURRENT) throw Error(TVK_ERROR_INVALID_ARGUMENT);
    child = childEnv(m.env(), m.env().state().concurrentEnvs, num);
  });
  return child;
}

void TVKdiscardconcurrentenvs(TVKmodel *model) {
  modelCall(model, nullptr, [](Model &m) { discardChildEnvs(m.env().state().concurrentEnvs); });
}

TVKenv *TVKgetmultiobjenv(TVKmodel *model, int index) {
  TVKenv *child = nullptr;
  modelCall(model, nullptr, [&](Model &m) {
    if (index < 0) throw Error(TVK_ERROR_INVALID_ARGUMENT);
    child = childEnv(m.env(), m.env().state().multiObjEnvs, index);
  });
  return child;
}

void TVKdiscardmultiobjenvs(TVKmodel *model) {
  modelCall(model, nullptr, [](Model &m) { discardChildEnvs(m.env().state().multiObjEnvs); });
}

}  // extern "C"
