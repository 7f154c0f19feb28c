#include "env/param_set.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "base/locale_scope.h"
#include "base/number_format.h"
#include "base/types.h"
#include "env/env_log.h"
#include "env/env_state.h"

namespace tarvik {

namespace {

constexpr int kLogFileRow = static_cast<int>(Param::LogFile);
constexpr int kOutputFlagRow = static_cast<int>(Param::OutputFlag);

// The second environment to change, when the request comes from inside a user callback.
Env *passGuard(Env &env, int row) {
  const CallbackSlot &callback = env.state().callback;
  if (!callback.hooks) return nullptr;
  Env *other =
      callback.hooks->guard(callback.context, env, (paramRow(row).flags & kCallbackSettable) != 0);
  return other == &env ? nullptr : other;
}

void markSet(ParamStore &params, int row, bool silent) {
  if (silent) {
    params.addFlags(row, kExplicitlySet | kSetSilently);
  } else {
    params.clearFlags(row, kExplicitlySet | kSetLoudly | kSetSilently);
    params.addFlags(row, kExplicitlySet | kSetLoudly);
  }
}

void requireChangeable(const Env &env, int row) {
  if (env.params().has(row, kFixed))
    throw Error(TVK_ERROR_INVALID_ARGUMENT, "Unable to modify fixed parameter %s",
                paramRow(row).name);
  if (env.params().has(row, kFixedAfterStart) && env.started())
    throw Error(TVK_ERROR_INVALID_ARGUMENT,
                "Unable to modify parameter %s after environment started", paramRow(row).name);
}

// Warns once that existing models keep their values; false when the request has no effect
// because only the master's value counts.
bool passMasterRules(Env &env, int row) {
  EnvState &state = env.state();
  const int level = env.get(Int::OutputFlag);
  const bool masterOnly = env.params().has(row, kMasterOnly);
  if (env.isMaster()) {
    if (masterOnly || state.warnedExistingModels || state.apiType == 0 || level <= 0) return true;
    bool hasCopies;
    {
      std::lock_guard lock(state.mutex);
      hasCopies = state.references >= 2;
    }
    if (!hasCopies) return true;
    state.warnedExistingModels = true;
    env.log("Warning: parameter changes on this environment will not affect existing models.\n");
    return true;
  }
  if (!masterOnly || level <= 0) return true;
  env.log("Warning: changing parameter %s has only an effect if set in the master environment.\n",
          paramRow(row).name);
  return false;
}

bool isLocked(Env &env, int row) {
  const ParamStore &params = env.params();
  if (!params.has(row, kLocked)) return false;
  char number[32] = "";
  const char *kept = number;
  switch (paramRow(row).type) {
    case ParamType::Int:
      std::snprintf(number, sizeof number, "%d", params.getInt(row));
      break;
    case ParamType::Dbl:
      std::snprintf(number, sizeof number, "%g", params.getDbl(row));
      break;
    case ParamType::Str:
      kept = params.getStr(row);
      break;
  }
  env.log("Warning: changing parameter %s on this environment is not allowed, keeping value %s\n",
          paramRow(row).name, kept);
  return true;
}

void logChange(Env &env, int row, bool silent) {
  if (silent || env.params().has(row, kSilent) || !env.logReachesAnybody()) return;
  const ParamRow &entry = paramRow(row);
  if (env.params().has(row, kHidden)) {
    env.log("Set parameter %s\n", entry.name);
    return;
  }
  switch (entry.type) {
    case ParamType::Int:
      env.log("Set parameter %s to value %d\n", entry.name, env.params().getInt(row));
      break;
    case ParamType::Dbl: {
      NumberText text;
      const std::string_view value = formatNumber(env.params().getDbl(row), text);
      env.log("Set parameter %s to value %.*s\n", entry.name, static_cast<int>(value.size()),
              value.data());
      break;
    }
    case ParamType::Str:
      env.log("Set parameter %s to value \"%s\"\n", entry.name, env.params().getStr(row));
      break;
  }
}

void reportChanged(Env &env, int row) {
  const RecordSlot &record = env.master().state().record;
  if (record.hooks) record.hooks->paramChanged(record.context, env, row);
}

// Record only takes effect at the start of a master; the request itself always succeeds.
bool acceptRecord(Env &env, int row) {
  EnvState &state = env.state();
  bool accepted = false;
  if (env.isMaster()) {
    std::lock_guard lock(state.mutex);
    accepted = state.references == 1;
  }
  if (!accepted) {
    env.log("Warning: recording must be requested immediately after environment is created\n");
    return false;
  }
  state.record.requested = true;
  env.params().addFlags(row, kLocked);
  return true;
}

int currentValue(const ParamStore &params, int row, int) { return params.getInt(row); }
double currentValue(const ParamStore &params, int row, double) { return params.getDbl(row); }

void storeValue(Env &env, int row, int value) {
  env.params().setInt(row, value);
  if (row == static_cast<int>(Param::TARV_PAR_NOMEMCOUNT)) applyMemoryParams(env);
}

void storeValue(Env &env, int row, double value) {
  env.params().setDbl(row, value);
  if (row == static_cast<int>(Param::MemLimit) || row == static_cast<int>(Param::SoftMemLimit))
    applyMemoryParams(env);
}

// "parameter <name> to value <value> (<what> is <bound>)", as range messages say it.
struct RangeText {
  RangeText(const ParamRow &row, int value, const char *what, double bound) {
    std::snprintf(text, sizeof text, "parameter %s to value %d (%s is %.0f)", row.name, value, what,
                  bound);
  }
  RangeText(const ParamRow &row, double value, const char *what, double bound) {
    std::snprintf(text, sizeof text, "parameter %s to value %g (%s is %g)", row.name, value, what,
                  bound);
  }
  char text[160];
};

template <class Number>
void requireInRange(const ParamRow &row, Number value) {
  // Written so that a value that is not a number fails.
  if (!(value >= row.min))
    throw Error(TVK_ERROR_VALUE_OUT_OF_RANGE, "Unable to set %s",
                RangeText(row, value, "minimum", row.min).text);
  if (value > row.max)
    throw Error(TVK_ERROR_VALUE_OUT_OF_RANGE, "Unable to set %s",
                RangeText(row, value, "maximum", row.max).text);
}

// Some interfaces turn the console off as a matter of course; they get no line for it.
bool turnsConsoleOffSilently(const Env &env, int row, double value) {
  const int api = env.apiType();
  return row == static_cast<int>(Param::LogToConsole) && value == 0 && (api == 4 || api == 5);
}

template <class Number>
void setNumberParam(Env &env, int row, Number value, bool silent) {
  const ParamRow &entry = paramRow(row);
  ParamStore &params = env.params();
  Env *other = passGuard(env, row);
  markSet(params, row, silent);
  if (value == currentValue(params, row, value)) return;
  requireChangeable(env, row);
  requireInRange(entry, value);
  if (value > params.limit(row)) {
    if (!silent)
      env.log("Warning: Unable to set %s\n",
              RangeText(entry, value, "limit", params.limit(row)).text);
    return;
  }
  if (turnsConsoleOffSilently(env, row, value)) silent = true;
  if (!passMasterRules(env, row) || isLocked(env, row)) return;
  if (row == static_cast<int>(Param::Record) && !acceptRecord(env, row)) return;
  storeValue(env, row, value);
  if (other) storeValue(*other, row, value);
  logChange(env, row, silent);
  reportChanged(env, row);
}

[[noreturn]] void invalidValue(const char *text, const char *name) {
  throw Error(TVK_ERROR_VALUE_OUT_OF_RANGE, "Invalid value '%s' for parameter '%s'", text, name);
}

// The texts for infinity are compared by prefix, so "inf" stands for all that begin with it.
double parseNumber(const char *text, const char *name) {
  for (const char *word : {"inf", "infinity", "1.#INF"})
    if (std::strncmp(text, word, std::strlen(word)) == 0) return kUserInf;
  for (const char *word : {"-inf", "-infinity", "-1.#INF"})
    if (std::strncmp(text, word, std::strlen(word)) == 0) return -kUserInf;
  double value;
  if (std::sscanf(text, "%le", &value) != 1) invalidValue(text, name);
  return value;
}

int integerValue(double value, const char *text, const char *name) {
  if (value >= kUserInf) return kMaxInt;
  if (value <= -kUserInf) return -kMaxInt;
  if (!(std::fabs(value) <= kMaxInt)) invalidValue(text, name);
  const double whole = std::round(value);
  if (std::fabs(value - whole) > 1e-10) invalidValue(text, name);
  return static_cast<int>(whole);
}

void setNumber(Env &env, int row, double value, const char *text, bool silent) {
  const ParamRow &entry = paramRow(row);
  if (entry.type == ParamType::Int)
    setIntParam(env, row, integerValue(value, text, entry.name), silent);
  else
    setDblParam(env, row, value, silent);
}

// The text names another parameter and its number.
void setThroughDummy(Env &env, const char *text, bool silent) {
  char name[513];
  double value;
  if (std::sscanf(text, "%512s %le", name, &value) != 2) throw Error(TVK_ERROR_UNKNOWN_PARAMETER);
  const int row = requireParam(name);
  if (paramRow(row).type == ParamType::Str) throw Error(TVK_ERROR_UNKNOWN_PARAMETER);
  setNumber(env, row, value, text, silent);
}

}  // namespace

int requireParam(const char *name) {
  const int row = name ? findParamRow(name) : -1;
  if (row < 0)
    throw Error(TVK_ERROR_UNKNOWN_PARAMETER, "Unknown parameter: %s", name ? name : "(null)");
  return row;
}

int requireParam(const char *name, ParamType type) {
  const int row = requireParam(name);
  if (paramRow(row).type != type)
    throw Error(TVK_ERROR_UNKNOWN_PARAMETER, "Wrong type for parameter: %s", name);
  return row;
}

void setIntParam(Env &env, int row, int value, bool silent) {
  setNumberParam(env, row, std::clamp(value, -kMaxInt, kMaxInt), silent);
}

void setDblParam(Env &env, int row, double value, bool silent) {
  if (value > kUserInf) value = kUserInf;
  if (value < -kUserInf) value = -kUserInf;
  setNumberParam(env, row, value, silent);
}

void setStrParam(Env &env, int row, const char *value, bool silent) {
  if (!value) value = "";
  ParamStore &params = env.params();
  Env *other = passGuard(env, row);
  markSet(params, row, silent);
  if (std::strcmp(value, params.getStr(row)) == 0) return;
  requireChangeable(env, row);
  if (!passMasterRules(env, row)) return;
  if (isLocked(env, row)) return;
  if (row == static_cast<int>(Param::Dummy)) {
    setThroughDummy(env, value, silent);
    return;
  }
  // The caller may have passed the current value of a text that is about to be replaced.
  const AccountString kept(value);
  if (row == kLogFileRow) switchLogFile(env, kept.c_str(), true);
  params.setStr(row, kept.c_str());
  if (other) other->params().setStr(row, kept.c_str());
  logChange(env, row, silent);
  reportChanged(env, row);
}

void setParamFromText(Env &env, const char *name, const char *text) {
  const int row = name ? findParamRow(name) : -1;
  if (row < 0)
    throw Error(TVK_ERROR_UNKNOWN_PARAMETER, "Unknown parameter: '%s'", name ? name : "(null)");
  if (!text) throw Error(TVK_ERROR_NULL_ARGUMENT);
  if (paramRow(row).type == ParamType::Str) {
    setStrParam(env, row, text, false);
    return;
  }
  double value;
  {
    const LocaleScope locale(env.get(Int::TARV_PAR_KEEPLOCALE) == 0);
    value = parseNumber(text, paramRow(row).name);
  }
  setNumber(env, row, value, text, false);
}

void lowerParamLimit(Env &env, Int id, int limit, bool silent) {
  const int row = static_cast<int>(id);
  ParamStore &params = env.params();
  if (limit >= params.limit(row)) return;
  params.setLimit(row, limit);
  if (limit >= paramRow(row).max) return;
  if (!silent) env.log("Limit parameter %s to value %d\n", paramRow(row).name, limit);
  if (params.getInt(row) > limit) setIntParam(env, row, limit, silent);
}

void lowerParamLimit(Env &env, Dbl id, double limit, bool silent) {
  const int row = static_cast<int>(id);
  ParamStore &params = env.params();
  if (limit >= params.limit(row)) return;
  params.setLimit(row, limit);
  if (limit >= paramRow(row).max) return;
  if (!silent) env.log("Limit parameter %s to value %g\n", paramRow(row).name, limit);
  if (params.getDbl(row) > limit) setDblParam(env, row, limit, silent);
}

namespace {

void setToDefault(Env &env, int row) {
  const ParamStore &params = env.params();
  switch (paramRow(row).type) {
    case ParamType::Int:
      setIntParam(env, row, static_cast<int>(params.resetTarget(row)), true);
      break;
    case ParamType::Dbl:
      setDblParam(env, row, params.resetTarget(row), true);
      break;
    case ParamType::Str:
      setStrParam(env, row, paramRow(row).stringDef, true);
      break;
  }
}

}  // namespace

void resetAndLockParam(Env &env, int row) {
  ParamStore &params = env.params();
  if (!params.atResetTarget(row)) {
    setToDefault(env, row);
    env.log("Reset param %s to default value\n", paramRow(row).name);
  }
  params.addFlags(row, kLocked);
}

void resetParams(Env &env) {
  ParamStore &params = env.params();
  const int savedLevel = env.get(Int::OutputFlag);
  params.setInt(kOutputFlagRow, 0);
  try {
    for (int row = 0; row < kNumParams; ++row) {
      if (row == kOutputFlagRow) continue;
      params.clearFlags(row, kSetLoudly);
      if (params.atResetTarget(row) || params.has(row, kFixed | kLocked)) continue;
      if (params.has(row, kFixedAfterStart) && env.started()) continue;
      setToDefault(env, row);
    }
    setToDefault(env, kOutputFlagRow);
  } catch (...) {
    params.setInt(kOutputFlagRow, savedLevel);
    throw;
  }
}

void copyParams(Env &dest, Env &source) {
  if (&dest == &source) return;
  resetParams(dest);
  ParamStore &to = dest.params();
  const ParamStore &from = source.params();
  for (int row = 0; row < kNumParams; ++row) {
    const ParamRow &entry = paramRow(row);
    if (to.sameValue(row, from)) continue;
    if (dest.started() && to.has(row, kFixedAfterStart)) continue;
    if (from.has(row, kNotCopied) || to.has(row, kFixed | kLocked)) continue;
    if (to.has(row, kMasterOnly) && !(dest.isMaster() && source.isMaster())) continue;
    switch (entry.type) {
      case ParamType::Int:
        if (from.getInt(row) != entry.def) setIntParam(dest, row, from.getInt(row), false);
        break;
      case ParamType::Dbl:
        if (from.getDbl(row) != entry.def) setDblParam(dest, row, from.getDbl(row), false);
        break;
      case ParamType::Str:
        if (row != kLogFileRow && std::strcmp(from.getStr(row), entry.stringDef) != 0)
          setStrParam(dest, row, from.getStr(row), false);
        break;
    }
  }
}

void applyMemoryParams(Env &env) {
  constexpr double kGigabyte = 1e9;
  MemoryAccount &account = env.account();
  account.setHardLimit(env.get(Dbl::MemLimit) * kGigabyte);
  account.setSoftLimit(env.get(Dbl::SoftMemLimit) * kGigabyte);
  if (env.isMaster()) account.setCounting(env.get(Int::TARV_PAR_NOMEMCOUNT) == 0);
}

}  // namespace tarvik
