// Which heuristics a search uses, when, and how much work each may take. All together get their
// share of the search's work; within it, each gets a part in proportion to its recent success, so
// that one that keeps failing is called ever less often, but never forgotten.
#pragma once

#include <functional>
#include <memory>

#include "mip/heuristics/heuristic.h"

namespace tarvik {

class HeuristicSchedule {
 public:
  // `goesOn` is asked between two heuristics.
  HeuristicSchedule(const MipOptions &options, std::function<bool()> goesOn);

  // Each returns true when the model was proven infeasible by the way. The work of the search so
  // far is what shares refer to; the context's work limit is set here.
  // The relaxation was not solved yet.
  bool beforeRoot(HeuristicContext &context, double searchWork);
  // The root relaxation is solved, with its cuts.
  bool atRoot(HeuristicContext &context, double searchWork);
  // A node was solved and branched on.
  bool atNode(HeuristicContext &context, double searchWork);

  double work() const { return work_; }  // spent by all

 private:
  struct Entry {
    std::unique_ptr<Heuristic> heuristic;
    double success = 0;  // fading count of improvements
    double work = 0;
  };

  bool run(Entry &entry, HeuristicContext &context, double allowed);
  bool runAll(Vec<Entry> &entries, HeuristicContext &context, double allowed);
  bool polish(HeuristicContext &context, double allowed);
  bool findFirst(HeuristicContext &context, double allowed);
  bool call(HeuristicContext &context, double allowed,
            const std::function<HeurResult(HeuristicContext &)> &heuristic);
  bool wantsAnySolution() const;
  void noteIncumbent(const HeuristicContext &context);
  template <class Kind, class... Args>
  static void add(Vec<Entry> &entries, Args... args);

  const MipOptions &options_;
  std::function<bool()> goesOn_;
  Vec<Entry> beforeRoot_, root_, node_;
  Entry everyNode_, improvement_;
  Vec<Vec<double>> solutions_;  // incumbents as they were seen, the latest last
  double seen_ = kUserInf;      // the objective of the latest
  double work_ = 0;
  double lastNodes_ = 0;
};

}  // namespace tarvik
