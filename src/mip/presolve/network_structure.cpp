#include "mip/presolve/network_structure.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "mip/presolve/whole_rows.h"

namespace tarvik {

namespace {

constexpr double kIntegral = 1e-10;
constexpr double kSmallestCoef = 1e-6;
constexpr double kBoundError = 1e-5;
// Finite bounds beyond this leave a column continuous.
constexpr double kLargestBound = 1e8;

class NetworkDetection {
 public:
  explicit NetworkDetection(const MipModel &model)
      : model_(model), rows_(transpose(model.lp.a)), ends_(model.lp.numCols) {}

  bool run() {
    for (int i = 0; i < model_.lp.numRows; ++i)
      if (!readRow(i)) return false;
    return orient() && isConsistent() && hasIntegralBounds();
  }
  bool isFree(int col) const {
    return model_.kind[col] == VarKind::Continuous &&
           model_.lp.colUpper[col] - model_.lp.colLower[col] > kIntegral;
  }

 private:
  // The rows of a column that it shares with others of its kind, with the sign there.
  struct Ends {
    int row[2] = {-1, -1};
    int sign[2] = {0, 0};
    bool isComplete() const { return row[1] >= 0; }
  };

  bool readRow(int row);
  bool recordRow(int row);
  bool orient() const;
  bool isConsistent() const;
  bool hasIntegralBounds() const;

  const MipModel &model_;
  SparseMatrix rows_;
  Vec<Ends> ends_;
};

bool NetworkDetection::readRow(int row) {
  if (rows_.length(row) == 0) return false;
  double largest = 0, smallest = kInf;
  int count = 0;
  for (NzIndex k = rows_.start[row]; k < rows_.start[row + 1]; ++k) {
    if (!isFree(rows_.index[k])) continue;
    largest = std::max(largest, std::fabs(rows_.value[k]));
    smallest = std::min(smallest, std::fabs(rows_.value[k]));
    ++count;
  }
  if (largest < kSmallestCoef || largest - smallest > kIntegral) return false;
  if (!isWholeRow(model_.lp, rows_, row, largest)) return false;
  return count < 2 || recordRow(row);
}

bool NetworkDetection::recordRow(int row) {
  for (NzIndex k = rows_.start[row]; k < rows_.start[row + 1]; ++k) {
    if (!isFree(rows_.index[k])) continue;
    Ends &ends = ends_[rows_.index[k]];
    if (ends.isComplete()) return false;
    const int end = ends.row[0] < 0 ? 0 : 1;
    ends.row[end] = row;
    ends.sign[end] = rows_.value[k] > 0 ? 1 : -1;
  }
  return true;
}

// One pass that gives rows their signs: a quick refusal of most matrices.
bool NetworkDetection::orient() const {
  Vec<int> orientation(model_.lp.numRows, 0);
  for (const Ends &ends : ends_) {
    if (!ends.isComplete()) continue;
    int &first = orientation[ends.row[0]], &second = orientation[ends.row[1]];
    if (first == 0) {
      first = -ends.sign[0];
      if (second == 0) second = ends.sign[1];
    } else if (second == 0) {
      second = ends.sign[1];
    } else if (first * ends.sign[0] == second * ends.sign[1]) {
      return false;
    }
  }
  return true;
}

// Signs for all rows exist: each column's rows are joined, with the parity of their signs.
bool NetworkDetection::isConsistent() const {
  Vec<int> parent(model_.lp.numRows), parity(model_.lp.numRows, 1);
  for (int i = 0; i < model_.lp.numRows; ++i) parent[i] = i;
  // The root of a row, and its sign relative to that.
  const auto find = [&](int row) {
    int sign = 1, root = row;
    while (parent[root] != root) {
      sign *= parity[root];
      root = parent[root];
    }
    for (int rest = sign; row != root;) {
      const int next = parent[row], own = parity[row];
      parent[row] = root;
      parity[row] = rest;
      rest *= own;
      row = next;
    }
    return std::pair<int, int>(root, sign);
  };
  for (const Ends &ends : ends_) {
    if (!ends.isComplete()) continue;
    const auto [root0, sign0] = find(ends.row[0]);
    const auto [root1, sign1] = find(ends.row[1]);
    const int relation = -ends.sign[0] * ends.sign[1];
    if (root0 == root1) {
      if (sign0 * sign1 != relation) return false;
    } else {
      parent[root0] = root1;
      parity[root0] = sign0 * sign1 * relation;
    }
  }
  return true;
}

// Rounding a fractional bound, or a fixed value that is, would cut off solutions.
bool NetworkDetection::hasIntegralBounds() const {
  for (int j = 0; j < model_.lp.numCols; ++j) {
    if (model_.kind[j] != VarKind::Continuous) continue;
    for (const double bound : {model_.lp.colLower[j], model_.lp.colUpper[j]})
      if (!isInf(bound) && std::fabs(bound - std::round(bound)) > kIntegral) return false;
  }
  return true;
}

bool isTooLarge(double bound) { return !isInf(bound) && std::fabs(bound) > kLargestBound; }

}  // namespace

NetworkStructure detectNetworkStructure(MipModel &model) {
  NetworkStructure result;
  NetworkDetection detection(model);
  if (!detection.run()) return result;
  LpModel &lp = model.lp;
  Vec<int> &priority = model.branchPriority;
  if (priority.empty()) priority.assign(lp.numCols, 0);
  const int lowest = priority.empty() ? 0 : *std::min_element(priority.begin(), priority.end());
  for (int j = 0; j < lp.numCols; ++j) {
    if (!detection.isFree(j)) continue;
    ++result.continuous;
    if (isTooLarge(lp.colLower[j]) || isTooLarge(lp.colUpper[j])) continue;
    model.kind[j] = VarKind::Integer;
    if (!isInf(lp.colLower[j])) lp.colLower[j] = std::ceil(lp.colLower[j] - kBoundError);
    if (!isInf(lp.colUpper[j])) lp.colUpper[j] = std::floor(lp.colUpper[j] + kBoundError);
    // They follow the others.
    if (lowest > std::numeric_limits<int>::min()) priority[j] = lowest - 1;
    result.changed = true;
  }
  return result;
}

}  // namespace tarvik
