#include "mip/heuristics/schedule.h"

#include <algorithm>

#include "mip/heuristics/diving.h"
#include "mip/heuristics/feasibility_jump.h"
#include "mip/heuristics/feasibility_pump.h"
#include "mip/heuristics/int2bin.h"
#include "mip/heuristics/min_rel.h"
#include "mip/heuristics/neighbourhood.h"
#include "mip/heuristics/one_opt.h"
#include "mip/heuristics/rounding.h"
#include "mip/heuristics/shifting.h"
#include "mip/heuristics/trivial.h"
#include "mip/heuristics/zero_objective.h"

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
constexpr double kLeastCharge = 1e4;  // for a call that did nothing
// Passes of the feasibility pump that nobody asked for.
constexpr int kAutomaticPasses = 60;
// From this share of the work on, searches for any solution and reformulations take part.
constexpr double kGenerousShare = 0.1;
constexpr double kAnySolutionFactor = 4;
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
  entry.work += std::max(spent, kLeastCharge);
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
    if (!entry.heuristic->isReady(context)) continue;
    if (run(entry, context, left) || polish(context, allowed)) return true;
  }
  return false;
}

bool HeuristicSchedule::wantsAnySolution() const {
  return options_.solutionLimit == 1 || options_.focus == 1;
}

bool HeuristicSchedule::call(HeuristicContext &context, double allowed,
                             const std::function<HeurResult(HeuristicContext &)> &heuristic) {
  const double before = context.control->work.counted();
  context.workLimit = before + allowed;
  const bool infeasible = heuristic(context).infeasible;
  work_ += context.control->work.counted() - before;
  return infeasible || polish(context, kLeastNodeWork);
}

// When the root's other heuristics have not found anything. What the caller asked for by a
// parameter of its own has no work limit.
bool HeuristicSchedule::findFirst(HeuristicContext &context, double allowed) {
  const auto isNeeded = [&] {
    return !context.sink->hasIncumbent() && goesOn_() && context.lp->status() == LpStatus::Optimal;
  };
  const int passes = options_.pumpPasses;
  if (passes != 0 && (passes > 0 || allowed > 0) && isNeeded() &&
      call(context, passes > 0 ? kUserInf : allowed, [&](HeuristicContext &c) {
        return heurFeasPump(c, passes > 0 ? passes : kAutomaticPasses);
      }))
    return true;
  const bool asked = options_.zeroObjNodes > 0;
  const bool mayRun = options_.zeroObjNodes != 0 && options_.heuristics > 0 &&
                      (options_.heuristics >= kGenerousShare || wantsAnySolution());
  if ((asked || mayRun) && isNeeded()) {
    ZeroObjCall zero;
    zero.nodeLimit = asked ? options_.zeroObjNodes : options_.subMipNodes;
    zero.limitWork = !asked;
    const double factor = wantsAnySolution() ? kAnySolutionFactor : 1;
    if (call(context, factor * allowed, [&](HeuristicContext &c) { return heurZeroObj(c, zero); }))
      return true;
  }
  const int nodes = options_.minRelNodes > 0 ? options_.minRelNodes : options_.subMipNodes;
  return options_.minRelNodes != 0 && (options_.minRelNodes > 0 || allowed > 0) && isNeeded() &&
         call(context, allowed,
              [&](HeuristicContext &c) { return heurMinRel(c, nodes, options_.minRelNodes < 0); });
}

bool HeuristicSchedule::beforeRoot(HeuristicContext &context, double searchWork) {
  if (options_.heuristics <= 0) return false;
  const double size = static_cast<double>(context.problem->rows().numNz()) +
                      context.problem->numCols() + context.problem->numRows();
  return runAll(beforeRoot_, context,
                std::max({kWorkPerEntry * size, kLeastWorkBeforeRoot, searchWork}));
}

bool HeuristicSchedule::atRoot(HeuristicContext &context, double searchWork) {
  double allowed = kRootFactor * options_.heuristics * searchWork;
  if (!context.sink->hasIncumbent()) allowed *= kFactorWithoutIncumbent;
  if (options_.heuristics > 0) {
    allowed = std::max(allowed, kLeastRootWork);
    if (runAll(root_, context, allowed)) return true;
  }
  return !options_.subMip && findFirst(context, allowed);
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
  Entry *next = nullptr;
  for (Entry &entry : node_)
    if (entry.heuristic->isReady(context) && (!next || burden(entry) < burden(*next)))
      next = &entry;
  return next &&
         run(*next, context, std::max(kLeastNodeWork, available + 0.2 * share * searchWork));
}

}  // namespace tarvik
