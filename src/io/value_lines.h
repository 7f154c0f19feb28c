// Lines of the small text files that carry values by name: comments begin with '#', fields are
// separated by white space, and a field in double quotes, which end before white space, may hold
// blanks.
#pragma once

#include <string>
#include <string_view>

#include "base/text_reader.h"
#include "base/text_writer.h"

namespace tarvik {

class ValueLines {
 public:
  static constexpr int kMaxFields = 16;
  static constexpr std::size_t kMaxLength = 20750;

  explicit ValueLines(TextReader &reader) : reader_(reader) {}

  // Goes to the next line that is neither empty nor a comment and splits it; false at the end.
  // With a limit the text behind so many fields is left to rest().
  bool next(int limit = kMaxFields + 1);
  int count() const { return count_; }
  std::string_view field(int k) const { return fields_[k]; }
  // The line from field k on, without the quotes around all of it.
  std::string_view rest(int k) const;
  // True when the line begins with the word itself, not with a quoted one.
  bool begins(std::string_view word) const {
    return count_ > 0 && fields_[0] == word && !isQuoted(0);
  }
  // True when the comment lines before this line held the text, as a block's title does.
  bool sawTitle(std::string_view title) const;
  std::string_view line() const { return line_; }

  // Fails with what was expected and what was found instead.
  [[noreturn]] void failFormat(const char *format) const;
  // The number, or integer, in field k; fails when there is none.
  double number(int k, const char *format) const;
  int integer(int k, const char *format) const;

 private:
  void split(int limit);
  bool isQuoted(int k) const {
    return fields_[k].data() != line_.data() && fields_[k].data()[-1] == '"';
  }

  TextReader &reader_;
  std::string_view line_;
  std::string comments_;
  std::string_view fields_[kMaxFields];
  int count_ = 0;
  bool atEnd_ = false;
};

// Puts a name so that it is read back as the first field of a line: in quotes when it begins like
// a comment or a quoted field, or is the word that begins a section.
TextWriter &putFirstName(TextWriter &out, std::string_view name);

}  // namespace tarvik
