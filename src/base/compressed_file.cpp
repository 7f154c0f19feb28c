#include "base/compressed_file.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace tarvik {

namespace {

constexpr std::size_t kMaxCommand = 256;
constexpr std::size_t kMaxMessage = 512;

// A tool and what makes a command of it: text before and after the quoted file name.
struct Tool {
  const char *name;
  const char *before;
  const char *after;
};

struct Compression {
  Tool writers[2];
  const char *writeAdvice;
  Tool readers[3];
  const char *readAdvice;
};

constexpr Compression kCompressions[] = {
    {},
    {{{"gzip", "gzip -c > ", ""}, {"tvkzip", "tvkzip ", ""}},
     "\"gzip\"",
     {{"gzip", "gzip -dc ", ""}, {"7z", "7z e -so ", ""}, {"tvkunzip", "tvkunzip ", ""}},
     "\"gzip\" or \"7-zip\""},
    {{{"bzip2", "bzip2 -c > ", ""}, {}},
     "\"bzip2\"",
     {{"bzip2", "bzip2 -dc ", ""}, {"7z", "7z e -so ", ""}, {}},
     "\"bzip2\" or \"7-zip\""},
    {{{"zip", "zip ", " -"}, {}},
     "\"zip\"",
     {{"unzip", "unzip -p ", ""}, {"7z", "7z e -so ", ""}, {}},
     "\"unzip\" or \"7-zip\""},
    {{{"7z", "7z a -si ", ""}, {}}, "\"7-zip\"", {{"7z", "7z e -so ", ""}, {}, {}}, "\"7-zip\""},
};

bool isAvailable(const char *tool) {
  const std::string command = std::string("command -v ") + tool;
  FILE *pipe = popen(command.c_str(), "r");
  if (!pipe) return false;
  const bool found = std::fgetc(pipe) != EOF;
  while (std::fgetc(pipe) != EOF) {
  }
  pclose(pipe);
  return found;
}

// The name between double quotes, with everything escaped that the shell would look into, and
// never beginning with a hyphen, which a tool would take for an option.
std::string quoted(const std::string &name) {
  std::string text = "\"";
  if (!name.empty() && name[0] == '-') text += "./";
  for (const char c : name) {
    if (c == '"' || c == '\\' || c == '$' || c == '`') text += '\\';
    text += c;
  }
  return text + '"';
}

void setMessage(std::string &error, std::string text) {
  text.resize(text.size() < kMaxMessage ? text.size() : kMaxMessage - 1);
  error = std::move(text);
}

template <std::size_t N>
std::string commandFor(const Tool (&tools)[N], const char *advice, const std::string &name,
                       std::string &error) {
  for (const Tool &tool : tools) {
    if (!tool.name || !isAvailable(tool.name)) continue;
    std::string command = tool.before + quoted(name) + tool.after;
    if (command.size() < kMaxCommand) return command;
    setMessage(error, "Name of compressed file is too long: " + name);
    return "";
  }
  setMessage(error, "No compression tool available to open " + name + ", please install " + advice);
  return "";
}

// Writing into a pipe whose reader died must be an error of this write, not the end of the
// process: the signal is held back and taken off the thread afterwards.
class BrokenPipeGuard {
 public:
  BrokenPipeGuard() {
    sigset_t pending;
    sigpending(&pending);
    wasPending_ = sigismember(&pending, SIGPIPE) == 1;
    sigemptyset(&pipeSignal_);
    sigaddset(&pipeSignal_, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipeSignal_, &previous_);
  }
  ~BrokenPipeGuard() {
    if (!wasPending_) consume();
    pthread_sigmask(SIG_SETMASK, &previous_, nullptr);
  }
  BrokenPipeGuard(const BrokenPipeGuard &) = delete;
  BrokenPipeGuard &operator=(const BrokenPipeGuard &) = delete;

 private:
  void consume() const {
    sigset_t pending;
    sigpending(&pending);
    if (sigismember(&pending, SIGPIPE) != 1) return;
    int signal = 0;
    sigwait(&pipeSignal_, &signal);
  }

