// Implied bound cuts (Hoffman and Padberg, 1991; Savelsbergh, 1994): when a row and a binary y
// fixed at one of its values imply a bound on another column x that is better than the global one,
// x is bounded by the line through both. The row itself is mostly weaker in the relaxation.
#include <algorithm>
#include <cmath>

#include "mip/cuts/cut_assembler.h"
#include "mip/cuts/separators.h"
#include "mip/implications.h"

namespace tarvik {

namespace {

constexpr double kFractional = 1e-4;
constexpr double kLeastViolation = 1e-3;
constexpr double kLargestBound = 1e6;
constexpr int kLongestRow = 1000;
constexpr int kMostCuts = 2000;

class ImpliedBoundSeparator : public Separator {
 public:
  explicit ImpliedBoundSeparator(std::shared_ptr<CutContext> context)
      : context_(std::move(context)) {}
  CutFamily family() const override { return CutFamily::ImpliedBound; }

  void separate(const SeparationPoint &point, int level, Vec<Cut> &cuts) override {
    const RowSystem &rows = context_->rows(point);
    CutAssembler out(point, rows);
    const Problem &problem = *point.problem;
    const double end = workEnd(point, level);
    const std::size_t most = cuts.size() + kMostCuts;
    if (point.implications) {
      for (const Implication &implication : point.implications->all()) {
        if (cuts.size() >= most) return;
        fromImplication(point, out, implication, cuts);
      }
      point.work->charge(4.0 * static_cast<double>(point.implications->all().size()));
    }
    for (int i = 0; i < problem.numRows(); ++i) {
      if (point.work->counted() > end || cuts.size() >= most) return;
      const double upper = problem.lp().rowUpper[i], lower = problem.lp().rowLower[i];
      if (problem.rows().length(i) > kLongestRow) continue;
      if (!isInf(upper)) fromRow(point, out, i, 1, upper, cuts);
      if (!isInf(lower)) fromRow(point, out, i, -1, -lower, cuts);
    }
  }

 private:
  // sign * row <= rhs.
  static void fromRow(const SeparationPoint &point, CutAssembler &out, int row, double sign,
                      double rhs, Vec<Cut> &cuts) {
    const SparseMatrix &rows = point.problem->rows();
    const Domain &global = *point.global;
    const double least = sign > 0 ? global.minActivity(row) : -global.maxActivity(row);
    if (isInf(least)) return;
    const Vec<double> &x = *point.x;
    for (NzIndex ky = rows.start[row]; ky < rows.start[row + 1]; ++ky) {
      const int y = rows.index[ky];
      if (!global.isBinary(y) || x[y] < kFractional || x[y] > 1 - kFractional) continue;
      // Fixed at the value that takes room away.
      const double a = sign * rows.value[ky];
      const double room = rhs - least - std::fabs(a);
      const bool atOne = a > 0;
      point.work->charge(4.0 * rows.length(row));
      for (NzIndex k = rows.start[row]; k < rows.start[row + 1]; ++k)
        if (k != ky)
          tryColumn(point, out, rows.index[k], sign * rows.value[k], room, y, atOne, cuts);
    }
  }

  static void fromImplication(const SeparationPoint &point, CutAssembler &out,
                              const Implication &implication, Vec<Cut> &cuts) {
    const Domain &global = *point.global;
    const int x = implication.col, y = implication.binary;
    if (!global.isBinary(y) || global.isFixed(x)) return;
    const bool above = implication.side == BoundSide::Upper;
    const double weak = above ? global.upper(x) : global.lower(x);
    if (std::fabs(weak) > kLargestBound) return;
    const bool gains = above ? implication.bound < weak : implication.bound > weak;
    if (gains)
      emit(point, out, {x, above ? 1.0 : -1.0, implication.bound, weak, y, implication.one}, cuts);
  }

  // y fixed leaves room for coef * (x - its better bound).
  static void tryColumn(const SeparationPoint &point, CutAssembler &out, int col, double coef,
                        double room, int y, bool atOne, Vec<Cut> &cuts) {
    const Domain &global = *point.global;
    const double lower = global.lower(col), upper = global.upper(col);
    if (lower == upper || std::fabs(lower) > kLargestBound || std::fabs(upper) > kLargestBound)
      return;
    const double step = std::max(0.0, room) / std::fabs(coef);
    if (step >= (upper - lower) * (1 - 1e-6)) return;
    double bound = coef > 0 ? lower + step : upper - step;
    if (point.problem->isIntegral(col))
      bound = coef > 0 ? std::floor(bound + 1e-6) : std::ceil(bound - 1e-6);
    emit(point, out, {col, coef > 0 ? 1.0 : -1.0, bound, coef > 0 ? upper : lower, y, atOne}, cuts);
  }

  // side * x <= side * bound while y has the value, side * x <= side * weak otherwise.
  struct Line {
    int x;
    double side, bound, weak;
    int y;
    bool atOne;
  };

  static void emit(const SeparationPoint &point, CutAssembler &out, const Line &line,
                   Vec<Cut> &cuts) {
    // side * x <= side * (bound + (weak - bound) * distance of y from its value).
    const Vec<double> &x = *point.x;
    const double distance = line.atOne ? 1 - x[line.y] : x[line.y];
    const double slope = line.side * (line.weak - line.bound);
    if (line.side * (x[line.x] - line.bound) - slope * distance <
        kLeastViolation * std::max(1.0, slope))
      return;
    out.addColumn(line.x, line.side);
    out.addColumn(line.y, line.atOne ? slope : -slope);
    out.addRhs(line.side * line.bound + (line.atOne ? slope : 0));
    Cut cut;
    cut.family = CutFamily::ImpliedBound;
    cut.rank = 1;
    if (out.finish(cut)) cuts.push_back(std::move(cut));
  }

  std::shared_ptr<CutContext> context_;
};

}  // namespace

std::unique_ptr<Separator> makeImpliedBoundSeparator(std::shared_ptr<CutContext> context) {
  return std::make_unique<ImpliedBoundSeparator>(std::move(context));
}

}  // namespace tarvik
