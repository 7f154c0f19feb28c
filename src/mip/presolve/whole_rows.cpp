#include "mip/presolve/whole_rows.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tarvik {

namespace {
constexpr double kIntegral = 1e-10;
// Ratios beyond this are not trusted to be integers.
constexpr double kLargest = 1e6;
// What rounding the entries of a row may change in it.
constexpr double kRowError = 1e-8;
constexpr double kUnit = 4 * std::numeric_limits<double>::epsilon();
}  // namespace

bool isWhole(double value) {
  return std::fabs(value) <= kLargest && std::fabs(value - std::round(value)) <= kIntegral;
}

bool isWholeRow(const LpModel &lp, const SparseMatrix &rows, int row, double pivot) {
  for (const double side : {lp.rowLower[row], lp.rowUpper[row]})
    if (!isInf(side) && !isWhole(side / pivot)) return false;
  double error = 0;
  for (NzIndex k = rows.start[row]; k < rows.start[row + 1]; ++k) {
    const double ratio = rows.value[k] / pivot, off = std::fabs(ratio - std::round(ratio));
    if (!isWhole(ratio)) return false;
    const int j = rows.index[k];
    // The division itself rounds.
    if (off > kUnit * std::fabs(ratio))
      error += off * std::max(std::fabs(lp.colLower[j]), std::fabs(lp.colUpper[j]));
  }
  return error <= kRowError;
}

}  // namespace tarvik
