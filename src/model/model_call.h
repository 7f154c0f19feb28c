// The frames of exported functions on a model; see env/exported_call.h.
#pragma once

#include "model/model.h"

namespace tarvik {

template <class Body>
int modelCall(TVKmodel *model, const char *context, Body &&body) noexcept {
  if (const int code = checkModel(model)) {
    if (code == TVK_ERROR_OPTIMIZATION_IN_PROGRESS && context && model->hasEnv()) {
      model->env().recordError(code, true, "%s", context);
    }
    return code;
  }
  model->env().clearErrorAtEntry();
  return framedCall(model->env(), context, [&] { body(static_cast<Model &>(*model)); });
}

}  // namespace tarvik
