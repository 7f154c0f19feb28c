// One presolve run: the order in which reductions are tried, and the way back. Cheap reductions
// work off the queues of changed rows and columns until these are empty; expensive ones look at
// the whole model in rounds that go on while they pay.
#pragma once

#include "presolve/reductions.h"

namespace tarvik {

class PresolveRun {
 public:
  PresolveStatus run(const LpModel &lp, const PresolveOptions &options, SolveControl &control);
  bool postsolve(const LpSolution &reducedSolution, LpSolution &full) const;
  void postsolveFarkas(const Vec<double> &reducedFarkas, Vec<double> &full) const;
  Vec<double> farkas() const;
  bool crushBasis(const Basis &full, Basis &reducedBasis) const;
  bool crushRow(LinearRow &row) const;
  int numFullCols() const { return lp_->numCols; }

  LpModel reduced;
  Vec<int> rows, cols;  // of the full model, by those of the reduced one
  presolve::Workspace ws;

 private:
  void resolveOptions();
  void checkBounds(const LpModel &lp);
  void reduceCheaply();
  void reduceRow(int row);
  void reduceCol(int col);
  void reduceInRounds();
  bool runRound(int round);
  // Progress lines, callbacks and limits; true when the run must stop.
  bool interrupted();
  PresolveStatus finish();
  void undoAll(presolve::PostsolveState &state) const;
  void completeSolution(const presolve::PostsolveState &state, LpSolution &full) const;

  const LpModel *lp_ = nullptr;
  double startSeconds_ = 0;
  double printedSecond_ = 0;
  bool deriveBounds_ = false;  // until a round has nothing from them
};

}  // namespace tarvik
