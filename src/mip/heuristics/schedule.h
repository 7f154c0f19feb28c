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
  // The root relaxation is solved, without cuts.
  bool beforeCuts(HeuristicContext &context, double searchWork);
  // The root relaxation is solved, with its cuts.
  bool atRoot(HeuristicContext &context, double searchWork);
  // A node was solved and branched on.
  bool atNode(HeuristicContext &context, double searchWork);
  // A node limit ended the search.
  void atEnd(HeuristicContext &context);

  double work() const { return work_; }  // spent by all

 private:
  // The two purses of the tree: what searches sub-MIPs, and all the rest.
  enum Purse { kSubMips, kOthers, kPurses };
  struct Entry {
    std::unique_ptr<Heuristic> heuristic;
    Purse purse = kOthers;
    double success = 0;  // fading count of improvements
    double work = 0;
  };

  bool run(Entry &entry, HeuristicContext &context, double allowed);
  bool runAll(Vec<Entry> &entries, HeuristicContext &context, double allowed);
  bool polish(HeuristicContext &context, double allowed);
  bool findFirst(HeuristicContext &context, double allowed);
  bool call(HeuristicContext &context, double allowed,
            const std::function<HeurResult(HeuristicContext &)> &heuristic);
  bool improvePartitions(HeuristicContext &context, int place, double allowed);
  bool relaxAndFix(HeuristicContext &context, double allowed);
  void noteIncumbent(const HeuristicContext &context);
  template <class Kind, class... Args>
  static void add(Vec<Entry> &entries, Args... args);
  void addSubMips(const MipOptions &options);
  double budget(const HeuristicContext &context, Purse purse, double searchWork) const;
  void noteOutcome(Purse purse, int count);
  bool runFrequentRins(HeuristicContext &context, double searchWork);
  bool spend(Entry &entry, HeuristicContext &context, double allowed);

  const MipOptions &options_;
  std::function<bool()> goesOn_;
  Vec<Entry> beforeRoot_, root_, node_;
  Entry everyNode_, improvement_, rins_;
  Vec<Vec<double>> solutions_;      // incumbents as they were seen, the latest last
  double seen_ = kUserInf;          // the objective of the latest
  double partitionsAt_ = kUserInf;  // the incumbent that their heuristic saw last
  double work_ = 0;
  double lastNodes_ = 0, lastRins_ = 0;
  double incumbentNodes_ = 0;           // explored when the incumbent was found
  double ratio_[kPurses] = {0.5, 0.5};  // of the share, by recent success
  double spent_[kPurses] = {0, 0};      // in the tree
};

}  // namespace tarvik
