// Errors inside the library are exceptions of one type; the frame of an exported call turns
// them into a code and a message. "Infeasible", "limit reached" and "singular" are ordinary
// results and never exceptions. std::bad_alloc stands for out-of-memory.
#pragma once

#include <exception>
#include <string>

namespace tarvik {

class Error : public std::exception {
 public:
  // A code alone: the message is the default text of the code.
  explicit Error(int code) : code_(code) {}
  // A code with its own message, formatted as printf does.
  Error(int code, const char *format, ...) __attribute__((format(printf, 3, 4)));

  int code() const { return code_; }
  const std::string &message() const { return message_; }
  const char *what() const noexcept override { return message_.c_str(); }

 private:
  int code_;
  std::string message_;
};

// The default text of an error code, null when the code has none.
const char *defaultErrorText(int code);

}  // namespace tarvik
