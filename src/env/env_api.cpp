// Exported functions: the life of environments.
#include <cstdlib>

#include "env/env_lifecycle.h"
#include "env/exported_call.h"
#include "env/module_hooks.h"
#include "env/param_set.h"

using namespace tarvik;

namespace {

// Makes an environment; on failure none exists that could hold a message.
int makeEnv(TVKenv **envP, const EnvOptions &options) noexcept {
  if (!envP) return TVK_ERROR_NULL_ARGUMENT;
  *envP = nullptr;
  try {
    *envP = createEnv(options);
    return 0;
  } catch (...) {
    return TVK_ERROR_OUT_OF_MEMORY;
  }
}

EnvOptions optionsOf(int apitype, int major, int minor, int technical) {
  EnvOptions options;
  options.apiType = apitype;
  options.major = major;
  options.minor = minor;
  options.technical = technical;
  return options;
}

// A user callback that is installed while an environment is loaded.
class StartCallbackScope {
 public:
  StartCallbackScope(Env &env, TVKcallback callback, void *userData) : env_(env) {
    if (callback) installUserCallback(env, callback, userData);
  }
  ~StartCallbackScope() { clearUserCallback(env_); }
  StartCallbackScope(const StartCallbackScope &) = delete;
  StartCallbackScope &operator=(const StartCallbackScope &) = delete;

 private:
  Env &env_;
};

void setStrIfGiven(Env &env, Str id, const char *value) {
  if (value) setStrParam(env, static_cast<int>(id), value, false);
}

void setLogFile(Env &env, const char *name) {
  setStrParam(env, static_cast<int>(Param::LogFile), name, false);
}

}  // namespace

extern "C" {

int TVKemptyenv(TVKenv **envP) { return makeEnv(envP, EnvOptions()); }

int TVKemptyenvadv(TVKenv **envP, TVKallocfn allocfn, TVKzeroallocfn zeroallocfn,
                   TVKreallocfn reallocfn, TVKfreefn freefn, TVKthreadcreatefn threadcreatefn,
                   TVKthreadjoinfn threadjoinfn, void *userdata) {
  return TVKemptyenvadvinternal(envP, -1, TVK_VERSION_MAJOR, TVK_VERSION_MINOR,
                                TVK_VERSION_TECHNICAL, allocfn, zeroallocfn, reallocfn, freefn,
                                threadcreatefn, threadjoinfn, userdata);
}

int TVKemptyenvadvinternal(TVKenv **envP, int apitype, int major, int minor, int technical,
                           TVKallocfn allocfn, TVKzeroallocfn zeroallocfn, TVKreallocfn reallocfn,
                           TVKfreefn freefn, TVKthreadcreatefn threadcreatefn,
                           TVKthreadjoinfn threadjoinfn, void *userdata) {
  EnvOptions options = optionsOf(apitype, major, minor, technical);
  options.memory = {allocfn, zeroallocfn, reallocfn, freefn, userdata};
  options.threads = {threadcreatefn, threadjoinfn, userdata};
  return makeEnv(envP, options);
}

int TVKloadenv(TVKenv **envP, const char *logfilename) {
  if (const int code = makeEnv(envP, EnvOptions())) return code;
  return envCall(*envP, nullptr, [&](Env &env) {
    setLogFile(env, logfilename);
    startEnv(env);
  });
}

int TVKloadenvadv(TVKenv **envP, const char *logfilename, int apitype, int major, int minor,
                  int technical, const char *server, const char *router, const char *password,
                  const char *group, int priority, int idletimeout, const char *cloudaccessid,
                  const char *cloudsecretkey, TVKcallback cb, void *cbdata, TVKlogcallback logcb,
                  void *logcbdata) {
  if (const int code = makeEnv(envP, optionsOf(apitype, major, minor, technical))) return code;
  return envCall(*envP, nullptr, [&](Env &env) {
    EnvState &state = env.state();
    state.log.callback = logcb;
    state.log.userData = logcbdata;
    const StartCallbackScope callback(env, cb, cbdata);
    setLogFile(env, logfilename);
    setStrIfGiven(env, Str::ComputeServer, server);
    setStrIfGiven(env, Str::CSRouter, router);
    setStrIfGiven(env, Str::ServerPassword, password);
    setStrIfGiven(env, Str::CSGroup, group);
    setStrIfGiven(env, Str::CloudAccessID, cloudaccessid);
    setStrIfGiven(env, Str::CloudSecretKey, cloudsecretkey);
    if (priority != 0 && priority >= -100 && priority <= 100)
      setIntParam(env, static_cast<int>(Param::CSPriority), priority, false);
    if (idletimeout != -1)
      setIntParam(env, static_cast<int>(Param::CSIdleTimeout), idletimeout, false);
    startEnv(env);
  });
}

int TVKstartenv(TVKenv *env) {
  return envCall(env, nullptr, [&](Env &e) {
    if (!e.started()) startEnv(e);
  });
}

int TVKfreeenv(TVKenv *env) {
  if (!env) return 0;
  if (const int code = checkEnv(env)) return code;
  env->clearErrorAtEntry();
  const char *refusal = freeCallersEnv(env);
  if (!refusal) return 0;
  env->recordError(TVK_ERROR_INVALID_ARGUMENT, false, "%s", refusal);
  return env->finishCall(TVK_ERROR_INVALID_ARGUMENT);
}

int TVKcopyparams(TVKenv *dest, TVKenv *src) {
  if (const int code = checkEnv(src)) {
    if (checkEnv(dest) == 0) {
      dest->clearErrorAtEntry();
      dest->finishCall(code);
    }
    return code;
  }
  return envCall(dest, nullptr, [&](Env &env) { copyParams(env, *src); });
}

TVKenv *TVKgettuneenv(TVKenv *env, int index) {
  TVKenv *child = nullptr;
  envCall(env, nullptr, [&](Env &parent) {
    if (index < 0) throw Error(TVK_ERROR_INVALID_ARGUMENT);
    if (!parent.started()) throw Error(TVK_ERROR_NOT_STARTED);
    child = childEnv(parent, parent.state().tuneEnvs, index);
  });
  return child;
}

void TVKdiscardtuneenvs(TVKenv *env) {
  envCall(env, nullptr, [](Env &parent) { discardChildEnvs(parent.state().tuneEnvs); });
}

int TVKversion(int *major, int *minor, int *technical) {
  if (major) *major = TVK_VERSION_MAJOR;
  if (minor) *minor = TVK_VERSION_MINOR;
  if (technical) *technical = TVK_VERSION_TECHNICAL;
  return 0;
}

int TVKfree(void *ptr) {
  std::free(ptr);
  return 0;
}

}  // extern "C"
