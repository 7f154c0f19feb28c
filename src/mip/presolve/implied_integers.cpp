#include "mip/presolve/implied_integers.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "mip/presolve/restrictions.h"

namespace tarvik {

namespace {

constexpr double kIntegral = 1e-10;
// What rounding the entries of a row may change in it.
constexpr double kRowError = 1e-8;
// Ratios beyond this are not trusted to be integers.
constexpr double kLargest = 1e6;
// Columns without finite bounds below this stay continuous: their values outgrow exact rounding.
constexpr double kLargestBound = 1e8;
constexpr int kMaxRounds = 5;

bool isWhole(double value) {
  return std::fabs(value) <= kLargest && std::fabs(value - std::round(value)) <= kIntegral;
}

class ImpliedIntegers {
 public:
  explicit ImpliedIntegers(MipModel &model)
      : model_(model),
        lp_(model.lp),
        rows_(transpose(model.lp.a)),
        restricted_(restrictedColumns(model)),
        continuousIn_(lp_.numRows, 0) {}

  int run() {
    for (int i = 0; i < lp_.numRows; ++i)
      for (NzIndex k = rows_.start[i]; k < rows_.start[i + 1]; ++k)
        continuousIn_[i] += !isIntegral(model_.kind[rows_.index[k]]);
    Vec<int> found;
    for (int round = 0, before = -1; round < kMaxRounds && before != count(found); ++round) {
      before = count(found);
      for (int j = 0; j < lp_.numCols; ++j)
        if (model_.kind[j] == VarKind::Continuous && !restricted_[j] && isImplied(j))
          declare(j), found.push_back(j);
    }
    branchLast(found);
    return count(found);
  }

 private:
  static int count(const Vec<int> &found) { return static_cast<int>(found.size()); }

  bool isImplied(int col) const;
  bool rowIsIntegral(int row, double pivot) const;
  void declare(int col);
  void branchLast(const Vec<int> &cols);

  MipModel &model_;
  LpModel &lp_;
  SparseMatrix rows_;
  Vec<char> restricted_;
  Vec<int> continuousIn_;  // by row
};

// Divided by the pivot, the row has integral data, and no other column of it is continuous.
bool ImpliedIntegers::rowIsIntegral(int row, double pivot) const {
  if (continuousIn_[row] != 1) return false;
  for (const double side : {lp_.rowLower[row], lp_.rowUpper[row]})
    if (!isInf(side) && !isWhole(side / pivot)) return false;
  double error = 0;  // of the row, divided, where its entries are rounded
  for (NzIndex k = rows_.start[row]; k < rows_.start[row + 1]; ++k) {
    const double ratio = rows_.value[k] / pivot, off = std::fabs(ratio - std::round(ratio));
    if (!isWhole(ratio)) return false;
    const int j = rows_.index[k];
    if (off > 0) error += off * std::max(std::fabs(lp_.colLower[j]), std::fabs(lp_.colUpper[j]));
  }
  return error <= kRowError;
}

bool ImpliedIntegers::isImplied(int j) const {
  const double lower = lp_.colLower[j], upper = lp_.colUpper[j];
  if (isInf(lower) || isInf(upper) || std::max(std::fabs(lower), std::fabs(upper)) > kLargestBound)
    return false;
  bool all = isWhole(lower) && isWhole(upper);
  for (NzIndex k = lp_.a.start[j]; k < lp_.a.start[j + 1]; ++k) {
    const int i = lp_.a.index[k];
    const bool integral = rowIsIntegral(i, lp_.a.value[k]);
    if (integral && lp_.rowLower[i] == lp_.rowUpper[i]) return true;
    all &= integral;
  }
  return all;
}

void ImpliedIntegers::declare(int j) {
  model_.kind[j] = VarKind::Integer;
  lp_.colLower[j] = std::ceil(lp_.colLower[j] - 1e-6);
  lp_.colUpper[j] = std::floor(lp_.colUpper[j] + 1e-6);
  for (NzIndex k = lp_.a.start[j]; k < lp_.a.start[j + 1]; ++k) --continuousIn_[lp_.a.index[k]];
}

// They follow the others.
void ImpliedIntegers::branchLast(const Vec<int> &cols) {
  if (cols.empty()) return;
  Vec<int> &priority = model_.branchPriority;
  if (priority.empty()) priority.assign(lp_.numCols, 0);
  const int lowest = *std::min_element(priority.begin(), priority.end());
  if (lowest == std::numeric_limits<int>::min()) return;
  for (const int j : cols) priority[j] = lowest - 1;
}

}  // namespace

int declareImpliedIntegers(MipModel &model) { return ImpliedIntegers(model).run(); }

}  // namespace tarvik
