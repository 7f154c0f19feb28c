#include "base/number_format.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <system_error>

namespace tarvik {

namespace {

std::string_view generalText(double value, int digits, NumberText &text) {
  const auto end = std::to_chars(text.data, text.data + sizeof text.data, value,
                                 std::chars_format::general, digits);
  return {text.data, static_cast<std::size_t>(end.ptr - text.data)};
}

double readBack(std::string_view text) {
  double value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

// Plain decimals without trailing zeros; at least two characters remain.
std::string_view decimalText(double value, NumberText &text) {
  const int magnitude = static_cast<int>(std::log10(10 * std::fabs(value)));
  const int decimals = magnitude < 16 ? 16 - magnitude : 0;
  const auto end = std::to_chars(text.data, text.data + sizeof text.data, value,
                                 std::chars_format::fixed, decimals);
  std::size_t size = end.ptr - text.data;
  if (decimals > 0) {
    while (size > 2 && text.data[size - 1] == '0') --size;
    if (size > 2 && text.data[size - 1] == '.') --size;
  }
  return {text.data, size};
}

// Scientific notation with the trailing zeros of the mantissa removed.
std::string_view scientificText(double value, NumberText &text) {
  const auto result = std::to_chars(text.data, text.data + sizeof text.data, value,
                                    std::chars_format::scientific, 16);
  char *const end = result.ptr;
  char *exponent = text.data;
  while (exponent != end && *exponent != 'e') ++exponent;
  char *mantissaEnd = exponent;
  while (mantissaEnd - text.data > 2 && mantissaEnd[-1] == '0') --mantissaEnd;
  std::memmove(mantissaEnd, exponent, end - exponent);
  return {text.data, static_cast<std::size_t>(end - exponent + (mantissaEnd - text.data))};
}

bool equalsIgnoringCase(std::string_view text, std::string_view lower) {
  if (text.size() != lower.size()) return false;
  for (std::size_t k = 0; k < text.size(); ++k)
    if ((text[k] | 0x20) != lower[k]) return false;
  return true;
}

// Exact powers of ten: a mantissa below 2^53 times or over one of them is rounded once only
// (Clinger, 1990), so that short decimals need no general conversion.
constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                   1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// Digits with at most one point and at most 15 digits in all; false for anything else.
bool parseShortDecimal(const char *p, const char *end, double &value) {
  std::uint64_t mantissa = 0;
  int digits = 0;
  const char *point = nullptr;
  for (; p != end; ++p) {
    const unsigned digit = static_cast<unsigned char>(*p) - unsigned{'0'};
    if (digit <= 9) {
      mantissa = mantissa * 10 + digit;
      if (++digits > 15) return false;
    } else if (*p == '.' && !point) {
      point = p;
    } else {
      return false;
    }
  }
  if (digits == 0) return false;
  value = static_cast<double>(mantissa);
  if (point && end - point > 1) value /= kPowersOfTen[end - point - 1];
  return true;
}

// The power of ten just above a number that is far out of the range of a double: digits before
// the point, or less the zeros behind it, plus the exponent.
long decimalMagnitude(std::string_view text) {
  const std::size_t exponentAt = text.find_first_of("eE");
  const std::string_view mantissa = text.substr(0, exponentAt);
  long exponent = 0;
  if (exponentAt != std::string_view::npos) {
    std::string_view digits = text.substr(exponentAt + 1);
    if (digits.front() == '+') digits.remove_prefix(1);
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
    if (result.ec != std::errc()) return digits.front() == '-' ? -1 : 1;
  }
  const std::size_t first = mantissa.find_first_not_of("0.");
  const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
  if (first == std::string_view::npos) return -1;
  const long position =
      first < point ? static_cast<long>(point - first) : -static_cast<long>(first - point - 1);
  return position + exponent;
}

// Everything that has a mantissa and perhaps an exponent; text has no sign.
bool parseGeneral(std::string_view text, double &value) {
  const char first = text.front();
  if ((first < '0' || first > '9') && first != '.') return false;
  char buffer[128];
  const std::size_t fortran = text.find_first_of("dD");
  if (fortran != std::string_view::npos) {
    if (text.size() > sizeof buffer) return false;
    std::memcpy(buffer, text.data(), text.size());
    buffer[fortran] = 'e';
    text = {buffer, text.size()};
  }
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ptr != text.data() + text.size()) return false;
  if (result.ec == std::errc::result_out_of_range) {
    value = decimalMagnitude(text) > 0 ? std::numeric_limits<double>::infinity() : 0.0;
    return true;
  }
  return result.ec == std::errc();
}

}  // namespace

std::string_view formatNumber(double value, NumberText &text) {
  if (std::fabs(value) < 2e9 && value == std::trunc(value)) {
    const auto end =
        std::to_chars(text.data, text.data + sizeof text.data, static_cast<long>(value));
    return {text.data, static_cast<std::size_t>(end.ptr - text.data)};
  }
  const std::string_view brief = generalText(value, 15, text);
  if (!std::isfinite(value) || readBack(brief) == value) return brief;
  const auto end = std::to_chars(text.data, text.data + sizeof text.data, value,
                                 std::chars_format::scientific, 16);
  return {text.data, static_cast<std::size_t>(end.ptr - text.data)};
}

std::string_view formatShort(double value, NumberText &text) { return generalText(value, 6, text); }

std::string_view formatLpNumber(double value, NumberText &text) {
  if (value == 0) return "0";
  const std::string_view brief = formatShort(value, text);
  if (!std::isfinite(value)) return brief;
  const double difference = std::fabs(readBack(brief) - value);
  const double size = std::fabs(value);
  if (difference < 1e-10 || difference < 1e-15 * (1 + size)) return brief;
  return size >= 0.001 && size < 1e6 ? decimalText(value, text) : scientificText(value, text);
}

std::string_view formatLpCoefficient(double value, NumberText &text) {
  if (value == 1) return "";
  if (value == -1) return "-";
  return formatLpNumber(value, text);
}

bool parseNumber(std::string_view text, double &value) {
  if (text.empty()) return false;
  const bool negative = text.front() == '-';
  if (negative || text.front() == '+') text.remove_prefix(1);
  if (text.empty()) return false;
  if (!parseShortDecimal(text.data(), text.data() + text.size(), value)) {
    if (equalsIgnoringCase(text, "inf") || equalsIgnoringCase(text, "infinity"))
      value = std::numeric_limits<double>::infinity();
    else if (!parseGeneral(text, value))
      return false;
  }
  if (negative) value = -value;
  return true;
}

bool parseInteger(std::string_view text, int &value) {
  if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  return !text.empty() && result.ec == std::errc() && result.ptr == text.data() + text.size();
}

}  // namespace tarvik
