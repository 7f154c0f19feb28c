// Projected implied bound cuts: the continuous columns of a row are projected out by the tightest
// of their bounds, those implied by binaries included, be it by a row or by a chain of rows that
// probing has followed. What is left is a row of integral columns, mostly stronger than any that
// the relaxation knows where probing had a part in it; it is a cut as it is, or rounded.
#include <algorithm>
#include <cmath>

#include "mip/cuts/mir_kernel.h"
#include "mip/cuts/separators.h"
#include "mip/implications.h"

namespace tarvik {

namespace {

constexpr double kLargestBound = 1e6;
constexpr int kLongestRow = 1000;
constexpr int kMostCuts = 500;

class Projection {
 public:
  Projection(const SeparationPoint &point, const RowSystem &rows, const VariableBounds &bounds)
      : point_(point),
        bounds_(bounds),
        kernel_(point, rows, nullptr),
        out_(point, rows),
        upper_(point.problem->numCols()),
        lower_(point.problem->numCols()),
        sum_(point.problem->numCols()),
        isUsed_(point.problem->numCols(), 0) {
    if (!point.implications) return;
    for (const Implication &implication : point.implications->all()) take(implication);
    point.work->charge(4.0 * static_cast<double>(point.implications->all().size()));
  }

  // sign * row <= rhs.
  void run(int row, double sign, double rhs, Vec<Cut> &cuts) {
    const SparseMatrix &rows = point_.problem->rows();
    point_.work->charge(10.0 * rows.length(row));
    bool possible = true, projected = false;
    rhs_ = CompensatedSum(rhs);
    for (NzIndex k = rows.start[row]; k < rows.start[row + 1] && possible; ++k) {
      const int j = rows.index[k];
      const double coef = sign * rows.value[k];
      if (point_.problem->isIntegral(j)) {
        add(j, coef, 1);
        continue;
      }
      projected = true;
      possible = project(j, coef);
    }
    takeSum();
    if (possible && projected) emit(cuts);
  }

 private:
  void take(const Implication &implication);
  bool project(int col, double coef);
  void add(int col, double a, double b) {
    if (!isUsed_[col]) cols_.push_back(col);
    isUsed_[col] = 1;
    sum_[col].addProduct(a, b);
  }
  void takeSum();
  void emit(Vec<Cut> &cuts);

  const SeparationPoint &point_;
  const VariableBounds &bounds_;
  MirKernel kernel_;
  CutAssembler out_;
  Vec<Vec<VariableBound>> upper_, lower_;  // by implications
  Vec<CompensatedSum> sum_;
  Vec<char> isUsed_;
  Vec<int> cols_;
  CompensatedSum rhs_;
  BaseRow base_;
};

// The line through both values of the binary.
void Projection::take(const Implication &implication) {
  const Domain &global = *point_.global;
  const int x = implication.col, y = implication.binary;
  if (point_.problem->isIntegral(x) || !global.isBinary(y)) return;
  const bool above = implication.side == BoundSide::Upper;
  const double weak = above ? global.upper(x) : global.lower(x), bound = implication.bound;
  if (std::fabs(weak) > kLargestBound || !(above ? bound < weak : bound > weak)) return;
  const VariableBound line = implication.one ? VariableBound{y, bound - weak, weak}
                                             : VariableBound{y, weak - bound, bound};
  (above ? upper_ : lower_)[x].push_back(line);
}

// A positive coefficient takes the column at its lower bound.
bool Projection::project(int col, double coef) {
  const Vec<double> &x = *point_.x;
  const bool above = coef < 0;
  const VariableBound *best = above ? bounds_.leastUpper(col, x) : bounds_.greatestLower(col, x);
  for (const VariableBound &bound : (above ? upper_ : lower_)[col])
    if (!best || (above ? bound.at(x) < best->at(x) : bound.at(x) > best->at(x))) best = &bound;
  const double plain = above ? point_.global->upper(col) : point_.global->lower(col);
  const bool isPlain = std::fabs(plain) <= kLargestBound &&
                       (!best || (above ? plain <= best->at(x) : plain >= best->at(x)));
  if (!isPlain && !best) return false;
  if (isPlain) {
    rhs_.addProduct(-coef, plain);
    return true;
  }
  add(best->binary, coef, best->coef);
  rhs_.addProduct(-coef, best->constant);
  return true;
}

void Projection::takeSum() {
  base_.var.clear();
  base_.coef.clear();
  for (const int j : cols_) {
    const double c = sum_[j].value();
    sum_[j] = CompensatedSum();
    isUsed_[j] = 0;
    if (c == 0) continue;
    base_.var.push_back(j);
    base_.coef.push_back(c);
  }
  cols_.clear();
  base_.rhs = rhs_.value();
}

void Projection::emit(Vec<Cut> &cuts) {
  Cut cut;
  cut.family = CutFamily::ProjImpliedBound;
  cut.rank = 1;
  if (kernel_.load(base_, 1, Rounding::MixedInteger) && kernel_.bestCut(cut)) {
    cuts.push_back(std::move(cut));
    return;
  }
  for (std::size_t k = 0; k < base_.var.size(); ++k) out_.addColumn(base_.var[k], base_.coef[k]);
  out_.addRhs(base_.rhs);
  if (out_.finish(cut)) cuts.push_back(std::move(cut));
}

class ProjectedBoundSeparator : public Separator {
 public:
  explicit ProjectedBoundSeparator(std::shared_ptr<CutContext> context)
      : context_(std::move(context)) {}
  CutFamily family() const override { return CutFamily::ProjImpliedBound; }

  void separate(const SeparationPoint &point, int level, Vec<Cut> &cuts) override {
    const Problem &problem = *point.problem;
    Projection projection(point, context_->rows(point), context_->variableBounds(point));
    const double end = workEnd(point, level);
    const std::size_t most = cuts.size() + kMostCuts;
    for (int i = 0; i < problem.numRows(); ++i) {
      if (point.work->counted() > end || cuts.size() >= most) return;
      const int length = problem.rows().length(i);
      if (length < 2 || length > kLongestRow) continue;
      const double upper = problem.lp().rowUpper[i], lower = problem.lp().rowLower[i];
      if (!isInf(upper)) projection.run(i, 1, upper, cuts);
      if (!isInf(lower)) projection.run(i, -1, -lower, cuts);
    }
  }

 private:
  std::shared_ptr<CutContext> context_;
};

}  // namespace

std::unique_ptr<Separator> makeProjectedBoundSeparator(std::shared_ptr<CutContext> context) {
  return std::make_unique<ProjectedBoundSeparator>(std::move(context));
}

}  // namespace tarvik
