// The frame of every exported function on a model; see env/exported_call.h.
#pragma once

#include "model/model.h"

namespace tarvik {

template <class Body>
int modelCall(TVKmodel *model, const char *context, Body &&body) noexcept {
  if (const int code = checkModel(model)) return code;
  model->env().clearErrorAtEntry();
  return framedCall(model->env(), context, [&] { body(static_cast<Model &>(*model)); });
}

}  // namespace tarvik
