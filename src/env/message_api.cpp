// Exported functions: error messages, messages to the log, log callbacks.
#include <cstdio>

#include "env/env_state.h"
#include "env/exported_call.h"

using namespace tarvik;

namespace {

// The message stands as a format string without arguments: a doubled percent sign means one.
// Nothing else is read from an argument list that does not exist.
void logFormat(Env &env, const char *message) {
  AccountString text;
  for (const char *p = message; *p != '\0'; ++p) {
    text.push_back(*p);
    if (p[0] == '%' && p[1] == '%') ++p;
  }
  if (!text.empty() && text.back() == '\n') {
    text.pop_back();
    env.log("%s\n", text.c_str());
  } else {
    env.log("%s", text.c_str());
  }
}

}  // namespace

extern "C" {

const char *TVKgeterrormsg(TVKenv *env) { return checkEnv(env) == 0 ? env->errorMessage() : ""; }

void TVKmsg(TVKenv *env, const char *message) {
  if (checkEnv(env) != 0 || !message) return;
  if (!env->started()) std::fputs("Environment not started\n", stderr);
  framedCall(*env, nullptr, [&] { logFormat(*env, message); });
}

int TVKsetlogcallbackfuncenv(TVKenv *env, TVKlogcallback cb, void *userdata) {
  return envCall(env, "Unable to set log callback", [&](Env &e) {
    e.state().log.callback = cb;
    e.state().log.userData = userdata;
  });
}

int TVKgetlogcallbackfuncenv(TVKenv *env, TVKlogcallback *cbP, void **userdataP) {
  return envCall(env, "Unable to set log callback", [&](Env &e) {
    if (cbP) *cbP = e.state().log.callback;
    if (userdataP) *userdataP = e.state().log.userData;
  });
}

}  // extern "C"
