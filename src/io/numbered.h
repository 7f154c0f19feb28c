// Texts that end in a number.
#pragma once

#include <string>
#include <string_view>

namespace tarvik {

inline std::string numbered(std::string_view word, int number) {
  std::string text(word);
  text += std::to_string(number);
  return text;
}

}  // namespace tarvik
