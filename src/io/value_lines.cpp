#include "io/value_lines.h"

#include "base/error.h"
#include "base/number_format.h"
#include "tarvik.h"

namespace tarvik {

bool ValueLines::next(int limit) {
  comments_.clear();
  while (reader_.nextLine(line_)) {
    if (line_.size() > kMaxLength)
      throw Error(TVK_ERROR_FILE_READ, "Unable to parse long line (length %d > limit %d)",
                  static_cast<int>(line_.size()), static_cast<int>(kMaxLength));
    const std::string_view text = trimmed(line_);
    if (text.empty()) continue;
    if (line_.front() == '#') {
      if (comments_.size() < kMaxLength) comments_.append(text).push_back('\n');
      continue;
    }
    split(limit);
    return true;
  }
  atEnd_ = true;
  count_ = 0;
  return false;
}

bool ValueLines::sawTitle(std::string_view title) const {
  return comments_.find(title) != std::string::npos;
}

void ValueLines::split(int limit) {
  const char *p = line_.data();
  const char *const end = p + line_.size();
  count_ = 0;
  for (;;) {
    while (p != end && isBlank(*p)) ++p;
    if (p == end || count_ == limit) return;
    const bool quoted = *p == '"';
    if (quoted) ++p;
    const char *const start = p;
    while (p != end && (quoted ? *p != '"' || (p + 1 != end && !isBlank(p[1])) : !isBlank(*p))) ++p;
    if (count_ == kMaxFields)
      throw Error(TVK_ERROR_FILE_READ, "Unable to parse a line with more than %d tokens",
                  kMaxFields);
    fields_[count_++] = {start, static_cast<std::size_t>(p - start)};
    if (quoted && p != end) ++p;
  }
}

std::string_view ValueLines::rest(int k) const {
  std::string_view text = line_.substr(static_cast<std::size_t>(fields_[k].data() - line_.data()));
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  if (isQuoted(k) && text.ends_with('"')) text.remove_suffix(1);
  return text;
}

void ValueLines::failFormat(const char *format) const {
  std::string found;
  const auto text = [&](int k) { return std::string(fields_[k].substr(0, 100)); };
  if (atEnd_)
    found = "EOF";
  else if (count_ == 0)
    found = "''";
  else if (count_ == 1)
    found = "'" + text(0) + "'";
  else if (count_ == 2)
    found = "'" + text(0) + " " + text(1) + "'";
  else
    found = "'" + text(0) + " " + text(1) + " " + text(2) + (count_ > 3 ? " ...'" : "'");
  throw Error(TVK_ERROR_FILE_READ, "Expected format '%s', found %s", format, found.c_str());
}

double ValueLines::number(int k, const char *format) const {
  double value = 0;
  if (k >= count_ || !parseNumber(fields_[k], value)) failFormat(format);
  return value;
}

int ValueLines::integer(int k, const char *format) const {
  int value = 0;
  if (k >= count_ || !parseInteger(fields_[k], value)) failFormat(format);
  return value;
}

TextWriter &putFirstName(TextWriter &out, std::string_view name) {
  const bool plain =
      !name.empty() && name.front() != '#' && name.front() != '"' && name != "SECTION";
  return plain ? out.put(name) : out.put('"').put(name).put('"');
}

}  // namespace tarvik
