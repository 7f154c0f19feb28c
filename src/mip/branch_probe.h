// Looks at one branch of a node without going there: the bound is changed, propagated and the
// relaxation solved with few iterations; then the node is as it was, with the basis and the edge
// weights of its optimum. Strong branching on fractional columns and on nonbasic ones share it.
#pragma once

#include "mip/conflict/conflict_analysis.h"
#include "mip/cuts/proof_cuts.h"
#include "mip/heuristics/heuristic.h"

namespace tarvik {

// Integral columns that are fractional at x.
void fractionalColumns(const Domain &domain, const Vec<double> &x, Vec<int> &cols);

class BranchProbe {
 public:
  struct Result {
    LpStatus status = LpStatus::Infeasible;
    double objective = 0;     // lower bound of the branch
    bool infeasible = false;  // or beyond the cutoff
    bool exact = false;       // solved to its optimum
    bool stopped = false;     // by a limit of the search
  };

  // The domain and the relaxation stand at the node, solved to optimality. What is learned from
  // infeasible branches goes to the other two; null: nowhere.
  BranchProbe(Domain &domain, Relaxation &lp, SolutionSink &sink, SolveControl &control,
              ConflictAnalysis *conflicts = nullptr, ProofCuts *proofs = nullptr);

  // Integral points that it comes across go to the sink.
  Result evaluate(const BoundChange &change, double iterationLimit);
  double iterations() const { return iterations_; }  // of all branches

 private:
  void judge(Result &result);

  Domain &domain_;
  Relaxation &lp_;
  SolutionSink &sink_;
  SolveControl &control_;
  ConflictAnalysis *conflicts_;
  ProofCuts *proofs_;
  std::shared_ptr<const NodeBasis> basis_;
  Vec<double> weights_;
  double iterations_ = 0;
};

}  // namespace tarvik
