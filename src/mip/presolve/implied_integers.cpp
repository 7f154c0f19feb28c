#include "mip/presolve/implied_integers.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "mip/presolve/restrictions.h"
#include "mip/presolve/whole_rows.h"

namespace tarvik {

namespace {

// Columns without finite bounds below this stay continuous: their values outgrow exact rounding.
constexpr double kLargestBound = 1e8;
constexpr int kMaxRounds = 5;

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
  return continuousIn_[row] == 1 && isWholeRow(lp_, rows_, row, pivot);
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
