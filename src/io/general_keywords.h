// The keywords of general constraints in LP and MPS files, by their type number.
#pragma once

#include <string_view>

#include "base/text_reader.h"
#include "tarvik.h"

namespace tarvik {

inline constexpr const char *kGeneralKeywords[] = {
    "MAX", "MIN",  "ABS", "AND",  "OR",  "NORM", "INDICATOR", "PWL", "POLY",
    "EXP", "EXPA", "LOG", "LOGA", "POW", "SIN",  "COS",       "TAN", "LOGISTIC"};

inline const char *generalConstraintKeyword(int type) { return kGeneralKeywords[type]; }

// The type a keyword stands for, in any case; -1 for none.
inline int generalConstraintType(std::string_view keyword) {
  for (int type = 0; type <= TVK_GENCONSTR_LOGISTIC; ++type)
    if (equalIgnoringCase(keyword, kGeneralKeywords[type])) return type;
  return -1;
}

// True for the functions with a base or an exponent.
inline bool functionTakesParameter(int type) {
  return type == TVK_GENCONSTR_EXPA || type == TVK_GENCONSTR_LOGA || type == TVK_GENCONSTR_POW;
}

}  // namespace tarvik
