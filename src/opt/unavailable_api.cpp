// Functions of the interface that this version does not provide: each checks its handle and
// answers 10024 with a message that says so, and nothing else.
#include "model/model_call.h"

namespace {

[[noreturn]] void unavailable(const char *name) {
  throw tarvik::Error(TVK_ERROR_NOT_SUPPORTED, "%s is not available in this version", name);
}

}  // namespace

extern "C" {

int TVKpresolvemodel(TVKmodel *model, TVKmodel **) {
  return tarvik::modelCall(model, nullptr,
                           [](tarvik::Model &) { unavailable("TVKpresolvemodel"); });
}
int TVKiismodel(TVKmodel *model, TVKmodel **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKiismodel"); });
}
int TVKcomputeIIS(TVKmodel *model) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKcomputeIIS"); });
}
int TVKcbsolution(void *, const double *, double *) { return TVK_ERROR_NOT_SUPPORTED; }
int TVKcbcut(void *, int, const int *, const double *, char, double) {
  return TVK_ERROR_NOT_SUPPORTED;
}
int TVKcblazy(void *, int, const int *, const double *, char, double) {
  return TVK_ERROR_NOT_SUPPORTED;
}
int TVKcbsetparam(void *, const char *, const char *) { return TVK_ERROR_NOT_SUPPORTED; }
int TVKcbproceed(void *) { return TVK_ERROR_NOT_SUPPORTED; }
int TVKcbstoponemultiobj(TVKmodel *model, void *, int) {
  return tarvik::modelCall(model, nullptr,
                           [](tarvik::Model &) { unavailable("TVKcbstoponemultiobj"); });
}
int TVKtunemodel(TVKmodel *model) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKtunemodel"); });
}
int TVKtunemodels(TVKenv *env, int, TVKmodel **) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { unavailable("TVKtunemodels"); });
}
int TVKgettuneresult(TVKmodel *model, int) {
  return tarvik::modelCall(model, nullptr,
                           [](tarvik::Model &) { unavailable("TVKgettuneresult"); });
}
int TVKgettunelog(TVKmodel *model, int, char **) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { unavailable("TVKgettunelog"); });
}
void TVKtuneparamsPrint() {}
int TVKreplay(const char *) { return TVK_ERROR_NOT_SUPPORTED; }
int TVKisrecordfile(const char *) { return TVK_ERROR_NOT_SUPPORTED; }

}  // extern "C"
