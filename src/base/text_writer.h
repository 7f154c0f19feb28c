// The one writer of text for every format: collects small pieces and hands them to the output
// file in large blocks.
#pragma once

#include <string_view>

#include "base/compressed_file.h"
#include "base/memory.h"
#include "base/number_format.h"

namespace tarvik {

class TextWriter {
 public:
  // With a file the text goes there; without one it is kept in memory.
  explicit TextWriter(OutputFile *file = nullptr) : file_(file) {}

  TextWriter &put(std::string_view text) {
    buffer_.insert(buffer_.end(), text.begin(), text.end());
    if (buffer_.size() >= kBlock) drain();
    return *this;
  }
  TextWriter &put(char c) {
    buffer_.push_back(c);
    return *this;
  }
  // The text, filled up with blanks to the width.
  TextWriter &putPadded(std::string_view text, std::size_t width = 8);
  // A number that reads back exactly; see formatNumber.
  TextWriter &putNumber(double value) {
    NumberText text;
    return put(formatNumber(value, text));
  }
  TextWriter &format(const char *format, ...) __attribute__((format(printf, 2, 3)));

  // Hands everything to the file.
  void flush();
  // What was collected in memory and not yet handed to a file.
  std::string_view text() const { return {buffer_.data(), buffer_.size()}; }

 private:
  static constexpr std::size_t kBlock = std::size_t{1} << 16;
  void drain() {
    if (file_) flush();
  }

  OutputFile *file_;
  Vec<char> buffer_;
};

}  // namespace tarvik
