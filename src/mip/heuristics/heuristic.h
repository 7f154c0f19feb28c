// Primal heuristics: one interface. A heuristic works on its own copies of domain and relaxation,
// or on the worker's, which it must leave as it found them, and hands every point it finds to the
// sink, which checks it.
#pragma once

#include "base/random.h"
#include "mip/domain.h"
#include "mip/mip_options.h"
#include "mip/point_repair.h"
#include "mip/relaxation.h"

namespace tarvik {

enum class SolutionSource : int {
  Node,
  Start,
  Rounding,
  Shifting,
  Diving,
  FeasibilityPump,
  Rins,
  Rens,
  Crossover,
  LocalBranching,
  ZeroObjective,
  MinRel,
  NoRel,
  FeasibilityJump,
  Int2Bin,
  Partition,
  RelaxAndFix,
  OneOpt,
  Trivial,
  Mutation,
  LocalSearch
};

// Where points go. submit() rounds, checks against the problem and against the user's model,
// repairs continuous values if it has to, and keeps improving solutions; true when the point was
// accepted.
class SolutionSink {
 public:
  virtual ~SolutionSink() = default;
  virtual bool submit(const Vec<double> &x, SolutionSource source) = 0;
  virtual bool hasIncumbent() const = 0;
  virtual double incumbentObjective() const = 0;  // kUserInf without one
  // In the problem's space; empty when the incumbent came from outside and has no image there.
  virtual const Vec<double> &incumbent() const = 0;
  virtual double cutoff() const = 0;  // objectives must be below
  // A search for several solutions goes on below nodes whose point is feasible.
  virtual bool wantsSeveral() const { return false; }
  virtual bool knows(const Vec<double> &) const { return false; }
  // To be called now and then during long work, for what has to happen by the way.
  virtual void alive() {}
  bool hasPoint() const { return !incumbent().empty(); }
};

struct HeuristicContext {
  const Problem *problem;
  const MipOptions *options;
  Domain *domain;           // at the current node, propagated
  Relaxation *lp;           // solved at the current node
  const Vec<double> *x;     // its optimum; null before the root relaxation is solved
  SolutionSink *sink;       // keeps what is found
  PointRepair *completion;  // continuous values for chosen integral ones
  SolveControl *control;    // limits, work, log
  class PseudoCosts *pseudoCosts;
  Random *random;
  const Vec<Vec<double>> *solutions;  // recent incumbents, the latest last; may be null
  bool root;
  double nodes;      // explored so far
  double bound;      // on the objective, -kUserInf: none known yet
  double workLimit;  // on control->work.counted(): give up soon after
};

// What a heuristic reports besides the points it handed over.
struct HeurResult {
  bool infeasible = false;      // the model was proven infeasible by the way
  double objective = kUserInf;  // of the best point that it produced
};

class Heuristic {
 public:
  virtual ~Heuristic() = default;
  virtual const char *name() const = 0;
  // False when it could not do anything in this state of the search.
  virtual bool isReady(const HeuristicContext &) const { return true; }
  // True when the model was proven infeasible by the way.
  virtual bool run(HeuristicContext &context) = 0;
};

}  // namespace tarvik
