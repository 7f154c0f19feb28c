#include "mip/heuristics/schedule.h"

#include <algorithm>

#include "mip/heuristics/diving.h"
#include "mip/heuristics/feasibility_jump.h"
#include "mip/heuristics/feasibility_pump.h"
#include "mip/heuristics/int2bin.h"
#include "mip/heuristics/local_search.h"
#include "mip/heuristics/min_rel.h"
#include "mip/heuristics/neighbourhood.h"
#include "mip/heuristics/no_rel.h"
#include "mip/heuristics/one_opt.h"
#include "mip/heuristics/partition.h"
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
constexpr double kZeroObjFactor = 10;  // for the nodes of searches that are repeated
// Success changes a purse's ratio by so much for each count; it stays between these.
constexpr double kRatioStep = 0.01, kLeastRatio = 0.1, kLargestRatio = 0.99;
constexpr int kSuccessCount = 10, kFailureCount = -1;
// After so many nodes without a better solution sub-MIPs get less.
constexpr double kStaleNodes = 12357, kStaleRatio = 0.1;
constexpr double kImproveRatio[] = {0.8, 0.1};  // in the improve-start phase
// What one call in the tree may take beyond what its purse holds, as a share of the purse.
constexpr double kAdvance = 0.2;

// A function as a heuristic of the tree.
class CalledHeuristic : public Heuristic {
 public:
  using Ready = bool (*)(const HeuristicContext &);
  using Run = HeurResult (*)(HeuristicContext &);
  CalledHeuristic(const char *name, Ready ready, Run call)
      : name_(name), ready_(ready), run_(call) {}
  const char *name() const override { return name_; }
  bool isReady(const HeuristicContext &context) const override { return ready_(context); }
  bool run(HeuristicContext &context) override { return run_(context).infeasible; }

 private:
  const char *name_;
  Ready ready_;
  Run run_;
};

bool isGenerous(const MipOptions &options) {
  return options.heuristics >= kGenerousShare || options.solutionLimit == 1 || options.focus == 1;
}
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
  add<LocalSearch>(root_);
  add<LocalSearch>(node_);
  add<Diving>(node_, DiveKind::LineSearch);
  add<Shifting>(node_);
  add<PropagatedRounding>(node_);
  if (!options.subMip && options.subMipNodes > 0) addSubMips(options);
}

void HeuristicSchedule::addSubMips(const MipOptions &options) {
  const std::size_t others = node_.size();
  add<Neighbourhood>(root_, NeighbourhoodKind::Rens);
  if (options.rins != 0) {
    add<Neighbourhood>(root_, NeighbourhoodKind::Rins);
    add<Neighbourhood>(node_, NeighbourhoodKind::Rins);
  }
  add<Neighbourhood>(node_, NeighbourhoodKind::Rens);
  add<Neighbourhood>(node_, NeighbourhoodKind::Crossover);
  add<Neighbourhood>(node_, NeighbourhoodKind::Mutation);
  if (isGenerous(options)) {
    if (options.zeroObjNodes != 0)
      add<CalledHeuristic>(
          node_, "Zero objective",
          [](const HeuristicContext &c) { return !c.sink->hasIncumbent(); },
          [](HeuristicContext &c) {
            ZeroObjCall zero;
            zero.nodeLimit = kZeroObjFactor * c.options->subMipNodes;
            return heurZeroObj(c, zero);
          });
    add<CalledHeuristic>(
        node_, "int2bin", [](const HeuristicContext &c) { return hasGeneralIntegers(*c.problem); },
        [](HeuristicContext &c) {
          const int nodes = c.options->int2binNodes;
          return heurInt2Bin(c, nodes >= 0 ? nodes : c.options->subMipNodes);
        });
  }
  for (std::size_t k = others; k < node_.size(); ++k) node_[k].purse = kSubMips;
  rins_.heuristic = std::make_unique<Neighbourhood>(NeighbourhoodKind::Rins);
  rins_.purse = kSubMips;
}

double HeuristicSchedule::budget(const HeuristicContext &context, Purse purse,
                                 double searchWork) const {
  double ratio = ratio_[purse];
  const bool stale = context.nodes > incumbentNodes_ + kStaleNodes || options_.rins > 0;
  if (options_.focus == kImproveFocus)
    ratio = kImproveRatio[purse];
  else if (purse == kSubMips && stale && context.sink->hasIncumbent())
    ratio = kStaleRatio;
  if (!context.sink->hasIncumbent()) ratio *= kFactorWithoutIncumbent;
  return ratio * options_.heuristics * searchWork;
}

void HeuristicSchedule::noteOutcome(Purse purse, int count) {
  double &ratio = ratio_[purse];
  ratio += kRatioStep * count;
  ratio = count < 0 ? std::max(ratio, kLeastRatio) : std::min(ratio, kLargestRatio);
}

void HeuristicSchedule::noteIncumbent(const HeuristicContext &context) {
  if (!context.sink->hasPoint() || context.sink->incumbentObjective() >= seen_) return;
  seen_ = context.sink->incumbentObjective();
  incumbentNodes_ = context.nodes;
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
  return context.sink->hasPoint() && run(improvement_, context, allowed);
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
  const bool mayRun = options_.zeroObjNodes != 0 && options_.heuristics > 0 && isGenerous(options_);
  if ((asked || mayRun) && isNeeded()) {
    ZeroObjCall zero;
    zero.nodeLimit = asked ? options_.zeroObjNodes : options_.subMipNodes;
    zero.limitWork = !asked;
    const double factor =
        options_.solutionLimit == 1 || options_.focus == 1 ? kAnySolutionFactor : 1;
    if (call(context, factor * allowed, [&](HeuristicContext &c) { return heurZeroObj(c, zero); }))
      return true;
  }
  const int nodes = options_.minRelNodes > 0 ? options_.minRelNodes : options_.subMipNodes;
  return options_.minRelNodes != 0 && (options_.minRelNodes > 0 || allowed > 0) && isNeeded() &&
         call(context, allowed,
              [&](HeuristicContext &c) { return heurMinRel(c, nodes, options_.minRelNodes < 0); });
}

