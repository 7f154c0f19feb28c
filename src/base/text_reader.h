// The one reader of text for every format: large blocks from a byte source, lines as views into
// the block (no allocation per line), and fields cut in place. White space is every character up
// to the blank, so that tabs, carriage returns and stray control characters all separate fields.
#pragma once

#include <string_view>

#include "base/compressed_file.h"
#include "base/memory.h"

namespace tarvik {

class TextReader {
 public:
  explicit TextReader(ByteSource &source, std::size_t blockSize = std::size_t{1} << 17);

  // The next line without its end; false when there is none. The view stays valid until the
  // next call. A byte order mark at the beginning is skipped.
  bool nextLine(std::string_view &line);
  // Number of the line handed out last, counted from 1.
  int lineNumber() const { return lineNumber_; }

 private:
  bool refill();

  ByteSource &source_;
  Vec<char> buffer_;
  std::size_t begin_ = 0, end_ = 0;  // the bytes read but not yet handed out
  bool exhausted_ = false;
  int lineNumber_ = 0;
};

// The bytes of a text, for readers of text that is already in memory.
class MemorySource final : public ByteSource {
 public:
  explicit MemorySource(std::string_view text) : text_(text) {}
  std::size_t read(char *buffer, std::size_t capacity) override;

 private:
  std::string_view text_;
};

inline bool isBlank(char c) { return static_cast<unsigned char>(c) <= ' '; }

// True when a text holds white space, so that it would be read as several fields.
inline bool holdsBlank(std::string_view text) {
  for (const char c : text)
    if (isBlank(c)) return true;
  return false;
}

// Cuts the next field off the front of a line; false when only white space is left.
inline bool nextField(std::string_view &line, std::string_view &field) {
  const char *p = line.data();
  const char *const end = p + line.size();
  while (p != end && isBlank(*p)) ++p;
  if (p == end) {
    line = {};
    return false;
  }
  const char *const start = p;
  while (p != end && !isBlank(*p)) ++p;
  field = {start, static_cast<std::size_t>(p - start)};
  line = {p, static_cast<std::size_t>(end - p)};
  return true;
}

// The text without white space at both ends.
std::string_view trimmed(std::string_view text);
// True when the texts are equal but for the case of ASCII letters.
bool equalIgnoringCase(std::string_view a, std::string_view b);

}  // namespace tarvik
