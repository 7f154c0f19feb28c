// Terms of linear expressions with line wrapping, as LP and OPB files show them.
#pragma once

#include <cmath>
#include <string_view>

#include "base/text_writer.h"

namespace tarvik {

class LpLines {
 public:
  explicit LpLines(TextWriter &out) : out_(out) {}

  // Begins an expression on a new line with a text, or behind `length` characters of a line.
  void begin(std::string_view text, std::size_t length = 0) {
    out_.put(text);
    length_ = length > 0 ? length : text.size();
    first_ = true;
  }
  void beginLabel(std::string_view name) {
    out_.put(' ').put(name).put(':');
    length_ = name.size() + 2;
    first_ = true;
  }
  // " [", or " + [" behind other terms.
  void openBracket() {
    const std::string_view text = first_ ? " [" : " + [";
    out_.put(text);
    length_ += text.size();
    first_ = true;
  }
  // One term; the sign is left out of a first term that is not negative.
  void term(double value, std::string_view name) {
    NumberText number;
    const std::string_view sign = value < 0 ? "-" : first_ ? "" : "+";
    std::string_view coefficient = formatLpCoefficient(std::fabs(value), number);
    // Alone, a name that is a number would be read as a constant.
    double parsed = 0;
    if (coefficient.empty() && parseNumber(name, parsed)) coefficient = "1";
    std::size_t size = 1 + name.size();
    if (!sign.empty()) size += 1 + sign.size();
    if (!coefficient.empty()) size += 1 + coefficient.size();
    wrap(size, 76, "\n  ", 2);
    if (!sign.empty()) out_.put(' ').put(sign);
    if (!coefficient.empty()) out_.put(' ').put(coefficient);
    out_.put(' ').put(name);
    length_ += size;
    first_ = false;
  }
  // A name in a list.
  void name(std::string_view text) {
    if (length_ + 1 + text.size() >= 75) {
      out_.put('\n');
      length_ = 0;
    }
    out_.put(' ').put(text);
    length_ += 1 + text.size();
  }
  // An item behind a blank, wrapped with the given text.
  void item(std::string_view text, std::string_view wrapText, std::size_t indent) {
    wrap(1 + text.size(), 76, wrapText, indent);
    out_.put(' ').put(text);
    length_ += 1 + text.size();
  }

 private:
  void wrap(std::size_t size, std::size_t limit, std::string_view text, std::size_t indent) {
    if (length_ < 3 || length_ + size < limit) return;
    out_.put(text);
    length_ = indent;
  }

  TextWriter &out_;
  std::size_t length_ = 0;
  bool first_ = true;
};

}  // namespace tarvik
