// What a caller may watch of a search, and where he may step in. Everything is called on the
// thread that runs the search, in an order that depends on the number of threads and on nothing
// else: what explorers on other threads have found is told when their round is collected. By
// default nothing happens; a search without an observer spends nothing on it. Objectives are in
// the minimization sense.
#pragma once

#include "base/memory.h"
#include "base/solve_control.h"
#include "base/types.h"

namespace tarvik {

class UserSpace;

// What a search is about.
enum class MipPhase { Searching, Improving, CompletingPool };

// The counters of a search, as a line of the node log shows them.
struct SearchState {
  double explored = 0, unexplored = 0;
  double incumbent = kUserInf, bound = -kUserInf;
  double iterations = 0, rootIterations = 0;
};

struct MipProgress : SearchState {
  int solutions = 0, cuts = 0, depth = 0, workers = 1;
  MipPhase phase = MipPhase::Searching;
  // Of the node that was processed last.
  double nodeBound = -kUserInf;
  int infeasibilities = 0;
};

// A node whose relaxation was looked at.
struct ObservedNode {
  enum Status { Optimal, Infeasible, Cutoff, Unbounded, Unsolved } status = Optimal;
  double bound = -kUserInf;
  // The optimum of the relaxation in the presolved problem; null where there is none.
  const Vec<double> *x = nullptr;
  UserSpace *space = nullptr;

  // The same in the user's model.
  Vec<double> userPoint() const;
};

// What presolve and simplex report goes to another, or to nobody, while it lives.
class ProgressScope {
 public:
  ProgressScope(SolveControl &control, Progress *progress)
      : control_(control), before_(control.progress) {
    control.progress = progress;
  }
  ~ProgressScope() { control_.progress = before_; }
  ProgressScope(const ProgressScope &) = delete;
  ProgressScope &operator=(const ProgressScope &) = delete;

 private:
  SolveControl &control_;
  Progress *before_;
};

class MipObserver {
 public:
  virtual ~MipObserver() = default;

  // Gets what presolve and the root relaxation tell; null: they are silent.
  virtual Progress *progress() { return nullptr; }
  // Now and then during long work.
  virtual void onPolling() {}
  // After every round of cuts, after every node and between heuristics.
  virtual void onProgress(const MipProgress &) {}
  // A solution of the user's model that is better than the ones known, before it counts. False
  // refuses it, which is heeded where mayRefuse() has said so; such a search runs on one thread.
  virtual bool onSolution(const MipProgress &, const Vec<double> &, double) { return true; }
  virtual bool mayRefuse() const { return false; }
  // Every node whose relaxation was looked at, if wanted; the root once for each of its rounds.
  virtual bool wantsNodes() const { return false; }
  virtual void onNode(const MipProgress &, const ObservedNode &) {}
};

}  // namespace tarvik
