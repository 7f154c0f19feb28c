#include "mip/heuristics/int2bin.h"

#include <algorithm>
#include <cmath>

#include "mip/heuristics/heuristic_log.h"
#include "mip/heuristics/sub_mip.h"

namespace tarvik {

namespace {

// Wider ranges stay as they are: their last digits mean nothing at the tolerances.
constexpr double kWidestRange = 1 << 20;

bool isReformulated(const MipModel &model, int col) {
  const double range = model.lp.colUpper[col] - model.lp.colLower[col];
  return model.kind[col] == VarKind::Integer && range > 1 && range <= kWidestRange;
}

// The model of the sub-MIP with digits in place of general integers.
class DigitModel {
 public:
  explicit DigitModel(const MipModel &source) : first_{0} {
    model_.lp.numRows = source.lp.numRows;
    model_.lp.a.clear(source.lp.numRows);
    model_.lp.rowLower = source.lp.rowLower;
    model_.lp.rowUpper = source.lp.rowUpper;
    model_.lp.offset = source.lp.offset;
    base_ = source.lp.colLower;
    for (int j = 0; j < source.lp.numCols; ++j) {
      if (isReformulated(source, j))
        addDigits(source, j);
      else
        addCopy(source, j);
      first_.push_back(model_.lp.numCols);
    }
  }

  MipModel &model() { return model_; }
  Vec<double> original(const Vec<double> &x) const {
    Vec<double> point(base_);
    for (std::size_t j = 0; j < base_.size(); ++j) {
      if (factor_[first_[j]] == 0) point[j] = x[first_[j]];
      for (int k = first_[j]; k < first_[j + 1]; ++k) point[j] += factor_[k] * std::round(x[k]);
    }
    return point;
  }

 private:
  void addColumn(const MipModel &source, int col, double factor, double lower, double upper) {
    LpModel &lp = model_.lp;
    const SparseMatrix &a = source.lp.a;
    Vec<double> value;
    const double scale = factor == 0 ? 1 : factor;
    for (NzIndex k = a.start[col]; k < a.start[col + 1]; ++k) value.push_back(scale * a.value[k]);
    lp.a.append(a.length(col), a.index.data() + a.start[col], value.data());
    ++lp.numCols;
    lp.cost.push_back(scale * source.lp.cost[col]);
    lp.colLower.push_back(lower);
    lp.colUpper.push_back(upper);
    factor_.push_back(factor);
    model_.kind.push_back(source.kind[col]);
    if (!source.holeLower.empty()) {
      model_.holeLower.push_back(source.holeLower[col]);
      model_.holeUpper.push_back(source.holeUpper[col]);
    }
    if (!source.branchPriority.empty()) model_.branchPriority.push_back(source.branchPriority[col]);
  }

  void addCopy(const MipModel &source, int col) {
    addColumn(source, col, 0, source.lp.colLower[col], source.lp.colUpper[col]);
  }

  void addDigits(const MipModel &source, int col) {
    double left = source.lp.colUpper[col] - base_[col];
    for (double digit = 1; left > 0; digit *= 2) {
      const double factor = std::min(digit, left);
      addColumn(source, col, factor, 0, 1);
      left -= factor;
    }
    // What the lower bound contributes.
    const SparseMatrix &a = source.lp.a;
    for (NzIndex k = a.start[col]; k < a.start[col + 1]; ++k) {
      const double constant = a.value[k] * base_[col];
      double &lower = model_.lp.rowLower[a.index[k]], &upper = model_.lp.rowUpper[a.index[k]];
      if (!isInf(lower)) lower -= constant;
      if (!isInf(upper)) upper -= constant;
    }
    model_.lp.offset += source.lp.cost[col] * base_[col];
  }

  MipModel model_;
  Vec<double> base_;
  Vec<double> factor_;  // by new column; 0: a copy
  Vec<int> first_;      // by old column, its first new one
};

}  // namespace

bool hasGeneralIntegers(const Problem &problem) {
  // A member of a set has to stay one column.
  if (!problem.model().sos.empty()) return false;
  for (const int j : problem.integers())
    if (isReformulated(problem.model(), j)) return true;
  return false;
}

HeurResult heurInt2Bin(HeuristicContext &context, int nodes) {
  if (!hasGeneralIntegers(*context.problem)) return {};
  HeuristicLog log(context);
  log.lines().print("Run int2bin heuristic\n");
  SubMip sub(context, SolutionSource::Int2Bin);
  DigitModel digits(sub.model());
  sub.model() = std::move(digits.model());
  sub.options().nodeLimit = nodes;
  int accepted = 0;
  sub.onSolution = [&](const MipSolution &solution) {
    accepted += context.sink->submit(digits.original(solution.x), SolutionSource::Int2Bin);
  };
  const MipOutcome &outcome = sub.run();
  HeurResult result;
  if (accepted > 0) {
    result.objective = context.sink->incumbentObjective();
    log.lines().print("Feasible solution found by int2bin heuristic at node %.0f\n",
                      outcome.explored);
  } else if (outcome.status == MipStatus::Infeasible && outcome.explored == 0) {
    log.lines().print("int2bin presolved model is infeasible\n");
  } else {
    log.lines().print("No solution found by int2bin heuristic\n");
  }
  return result;
}

}  // namespace tarvik
