// Dives: from the node's relaxation, one fractional column after the other is bounded to one side,
// with propagation after each and the relaxation solved again, until the point is integral or
// nothing is left. A side that fails is tried the other way round once. How the column and its
// side are chosen makes the kinds of dives.
//
// Literature: Achterberg (2007), section 9.2; Berthold (2006); Danna, Rothberg and Le Pape (2005)
// for the guided kind.
#pragma once

#include "mip/heuristics/heuristic.h"

namespace tarvik {

class LpScope;

enum class DiveKind { Fractional, Coefficient, PseudoCost, VectorLength, LineSearch, Guided };

class Diving : public Heuristic {
 public:
  explicit Diving(DiveKind kind) : kind_(kind) {}
  const char *name() const override;
  bool isReady(const HeuristicContext &context) const override;
  bool run(HeuristicContext &context) override;

 private:
  struct Choice {
    int col = -1;
    bool up = false;
    double score = 0;
  };
  void findFractional(const HeuristicContext &context);
  Choice rate(const HeuristicContext &context, int col, double x) const;
  bool bound(HeuristicContext &context, const Choice &choice, double x) const;
  bool boundSome(HeuristicContext &context);
  bool takeBackLast(HeuristicContext &context, LpScope &scope);
  bool finish(HeuristicContext &context);

  DiveKind kind_;
  Vec<int> fractional_;
  Choice last_;
  double lastX_ = 0;
  int lastLevel_ = -1;
};

}  // namespace tarvik
