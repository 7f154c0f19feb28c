// Exported functions: registration of user callbacks and what they may call.
#include "callback/callback_context.h"
#include "callback/callback_values.h"
#include "env/exported_call.h"
#include "model/model_call.h"

namespace {

using tarvik::CallbackContext;

// Null unless the pointer is a context.
CallbackContext *checkedContext(void *cbdata) {
  auto *context = static_cast<CallbackContext *>(cbdata);
  return context && context->marker == tarvik::kCallbackMarker ? context : nullptr;
}

void queryCallback(const tarvik::Env &env, TVKcallback *cbP) {
  if (!cbP) throw tarvik::Error(TVK_ERROR_NULL_ARGUMENT);
  const CallbackContext *context = tarvik::callbackContext(env);
  *cbP = context ? context->function : nullptr;
}

}  // namespace

extern "C" {

int TVKsetcallbackfunc(TVKmodel *model, TVKcallback cb, void *userdata) {
  return tarvik::modelCall(model, "Unable to set callback", [&](tarvik::Model &m) {
    tarvik::setUserCallback(m.env(), cb, userdata);
  });
}

int TVKsetcallbackfuncenv(TVKenv *env, TVKcallback cb, void *userdata) {
  return tarvik::envCall(env, "Unable to set callback",
                         [&](tarvik::Env &e) { tarvik::setUserCallback(e, cb, userdata); });
}

int TVKgetcallbackfunc(TVKmodel *model, TVKcallback *cbP) {
  return tarvik::modelCall(model, "Unable to query callback function",
                           [&](tarvik::Model &m) { queryCallback(m.env(), cbP); });
}

int TVKgetcallbackfuncenv(TVKenv *env, TVKcallback *cbP) {
  return tarvik::envCall(env, "Unable to query callback function",
                         [&](tarvik::Env &e) { queryCallback(e, cbP); });
}

int TVKgetcbwhatinfo(void *, int what, int *typeP, int *sizeP) {
  const tarvik::WhatInfo *info = tarvik::whatInfo(what);
  if (!info) return TVK_ERROR_CALLBACK;
  if (typeP) *typeP = static_cast<int>(info->type);
  if (sizeP) *sizeP = info->isArray ? 1 : 0;
  return 0;
}

// `where` is that of the invocation that runs, whatever the caller says.
int TVKcbget(void *cbdata, int, int what, void *resultP) {
  CallbackContext *context = checkedContext(cbdata);
  if (!context) return TVK_ERROR_CALLBACK;
  if (context->model) context->model->env().clearErrorAtEntry();
  if (!resultP) return TVK_ERROR_NULL_ARGUMENT;
  return tarvik::callbackValue(*context, what, resultP) ? 0 : TVK_ERROR_CALLBACK;
}

}  // extern "C"
