// A search inside the search: a copy of the problem's model that a heuristic restricts or gives
// another objective, solved silently within the heuristic's work limit and a node limit.
#pragma once

#include "mip/heuristics/heuristic.h"
#include "mip/mip_solve.h"

namespace tarvik {

class SubMip {
 public:
  // The problem with the bounds that hold for all solutions below the sink's cutoff, which is also
  // the cutoff of the sub-MIP.
  SubMip(HeuristicContext &context, SolutionSource source);

  MipModel &model() { return model_; }
  MipOptions &options() { return options_; }
  void fix(int col, double value);
  // Back to bounds that no cutoff was used for: what is infeasible then is so for good.
  void useOriginalBounds();
  void limitWork(bool limited) { limitsWork_ = limited; }
  // Called when a point improves the sub-model; by default its first columns, as many as the
  // problem has, go to the sink.
  std::function<void(const MipSolution &)> onSolution;

  // Called after every node; by default the sink is told that work goes on.
  std::function<void(const MipProgress &)> onNode;

  const MipOutcome &run();
  const MipOutcome &outcome() const { return outcome_; }
  // Points that the sink accepted.
  int accepted() const { return accepted_; }

 private:
  class Watch;

  HeuristicContext &context_;
  MipModel model_;
  MipOptions options_;
  MipOutcome outcome_;
  int accepted_ = 0;
  bool limitsWork_ = true;
};

// Appends a continuous column, from zero up, with an entry in one row.
void addColumn(MipModel &model, int row, double coefficient, double cost);

}  // namespace tarvik
