#include "mip/branch_sets.h"

#include <algorithm>

namespace tarvik {

namespace {

constexpr NzIndex kMostNonzeros = 2000000000;
constexpr int kLeastMembers = 10;
constexpr int kLongestColumn = 6;  // nonzeros of a member
constexpr int kLongestLink = 3;    // entries of a linking row
constexpr int kNobody = -1;

class Detection {
 public:
  explicit Detection(const Problem &problem)
      : problem_(problem),
        rows_(problem.rows()),
        owner_(problem.numCols(), kNobody),
        neighbour_(2 * static_cast<std::size_t>(problem.numCols()), kNobody) {}

  BranchSetList run() {
    BranchSetList sets;
    if (rows_.numNz() > kMostNonzeros) return sets;
    for (int i = 0; i < problem_.numRows(); ++i) claim(i);
    for (int i = 0; i < problem_.numRows(); ++i) link(i);
    for (const int row : qualifying_) walk(row, sets);
    return sets;
  }

 private:
  bool qualifies(int row) const {
    const LpModel &lp = problem_.lp();
    if (rows_.length(row) < kLeastMembers || lp.rowLower[row] != 1 || lp.rowUpper[row] != 1)
      return false;
    for (NzIndex k = rows_.start[row]; k < rows_.start[row + 1]; ++k) {
      const int j = rows_.index[k];
      if (rows_.value[k] != 1 || !problem_.isBinary(j) || owner_[j] != kNobody ||
          problem_.cols().length(j) > kLongestColumn)
        return false;
    }
    return true;
  }

  void claim(int row) {
    if (!qualifies(row)) return;
    qualifying_.push_back(row);
    for (NzIndex k = rows_.start[row]; k < rows_.start[row + 1]; ++k) owner_[rows_.index[k]] = row;
  }

  // Members of one qualifying row that meet in a linking row are neighbours.
  void link(int row) {
    const LpModel &lp = problem_.lp();
    const bool zeroSide =
        (lp.rowUpper[row] == 0 && (lp.rowLower[row] == 0 || isInf(lp.rowLower[row]))) ||
        (lp.rowLower[row] == 0 && isInf(lp.rowUpper[row]));
    if (!zeroSide || rows_.length(row) > kLongestLink) return;
    int others = 0;
    for (NzIndex k = rows_.start[row]; k < rows_.start[row + 1]; ++k)
      others += !problem_.isBinary(rows_.index[k]);
    if (others != 1) return;
    for (NzIndex k = rows_.start[row]; k < rows_.start[row + 1]; ++k) {
      const int j = rows_.index[k];
      if (owner_[j] == kNobody || rows_.value[k] >= 0) continue;
      for (NzIndex l = rows_.start[row]; l < rows_.start[row + 1]; ++l)
        if (l != k && owner_[rows_.index[l]] == owner_[j]) addNeighbour(j, rows_.index[l]);
    }
  }

  void addNeighbour(int col, int other) {
    int *kept = &neighbour_[2 * static_cast<std::size_t>(col)];
    if (kept[0] == other || kept[1] == other) return;
    if (kept[0] == kNobody)
      kept[0] = other;
    else if (kept[1] == kNobody)
      kept[1] = other;
  }

  int nextAfter(int col, int before) const {
    const int *kept = &neighbour_[2 * static_cast<std::size_t>(col)];
    return kept[0] != before ? kept[0] : kept[1];
  }

  // From one end to the other; a set when that visits all members.
  void walk(int row, BranchSetList &sets) const {
    const int *first = rows_.index.data() + rows_.start[row], *last = first + rows_.length(row);
    const int *end = std::find_if(first, last, [&](int j) {
      const int *kept = &neighbour_[2 * static_cast<std::size_t>(j)];
      return kept[0] != kNobody && kept[1] == kNobody;
    });
    if (end == last) return;
    Vec<int> chain{*end};
    int before = kNobody, at = *end;
    const int length = rows_.length(row);
    while (static_cast<int>(chain.size()) < length) {
      const int next = nextAfter(at, before);
      if (next == kNobody) return;
      chain.push_back(next);
      before = at;
      at = next;
    }
    Vec<int> visited(chain);
    std::sort(visited.begin(), visited.end());
    const bool twice = std::adjacent_find(visited.begin(), visited.end()) != visited.end();
    if (twice || nextAfter(at, before) != kNobody) return;
    sets.member.insert(sets.member.end(), chain.begin(), chain.end());
    sets.start.push_back(static_cast<int>(sets.member.size()));
  }

  const Problem &problem_;
  const SparseMatrix &rows_;
  Vec<int> qualifying_;
  Vec<int> owner_;      // the qualifying row of a column
  Vec<int> neighbour_;  // two a column
};

}  // namespace

SosSet BranchSetList::set(int k) const {
  SosSet set;
  set.cols.assign(member.begin() + start[k], member.begin() + start[k + 1]);
  for (std::size_t position = 0; position < set.cols.size(); ++position)
    set.weights.push_back(static_cast<double>(position));
  return set;
}

BranchSetList detectBranchSets(const Problem &problem) { return Detection(problem).run(); }

}  // namespace tarvik
