#include "base/text_reader.h"

#include <algorithm>
#include <cstring>

namespace tarvik {

TextReader::TextReader(ByteSource &source, std::size_t blockSize) : source_(source) {
  buffer_.resize(std::max<std::size_t>(blockSize, 16));
}

// Moves the unread rest to the front and reads behind it; a line longer than the buffer makes
// the buffer grow.
bool TextReader::refill() {
  if (exhausted_) return false;
  if (begin_ > 0) {
    std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
    end_ -= begin_;
    begin_ = 0;
  }
  if (end_ == buffer_.size()) buffer_.resize(2 * buffer_.size());
  const std::size_t count = source_.read(buffer_.data() + end_, buffer_.size() - end_);
  end_ += count;
  exhausted_ = count == 0;
  return !exhausted_;
}

bool TextReader::nextLine(std::string_view &line) {
  std::size_t scanned = begin_;
  for (;;) {
    const void *found = std::memchr(buffer_.data() + scanned, '\n', end_ - scanned);
    if (found) {
      const char *const start = buffer_.data() + begin_;
      const char *const stop = static_cast<const char *>(found);
      line = {start, static_cast<std::size_t>(stop - start)};
      begin_ = static_cast<std::size_t>(stop - buffer_.data()) + 1;
      break;
    }
    const std::size_t known = end_ - begin_;
    if (refill()) {
      scanned = begin_ + known;
      continue;
    }
    if (begin_ == end_) return false;
    line = {buffer_.data() + begin_, end_ - begin_};
    begin_ = end_;
    break;
  }
  if (++lineNumber_ == 1 && line.substr(0, 3) == "\xef\xbb\xbf") line.remove_prefix(3);
  return true;
}

std::size_t MemorySource::read(char *buffer, std::size_t capacity) {
  const std::size_t count = std::min(capacity, text_.size());
  std::memcpy(buffer, text_.data(), count);
  text_.remove_prefix(count);
  return count;
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  const auto lower = [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
  };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [&](char x, char y) { return lower(x) == lower(y); });
}

}  // namespace tarvik
