#include "mip/mip_presolve.h"

#include <algorithm>

#include "mip/coefficient_tightening.h"

namespace tarvik {

namespace {
constexpr int kMaxRounds = 4;
}

PresolveStatus MipPresolve::reduceLinear(bool &changed) {
  auto stage = std::make_unique<Stage>();
  stage->input = std::move(reduced_.lp);
  for (const VarKind kind : reduced_.kind) stage->integer.push_back(isIntegral(kind));
  PresolveOptions options = options_.presolve;
  options.integer = &stage->integer;
  options.logging = false;
  const PresolveStatus status = stage->presolve.run(stage->input, options, control_);
  changed = status == PresolveStatus::Reduced || status == PresolveStatus::Solved;
  if (status != PresolveStatus::Unchanged && !changed) return status;
  if (!changed) {
    reduced_.lp = std::move(stage->input);
    return status;
  }
  Vec<VarKind> kind;
  Vec<int> priority, partition;
  for (const int j : stage->presolve.originalCol()) {
    kind.push_back(reduced_.kind[j]);
    if (!reduced_.branchPriority.empty()) priority.push_back(reduced_.branchPriority[j]);
    if (!reduced_.partition.empty()) partition.push_back(reduced_.partition[j]);
  }
  reduced_.lp = stage->presolve.reduced();
  reduced_.kind.swap(kind);
  reduced_.branchPriority.swap(priority);
  reduced_.partition.swap(partition);
  stages_.push_back(std::move(stage));
  return status;
}

PresolveStatus MipPresolve::run() {
  const bool plain =
      reduced_.sos.empty() && std::none_of(reduced_.kind.begin(), reduced_.kind.end(), isSemi);
  // The linear reductions know nothing of ranges with a hole and of sets.
  if (!plain || options_.presolve.level == 0) return PresolveStatus::Unchanged;
  for (int round = 0; round < kMaxRounds; ++round) {
    bool changed = false;
    const PresolveStatus status = reduceLinear(changed);
    if (status != PresolveStatus::Unchanged && !changed) return status;
    if (status == PresolveStatus::Solved || (round > 0 && !changed)) break;
    const TighteningResult tightened = tightenMip(reduced_, options_.tolerances, control_.work);
    if (tightened.infeasible) return PresolveStatus::Infeasible;
    if (tightened.bounds + tightened.coefficients == 0) break;
  }
  return stages_.empty() ? PresolveStatus::Unchanged : PresolveStatus::Reduced;
}

Vec<double> MipPresolve::postsolve(const Vec<double> &x) const {
  Vec<double> point(x);
  for (auto stage = stages_.rbegin(); stage != stages_.rend(); ++stage) {
    LpSolution reduced, full;
    reduced.status = LpStatus::Optimal;
    reduced.colValue.swap(point);
    (*stage)->presolve.postsolve(reduced, full);
    point.swap(full.colValue);
  }
  return point;
}

Vec<double> MipPresolve::imageOf(const Vec<double> &x) const {
  Vec<double> point(x);
  for (const auto &stage : stages_) {
    Vec<double> kept;
    for (const int j : stage->presolve.originalCol()) kept.push_back(point[j]);
    point.swap(kept);
  }
  return point;
}

}  // namespace tarvik
