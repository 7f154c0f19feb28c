// Files that may be compressed. A name that ends in ".gz", ".bz2", ".zip" or ".7z" is read and
// written through a child process that runs the matching command-line tool; every other name is
// a plain file. Nothing here knows what the files hold.
//
// File names are quoted for the shell, so that a name is never taken for anything but a name.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

namespace tarvik {

// Where text comes from: a file, or memory in tests.
class ByteSource {
 public:
  virtual ~ByteSource() = default;
  // Fills at most `capacity` bytes and returns how many there are; 0 at the end or after a failure.
  virtual std::size_t read(char *buffer, std::size_t capacity) = 0;
};

// Compression suffixes; the index is the order of the file-type table.
inline constexpr const char *kCompressionSuffixes[] = {"", ".gz", ".bz2", ".zip", ".7z"};
// The index of the suffix that the name ends with, compared exactly; 0 for none.
int compressionOf(const std::string &name);

// The shell command that decompresses the named file to standard output, or compresses standard
// input into it. Empty with a message in `error` when no tool is available.
std::string decompressCommand(const std::string &name, std::string &error);
std::string compressCommand(const std::string &name, std::string &error);

// True when the name can be opened for reading and is not a directory.
bool isReadableFile(const std::string &name);

class InputFile final : public ByteSource {
 public:
  InputFile() = default;
  ~InputFile() override { close(); }
  InputFile(const InputFile &) = delete;
  InputFile &operator=(const InputFile &) = delete;

  // False when the file cannot be opened; error() may then tell why.
  bool open(const std::string &name);
  std::size_t read(char *buffer, std::size_t capacity) override;
  // False when reading failed, or when the tool failed although all of its output was read.
  bool close();
  const std::string &error() const { return error_; }

 private:
  FILE *pipe_ = nullptr;
  int descriptor_ = -1;
  bool atEnd_ = false;
  bool failed_ = false;
  std::string error_;
};

class OutputFile {
 public:
  OutputFile() = default;
  ~OutputFile() { close(); }
  OutputFile(const OutputFile &) = delete;
  OutputFile &operator=(const OutputFile &) = delete;

  // False when the file cannot be created; error() may then tell why.
  bool open(const std::string &name);
  // A failure is kept and reported by close().
  void write(const char *data, std::size_t size);
  bool close();
  const std::string &error() const { return error_; }
  // The number of the system error that made writing or closing fail, 0 for a failure of the tool.
  int systemError() const { return systemError_; }

 private:
  FILE *pipe_ = nullptr;
  int descriptor_ = -1;
  bool failed_ = false;
  int systemError_ = 0;
  std::string error_;
};

}  // namespace tarvik
