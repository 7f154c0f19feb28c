#include "opt/mip_callbacks.h"

#include <functional>

#include "mip/mip_options.h"

namespace tarvik {

namespace {

int statusOf(const ObservedNode &node) {
  switch (node.status) {
    case ObservedNode::Optimal:
      return TVK_OPTIMAL;
    case ObservedNode::Infeasible:
      return TVK_INFEASIBLE;
    case ObservedNode::Cutoff:
      return TVK_CUTOFF;
    case ObservedNode::Unbounded:
      return TVK_UNBOUNDED;
    case ObservedNode::Unsolved:
      break;
  }
  return TVK_NUMERIC;
}

}  // namespace

void MipCallbacks::showImproveStart() {
  if (improving_) return;
  improving_ = true;
  params_.set(Dbl::Heuristics, kImproveHeuristics);
  params_.set(Int::RINS, kImproveRins);
  params_.set(Int::MIPFocus, kImproveFocus);
  params_.set(Dbl::ImproveStartTime, kUserInf);
  params_.set(Dbl::ImproveStartGap, 0);
  params_.set(Dbl::ImproveStartNodes, kUserInf);
}

void MipCallbacks::invoke(int where, const MipProgress &progress, MipCallbackValues &values) {
  if (progress.phase == MipPhase::Improving) showImproveStart();
  values.bestObjective = progress.incumbent;
  values.bestBound = progress.bound;
  values.explored = progress.explored;
  values.unexplored = progress.unexplored;
  values.iterations = progress.iterations;
  values.nodeBound = progress.nodeBound;
  values.solutions = progress.solutions;
  values.cuts = progress.cuts;
  values.phase = static_cast<int>(progress.phase);
  values.depth = progress.depth;
  values.infeasibilities = progress.infeasibilities;
  values.workers = progress.workers;
  values.solutionsTold = solutionsTold_;
  context_.mip = &values;
  invokeCallback(context_, where);
  context_.mip = nullptr;
}

void MipCallbacks::onPolling() { invokeCallback(context_, TVK_CB_POLLING); }

void MipCallbacks::onProgress(const MipProgress &progress) {
  MipCallbackValues values;
  invoke(TVK_CB_MIP, progress, values);
}

bool MipCallbacks::onSolution(const MipProgress &progress, const Vec<double> &x, double objective) {
  MipCallbackValues values;
  values.point = [&x]() -> const Vec<double> & { return x; };
  values.objective = objective;
  invoke(TVK_CB_MIPSOL, progress, values);
  ++solutionsTold_;
  return true;
}

void MipCallbacks::onNode(const MipProgress &progress, const ObservedNode &node) {
  MipCallbackValues values;
  Vec<double> point;
  // Most callbacks do not ask for it.
  values.point = [&]() -> const Vec<double> & {
    if (point.empty() && node.x) point = node.userPoint();
    return point;
  };
  values.nodeStatus = statusOf(node);
  invoke(TVK_CB_MIPNODE, progress, values);
}

}  // namespace tarvik
