#include "env/env_log.h"

#include <algorithm>
#include <cstring>
#include <ctime>

#include "env/env_state.h"
#include "env/platform.h"

namespace tarvik {

namespace {

thread_local bool onWorkerThread = false;

const char *apiName(int apiType) {
  static constexpr const char *kNames[] = {
      "Python", "C++", "Java", ".NET", "Matlab", "R", "tarvik_cl", "tvktune", "batch worker"};
  return apiType >= 0 && apiType <= 8 ? kNames[apiType] : nullptr;
}

unsigned destinationsOf(const Env &env) {
  const EnvState &state = env.state();
  if (state.life == LifeState::Created) return 0;
  const LogState &log = state.log;
  const int level = env.get(Int::OutputFlag);
  const bool console = env.get(Int::LogToConsole) > 0;
  unsigned to = 0;
  if (level > 0 && console && !log.separate && state.apiType != 0) to |= kToConsole;
  if (level > 0 && log.file) to |= kToFile;
  if (level >= 0 && state.callback.hooks && !log.separate) to |= kToUserCallback;
  if (level > 0 && log.callback && !log.separate && (state.apiType != 0 || console))
    to |= kToLogCallback;
  to &= ~log.muted;
  if (onWorkerThread) {
    if (log.workers == WorkerLog::FileOnly) to &= kToFile;
    if (log.workers == WorkerLog::Nothing && !log.separate) to = 0;
  }
  return to;
}

void deliver(Env &env, const char *line, int length, unsigned to) {
  LogState &log = env.state().log;
  char piece[LogState::kPieceBytes + 1];
  if (to & kToConsole) {
    std::snprintf(piece, sizeof piece, "%.*s", length, line);
    std::puts(piece);
    std::fflush(stdout);
  }
  if ((to & kToFile) && log.file) {
    std::fprintf(log.file, "%.*s\n", length, line);
    std::fflush(log.file);
  }
  std::snprintf(piece, sizeof piece, "%.*s\n", length, line);
  const CallbackSlot &user = env.state().callback;
  if ((to & kToUserCallback) && user.hooks) user.hooks->message(user.context, env, piece);
  if ((to & kToLogCallback) && log.callback) log.callback(piece, log.userData);
}

// Takes the first line off the buffer: up to a newline, or a full piece without one.
bool takeLine(LogState &log, char *line, int &length) {
  const auto *newline = static_cast<const char *>(std::memchr(log.buffer, '\n', log.length));
  length = newline ? static_cast<int>(newline - log.buffer) : log.length;
  int taken = length + 1;
  if (length > LogState::kPieceBytes || (!newline && length == LogState::kPieceBytes)) {
    length = taken = LogState::kPieceBytes;
  } else if (!newline) {
    return false;
  }
  std::memcpy(line, log.buffer, length);
  line[length] = '\0';
  log.length -= taken;
  std::memmove(log.buffer, log.buffer + taken, log.length);
  return true;
}

void writeHeader(FILE *file, const char *tag) {
  char when[128] = "";
  const std::time_t now = std::time(nullptr);
  std::tm parts;
  if (localtime_r(&now, &parts)) std::strftime(when, sizeof when, "%c", &parts);
  std::fprintf(file, "\nTarvik %d.%d.%d (%s%s%s%s) logging started %s\n\n", TVK_VERSION_MAJOR,
               TVK_VERSION_MINOR, TVK_VERSION_TECHNICAL, platformName(), platformExtension(),
               tag ? ", " : "", tag ? tag : "", when);
  std::fflush(file);
}

void openLogFile(Env &env, const char *name, const char *tag, bool withHeader) {
  AccountString nameCopy(name);
  FILE *file = std::fopen(name, "a");
  if (!file) {
    std::printf("Warning: Failed to open log file '%s'\n", name);
    throw Error(TVK_ERROR_FILE_WRITE);
  }
  closeLogFile(env);
  env.state().log.file = file;
  env.state().log.fileName.swap(nameCopy);
  if (withHeader) writeHeader(file, tag);
}

}  // namespace

void Env::log(const char *format, ...) {
  va_list args;
  va_start(args, format);
  vlog(format, args);
  va_end(args);
}

void Env::vlog(const char *format, va_list args) {
  const unsigned to = destinationsOf(*this);
  if (to == 0) return;
  LogState &state = state_->log;
  if (to != state.destinations) {
    state.length = 0;
    state.destinations = to;
  }
  const int room = LogState::kBufferBytes - state.length;
  const int wanted = std::vsnprintf(state.buffer + state.length, room, format, args);
  if (wanted > 0) state.length += std::min(wanted, room - 1);
  // A line that does not fit is cut, but it ends: the next line must not continue it.
  if (wanted >= room && *format != '\0' && format[std::strlen(format) - 1] == '\n')
    state.buffer[state.length - 1] = '\n';
  // A line leaves the buffer before it is delivered: what receives it may log in turn.
  char line[LogState::kPieceBytes + 1];
  int length;
  while (takeLine(state, line, length)) deliver(*this, line, length, to);
}

bool Env::logReachesAnybody() const { return destinationsOf(*this) != 0; }

void switchLogFile(Env &env, const char *name, bool withHeader) {
  EnvState &state = env.state();
  if (!name || name[0] == '\0')
    closeLogFile(env);
  else if (state.life != LifeState::Created)
    openLogFile(env, name, apiName(state.apiType), withHeader);
}

void reopenLogFile(Env &env, const char *name) {
  try {
    openLogFile(env, name, nullptr, false);
  } catch (const Error &) {
    // The warning has been printed; the copy logs to its other destinations.
  }
}

void closeLogFile(Env &env) noexcept {
  LogState &log = env.state().log;
  if (log.file) std::fclose(log.file);
  log.file = nullptr;
  log.fileName.clear();
}

void openSeparateLog(Env &env, const char *base, int number, const char *tag) {
  char name[300];
  std::snprintf(name, sizeof name, "%.*s%d", 252, base, number);
  openLogFile(env, name, tag, true);
  env.state().log.separate = true;
  env.params().setInt(static_cast<int>(Param::OutputFlag), 1);
}

LogMuteScope::LogMuteScope(Env &env, unsigned destinations)
    : env_(env), previous_(env.state().log.muted) {
  env.state().log.muted |= destinations;
}
LogMuteScope::~LogMuteScope() { env_.state().log.muted = previous_; }

WorkerLogScope::WorkerLogScope() : previous_(onWorkerThread) { onWorkerThread = true; }
WorkerLogScope::~WorkerLogScope() { onWorkerThread = previous_; }

}  // namespace tarvik
