// Searches of a neighbourhood: most integral columns are fixed where a few points agree, and the
// rest is solved as a sub-MIP. RENS fixes where the relaxation's optimum is integral; RINS where
// it agrees with the incumbent; crossover where several solutions agree; mutation at random places
// of the incumbent. How much is fixed follows the outcome of earlier calls: more when the rest was
// too hard, less when it was solved without a gain.
//
// Literature: Danna, Rothberg and Le Pape (2005); Rothberg (2007); Berthold (2014); Hendel (2022)
// for the adaptive rate.
#pragma once

#include "mip/heuristics/heuristic.h"

namespace tarvik {

class SubMip;

enum class NeighbourhoodKind { Rens, Rins, Crossover, Mutation };

class Neighbourhood : public Heuristic {
 public:
  explicit Neighbourhood(NeighbourhoodKind kind) : kind_(kind) {}
  const char *name() const override;
  bool isReady(const HeuristicContext &context) const override;
  bool run(HeuristicContext &context) override;

 private:
  struct Fixing {
    int col;
    double value;
  };
  SolutionSource source() const;
  void findFixings(HeuristicContext &context);
  bool reachRate(HeuristicContext &context);
  void learn(const SubMip &sub);

  NeighbourhoodKind kind_;
  double rate_ = 0.6;  // of the integral columns, at least, to be fixed
  Vec<Fixing> fixings_;
};

}  // namespace tarvik
