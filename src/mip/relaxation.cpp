#include "mip/relaxation.h"

#include <algorithm>
#include <cmath>

namespace tarvik {

namespace {

// Reduced costs above this share of the tolerance count.
constexpr double kFaceShare = 1e-3;

}  // namespace

Relaxation::Relaxation(const Problem &problem, const SimplexOptions &options)
    : problem_(&problem),
      simplex_(options),
      lower_(problem.lp().colLower),
      upper_(problem.lp().colUpper) {
  // Points are checked and repaired before they count; bounds need no polish.
  simplex_.options().polish = false;
  simplex_.options().quickVerdicts = true;
  simplex_.load(problem.lp());
}

namespace {

// The bound of a continuous column without what rows imply: such bounds would only make the
// relaxation degenerate.
double boundForLp(const Domain &domain, int col, BoundSide side) {
  const double bound = side == BoundSide::Lower ? domain.lower(col) : domain.upper(col);
  const Problem &problem = domain.problem();
  if (problem.isIntegral(col) || problem.isSemi(col) || domain.isFixed(col)) return bound;
  int position = domain.position(col, side);
  while (position >= 0) {
    const TrailEntry &entry = domain.trail()[position];
    if (entry.reason.kind != Reason::Row && entry.reason.kind != Reason::Objective)
      return entry.value;
    position = entry.previous;
  }
  const LpModel &lp = problem.lp();
  return side == BoundSide::Lower ? lp.colLower[col] : lp.colUpper[col];
}

}  // namespace

void Relaxation::follow(Domain &domain) {
  for (const int j : domain.takeChanged()) {
    const double lower = boundForLp(domain, j, BoundSide::Lower);
    const double upper = boundForLp(domain, j, BoundSide::Upper);
    if (lower == lower_[j] && upper == upper_[j]) continue;
    lower_[j] = lower;
    upper_[j] = upper;
    simplex_.setColBounds(j, lower, upper);
  }
}

void Relaxation::setCutoff(double cutoff) {
  simplex_.options().cutoff = std::min(cutoff, kUserInf);
}

LpStatus Relaxation::solve(SolveControl &control, double iterationLimit) {
  const double before = simplex_.iterations();
  simplex_.setIterationCap(iterationLimit < kUserInf ? before + iterationLimit : kUserInf);
  status_ = simplex_.solve(SimplexMethod::Dual, control);
  totalIterations_ += simplex_.iterations() - before;
  solutionStale_ = true;
  if (status_ != LpStatus::Optimal) {
    objective_ = status_ == LpStatus::IterationLimit ? simplex_.dualBound(control.work) : -kUserInf;
    return status_;
  }
  simplex_.getPoint(x_, reducedCost_, objective_);
  return status_;
}

// What has a reduced cost stays where it is in every optimum. The statuses that this hides come
// back.
Basis Relaxation::fixOptimalFace() {
  const LpSolution &optimum = solution();
  Basis at = simplex_.basis();
  const double tolerance = problem_->tolerances().dual * kFaceShare;
  for (int j = 0; j < problem_->numCols(); ++j) {
    if (at.col[j] == VarStatus::Basic || std::fabs(optimum.colDual[j]) <= tolerance)
      at.col[j] = VarStatus::Basic;
    else
      simplex_.setColBounds(j, optimum.colValue[j], optimum.colValue[j]);
  }
  for (int i = 0; i < numRows(); ++i) {
    const double side = at.row[i] == VarStatus::AtLower ? rowLower(i) : rowUpper(i);
    if (at.row[i] == VarStatus::Basic || std::fabs(optimum.rowDual[i]) <= tolerance)
      at.row[i] = VarStatus::Basic;
    else
      simplex_.setRowBounds(i, side, side);
  }
  return at;
}

bool Relaxation::moveOnOptimalFace(const Vec<double> &cost, double iterationLimit,
                                   SolveControl &control) {
  const Basis fixed = fixOptimalFace();
  const double cutoff = simplex_.options().cutoff, before = simplex_.iterations();
  simplex_.options().cutoff = kUserInf;
  for (int j = 0; j < problem_->numCols(); ++j) simplex_.setCost(j, cost[j]);
  simplex_.setIterationCap(before + iterationLimit);
  simplex_.solve(SimplexMethod::Primal, control);
  totalIterations_ += simplex_.iterations() - before;
  Basis basis = simplex_.basis();
  const auto release = [](VarStatus &now, VarStatus then, auto &&giveBounds) {
    if (then == VarStatus::Basic) return;
    giveBounds();
    if (now != VarStatus::Basic) now = then;
  };
  for (int j = 0; j < problem_->numCols(); ++j) {
    simplex_.setCost(j, problem_->lp().cost[j]);
    release(basis.col[j], fixed.col[j], [&] { simplex_.setColBounds(j, lower_[j], upper_[j]); });
  }
  for (int i = 0; i < numRows(); ++i)
    release(basis.row[i], fixed.row[i],
            [&] { simplex_.setRowBounds(i, rowLower(i), rowUpper(i)); });
  simplex_.setBasis(basis);
  simplex_.options().cutoff = cutoff;
  return solve(control) == LpStatus::Optimal;
}

void Relaxation::ageCuts() {
  for (int k = 0; k < numCuts(); ++k)
    cuts_[k].age = simplex_.logicalIsBasic(problem_->numRows() + k) ? cuts_[k].age + 1 : 0;
}

const LpSolution &Relaxation::solution() const {
  if (solutionStale_) simplex_.getSolution(solution_);
  solutionStale_ = false;
  return solution_;
}

void Relaxation::addCuts(const Vec<std::shared_ptr<const Cut>> &cuts, const Vec<CutId> &ids) {
  Vec<NzIndex> start{0};
  Vec<int> index;
  Vec<double> value, lower, upper;
  for (std::size_t k = 0; k < cuts.size(); ++k) {
    const Cut &cut = *cuts[k];
    index.insert(index.end(), cut.index.begin(), cut.index.end());
    value.insert(value.end(), cut.value.begin(), cut.value.end());
    start.push_back(static_cast<NzIndex>(index.size()));
    lower.push_back(-kInf);
    upper.push_back(cut.rhs);
    cuts_.push_back({cuts[k], ids[k]});
  }
  simplex_.addRows(static_cast<int>(cuts.size()), start.data(), index.data(), value.data(),
                   lower.data(), upper.data());
}

void Relaxation::copyCuts(const Relaxation &other) {
  Vec<std::shared_ptr<const Cut>> cuts;
  Vec<CutId> ids;
  for (const Active &active : other.cuts_) {
    cuts.push_back(active.cut);
    ids.push_back(active.id);
  }
  if (!cuts.empty()) addCuts(cuts, ids);
}

Vec<std::shared_ptr<const Cut>> Relaxation::removeSlackCuts(int age, CutId firstId) {
  Vec<char> mark(numRows(), 0);
  Vec<Active> kept;
  Vec<std::shared_ptr<const Cut>> removed;
  for (int k = 0; k < numCuts(); ++k) {
    if (cuts_[k].age >= age && cuts_[k].id >= firstId) {
      mark[problem_->numRows() + k] = 1;
      removed.push_back(cuts_[k].cut);
    } else {
      kept.push_back(cuts_[k]);
    }
  }
  if (removed.empty()) return removed;
  simplex_.deleteRows(mark);
  cuts_.swap(kept);
  return removed;
}

void Relaxation::row(int i, const int *&index, const double *&value, int &count) const {
  if (i < problem_->numRows()) {
    const SparseMatrix &rows = problem_->rows();
    index = rows.index.data() + rows.start[i];
    value = rows.value.data() + rows.start[i];
    count = rows.length(i);
    return;
  }
  const Cut &c = cut(i - problem_->numRows());
  index = c.index.data();
  value = c.value.data();
  count = static_cast<int>(c.index.size());
}

double Relaxation::rowLower(int i) const {
  return i < problem_->numRows() ? problem_->lp().rowLower[i] : -kInf;
}
double Relaxation::rowUpper(int i) const {
  return i < problem_->numRows() ? problem_->lp().rowUpper[i] : cut(i - problem_->numRows()).rhs;
}
int Relaxation::rowRank(int i) const {
  return i < problem_->numRows() ? 0 : cut(i - problem_->numRows()).rank;
}

std::shared_ptr<const NodeBasis> Relaxation::basis() const {
  auto result = std::allocate_shared<NodeBasis>(AccountAllocator<NodeBasis>());
  result->basis = simplex_.basis();
  for (const Active &active : cuts_) result->cutIds.push_back(active.id);
  return result;
}

void Relaxation::setBasis(const NodeBasis &from) {
  Basis basis;
  basis.col = from.basis.col;
  const int rows = problem_->numRows();
  basis.row.assign(from.basis.row.begin(), from.basis.row.begin() + rows);
  // Both lists of cuts are in the order of their ids.
  std::size_t next = 0;
  for (const Active &active : cuts_) {
    while (next < from.cutIds.size() && from.cutIds[next] < active.id) ++next;
    const bool known = next < from.cutIds.size() && from.cutIds[next] == active.id;
    basis.row.push_back(known ? from.basis.row[rows + next] : VarStatus::Basic);
  }
  simplex_.setBasis(basis);
}

}  // namespace tarvik
