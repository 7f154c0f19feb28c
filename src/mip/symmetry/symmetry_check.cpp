#include "mip/symmetry/symmetry_check.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>

#include "mip/symmetry/coloured_graph.h"

namespace tarvik {

namespace {

constexpr double kEntryWork = 8;

std::uint64_t entryHash(int col, double value) {
  return mixBits(mixBits(static_cast<std::uint64_t>(col)) ^
                 std::bit_cast<std::uint64_t>(value + 0.0));
}

const double kNone = std::numeric_limits<double>::quiet_NaN();

}  // namespace

SymmetryCheck::SymmetryCheck(const Problem &problem)
    : problem_(problem),
      rowHash_(problem.numRows(), 0),
      byHash_(problem.numRows()),
      image_(problem.numCols()),
      isMet_(problem.numRows(), 0),
      isTarget_(problem.numRows(), 0),
      target_(problem.numRows()),
      newHash_(problem.numRows()),
      entry_(std::max(problem.numRows(), problem.numCols()), kNone) {
  const SparseMatrix &rows = problem.rows();
  for (int i = 0; i < problem.numRows(); ++i)
    for (NzIndex k = rows.start[i]; k < rows.start[i + 1]; ++k)
      rowHash_[i] += entryHash(rows.index[k], rows.value[k]);
  std::iota(byHash_.begin(), byHash_.end(), 0);
  std::sort(byHash_.begin(), byHash_.end(), [&](int a, int b) {
    return rowHash_[a] != rowHash_[b] ? rowHash_[a] < rowHash_[b] : a < b;
  });
  std::iota(image_.begin(), image_.end(), 0);
  const Vec<SosSet> &sets = problem.model().sos;
  SparseMatrix bySet;
  bySet.clear(problem.numCols());
  for (const SosSet &set : sets) {
    Vec<double> places(set.cols.size());
    std::iota(places.begin(), places.end(), 0.0);
    bySet.append(static_cast<int>(set.cols.size()), set.cols.data(), places.data());
  }
  memberships_ = transpose(bySet);
}

bool SymmetryCheck::sameColumns(const Permutation &permutation) const {
  const LpModel &lp = problem_.lp();
  const MipModel &model = problem_.model();
  for (int k = 0; k < permutation.size(); ++k) {
    const int a = permutation.from[k], b = permutation.to[k];
    if (problem_.kind(a) != problem_.kind(b) || lp.cost[a] != lp.cost[b] ||
        lp.colLower[a] != lp.colLower[b] || lp.colUpper[a] != lp.colUpper[b] ||
        problem_.cols().length(a) != problem_.cols().length(b) ||
        memberships_.length(a) != memberships_.length(b))
      return false;
    if (problem_.isSemi(a) &&
        (model.holeLower[a] != model.holeLower[b] || model.holeUpper[a] != model.holeUpper[b]))
      return false;
  }
  return true;
}

// All of the row, which has as many entries as the target.
bool SymmetryCheck::rowGoesTo(int row, int target, WorkMeter &work) {
  const SparseMatrix &rows = problem_.rows();
  const LpModel &lp = problem_.lp();
  if (lp.rowLower[row] != lp.rowLower[target] || lp.rowUpper[row] != lp.rowUpper[target] ||
      rows.length(row) != rows.length(target))
    return false;
  work.charge(kEntryWork * rows.length(row));
  for (NzIndex k = rows.start[target]; k < rows.start[target + 1]; ++k)
    entry_[rows.index[k]] = rows.value[k];
  bool same = true;
  for (NzIndex k = rows.start[row]; k < rows.start[row + 1]; ++k)
    same = same && entry_[image(rows.index[k])] == rows.value[k];
  for (NzIndex k = rows.start[target]; k < rows.start[target + 1]; ++k)
    entry_[rows.index[k]] = kNone;
  return same;
}

// Finds where rows with entries in moved columns go; those that stay are left to keepsEntries().
bool SymmetryCheck::mapRows(const Permutation &permutation, WorkMeter &work) {
  const SparseMatrix &cols = problem_.cols();
  for (int p = 0; p < permutation.size(); ++p) {
    const int j = permutation.from[p];
    work.charge(kEntryWork * cols.length(j));
    for (NzIndex k = cols.start[j]; k < cols.start[j + 1]; ++k) {
      const int i = cols.index[k];
      if (!isMet_[i]) {
        isMet_[i] = 1;
        met_.push_back(i);
        target_[i] = i;
        newHash_[i] = rowHash_[i];
      }
      newHash_[i] += entryHash(image(j), cols.value[k]) - entryHash(j, cols.value[k]);
    }
  }
  for (const int i : met_) {
    if (newHash_[i] == rowHash_[i]) continue;
    const auto less = [&](int row, std::uint64_t hash) { return rowHash_[row] < hash; };
    auto candidate = std::lower_bound(byHash_.begin(), byHash_.end(), newHash_[i], less);
    for (; candidate != byHash_.end() && rowHash_[*candidate] == newHash_[i]; ++candidate)
      if (isMet_[*candidate] && newHash_[*candidate] != rowHash_[*candidate] &&
          !isTarget_[*candidate] && rowGoesTo(i, *candidate, work))
        break;
    if (candidate == byHash_.end() || rowHash_[*candidate] != newHash_[i]) return false;
    target_[i] = *candidate;
    isTarget_[*candidate] = 1;
  }
  return true;
}

// Rows that stay have the same coefficient in a moved column and in its image.
bool SymmetryCheck::keepsEntries(const Permutation &permutation, WorkMeter &work) {
  const SparseMatrix &cols = problem_.cols();
  bool same = true;
  for (int p = 0; p < permutation.size() && same; ++p) {
    const int a = permutation.from[p], b = permutation.to[p];
    work.charge(kEntryWork * (cols.length(a) + cols.length(b)));
    for (NzIndex k = cols.start[b]; k < cols.start[b + 1]; ++k)
      entry_[cols.index[k]] = cols.value[k];
    for (NzIndex k = cols.start[a]; k < cols.start[a + 1]; ++k)
      if (target_[cols.index[k]] == cols.index[k])
        same = same && entry_[cols.index[k]] == cols.value[k];
    for (NzIndex k = cols.start[b]; k < cols.start[b + 1]; ++k) entry_[cols.index[k]] = kNone;
  }
  return same;
}

bool SymmetryCheck::setGoesTo(int set, int target) {
  const SosSet &a = problem_.model().sos[set], &b = problem_.model().sos[target];
  if (a.type != b.type || a.cols.size() != b.cols.size()) return false;
  Vec<int> images, members(b.cols);
  for (const int j : a.cols) images.push_back(image(j));
  // Where at most one member is nonzero their order does not matter.
  if (a.type == 1) {
    std::sort(images.begin(), images.end());
    std::sort(members.begin(), members.end());
  }
  return images == members;
}

bool SymmetryCheck::mapSets(const Permutation &permutation, WorkMeter &work) {
  if (problem_.model().sos.empty()) return true;
  Vec<int> met, targets;
  for (const int j : permutation.from)
    for (NzIndex k = memberships_.start[j]; k < memberships_.start[j + 1]; ++k)
      met.push_back(memberships_.index[k]);
  std::sort(met.begin(), met.end());
  met.erase(std::unique(met.begin(), met.end()), met.end());
  for (const int s : met) {
    const auto isImage = [&](int other) {
      work.charge(kEntryWork * static_cast<double>(problem_.model().sos[other].cols.size()));
      return std::find(targets.begin(), targets.end(), other) == targets.end() &&
             setGoesTo(s, other);
    };
    const auto found = std::find_if(met.begin(), met.end(), isImage);
    if (found == met.end()) return false;
    targets.push_back(*found);
  }
  return true;
}

bool SymmetryCheck::isSymmetry(const Permutation &permutation, WorkMeter &work) {
  Vec<int> images(permutation.to);
  std::sort(images.begin(), images.end());
  if (images != permutation.from || !sameColumns(permutation)) return false;
  for (int k = 0; k < permutation.size(); ++k) image_[permutation.from[k]] = permutation.to[k];
  const bool same =
      mapRows(permutation, work) && keepsEntries(permutation, work) && mapSets(permutation, work);
  for (const int j : permutation.from) image_[j] = j;
  for (const int i : met_) isMet_[i] = isTarget_[i] = 0;
  met_.clear();
  return same;
}

}  // namespace tarvik
