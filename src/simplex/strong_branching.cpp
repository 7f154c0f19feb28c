#include "simplex/strong_branching.h"

#include <algorithm>
#include <cmath>

#include "base/types.h"

namespace tarvik {

namespace {

class StrongBranching {
 public:
  StrongBranching(const LpModel &lp, double iterationLimit, Simplex &simplex, SolveControl &control)
      : lp_(lp),
        iterationLimit_(iterationLimit),
        simplex_(simplex),
        control_(control),
        basis_(simplex.basis()),
        weights_(simplex.edgeWeights()) {
    Vec<double> reducedCost;
    simplex.getPoint(x_, reducedCost, objective_);
  }

  const Vec<double> &x() const { return x_; }

  double boundWithin(int col, double lower, double upper) {
    lower = std::max(lower, lp_.colLower[col]);
    upper = std::min(upper, lp_.colUpper[col]);
    if (lower > upper) return kUserInf;
    // Nothing is cut off.
    if (lower == lp_.colLower[col] && upper == lp_.colUpper[col]) return objective_;
    simplex_.setColBounds(col, lower, upper);
    simplex_.setIterationCap(simplex_.iterations() + iterationLimit_);
    const double bound = boundOf(simplex_.solve(SimplexMethod::Dual, control_));
    simplex_.setColBounds(col, lp_.colLower[col], lp_.colUpper[col]);
    simplex_.setBasis(basis_);
    if (!weights_.empty()) simplex_.setEdgeWeights(weights_);
    simplex_.setIterationCap(kUserInf);
    return std::max(bound, objective_);
  }

 private:
  double boundOf(LpStatus status) {
    switch (status) {
      case LpStatus::Optimal:
        return simplex_.objective();
      case LpStatus::Infeasible:
      case LpStatus::Cutoff:
        return kUserInf;
      case LpStatus::IterationLimit:
      case LpStatus::Interrupted:
      case LpStatus::TimeLimit:
      case LpStatus::WorkLimit:
        return simplex_.dualBound(control_.work);
      default:
        return objective_;
    }
  }

  const LpModel &lp_;
  double iterationLimit_;
  Simplex &simplex_;
  SolveControl &control_;
  Basis basis_;
  Vec<double> weights_, x_;
  double objective_ = 0;
};

}  // namespace

Vec<BranchBounds> strongBranchBounds(const LpModel &lp, const Vec<int> &candidates, double integral,
                                     double iterationLimit, Simplex &simplex,
                                     SolveControl &control) {
  StrongBranching branching(lp, iterationLimit, simplex, control);
  Vec<BranchBounds> bounds;
  for (const int j : candidates) {
    const double below = std::floor(branching.x()[j] + integral);
    const double down = branching.boundWithin(j, -kInf, below);
    bounds.push_back({down, branching.boundWithin(j, below + 1, kInf)});
  }
  return bounds;
}

}  // namespace tarvik
