// Lines of the small text files that carry values by name: comments begin with '#', fields are
// separated by white space, and a field in double quotes may hold blanks.
#pragma once

#include <string>
#include <string_view>

#include "base/text_reader.h"

namespace tarvik {

class ValueLines {
 public:
  static constexpr int kMaxFields = 16;
  static constexpr std::size_t kMaxLength = 20750;

  explicit ValueLines(TextReader &reader) : reader_(reader) {}

  // Goes to the next line that is neither empty nor a comment and splits it; false at the end.
  bool next();
  int count() const { return count_; }
  std::string_view field(int k) const { return fields_[k]; }
  // True when the comment lines before this line held the text, as a block's title does.
  bool sawTitle(std::string_view title) const;
  std::string_view line() const { return line_; }

  // Fails with what was expected and what was found instead.
  [[noreturn]] void failFormat(const char *format) const;
  // The number, or integer, in field k; fails when there is none.
  double number(int k, const char *format) const;
  int integer(int k, const char *format) const;

 private:
  void split();

  TextReader &reader_;
  std::string_view line_;
  std::string comments_;
  std::string_view fields_[kMaxFields];
  int count_ = 0;
  bool atEnd_ = false;
};

}  // namespace tarvik
