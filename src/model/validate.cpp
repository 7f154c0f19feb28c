#include "model/validate.h"

#include <cmath>
#include <cstdio>

#include "base/error.h"
#include "tarvik.h"

namespace tarvik {

void requireArgument(bool present) {
  if (!present) throw Error(TVK_ERROR_NULL_ARGUMENT);
}

void checkNoNan(const double *values, std::size_t count) {
  if (!values) return;
  for (std::size_t k = 0; k < count; ++k) {
    if (std::isnan(values[k])) {
      throw Error(TVK_ERROR_INVALID_ARGUMENT, "Element %d of a double array is Nan.",
                  static_cast<int>(k));
    }
  }
}

void checkFinite(const double *values, std::size_t count) {
  if (!values) return;
  for (std::size_t k = 0; k < count; ++k) {
    if (!std::isfinite(values[k])) {
      throw Error(TVK_ERROR_INVALID_ARGUMENT, "Element %lu of a double array is Nan or Inf.",
                  static_cast<unsigned long>(k));
    }
  }
}

void checkFiniteValue(double value) {
  if (!std::isfinite(value)) {
    throw Error(TVK_ERROR_INVALID_ARGUMENT, "Double value is Nan or Inf.");
  }
}

void checkNoNanValue(double value) {
  if (std::isnan(value)) throw Error(TVK_ERROR_INVALID_ARGUMENT, "Double value is Nan.");
}

void checkName(std::string_view name) {
  if (name.size() > kMaxNameLength) {
    throw Error(TVK_ERROR_INVALID_ARGUMENT, "Name too long (maximum name length is %d characters)",
                kMaxNameLength);
  }
}

char checkedVarType(char letter) {
  const char upper =
      letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
  switch (upper) {
    case 'B':
    case 'C':
    case 'I':
    case 'N':
    case 'S':
      return upper;
    default:
      throw Error(TVK_ERROR_INVALID_ARGUMENT, "Invalid variable type '%c'", letter);
  }
}

char checkedSense(char letter) {
  switch (letter) {
    case '<':
    case 'L':
    case 'l':
      return '<';
    case '>':
    case 'G':
    case 'g':
      return '>';
    case '=':
    case 'E':
    case 'e':
      return '=';
    default:
      throw Error(TVK_ERROR_INVALID_ARGUMENT, "Invalid constraint sense: '%c'", letter);
  }
}

double clampToUserInf(double value) {
  return value > kUserInf ? kUserInf : value < -kUserInf ? -kUserInf : value;
}

double storedBound(double bound) {
  return bound >= kInfBound ? kInf : bound <= -kInfBound ? -kInf : bound;
}

void roundIntegerBounds(char type, double &lb, double &ub) {
  if (type == 'C' || type == 'S' || lb == ub) return;
  // Rounding up from just below zero gives -0, which adding 0 makes 0.
  if (lb > -kInfBound) lb = std::ceil(lb - 1e-5) + 0.0;
  if (ub < kInfBound) ub = std::floor(ub + 1e-5);
  if (type == 'B') {
    if (lb < 0) lb = 0;
    if (ub > 1) ub = 1;
  }
}

double storedStart(double value) { return value == kUndefined ? value : clampToUserInf(value); }

void completeNames(NameList &names, int count, const char *prefix, int firstNumber) {
  NameList complete;
  complete.reserve(count, names.poolBytes() + static_cast<std::size_t>(count) * 8);
  char text[32];
  for (int k = 0; k < count; ++k) {
    if (k < names.size() && !names.isBlank(k)) {
      complete.append(names.get(k));
    } else {
      const int length = std::snprintf(text, sizeof text, "%s%d", prefix, firstNumber + k);
      complete.append({text, static_cast<std::size_t>(length)});
    }
  }
  names = std::move(complete);
}

}  // namespace tarvik
