// A file being read or written with the text layer on top; failures are Errors that name the file.
#pragma once

#include <string>

#include "base/compressed_file.h"
#include "base/error.h"
#include "base/text_reader.h"
#include "base/text_writer.h"
#include "tarvik.h"

namespace tarvik {

class ReadStream {
 public:
  explicit ReadStream(const std::string &name)
      : name_(name), opened_(file_.open(name)), text_(file_) {
    if (opened_) return;
    if (!file_.error().empty()) throw Error(TVK_ERROR_FILE_READ, "%s", file_.error().c_str());
    throw Error(TVK_ERROR_FILE_READ, "Unable to open file '%s' for input", name.c_str());
  }
  TextReader &text() { return text_; }
  // Fails when the file could not be read or decompressed to where reading stopped.
  void close() {
    if (!file_.close()) throw Error(TVK_ERROR_FILE_READ, "Unable to read file '%s'", name_.c_str());
  }

 private:
  std::string name_;
  InputFile file_;
  bool opened_;
  TextReader text_;
};

class WriteStream {
 public:
  // openFailure is the message for a file that cannot be created, with one %s for its name.
  WriteStream(const std::string &name, const char *openFailure) : name_(name), text_(&file_) {
    if (file_.open(name)) return;
    if (!file_.error().empty()) throw Error(TVK_ERROR_FILE_WRITE, "%s", file_.error().c_str());
    std::string message = openFailure;
    message.replace(message.find("%s"), 2, name);
    throw Error(TVK_ERROR_FILE_WRITE, "%s", message.c_str());
  }
  TextWriter &text() { return text_; }
  void close() {
    if (!finish()) throw Error(TVK_ERROR_FILE_WRITE, "Failed to write '%s'", name_.c_str());
  }
  // The same for files whose failure is told by the system's number for it.
  void closeOrTellNumber() {
    if (!finish())
      throw Error(TVK_ERROR_FILE_WRITE, "System error %d at file close", file_.systemError());
  }

 private:
  bool finish() {
    text_.flush();
    return file_.close();
  }

  std::string name_;
  OutputFile file_;
  TextWriter text_;
};

inline constexpr const char *kCannotWrite = "Unable to write to file '%s'";
inline constexpr const char *kCannotOpenForOutput = "Unable to open file '%s' for output";

}  // namespace tarvik
