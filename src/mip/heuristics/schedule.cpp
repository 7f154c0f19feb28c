#include "mip/heuristics/schedule.h"

#include <algorithm>

#include "mip/heuristics/diving.h"
#include "mip/heuristics/feasibility_jump.h"
#include "mip/heuristics/neighbourhood.h"
#include "mip/heuristics/one_opt.h"
#include "mip/heuristics/rounding.h"
#include "mip/heuristics/shifting.h"
#include "mip/heuristics/trivial.h"

namespace tarvik {

namespace {
// Work that heuristics may take before the root relaxation, in multiples of the model's size.
constexpr double kWorkPerEntry = 500;
constexpr double kLeastWorkBeforeRoot = 1e7;
// The root's heuristics may take so many times their share of the root's own work.
constexpr double kRootFactor = 20;
// Without an incumbent heuristics matter more.
constexpr double kFactorWithoutIncumbent = 3;
constexpr double kLeastRootWork = 2e7;
// Nodes between two calls in the tree.
constexpr int kNodesBetween = 5;
constexpr double kLeastNodeWork = 2e6;
constexpr double kFading = 0.8;
constexpr std::size_t kSolutionsKept = 6;
}  // namespace

template <class Kind, class... Args>
void HeuristicSchedule::add(Vec<Entry> &entries, Args... args) {
  entries.emplace_back();
  entries.back().heuristic = std::make_unique<Kind>(args...);
}

HeuristicSchedule::HeuristicSchedule(const MipOptions &options, std::function<bool()> goesOn)
    : options_(options), goesOn_(std::move(goesOn)) {
  everyNode_.heuristic = std::make_unique<SimpleRounding>();
  improvement_.heuristic = std::make_unique<OneOpt>();
  add<TrivialPoints>(beforeRoot_);
  add<FeasibilityJump>(beforeRoot_);
  add<SimpleRounding>(root_);
  add<Shifting>(root_);
  add<PropagatedRounding>(root_);
  for (const DiveKind kind : {DiveKind::Coefficient, DiveKind::Fractional, DiveKind::PseudoCost,
                              DiveKind::VectorLength, DiveKind::Guided}) {
    add<Diving>(root_, kind);
    add<Diving>(node_, kind);
  }
  add<Diving>(node_, DiveKind::LineSearch);
  add<Shifting>(node_);
  add<PropagatedRounding>(node_);
  if (options.subMip || options.subMipNodes <= 0) return;
  add<Neighbourhood>(root_, NeighbourhoodKind::Rens);
  if (options.rins != 0) {
    add<Neighbourhood>(root_, NeighbourhoodKind::Rins);
    add<Neighbourhood>(node_, NeighbourhoodKind::Rins);
  }
  add<Neighbourhood>(node_, NeighbourhoodKind::Rens);
  add<Neighbourhood>(node_, NeighbourhoodKind::Crossover);
  add<Neighbourhood>(node_, NeighbourhoodKind::Mutation);
}

void HeuristicSchedule::noteIncumbent(const HeuristicContext &context) {
  if (!context.sink->hasIncumbent() || context.sink->incumbentObjective() >= seen_) return;
  seen_ = context.sink->incumbentObjective();
  solutions_.push_back(context.sink->incumbent());
  if (solutions_.size() > kSolutionsKept) solutions_.erase(solutions_.begin());
}

bool HeuristicSchedule::run(Entry &entry, HeuristicContext &context, double allowed) {
  const double before = context.control->work.counted();
  const double incumbent = context.sink->incumbentObjective();
  context.workLimit = before + allowed;
  noteIncumbent(context);
  context.solutions = &solutions_;
  const bool infeasible = entry.heuristic->run(context);
  const double spent = context.control->work.counted() - before;
  entry.work += spent;
  work_ += spent;
  entry.success = kFading * entry.success + (context.sink->incumbentObjective() < incumbent);
  return infeasible;
}

bool HeuristicSchedule::polish(HeuristicContext &context, double allowed) {
  return context.sink->hasIncumbent() && run(improvement_, context, allowed);
}

bool HeuristicSchedule::runAll(Vec<Entry> &entries, HeuristicContext &context, double allowed) {
  const double begin = context.control->work.counted();
  for (Entry &entry : entries) {
    const double left = begin + allowed - context.control->work.counted();
    if (left <= 0 || !goesOn_()) return false;
    if (context.x != nullptr && context.lp->status() != LpStatus::Optimal) return false;
    if (run(entry, context, left) || polish(context, allowed)) return true;
  }
  return false;
}

bool HeuristicSchedule::beforeRoot(HeuristicContext &context, double searchWork) {
  if (options_.heuristics <= 0) return false;
  const double size = static_cast<double>(context.problem->rows().numNz()) +
                      context.problem->numCols() + context.problem->numRows();
  return runAll(beforeRoot_, context,
                std::max({kWorkPerEntry * size, kLeastWorkBeforeRoot, searchWork}));
}

bool HeuristicSchedule::atRoot(HeuristicContext &context, double searchWork) {
  if (options_.heuristics <= 0) return false;
  double allowed = kRootFactor * options_.heuristics * searchWork;
  if (!context.sink->hasIncumbent()) allowed *= kFactorWithoutIncumbent;
  return runAll(root_, context, std::max(allowed, kLeastRootWork));
}

bool HeuristicSchedule::atNode(HeuristicContext &context, double searchWork) {
  if (options_.heuristics <= 0) return false;
  if (run(everyNode_, context, kLeastNodeWork) || polish(context, kLeastNodeWork)) return true;
  if (context.nodes < lastNodes_ + kNodesBetween) return false;
  double share = options_.heuristics;
  if (!context.sink->hasIncumbent()) share *= kFactorWithoutIncumbent;
  const double available = share * searchWork - work_;
  if (available <= 0) return false;
  lastNodes_ = context.nodes;
  // The one that has had the least work for its success.
  const auto burden = [](const Entry &entry) { return entry.work / (1 + 4 * entry.success); };
  const auto next =
      std::min_element(node_.begin(), node_.end(),
                       [&](const Entry &a, const Entry &b) { return burden(a) < burden(b); });
  return next != node_.end() &&
         run(*next, context, std::max(kLeastNodeWork, available + 0.2 * share * searchWork));
}

}  // namespace tarvik
