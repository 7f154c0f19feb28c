#include "mip/branch_probe.h"

#include <cmath>

namespace tarvik {

void fractionalColumns(const Domain &domain, const Vec<double> &x, Vec<int> &cols) {
  cols.clear();
  const Problem &problem = domain.problem();
  const double tolerance = problem.tolerances().integral;
  const auto isFractional = [&](int j) {
    return !domain.isFixed(j) && std::fabs(x[j] - std::round(x[j])) > tolerance;
  };
  for (const int j : problem.integers())
    if (isFractional(j)) cols.push_back(j);
  // A semi-integral column may be zero or integral within its range.
  for (const int j : problem.semis())
    if (problem.isIntegral(j) && isFractional(j)) cols.push_back(j);
}

BranchProbe::BranchProbe(Domain &domain, Relaxation &lp, SolutionSink &sink, SolveControl &control,
                         ConflictAnalysis *conflicts, ProofCuts *proofs)
    : domain_(domain),
      lp_(lp),
      sink_(sink),
      control_(control),
      conflicts_(conflicts),
      proofs_(proofs),
      basis_(lp.basis()),
      weights_(lp.simplex().edgeWeights()) {}

void BranchProbe::judge(Result &result) {
  switch (result.status) {
    case LpStatus::Optimal: {
      result.exact = true;
      Vec<int> fractional;
      fractionalColumns(domain_, lp_.x(), fractional);
      if (fractional.empty() && result.objective < sink_.cutoff())
        sink_.submit(Vec<double>(lp_.x()), SolutionSource::Node);
      result.infeasible = result.objective >= sink_.cutoff();
      break;
    }
    case LpStatus::Infeasible:
    case LpStatus::Cutoff:
      result.infeasible = true;
      break;
    case LpStatus::IterationLimit:
      break;
    default:
      result.stopped = result.status != LpStatus::Numeric && result.status != LpStatus::Unbounded;
      result.objective = -kUserInf;
  }
}

BranchProbe::Result BranchProbe::evaluate(const BoundChange &change, double iterationLimit) {
  Result result;
  const int level = domain_.level();
  const double before = lp_.iterations();
  if (!domain_.decide({change}) || !domain_.propagate(control_.work)) {
    result.infeasible = true;
    if (conflicts_) conflicts_->learnFromDomain(control_.work);
    domain_.backtrackTo(level);
    return result;
  }
  lp_.follow(domain_);
  result.status = lp_.solve(control_, iterationLimit);
  iterations_ += lp_.iterations() - before;
  result.objective = lp_.objective();
  judge(result);
  if (result.infeasible) {
    const bool cutOff = result.status != LpStatus::Infeasible;
    if (conflicts_) conflicts_->learnFromRelaxation(lp_, cutOff, sink_.cutoff(), control_.work);
    if (proofs_) proofs_->take(lp_, cutOff, sink_.cutoff(), control_.work);
  }
  domain_.backtrackTo(level);
  lp_.follow(domain_);
  lp_.setBasis(*basis_);
  if (!weights_.empty()) lp_.simplex().setEdgeWeights(weights_);
  return result;
}

}  // namespace tarvik