// Around the incumbent, if it is another one than the last time. Partitions are the caller's own
// advice: they are followed even where the share for heuristics is zero.
bool HeuristicSchedule::improvePartitions(HeuristicContext &context, int place, double allowed) {
  if ((options_.partitionPlace & place) == 0 || options_.subMip) return false;
  if (context.problem->model().partition.empty() || !context.sink->hasPoint()) return false;
  if (context.sink->incumbentObjective() >= partitionsAt_) return false;
  const bool infeasible = call(context, std::max(allowed, kLeastRootWork), heurPartition);
  partitionsAt_ = context.sink->incumbentObjective();
  return infeasible;
}

// 1: while there is no solution; 2: at the root in any case; 3: before the cuts as well.
bool HeuristicSchedule::relaxAndFix(HeuristicContext &context, double allowed) {
  if (options_.subMip || options_.relaxAndFix == 0) return false;
  if (context.problem->model().partition.empty()) return false;
  if (options_.relaxAndFix == 1 && context.sink->hasIncumbent()) return false;
  return call(context, std::max(allowed, kLeastRootWork), heurRelaxAndFix);
}

bool HeuristicSchedule::beforeCuts(HeuristicContext &context, double searchWork) {
  const double allowed = kRootFactor * options_.heuristics * searchWork;
  if (improvePartitions(context, kPartitionBeforeCuts, allowed)) return true;
  return options_.relaxAndFix == 3 && relaxAndFix(context, allowed);
}

void HeuristicSchedule::atEnd(HeuristicContext &context) {
  improvePartitions(context, kPartitionAtEnd, kLeastRootWork);
}

bool HeuristicSchedule::beforeRoot(HeuristicContext &context, double searchWork) {
  if (improvePartitions(context, kPartitionBeforeRoot, kLeastRootWork)) return true;
  if (!options_.subMip && options_.noRelTime + options_.noRelWork > 0 &&
      call(context, kUserInf, [&](HeuristicContext &c) {
        return heurNoRel(c, options_.noRelTime, options_.noRelWork);
      }))
    return true;
  if (options_.heuristics <= 0) return false;
  const double size = static_cast<double>(context.problem->rows().numNz()) +
                      context.problem->numCols() + context.problem->numRows();
  return runAll(beforeRoot_, context,
                std::max({kWorkPerEntry * size, kLeastWorkBeforeRoot, searchWork}));
}

bool HeuristicSchedule::atRoot(HeuristicContext &context, double searchWork) {
  double allowed = options_.rootHeurMult * kRootFactor * options_.heuristics * searchWork;
  if (!context.sink->hasIncumbent()) allowed *= kFactorWithoutIncumbent;
  if (improvePartitions(context, kPartitionAfterCuts, allowed) || relaxAndFix(context, allowed))
    return true;
  if (options_.heuristics > 0) {
    allowed = std::max(allowed, options_.rootHeurMult * kLeastRootWork);
    if (runAll(root_, context, allowed)) return true;
  }
  return !options_.subMip && findFirst(context, allowed);
}

bool HeuristicSchedule::atNode(HeuristicContext &context, double searchWork) {
  if (context.nodes >= lastNodes_ + kNodesBetween &&
      improvePartitions(context, kPartitionAtNodes, options_.heuristics * searchWork))
    return true;
  if (options_.heuristics <= 0) return false;
  if (run(everyNode_, context, kLeastNodeWork) || polish(context, kLeastNodeWork)) return true;
  if (runFrequentRins(context, searchWork)) return true;
  if (context.nodes < lastNodes_ + kNodesBetween) return false;
  lastNodes_ = context.nodes;
  double purse[kPurses];
  for (const Purse p : {kSubMips, kOthers}) purse[p] = budget(context, p, searchWork);
  // The one that has had the least work for its success.
  const auto burden = [](const Entry &entry) { return entry.work / (1 + 4 * entry.success); };
  Entry *next = nullptr;
  for (Entry &entry : node_)
    if (spent_[entry.purse] < purse[entry.purse] && entry.heuristic->isReady(context) &&
        (!next || burden(entry) < burden(*next)))
      next = &entry;
  if (!next) return false;
  const double left = purse[next->purse] - spent_[next->purse];
  return spend(*next, context, std::max(kLeastNodeWork, left + kAdvance * purse[next->purse]));
}

bool HeuristicSchedule::spend(Entry &entry, HeuristicContext &context, double allowed) {
  const double before = context.control->work.counted();
  const double incumbent = context.sink->incumbentObjective();
  const bool infeasible = run(entry, context, allowed);
  spent_[entry.purse] += context.control->work.counted() - before;
  noteOutcome(entry.purse,
              context.sink->incumbentObjective() < incumbent ? kSuccessCount : kFailureCount);
  return infeasible;
}

// A positive RINS is the number of nodes between two calls.
bool HeuristicSchedule::runFrequentRins(HeuristicContext &context, double searchWork) {
  if (options_.rins <= 0 || !rins_.heuristic || context.nodes < lastRins_ + options_.rins)
    return false;
  if (!rins_.heuristic->isReady(context)) return false;
  lastRins_ = context.nodes;
  const double purse = budget(context, kSubMips, searchWork);
  if (spent_[kSubMips] >= purse) return false;
  return spend(rins_, context, std::max(kLeastRootWork, purse - spent_[kSubMips]));
}

}  // namespace tarvik
