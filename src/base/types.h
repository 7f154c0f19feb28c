// Names for what plain integers mean, and the numeric conventions shared by all kernels.
#pragma once

#include <cstdint>

namespace tarvik {

using ColIndex = int;          // a structural column of a model
using RowIndex = int;          // a row of a model
using VarIndex = int;          // a column (below the column count) or a row's logical (beyond it)
using BasisPos = int;          // a position of the basis heading
using NzIndex = std::int64_t;  // a position in a matrix's entry arrays

// Infinity inside the kernels; a bound at or beyond kInfBound in magnitude is infinite.
inline constexpr double kInf = 1e30;
inline constexpr double kInfBound = 1e20;
// Infinity and "not available" at the C interface.
inline constexpr double kUserInf = 1e100;
inline constexpr double kUndefined = 1e101;
inline constexpr int kMaxInt = 2000000000;

inline bool isInf(double bound) { return bound >= kInfBound || bound <= -kInfBound; }

}  // namespace tarvik
