#include "base/text_writer.h"

#include <cstdarg>
#include <cstdio>

namespace tarvik {

TextWriter &TextWriter::putPadded(std::string_view text, std::size_t width) {
  put(text);
  for (std::size_t k = text.size(); k < width; ++k) buffer_.push_back(' ');
  return *this;
}

TextWriter &TextWriter::format(const char *format, ...) {
  char text[1024];
  va_list args;
  va_start(args, format);
  const int length = std::vsnprintf(text, sizeof text, format, args);
  va_end(args);
  if (length < static_cast<int>(sizeof text)) return put({text, static_cast<std::size_t>(length)});
  Vec<char> longer(static_cast<std::size_t>(length) + 1);
  va_start(args, format);
  std::vsnprintf(longer.data(), longer.size(), format, args);
  va_end(args);
  return put({longer.data(), static_cast<std::size_t>(length)});
}

void TextWriter::flush() {
  if (!file_) return;
  file_->write(buffer_.data(), buffer_.size());
  buffer_.clear();
}

}  // namespace tarvik
