#include "mip/symmetry/automorphism_search.h"

#include <algorithm>

namespace tarvik {

namespace {
// Images that may fail below one trial.
constexpr int kMaxFailures = 200;
// Counted units of an entry in the graph and the check, and of a look at a column.
constexpr double kSetupWork = 20;
constexpr double kLookWork = 4;
}  // namespace

AutomorphismSearch::AutomorphismSearch(const Problem &problem, WorkMeter &work, double workLimit)
    : problem_(problem),
      work_(work),
      workLimit_(workLimit),
      graph_(problem),
      check_(problem),
      left_(graph_),
      right_(left_),
      orbits_(problem.numCols()) {}

// The path of individualisations on the left. False: the work limit.
bool AutomorphismSearch::descendFirst() {
  int cell = 0;
  while (true) {
    if (!left_.refine(trace_, work_, workLimit_)) return false;
    cell = left_.firstOpenCell(cell);
    if (cell == graph_.numCols) break;
    int vertex = left_.element(cell);
    for (int p = cell; p < cell + left_.length(cell); ++p)
      vertex = std::min(vertex, left_.element(p));
    work_.charge(kLookWork * left_.length(cell));
    levels_.push_back({cell, vertex, left_.splits().size(), trace_.position});
    left_.individualise(vertex);
  }
  leftLevel_ = static_cast<int>(levels_.size());
  trace_.recording = false;
  return true;
}

// The left side stands before the individualisation at `level`.
bool AutomorphismSearch::leftTo(int level) {
  if (leftLevel_ > level) left_.undoTo(levels_[level].splits, work_);
  while (leftLevel_ < level) {
    const Level &step = levels_[leftLevel_];
    trace_.position = step.tracePosition;
    left_.individualise(step.vertex);
    if (!left_.refine(trace_, work_, workLimit_)) {
      left_.undoTo(step.splits, work_);
      return false;
    }
    ++leftLevel_;
  }
  leftLevel_ = level;
  return true;
}

void AutomorphismSearch::rightTo(int level) { right_.undoTo(levels_[level].splits, work_); }

// False when the two sides part.
bool AutomorphismSearch::individualiseBoth(int level, int image) {
  if (!leftTo(level + 1)) return false;
  trace_.position = levels_[level].tracePosition;
  right_.individualise(image);
  const std::size_t end = level + 1 < static_cast<int>(levels_.size())
                              ? levels_[level + 1].tracePosition
                              : trace_.events.size();
  return right_.refine(trace_, work_, workLimit_) && trace_.position == end;
}

// The column on the path itself, or the one that closes a cycle: permutations that move few.
int AutomorphismSearch::preferredImage(int level) const {
  const int cell = levels_[level].cell;
  int image = levels_[level].vertex;
  while (right_.cellOf(image) != cell) {
    const int occupied = right_.cellOf(image);
    if (right_.length(occupied) > 1) return right_.element(cell);
    image = left_.element(occupied);
  }
  return image;
}

bool AutomorphismSearch::nextChoice(int level, Choices &choices, int &image) const {
  if (!choices.listed) {
    choices.listed = true;
    const int cell = levels_[level].cell;
    for (int p = cell; p < cell + right_.length(cell); ++p)
      if (right_.element(p) != choices.tried) choices.others.push_back(right_.element(p));
    std::sort(choices.others.rbegin(), choices.others.rend());
    work_.charge(kLookWork * right_.length(cell));
  }
  if (choices.others.empty()) return false;
  image = choices.others.back();
  choices.others.pop_back();
  return true;
}

// Whether the cells of several columns that have changed since the base level are the same sets.
bool AutomorphismSearch::isMatch(int base) {
  const auto isSame = [&](int cell) {
    if (cell >= graph_.numCols || left_.length(cell) == 1) return true;
    work_.charge(kLookWork * left_.length(cell));
    for (int p = cell; p < cell + left_.length(cell); ++p)
      if (right_.cellOf(left_.element(p)) != cell) return false;
    return true;
  };
  for (std::size_t k = levels_[base].splits; k < left_.splits().size(); ++k)
    if (!isSame(left_.splits()[k]) || !isSame(left_.parents()[k])) return false;
  return true;
}

// Whether the map between the cells of one column, the others staying, is a symmetry. It is kept.
bool AutomorphismSearch::isSymmetric(int base) {
  Vec<std::pair<int, int>> moves;
  const auto note = [&](int cell) {
    if (cell < graph_.numCols && left_.length(cell) == 1 &&
        left_.element(cell) != right_.element(cell))
      moves.emplace_back(left_.element(cell), right_.element(cell));
  };
  for (std::size_t k = levels_[base].splits; k < left_.splits().size(); ++k) {
    note(left_.splits()[k]);
    note(left_.parents()[k]);
  }
  std::sort(moves.begin(), moves.end());
  moves.erase(std::unique(moves.begin(), moves.end()), moves.end());
  work_.charge(kLookWork * static_cast<double>(left_.splits().size() - levels_[base].splits));
  Permutation candidate;
  for (const auto &[from, to] : moves) {
    candidate.from.push_back(from);
    candidate.to.push_back(to);
  }
  if (!check_.isSymmetry(candidate, work_)) return false;
  for (const auto &[from, to] : moves) orbits_.unite(from, to);
  result_.generators.push_back(std::move(candidate));
  return true;
}

// Looks for a symmetry that fixes the columns of the path above `base` and takes the one there to
// `image`: depth first over the images of the columns below.
bool AutomorphismSearch::findImage(int base, int image) {
  Vec<Choices> stack;
  int level = base, failures = 0;
  while (true) {
    if (individualiseBoth(level, image)) {
      if (isMatch(base) && isSymmetric(base)) return true;
      if (level + 1 < static_cast<int>(levels_.size())) {
        image = preferredImage(++level);
        stack.push_back({image, false, {}});
        continue;
      }
    }
    if (exhausted() || ++failures > kMaxFailures) {
      result_.complete = false;
      return false;
    }
    rightTo(level);
    while (!stack.empty() && !nextChoice(level, stack.back(), image)) {
      stack.pop_back();
      rightTo(--level);
    }
    if (stack.empty()) return false;
  }
}

// Tries every orbit of the target cell in place of the column on the path.
void AutomorphismSearch::tryCell(int level) {
  leftTo(level);
  rightTo(level);
  const auto [cell, vertex, splits, position] = levels_[level];
  Vec<int> candidates, failed;
  for (int p = cell; p < cell + left_.length(cell); ++p) candidates.push_back(left_.element(p));
  std::sort(candidates.begin(), candidates.end());
  work_.charge(kLookWork * left_.length(cell));
  for (const int image : candidates) {
    const int orbit = orbits_.find(image);
    if (orbit == orbits_.find(vertex)) continue;
    // No symmetry at this level leads there if none leads to another column of the orbit.
    if (std::any_of(failed.begin(), failed.end(),
                    [&](int other) { return orbits_.find(other) == orbit; }))
      continue;
    if (!findImage(level, image)) failed.push_back(image);
    rightTo(level);
    if (exhausted()) break;
  }
}

SymmetrySearchResult AutomorphismSearch::run() {
  result_.complete = true;
  if (!descendFirst()) {
    result_.complete = false;
    return std::move(result_);
  }
  right_ = left_;
  for (int level = static_cast<int>(levels_.size()) - 1; level >= 0; --level) {
    if (exhausted()) {
      result_.complete = false;
      break;
    }
    tryCell(level);
  }
  return std::move(result_);
}

SymmetrySearchResult findGenerators(const Problem &problem, WorkMeter &work, double workLimit) {
  const double setup = kSetupWork * (problem.numCols() + problem.numRows() +
                                     static_cast<double>(problem.cols().numNz()));
  if (work.counted() + setup > workLimit) return {};
  work.charge(setup);
  return AutomorphismSearch(problem, work, workLimit).run();
}

}  // namespace tarvik
