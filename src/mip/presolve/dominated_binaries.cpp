#include "mip/presolve/dominated_binaries.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "mip/presolve/restrictions.h"

namespace tarvik {

namespace {

// Work in all, and for each entry of the matrix.
constexpr double kWork = 1e6;
constexpr double kWorkShare = 50;
// Rows whose activity is known to be this near to a side are not trusted to hold.
constexpr double kSlack = 1e-9;

class DominatedBinaries {
 public:
  DominatedBinaries(MipModel &model, WorkMeter &work)
      : model_(model),
        lp_(model.lp),
        work_(work),
        rows_(transpose(model.lp.a)),
        restricted_(restrictedColumns(model)),
        least_(lp_.numRows, 0),
        most_(lp_.numRows, 0),
        needs_(lp_.numCols, 0),
        hurts_(lp_.numCols, 0),
        support_(lp_.numCols, 0) {}

  int run() {
    findActivities();
    for (int j = 0; j < lp_.numCols; ++j) findSignature(j);
    const double limit = work_.counted() + kWork + kWorkShare * static_cast<double>(lp_.a.numNz());
    int fixed = 0;
    for (int j = 0; j < lp_.numCols && work_.counted() < limit; ++j) {
      if (!isBinary(j) || lp_.cost[j] < 0 || !hasDominator(j)) continue;
      lp_.colUpper[j] = 0;
      ++fixed;
    }
    return fixed;
  }

 private:
  bool isBinary(int j) const {
    return model_.kind[j] == VarKind::Integer && lp_.colLower[j] == 0 && lp_.colUpper[j] == 1 &&
           !restricted_[j];
  }
  // The row keeps a column with this coefficient from falling (rising).
  bool locksDown(int row, double value) const {
    return !isInf(value > 0 ? lp_.rowLower[row] : lp_.rowUpper[row]);
  }
  bool locksUp(int row, double value) const { return locksDown(row, -value); }

  void findActivities();
  void findSignature(int col);
  bool hasDominator(int col);
  bool dominates(int better, int worse) const;
  bool rowAllows(int row, double better, double worse) const;
  bool holdsWithout(int row, double better, double worse) const;

  MipModel &model_;
  LpModel &lp_;
  WorkMeter &work_;
  SparseMatrix rows_;
  Vec<char> restricted_;
  Vec<double> least_, most_;                    // by row: activity; infinite if a term is
  Vec<std::uint64_t> needs_, hurts_, support_;  // by column: hashed rows
};

void DominatedBinaries::findActivities() {
  for (int i = 0; i < lp_.numRows; ++i) {
    for (NzIndex k = rows_.start[i]; k < rows_.start[i + 1]; ++k) {
      const double a = rows_.value[k];
      const int j = rows_.index[k];
      const double low = a > 0 ? lp_.colLower[j] : lp_.colUpper[j];
      const double up = a > 0 ? lp_.colUpper[j] : lp_.colLower[j];
      least_[i] = isInf(low) || isInf(least_[i]) ? -kInf : least_[i] + a * low;
      most_[i] = isInf(up) || isInf(most_[i]) ? kInf : most_[i] + a * up;
    }
  }
  work_.charge(5.0 * static_cast<double>(lp_.a.numNz()));
}

void DominatedBinaries::findSignature(int j) {
  for (NzIndex k = lp_.a.start[j]; k < lp_.a.start[j + 1]; ++k) {
    const int i = lp_.a.index[k];
    const std::uint64_t bit = std::uint64_t{1}
                              << ((static_cast<std::uint64_t>(i) * 0x9e3779b97f4a7c15u) >> 58);
    support_[j] |= bit;
    if (locksDown(i, lp_.a.value[k])) needs_[j] |= bit;
    if (locksUp(i, lp_.a.value[k])) hurts_[j] |= bit;
  }
}

// A dominator is found in every row that keeps the column from falling: the shortest is searched.
bool DominatedBinaries::hasDominator(int j) {
  int shortest = -1;
  for (NzIndex k = lp_.a.start[j]; k < lp_.a.start[j + 1]; ++k) {
    const int i = lp_.a.index[k];
    if (!locksDown(i, lp_.a.value[k])) continue;
    if (shortest < 0 || rows_.length(i) < rows_.length(shortest)) shortest = i;
  }
  if (shortest < 0) return false;
  work_.charge(2.0 * rows_.length(shortest));
  for (NzIndex k = rows_.start[shortest]; k < rows_.start[shortest + 1]; ++k) {
    const int other = rows_.index[k];
    if (other == j || lp_.cost[other] > lp_.cost[j]) continue;
    if ((needs_[j] & ~support_[other]) != 0 || (hurts_[other] & ~support_[j]) != 0) continue;
    if (!isBinary(other)) continue;
    work_.charge(lp_.a.length(j) + lp_.a.length(other));
    if (dominates(other, j)) return true;
  }
  return false;
}

bool DominatedBinaries::rowAllows(int row, double better, double worse) const {
  return (isInf(lp_.rowLower[row]) || better >= worse) &&
         (isInf(lp_.rowUpper[row]) || better <= worse);
}

// With the better column at one and the worse at zero the row holds, whatever the others do, as
// far as the worse one falling endangers it.
bool DominatedBinaries::holdsWithout(int row, double better, double worse) const {
  if (worse == 0 || !locksDown(row, worse)) return true;
  if (worse > 0) {
    if (isInf(least_[row])) return false;
    const double activity = least_[row] - std::min(better, 0.0) + better;
    return activity >= lp_.rowLower[row] + kSlack * std::max(1.0, std::fabs(activity)) ||
           activity == lp_.rowLower[row];
  }
  if (isInf(most_[row])) return false;
  const double activity = most_[row] - std::max(better, 0.0) + better;
  return activity <= lp_.rowUpper[row] - kSlack * std::max(1.0, std::fabs(activity)) ||
         activity == lp_.rowUpper[row];
}

bool DominatedBinaries::dominates(int better, int worse) const {
  bool redundant = true, exclusive = false;
  NzIndex b = lp_.a.start[better], w = lp_.a.start[worse];
  const NzIndex endB = lp_.a.start[better + 1], endW = lp_.a.start[worse + 1];
  while (b < endB || w < endW) {
    const int rowB = b < endB ? lp_.a.index[b] : kMaxInt;
    const int rowW = w < endW ? lp_.a.index[w] : kMaxInt;
    const int row = std::min(rowB, rowW);
    const double ofBetter = rowB == row ? lp_.a.value[b++] : 0;
    const double ofWorse = rowW == row ? lp_.a.value[w++] : 0;
    if (!rowAllows(row, ofBetter, ofWorse)) return false;
    redundant &= holdsWithout(row, ofBetter, ofWorse);
    // Both at one, the others at their best: beyond a side by far.
    const double least = least_[row] + std::max(ofBetter, 0.0) + std::max(ofWorse, 0.0);
    const double most = most_[row] + std::min(ofBetter, 0.0) + std::min(ofWorse, 0.0);
    const double margin = 1e-3 * std::max({1.0, std::fabs(ofBetter), std::fabs(ofWorse)});
    exclusive |= !isInf(least_[row]) && least > lp_.rowUpper[row] + margin;
    exclusive |= !isInf(most_[row]) && most < lp_.rowLower[row] - margin;
  }
  return redundant || exclusive;
}

}  // namespace

int fixDominatedBinaries(MipModel &model, WorkMeter &work) {
  return DominatedBinaries(model, work).run();
}

}  // namespace tarvik
