// The linear relaxation of a node: a simplex engine that holds the problem's rows, then the active
// cuts. Bounds follow a Domain; rows are appended and deleted in place; the basis stays warm.
#pragma once

#include <memory>

#include "mip/cuts/cut.h"
#include "simplex/simplex.h"

namespace tarvik {

// Tells cuts apart within one search; an explorer's later cuts have larger ones.
using CutId = std::int64_t;

// A basis shared by the nodes that begin with it.
struct NodeBasis {
  Basis basis;        // rows: the problem's rows, then the cuts active at that time
  Vec<CutId> cutIds;  // of those cuts
};

class Relaxation {
 public:
  Relaxation(const Problem &problem, const SimplexOptions &options);

  const Problem &problem() const { return *problem_; }
  Simplex &simplex() { return simplex_; }

  // Bounds of the columns that changed in the domain since the last call.
  void follow(Domain &domain);
  void setCutoff(double cutoff);

  // Dual simplex from the current basis, at most iterationLimit iterations.
  LpStatus solve(SolveControl &control, double iterationLimit = 1e100);
  // From an optimum: primal simplex with other costs over the optimal solutions alone, then back to
  // the true costs. Another optimum, if there is one that is better for those costs; False: it is
  // not solved any more.
  bool moveOnOptimalFace(const Vec<double> &cost, double iterationLimit, SolveControl &control);
  LpStatus status() const { return status_; }
  double objective() const { return objective_; }
  double iterations() const { return totalIterations_; }  // of all solves
  // Of the last optimal solve.
  const Vec<double> &x() const { return x_; }
  const Vec<double> &reducedCost() const { return reducedCost_; }  // zero for fixed columns
  // All of the last solution, while rows, bounds and the basis are still those of the solve.
  const LpSolution &solution() const;

  // Rows beyond the problem's.
  int numCuts() const { return static_cast<int>(cuts_.size()); }
  int numRows() const { return problem_->numRows() + numCuts(); }
  const Cut &cut(int k) const { return *cuts_[k].cut; }
  CutId cutId(int k) const { return cuts_[k].id; }
  void addCuts(const Vec<std::shared_ptr<const Cut>> &cuts, const Vec<CutId> &ids);
  // The cuts of another relaxation of the problem, under the same ids.
  void copyCuts(const Relaxation &other);
  // After an optimal solve: counts for how long cuts have been slack. Probes and dives do not
  // count.
  void ageCuts();
  // Deletes cuts, of ids from the given one on, that have been slack for so long: they are
  // returned.
  Vec<std::shared_ptr<const Cut>> removeSlackCuts(int age, CutId firstId = 0);
  // Entries of row i (of the problem, or of a cut), its bounds.
  void row(int i, const int *&index, const double *&value, int &count) const;
  double rowLower(int i) const;
  double rowUpper(int i) const;
  int rowRank(int i) const;

  std::shared_ptr<const NodeBasis> basis() const;
  // Statuses for the rows that are there now; cuts that the basis does not know are basic.
  void setBasis(const NodeBasis &basis);

 private:
  Basis fixOptimalFace();

  struct Active {
    std::shared_ptr<const Cut> cut;
    CutId id;
    int age = 0;  // for so long its logical has been basic
  };

  const Problem *problem_;
  Simplex simplex_;
  Vec<double> lower_, upper_;  // as the engine has them
  Vec<Active> cuts_;
  Vec<double> x_, reducedCost_;
  mutable LpSolution solution_;
  mutable bool solutionStale_ = true;
  LpStatus status_ = LpStatus::NotSolved;
  double objective_ = 0, totalIterations_ = 0;
};

}  // namespace tarvik
