// Exported functions: reading, setting and describing parameters, and parameter files.
#include <algorithm>
#include <cstring>

#include "env/exported_call.h"
#include "env/param_file.h"
#include "env/param_set.h"

using namespace tarvik;

namespace {

constexpr std::size_t kTextBytes = 512;

void requireOutput(const void *output) {
  if (!output) throw Error(TVK_ERROR_NULL_ARGUMENT);
}

void requireFileName(const char *filename) {
  if (!filename) throw Error(TVK_ERROR_NULL_ARGUMENT, "No 'filename' argument supplied");
}

// Copies at most kTextBytes and, for texts that long, no terminator.
void copyRaw(char *to, const char *text) {
  std::memcpy(to, text, std::min(kTextBytes, std::strlen(text) + 1));
}

void copyTerminated(char *to, const char *text, std::size_t capacity) {
  const std::size_t length = std::min(capacity - 1, std::strlen(text));
  std::memcpy(to, text, length);
  to[length] = '\0';
}

}  // namespace

extern "C" {

int TVKsetintparam(TVKenv *env, const char *name, int value) {
  return envCall(env, nullptr,
                 [&](Env &e) { setIntParam(e, requireParam(name, ParamType::Int), value, false); });
}

int TVKsetdblparam(TVKenv *env, const char *name, double value) {
  return envCall(env, nullptr,
                 [&](Env &e) { setDblParam(e, requireParam(name, ParamType::Dbl), value, false); });
}

int TVKsetstrparam(TVKenv *env, const char *name, const char *value) {
  return envCall(env, nullptr,
                 [&](Env &e) { setStrParam(e, requireParam(name, ParamType::Str), value, false); });
}

int TVKsetparam(TVKenv *env, const char *name, const char *value) {
  return envCall(env, nullptr, [&](Env &e) { setParamFromText(e, name, value); });
}

int TVKgetintparam(TVKenv *env, const char *name, int *value) {
  return envCall(env, nullptr, [&](Env &e) {
    const int row = requireParam(name, ParamType::Int);
    requireOutput(value);
    *value = e.params().getInt(row);
  });
}

int TVKgetdblparam(TVKenv *env, const char *name, double *value) {
  return envCall(env, nullptr, [&](Env &e) {
    const int row = requireParam(name, ParamType::Dbl);
    requireOutput(value);
    *value = e.params().getDbl(row);
  });
}

int TVKgetstrparam(TVKenv *env, const char *name, char *value) {
  return envCall(env, nullptr, [&](Env &e) {
    const int row = requireParam(name, ParamType::Str);
    requireOutput(value);
    copyTerminated(value, e.params().getStr(row), kTextBytes);
  });
}

int TVKgetlongstrparam(TVKenv *env, const char *name, char *buffer, int buflen, int *length) {
  return envCall(env, nullptr, [&](Env &e) {
    const int row = requireParam(name, ParamType::Str);
    if (!buffer) requireOutput(length);
    const char *value = e.params().getStr(row);
    if (length) *length = static_cast<int>(std::strlen(value));
    // A length below 1 still clears the first byte.
    if (buffer) copyTerminated(buffer, value, static_cast<std::size_t>(std::max(1, buflen)));
  });
}

int TVKgetparamtype(TVKenv *env, const char *name) {
  int type = -1;
  envCall(env, nullptr, [&](Env &) { type = static_cast<int>(paramRow(requireParam(name)).type); });
  return type;
}

int TVKgetintparaminfo(TVKenv *env, const char *name, int *value, int *min, int *max,
                       int *defvalue) {
  return envCall(env, nullptr, [&](Env &e) {
    const int row = requireParam(name, ParamType::Int);
    const ParamRow &entry = paramRow(row);
    if (value) *value = e.params().getInt(row);
    if (min) *min = static_cast<int>(entry.min);
    if (max) *max = static_cast<int>(entry.max);
    if (defvalue) *defvalue = static_cast<int>(entry.def);
  });
}

int TVKgetdblparaminfo(TVKenv *env, const char *name, double *value, double *min, double *max,
                       double *defvalue) {
  return envCall(env, nullptr, [&](Env &e) {
    const int row = requireParam(name, ParamType::Dbl);
    const ParamRow &entry = paramRow(row);
    if (value) *value = e.params().getDbl(row);
    if (min) *min = entry.min;
    if (max) *max = entry.max;
    if (defvalue) *defvalue = entry.def;
  });
}

int TVKgetstrparaminfo(TVKenv *env, const char *name, char *value, char *defvalue) {
  return envCall(env, nullptr, [&](Env &e) {
    const int row = requireParam(name, ParamType::Str);
    if (value) copyRaw(value, e.params().getStr(row));
    if (defvalue) copyRaw(defvalue, paramRow(row).stringDef);
  });
}

int TVKgetparamflags(TVKenv *env, const char *name, unsigned int *flags) {
  return envCall(env, nullptr, [&](Env &e) {
    const int row = requireParam(name);
    if (!flags) throw Error(TVK_ERROR_INVALID_ARGUMENT);
    *flags = e.params().flags(row);
  });
}

int TVKgetnumparams(TVKenv *env) {
  int count = 0;
  envCall(env, nullptr, [&](Env &) { count = kNumPublicParams; });
  return count;
}

int TVKgetparamname(TVKenv *env, int i, char **name) {
  return envCall(env, nullptr, [&](Env &) {
    requireOutput(name);
    if (i < 0 || i >= kNumPublicParams) throw Error(TVK_ERROR_INVALID_ARGUMENT);
    *name = const_cast<char *>(paramRow(i).name);
  });
}

int TVKresetparams(TVKenv *env) {
  return envCall(env, nullptr, [](Env &e) { resetParams(e); });
}

int TVKwriteparams(TVKenv *env, const char *filename) {
  return envCall(env, nullptr, [&](Env &e) {
    requireFileName(filename);
    writeParamFile(e, filename);
  });
}

int TVKreadparams(TVKenv *env, const char *filename) {
  return envCall(env, nullptr, [&](Env &e) {
    requireFileName(filename);
    readParamFile(e, filename);
    e.log("Read parameters from file %s\n", filename);
  });
}

int TVKreadtunebasesettings(TVKenv *env, const char *filename) {
  return envCall(env, nullptr, [&](Env &e) {
    requireFileName(filename);
    readTuneBaseSettings(e, filename);
  });
}

}  // extern "C"
