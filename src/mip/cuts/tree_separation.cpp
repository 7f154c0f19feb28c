#include "mip/cuts/tree_separation.h"

#include <cmath>

#include "mip/cuts/cut_filter.h"

namespace tarvik {

namespace {
// Depths between nodes with cuts, and rounds there.
constexpr int kDepthStep = 8;
constexpr int kMostRounds = 3;
// Share of the work of the search; what is granted from the start.
constexpr double kWorkShare = 0.1;
constexpr double kFirstWork = 2e7;
constexpr double kLeastImprovement = 1e-3;  // of a round, relative to the objective
constexpr int kSlackAge = 10;
constexpr int kMostCuts = 100;
}  // namespace

TreeSeparation::TreeSeparation(const Problem &problem, const Domain &global,
                               const ImplicationTable &implications,
                               const std::function<int(CutFamily)> &levelOf, const CutPool &pool,
                               CutId firstCutId)
    : problem_(&problem),
      implications_(&implications),
      global_(global),
      pool_(pool),
      firstCutId_(firstCutId) {
  Vec<std::unique_ptr<Separator>> all;
  makeSeparators(all);
  for (auto &separator : all) {
    const int level = levelOf(separator->family());
    if (level <= 0) continue;
    separators_.push_back(std::move(separator));
    levels_.push_back(level);
  }
}

bool TreeSeparation::begins(int depth, const WorkMeter &work) {
  if (start_ == 0) start_ = work.counted();
  rounds_ = 0;
  if (separators_.empty() || depth == 0 || depth % kDepthStep != 0) return false;
  const double share = kWorkShare * (1 + successes_) / (1 + nodes_);
  return spent_ <= kFirstWork + share * (work.counted() - start_);
}

int TreeSeparation::round(Relaxation &lp, WorkMeter &work, CutId &nextCutId) {
  const double objective = lp.objective();
  if (rounds_ == 0) {
    ++nodes_;
  } else {
    if (objective - objectiveBefore_ < kLeastImprovement * (1 + std::fabs(objective))) return 0;
    if (rounds_ == 1) ++successes_;
  }
  objectiveBefore_ = objective;
  if (rounds_++ >= kMostRounds) return 0;
  const double before = work.counted();
  const Vec<double> x(lp.x());
  SeparationPoint point{};
  point.problem = problem_;
  point.global = &global_;
  point.lp = &lp;
  point.x = &x;
  point.work = &work;
  point.implications = implications_;
  point.root = false;
  Vec<Cut> cuts;
  for (std::size_t k = 0; k < separators_.size(); ++k)
    separators_[k]->separate(point, levels_[k], cuts);
  const int fresh = static_cast<int>(cuts.size());
  pool_.separate(x, work, cuts);
  CutFilter filter;
  filter.limit = kMostCuts;
  Vec<std::shared_ptr<const Cut>> chosen;
  Vec<CutId> ids;
  for (const int k : chooseCuts(cuts, *problem_, x, filter)) {
    if (k < fresh) ++counts_[static_cast<int>(cuts[k].family)];
    chosen.push_back(std::allocate_shared<Cut>(AccountAllocator<Cut>(), std::move(cuts[k])));
    ids.push_back(nextCutId++);
  }
  spent_ += work.counted() - before;
  if (chosen.empty()) return 0;
  for (const auto &cut : lp.removeSlackCuts(kSlackAge, firstCutId_)) pool_.add(cut);
  lp.addCuts(chosen, ids);
  return static_cast<int>(chosen.size());
}

}  // namespace tarvik
