// The start of an environment. Settings take effect in this order, the later over the earlier:
// built-in defaults, the settings file, what the caller set before the start.
#include <algorithm>
#include <cstring>

#include "base/types.h"
#include "env/env_lifecycle.h"
#include "env/env_log.h"
#include "env/module_hooks.h"
#include "env/param_file.h"
#include "env/param_set.h"
#include "env/platform.h"
#include "env/process_env.h"

namespace tarvik {

namespace {

constexpr int kLogFileRow = static_cast<int>(Param::LogFile);
constexpr const char *kSettingsFile = "tarvik.env";

void openNamedLog(Env &env) {
  try {
    switchLogFile(env, env.get(Str::LogFile), true);
  } catch (const Error &) {
    // The warning has been printed; the start goes on without the file.
  }
}

void limitBlasThreads(EnvState &state) {
  if (processVariableIsSet("TVK_BLAS_WORKAROUND_SKIP") ||
      processVariableIsSet("VECLIB_MAXIMUM_THREADS"))
    return;
  setProcessVariable("VECLIB_MAXIMUM_THREADS", "1");
  state.setVeclibThreads = true;
}

void readProcessors(EnvState &state) {
  constexpr int kMaxCores = 1024;
  state.logicalProcessors = onlineProcessors();
  state.physicalCores = physicalCoreCount();
  int value;
  if (processVariable("TVK_CORES", value) && value >= 1 && value <= kMaxCores)
    state.logicalProcessors = value;
  if (processVariable("TVK_PHYSICALCORES", value) && value >= 1 && value <= kMaxCores)
    state.physicalCores = value;
  if (processVariable("TVK_MAXCORES", value) && value > 0 && value < state.logicalProcessors)
    state.coreCap = std::min(state.coreCap, value);
  state.bindings.assign(static_cast<std::size_t>(state.logicalProcessors), -1);
}

// A caller who silenced the environment before the start sees nothing of the start either,
// whatever the settings file says.
class SilenceKeeper {
 public:
  SilenceKeeper(Env &env, const ParamStore &wanted)
      : env_(env),
        quiet_(wanted.getInt(static_cast<int>(Param::OutputFlag)) == 0),
        noConsole_(wanted.getInt(static_cast<int>(Param::LogToConsole)) == 0),
        mute_(env, (quiet_ ? unsigned{kToConsole | kToFile | kToLogCallback} : 0u) |
                       (noConsole_ ? unsigned{kToConsole} : 0u)) {
    setAgain();
  }

  void setAgain() {
    if (quiet_) env_.setSilently(Int::OutputFlag, 0);
    if (noConsole_) env_.setSilently(Int::LogToConsole, 0);
  }

 private:
  Env &env_;
  bool quiet_, noConsole_;
  LogMuteScope mute_;
};

void forbidLocalDisk(Env &env) {
  env.setSilently(Int::TARV_PAR_NOLOCALDISK, 1);
  for (int row = 0; row < kNumParams; ++row)
    if ((paramRow(row).flags & kLocalDisk) && !env.params().has(row, kLocked))
      resetAndLockParam(env, row);
}

// True when the settings file exists and was read.
bool readSettingsFile(Env &env) {
  ParamFileReader reader(kSettingsFile);
  if (!reader.isOpen()) return false;
  reader.readSet(env);
  reader.close();
  return true;
}

void replayLogFile(Env &env, const ParamStore &wanted, bool silent) {
  const char *name = wanted.getStr(kLogFileRow);
  if (std::strcmp(env.get(Str::LogFile), name) != 0) {
    env.params().setStr(kLogFileRow, name);
    openNamedLog(env);
  }
  if (name[0] != '\0' && !silent)
    env.log("Set parameter %s to value \"%s\"\n", paramRow(kLogFileRow).name, name);
}

// The caller's settings win over the settings file.
void replaySettings(Env &env, const ParamStore &wanted) {
  for (int row = 0; row < kNumParams; ++row) {
    if (!wanted.has(row, kExplicitlySet)) continue;
    const bool silent = wanted.has(row, kSetSilently);
    if (row == kLogFileRow) {
      replayLogFile(env, wanted, silent);
    } else {
      switch (paramRow(row).type) {
        case ParamType::Int:
          setIntParam(env, row, wanted.getInt(row), silent);
          break;
        case ParamType::Dbl:
          setDblParam(env, row, wanted.getDbl(row), silent);
          break;
        case ParamType::Str:
          setStrParam(env, row, wanted.getStr(row), silent);
          break;
      }
    }
    env.params().addFlags(row, wanted.flags(row));
  }
}

void readMemoryVariable(Env &env) {
  double gigabytes;
  if (!processVariable("TVK_MEMLIMIT", gigabytes)) return;
  if (gigabytes >= 0 && gigabytes < kUserInf) {
    env.setSilently(Dbl::MemLimit, std::min(gigabytes, env.get(Dbl::MemLimit)));
  } else if (gigabytes < 0 && gigabytes > -kUserInf) {
    env.setSilently(Dbl::SoftMemLimit, std::min(-gigabytes, env.get(Dbl::SoftMemLimit)));
  }
}

// The remote services are not part of this library: an environment that asks for one must not
// quietly solve on this machine.
void refuseRemoteServices(const Env &env) {
  for (const Str id :
       {Str::ComputeServer, Str::CSManager, Str::CloudAccessID, Str::CloudPool, Str::CloudHost})
    if (env.get(id)[0] != '\0')
      throw Error(TVK_ERROR_NOT_SUPPORTED,
                  "Remote services are not available (parameter %s is set)",
                  paramRow(static_cast<int>(id)).name);
}

}  // namespace

void startEnv(Env &env) {
  EnvState &state = env.state();
  if (state.life != LifeState::Created)
    throw Error(TVK_ERROR_INVALID_ARGUMENT, "ERROR: Environment already started");
  const ParamStore wanted(env.params());
  state.life = LifeState::Starting;
  openNamedLog(env);
  if (!processorSupported())
    throw Error(TVK_ERROR_NOT_STARTED, "Processor does not support SSE2 instructions");
  limitBlasThreads(state);
  readProcessors(state);

  ParamStore &params = env.params();
  params.reset();
  applyMemoryParams(env);
  params.setStr(kLogFileRow, wanted.getStr(kLogFileRow));
  SilenceKeeper silence(env, wanted);
  if (wanted.getInt(static_cast<int>(Param::TARV_PAR_NOLOCALDISK)) == 1) forbidLocalDisk(env);
  const bool settingsUsed = readSettingsFile(env);
  if (env.get(Int::TARV_PAR_NOLOCALDISK) == 1) forbidLocalDisk(env);
  silence.setAgain();
  replaySettings(env, wanted);
  refuseRemoteServices(env);

  if (const int limit = env.get(Int::ThreadLimit); limit > 0)
    lowerParamLimit(env, Int::Threads, limit, false);
  if (settingsUsed) env.log("Using %s file\n", kSettingsFile);
  params.addFlags(static_cast<int>(Param::Username), kSilent);
  readMemoryVariable(env);
  if (env.get(Int::Record) == 1) beginRecording(env);
  state.life = LifeState::Started;
}

}  // namespace tarvik
