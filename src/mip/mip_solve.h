// A mixed-integer program from the user's model to its solutions: presolve, search, and the way
// back, on which every point is checked against the user's model before it counts. Heuristics that
// search restricted models call the same.
#pragma once

#include <functional>
#include <memory>

#include "mip/mip_search.h"
#include "mip/mip_starts.h"
#include "mip/presolve/mip_presolve.h"

namespace tarvik {

struct MipSolution {
  double objective = 0;  // minimization sense
  Vec<double> x;         // of the model that was given
};

struct MipOutcome {
  MipStatus status = MipStatus::Running;
  // Infeasible, but only below the cutoff that was given: nobody has looked beyond it.
  bool cutOff = false;
  Vec<MipSolution> solutions;  // best first, at most MipOptions::poolSolutions
  double bound = -kUserInf;
  double explored = 0, unexplored = 0, iterations = 0;
  CutCounters cuts{};
};

class MipSolve {
 public:
  // The model and the control must outlive this object.
  MipSolve(const MipModel &model, const MipOptions &options, SolveControl &control);
  ~MipSolve();

  // A point of the model to begin with; complete or not, feasible or not.
  void addStart(MipStart &&start) { starts_.push_back(std::move(start)); }
  // Names of the model's rows, for messages; without it their numbers are told.
  std::function<std::string(int)> rowName;
  MipObserver *observer = nullptr;

  MipOutcome run();
  // A row over the columns of the model as one over those of the problem that is being searched;
  // see Presolve::crushRow. While the search runs, from any of its threads.
  bool crushRow(LinearRow &row) const;
  // After a limit has stopped the search in its tree: whether it can go on with other options, and
  // doing so. The control must still be the same object, with new limits.
  bool canGoOn(const MipOptions &options) const;
  MipOutcome goOn(const MipOptions &options);

 private:
  class Space;

  void findNetwork(MipModel &reduced) const;
  MipOptions adapted(MipOptions options) const;
  MipOutcome finish(MipStatus status);
  MipStatus presolve(const MipModel &model);
  void openSearch();
  MipStatus restart();
  const MipPresolve &lastPresolve() const { return *presolves_.back(); }
  Vec<double> postsolve(const Vec<double> &x) const;
  Vec<double> imageOf(const Vec<double> &x) const;
  void logPresolved(const MipModel &model, double seconds) const;
  void resolveUnbounded(MipOutcome &outcome);
  void processStarts();

  const MipModel &model_;
  MipOptions options_;
  SolveControl &control_;
  Vec<std::unique_ptr<MipPresolve>> presolves_;  // the first of the model, others of restarts
  std::unique_ptr<Space> space_;
  std::unique_ptr<Problem> problem_;
  std::unique_ptr<MipSearch> search_;
  Vec<MipStart> starts_;
};

// Any point of the model, whatever it costs, within the limits of the options. Without one the
// status tells whether there is none (Infeasible) or what stopped the search. An integral point in
// an unbounded relaxation of rational data makes the problem unbounded (R. R. Meyer 1974).
// whileSearching is called now and then.
MipOutcome findAnyPoint(const MipModel &model, const MipOptions &options, SolveControl &control,
                        const std::function<void()> &whileSearching);

}  // namespace tarvik
