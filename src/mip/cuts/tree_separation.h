// Cuts in the tree: at some of the nodes the relaxation gets a few rounds of cuts, made with bounds
// that hold everywhere, so that they stay valid for all nodes. Every worker has its own; effort is
// a share of the work so far, which shrinks while the cuts move no bounds. Cuts of the root stay;
// those that were added here leave when they have been slack for a while, and wait in the pool.
#pragma once

#include <functional>

#include "mip/cuts/cut_pool.h"
#include "mip/cuts/separators.h"
#include "mip/implications.h"
#include "mip/relaxation.h"

namespace tarvik {

class TreeSeparation {
 public:
  // `global` is at level 0; copies of it and of the pool are kept. Families of level 0 are left
  // out. Cuts of smaller ids than the given one are the root's.
  TreeSeparation(const Problem &problem, const Domain &global, const ImplicationTable &implications,
                 const std::function<int(CutFamily)> &levelOf, const CutPool &pool,
                 CutId firstCutId);

  // Begins a node; false: no cuts there.
  bool begins(int depth, const WorkMeter &work);
  // One round at the optimum of the relaxation. The number of cuts that were added to it; then the
  // relaxation is to be solved again.
  int round(Relaxation &lp, WorkMeter &work, CutId &nextCutId);

  // Cuts added so far.
  int count(CutFamily family) const { return counts_[static_cast<int>(family)]; }

 private:
  const Problem *problem_;
  const ImplicationTable *implications_;
  Domain global_;
  CutPool pool_;
  CutId firstCutId_;
  Vec<std::unique_ptr<Separator>> separators_;
  Vec<int> levels_;
  int counts_[kCutFamilies] = {};
  int rounds_ = 0;              // at this node
  double objectiveBefore_ = 0;  // of the last round
  double spent_ = 0, start_ = 0;
  double successes_ = 0, nodes_ = 0;
};

}  // namespace tarvik
