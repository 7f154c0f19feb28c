#include "env/param_file.h"

#include "base/text_writer.h"
#include "env/env_lifecycle.h"
#include "env/env_log.h"
#include "env/param_set.h"

namespace tarvik {

namespace {

constexpr std::string_view kSetKeyword = "PARAMETERSET";
constexpr std::string_view kSpace = " \t";

std::string_view skipSpace(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(kSpace);
  return begin == std::string_view::npos ? std::string_view() : text.substr(begin);
}

bool isIgnored(std::string_view line) {
  return line.empty() || line[0] == '#' || line[0] == '\n' || line[0] == '\r';
}

// Cuts the text in front of the first of the stop characters off the line.
std::string cutUntil(std::string_view &line, std::string_view stops) {
  const std::string_view field = line.substr(0, line.find_first_of(stops));
  line.remove_prefix(field.size());
  return std::string(field);
}

template <class Put>
void forEachChanged(const Env &env, Put &&put) {
  const ParamStore &params = env.params();
  for (int row = 0; row < kNumParams; ++row) {
    const ParamRow &entry = paramRow(row);
    if (params.has(row, kSilent | kHidden) || entry.type == ParamType::Str) continue;
    const double value = entry.type == ParamType::Int ? params.getInt(row) : params.getDbl(row);
    if (value != entry.def) put(entry.name, value);
  }
}

unsigned silencedBy(const Env &env) {
  if (env.get(Int::OutputFlag) <= 0) return kToConsole | kToFile | kToLogCallback;
  return env.get(Int::LogToConsole) <= 0 ? unsigned{kToConsole} : 0u;
}

// While parameters are read, an environment that logs to its master's file reaches it although
// it has no file of its own open.
class MasterLogScope {
 public:
  explicit MasterLogScope(Env &env) : env_(env) {
    const bool locked = env.params().has(static_cast<int>(Param::LogFile), kLocked);
    const AccountString &name = env.master().state().log.fileName;
    if (!env.started() || env.isMaster() || !locked || env.state().log.file || name.empty()) return;
    reopenLogFile(env, name.c_str());
    opened_ = true;
  }
  ~MasterLogScope() {
    if (opened_) closeLogFile(env_);
  }
  MasterLogScope(const MasterLogScope &) = delete;
  MasterLogScope &operator=(const MasterLogScope &) = delete;

 private:
  Env &env_;
  bool opened_ = false;
};

[[noreturn]] void refuseFile(const ParamFileReader &reader, const char *fileName) {
  if (!reader.error().empty())
    throw Error(TVK_ERROR_INVALID_ARGUMENT, "'%s'", reader.error().c_str());
  throw Error(TVK_ERROR_INVALID_ARGUMENT, "Unable to read parameter file %s", fileName);
}

}  // namespace

ParamFileReader::ParamFileReader(const char *fileName) : fileName_(fileName) {
  if (file_.open(fileName_)) reader_.emplace(file_);
}

bool ParamFileReader::nextPiece(std::string_view &piece) {
  if (rest_.empty() && !reader_->nextLine(rest_)) return false;
  piece = rest_.substr(0, kPieceBytes);
  rest_.remove_prefix(piece.size());
  return true;
}

bool ParamFileReader::readSet(Env &env) {
  bool found = setBegun_;
  setBegun_ = false;
  int warnings = 0;
  std::string_view line;
  while (nextPiece(line)) {
    line = skipSpace(line);
    if (isIgnored(line)) continue;
    if (equalIgnoringCase(line.substr(0, kSetKeyword.size()), kSetKeyword)) {
      if (found) {
        setBegun_ = true;
        break;
      }
    } else {
      warnings += applyLine(env, line);
    }
    found = true;
  }
  if (warnings > 0)
    env.log("%d warnings while reading parameter file %s\n", warnings, fileName_.c_str());
  return found;
}

int ParamFileReader::applyLine(Env &env, std::string_view line) const {
  const std::string name = cutUntil(line, " \t=\r\n");
  line = skipSpace(line);
  if (!line.empty() && line[0] == '=') line = skipSpace(line.substr(1));
  const std::string value = cutUntil(line, " \t\r\n");
  return applySetting(env, name.c_str(), value.c_str());
}

int ParamFileReader::applySetting(Env &env, const char *name, const char *value) const {
  const int row = findParamRow(name);
  if (row < 0) {
    env.log("Warning: unknown parameter %s in %s\n", name, fileName_.c_str());
    return 1;
  }
  try {
    setParamFromText(env, name, value);
  } catch (const Error &error) {
    const char *known = paramRow(row).name;
    if (env.params().has(row, kFixed | kLocked))
      env.log("Error %d: Parameter %s is fixed, cannot be set to %s (ignored)\n", error.code(),
              known, value);
    else if (env.params().has(row, kFixedAfterStart) && env.started())
      env.log("Error %d: Parameter %s should be set before start (ignored)\n", error.code(), known);
    else
      env.log("Error %d: Failed to set parameter %s to value %s (ignored)\n", error.code(), known,
              value);
  }
  return 0;
}

void ParamFileReader::close() {
  if (!file_.close()) throw Error(TVK_ERROR_FILE_READ);
}

void readParamFile(Env &env, const char *fileName) {
  ParamFileReader reader(fileName);
  if (!reader.isOpen()) refuseFile(reader, fileName);
  const MasterLogScope log(env);
  reader.readSet(env);
  reader.close();
}

void readTuneBaseSettings(Env &env, const char *fileName) {
  ParamFileReader reader(fileName);
  if (!reader.isOpen()) refuseFile(reader, fileName);
  ChildList &children = env.state().tuneEnvs;
  for (;;) {
    // A set that does not exist must not leave an environment behind.
    const int index = nextFreeIndex(children);
    TVKenv *child = childEnv(env, children, index);
    bool found = false;
    try {
      // The reset turns all output on; a silent parent stays silent while the set is read.
      const LogMuteScope silence(*child, silencedBy(env));
      resetParams(*child);
      found = reader.readSet(*child);
    } catch (...) {
      discardChild(children, index);
      throw;
    }
    if (!found) {
      discardChild(children, index);
      break;
    }
    env.log("Read tune base setting %d: %s\n", index, fileName);
  }
  reader.close();
}

void writeParamFile(const Env &env, const char *fileName) {
  OutputFile file;
  if (!file.open(fileName))
    throw Error(TVK_ERROR_INVALID_ARGUMENT, "Unable to write to parameter file %s", fileName);
  TextWriter writer(&file);
  forEachChanged(env, [&](const char *name, double value) {
    writer.put(name).put("  ").putNumber(value).put('\n');
  });
  writer.flush();
  if (!file.close()) throw Error(TVK_ERROR_FILE_WRITE);
}

void logChangedParams(Env &env) {
  forEachChanged(env, [&](const char *name, double value) {
    NumberText text;
    const std::string_view number = formatNumber(value, text);
    env.log("%s  %.*s\n", name, static_cast<int>(number.size()), number.data());
  });
}

}  // namespace tarvik
