// The remote services: every name resolves, handles are checked, and the answer is that a local
// library has no such service. Outputs are left untouched; no batch handle is ever produced.
#include "model/model_call.h"

namespace {

[[noreturn]] void noRemoteService() {
  throw tarvik::Error(TVK_ERROR_NOT_SUPPORTED, "Not implemented for regular environments");
}

int batchAnswer(const TVKbatch *batch) {
  return batch ? TVK_ERROR_NOT_SUPPORTED : TVK_ERROR_NULL_ARGUMENT;
}

}  // namespace

extern "C" {

int TVKoptimizebatch(TVKmodel *model, char *batchID) {
  return tarvik::modelCall(model, nullptr, [&](tarvik::Model &m) {
    if (!batchID)
      throw tarvik::Error(TVK_ERROR_NULL_ARGUMENT,
                          "Must provide a valid pointer to store the resulting batchID");
    if (m.data().numTagged() == 0)
      throw tarvik::Error(TVK_ERROR_INVALID_ARGUMENT,
                          "Cannot submit a batch-job optimization without tagging at least one "
                          "model element");
    noRemoteService();
  });
}

int TVKgetbatch(TVKenv *env, const char *, TVKbatch **) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { noRemoteService(); });
}

int TVKupdatebatch(TVKbatch *batch) { return batchAnswer(batch); }

int TVKgetbatchjsonsolution(TVKbatch *batch, char **) { return batchAnswer(batch); }

int TVKgetcommstats(TVKenv *env, double *) {
  return tarvik::envCall(env, nullptr, [](tarvik::Env &) { noRemoteService(); });
}

int TVKpingserver(const char *, const char *) { return TVK_ERROR_NOT_SUPPORTED; }

int TVKprefetchattr(TVKmodel *model, const char *) {
  return tarvik::modelCall(model, nullptr, [](tarvik::Model &) { noRemoteService(); });
}

}  // extern "C"