  sigset_t pipeSignal_, previous_;
  bool wasPending_ = false;
};

bool canCreate(const std::string &name) {
  FILE *file = std::fopen(name.c_str(), "w");
  if (!file) return false;
  std::fclose(file);
  std::remove(name.c_str());
  return true;
}

}  // namespace

int compressionOf(const std::string &name) {
  if (name.size() < 4) return 0;
  for (int k = 1; k <= 4; ++k) {
    const std::size_t length = std::strlen(kCompressionSuffixes[k]);
    if (name.compare(name.size() - length, length, kCompressionSuffixes[k]) == 0) return k;
  }
  return 0;
}

std::string decompressCommand(const std::string &name, std::string &error) {
  const Compression &kind = kCompressions[compressionOf(name)];
  return commandFor(kind.readers, kind.readAdvice, name, error);
}

std::string compressCommand(const std::string &name, std::string &error) {
  const Compression &kind = kCompressions[compressionOf(name)];
  return commandFor(kind.writers, kind.writeAdvice, name, error);
}

bool isReadableFile(const std::string &name) {
  const int descriptor = ::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) return false;
  struct stat status;
  const bool readable = fstat(descriptor, &status) == 0 && !S_ISDIR(status.st_mode);
  ::close(descriptor);
  return readable;
}

bool InputFile::open(const std::string &name) {
  close();
  atEnd_ = failed_ = false;
  error_.clear();
  if (!isReadableFile(name)) return false;
  if (compressionOf(name) == 0) {
    descriptor_ = ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
    return descriptor_ >= 0;
  }
  const std::string command = decompressCommand(name, error_);
  if (command.empty()) return false;
  pipe_ = popen(command.c_str(), "r");
  if (!pipe_) return false;
  descriptor_ = fileno(pipe_);
  return true;
}

std::size_t InputFile::read(char *buffer, std::size_t capacity) {
  if (descriptor_ < 0 || failed_ || atEnd_) return 0;
  for (;;) {
    const ssize_t count = ::read(descriptor_, buffer, capacity);
    if (count > 0) return static_cast<std::size_t>(count);
    if (count < 0 && errno == EINTR) continue;
    (count == 0 ? atEnd_ : failed_) = true;
    return 0;
  }
}

bool InputFile::close() {
  if (descriptor_ < 0) return !failed_;
  if (pipe_) {
    const int status = pclose(pipe_);
    if (atEnd_ && status != 0) failed_ = true;
  } else {
    ::close(descriptor_);
  }
  pipe_ = nullptr;
  descriptor_ = -1;
  return !failed_;
}

bool OutputFile::open(const std::string &name) {
  close();
  failed_ = false;
  systemError_ = 0;
  error_.clear();
  if (compressionOf(name) == 0) {
    descriptor_ = ::open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    return descriptor_ >= 0;
  }
  if (!canCreate(name)) {
    setMessage(error_, "Cannot write to file " + name + ": Permission denied");
    return false;
  }
  const std::string command = compressCommand(name, error_);
  if (command.empty()) return false;
  pipe_ = popen(command.c_str(), "w");
  if (!pipe_) return false;
  descriptor_ = fileno(pipe_);
  return true;
}

void OutputFile::write(const char *data, std::size_t size) {
  if (descriptor_ < 0 || failed_) return;
  const BrokenPipeGuard guard;
  while (size > 0) {
    const ssize_t count = ::write(descriptor_, data, size);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) {
      systemError_ = errno;
      failed_ = true;
      return;
    }
    data += count;
    size -= static_cast<std::size_t>(count);
  }
}

bool OutputFile::close() {
  if (descriptor_ < 0) return !failed_;
  const int status = pipe_ ? pclose(pipe_) : ::close(descriptor_);
  if (status != 0) {
    if (status == -1 && !failed_) systemError_ = errno;
    failed_ = true;
  }
  pipe_ = nullptr;
  descriptor_ = -1;
  return !failed_;
}

}  // namespace tarvik
