// A search inside the search: a copy of the problem's model that a heuristic restricts or gives
// another objective, solved silently within the heuristic's work limit and a node limit.
#pragma once

#include "mip/heuristics/heuristic.h"
#include "mip/mip_solve.h"

namespace tarvik {

class SubMip {
 public:
  // The problem with its global bounds, to be solved below the sink's cutoff.
  SubMip(HeuristicContext &context, SolutionSource source);

  MipModel &model() { return model_; }
  MipOptions &options() { return options_; }
  void fix(int col, double value);
  // Called when a point improves the sub-model; by default its first columns, as many as the
  // problem has, go to the sink.
  std::function<void(const MipSolution &)> onSolution;

  const MipOutcome &run();
  const MipOutcome &outcome() const { return outcome_; }
  // Points that the sink accepted.
  int accepted() const { return accepted_; }

 private:
  HeuristicContext &context_;
  MipModel model_;
  MipOptions options_;
  MipOutcome outcome_;
  int accepted_ = 0;
};

}  // namespace tarvik
