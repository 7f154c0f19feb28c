// Weighted local search before any relaxation is solved: each column has the value that it would
// jump to, the one of least weighted violation; the best of a sample of improving jumps is made.
// Where none improves, the weights of the violated rows grow. The best point met is handed to
// fix-and-propagate when no feasible one is found.
//
// Literature: Luteberget and Sartor (2023).
#pragma once

#include "mip/heuristics/heuristic.h"
#include "mip/heuristics/moving_point.h"

namespace tarvik {

class FeasibilityJump : public Heuristic {
 public:
  const char *name() const override { return "Feasibility jump"; }
  bool run(HeuristicContext &context) override;
};

// The search itself, from one starting point.
class JumpSearch {
 public:
  JumpSearch(HeuristicContext &context, Vec<double> start);
  // True when the point became feasible.
  bool run();
  const Vec<double> &point() const { return point_.x(); }
  // The point with the fewest violated rows, and their number.
  const Vec<double> &best() const { return best_; }
  int bestViolated() const { return bestViolated_; }

 private:
  double rowPenalty(int row, double activity) const;
  double scoreOf(int col, double value) const;
  double bestJump(int col);
  double leastPenaltyValue(int col);
  void refresh(int col);
  void noteScore(int col);
  void move(int col);
  void bumpWeights();
  int chooseCol();
  int sample(const Vec<int> &cols, int count);

  HeuristicContext &context_;
  const Problem &problem_;
  const Domain &domain_;
  MovingPoint point_;
  Vec<double> weight_, scale_;  // by row
  Vec<double> jump_, score_;    // by column
  Vec<char> stale_, binary_;
  Vec<int> good_, goodPosition_;  // columns with a positive score
  struct Break {
    double value, slope;
  };
  Vec<Break> breaks_;
  Vec<double> best_;
  int bestViolated_;
  double bump_ = 1;
};

}  // namespace tarvik
