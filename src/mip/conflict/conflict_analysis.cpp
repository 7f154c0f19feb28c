#include "mip/conflict/conflict_analysis.h"

#include <algorithm>
#include <cmath>

namespace tarvik {

namespace {
// Longer conflicts hardly ever propagate: so many disjuncts, or this share of the columns.
constexpr double kLongest = 20;
constexpr double kLongestShare = 0.1;
constexpr double kMostLongest = 200;
// Share of the search's work; what is granted from the start; what one conflict may take.
constexpr double kWorkShare = 0.1;
constexpr double kFirstWork = 1e6;
constexpr double kMostWork = 1e6;
}  // namespace

ConflictAnalysis::ConflictAnalysis(const Problem &problem, const Domain &domain)
    : problem_(problem),
      domain_(domain),
      store_(problem),
      explainer_(domain, store_),
      prover_(problem, domain) {}

bool ConflictAnalysis::isAffordable(const WorkMeter &work) {
  if (domain_.level() == 0) return false;
  if (start_ < 0) start_ = work.counted();
  return spent_ <= kFirstWork + kWorkShare * (work.counted() - start_);
}

void ConflictAnalysis::learnFromDomain(WorkMeter &work) {
  if (!domain_.empty() || !isAffordable(work)) return;
  const double before = work.counted();
  explainDomain(work);
  spent_ += work.counted() - before;
}

void ConflictAnalysis::learnFromRelaxation(Relaxation &lp, bool cutOff, double cutoff,
                                           WorkMeter &work) {
  if (!isAffordable(work)) return;
  const double before = work.counted();
  explainRelaxation(lp, cutOff, cutoff, work);
  spent_ += work.counted() - before;
}

void ConflictAnalysis::explainDomain(WorkMeter &work) {
  why_.clear();
  if (explainer_.explainFailure(why_, work)) analyze(work);
}

void ConflictAnalysis::explainRelaxation(Relaxation &lp, bool cutOff, double cutoff,
                                         WorkMeter &work) {
  if (!(cutOff ? prover_.cutOff(lp, cutoff, proof_, work) : prover_.infeasible(lp, proof_, work)))
    return;
  why_.clear();
  const InequalityView row{proof_.index.data(), proof_.value.data(),
                           static_cast<int>(proof_.index.size()), 1, proof_.rhs};
  if (explainer_.explainViolation(row, proof_.margin, why_, work)) analyze(work);
}

void ConflictAnalysis::mark(int position) {
  if (isMarked_[position]) return;
  isMarked_[position] = 1;
  heap_.push_back(position);
  std::push_heap(heap_.begin(), heap_.end());
}

bool ConflictAnalysis::canStay(int position) const {
  return problem_.kind(domain_.trail()[position].col) == VarKind::Integer;
}

// Takes bounds from the latest on, until those that are kept are one of the last level and earlier
// ones. False: a bound that cannot be kept has no explanation, or it takes too long.
bool ConflictAnalysis::resolve(WorkMeter &work) {
  kept_.clear();
  const int top = heap_.front();
  int level = domain_.level();
  while (level > 1 && domain_.levelStart(level) > top) --level;
  const int levelStart = domain_.levelStart(level);
  const double workEnd = work.counted() + kMostWork;
  bool reached = false;
  while (!heap_.empty()) {
    if (work.counted() > workEnd) return false;
    std::pop_heap(heap_.begin(), heap_.end());
    const int position = heap_.back();
    heap_.pop_back();
    const bool stays = canStay(position);
    const bool last = heap_.empty() || heap_.front() < levelStart;
    if (stays && (reached || position < levelStart || last)) {
      reached = true;
      kept_.push_back(position);
      continue;
    }
    why_.clear();
    if (explainer_.explainChange(position, why_, work)) {
      isMarked_[position] = 0;
      for (const int earlier : why_) mark(earlier);
    } else if (stays) {
      kept_.push_back(position);
    } else {
      return false;
    }
  }
  return true;
}

// Takes out what follows from the rest.
void ConflictAnalysis::shorten(WorkMeter &work) {
  std::size_t count = 0;
  for (const int position : kept_) {
    why_.clear();
    const bool follows =
        explainer_.explainChange(position, why_, work) &&
        std::all_of(why_.begin(), why_.end(), [&](int earlier) { return isMarked_[earlier] != 0; });
    if (!follows) kept_[count++] = position;
  }
  kept_.resize(count);
}

// Of several bounds of one column on one side the tightest says it all.
Disjunction ConflictAnalysis::disjunction() const {
  Disjunction result;
  for (const int position : kept_) {
    const TrailEntry &entry = domain_.trail()[position];
    const bool isLower = entry.side == BoundSide::Lower;
    const Disjunct disjunct{entry.col, ConflictStore::opposite(entry.side),
                            isLower ? entry.value - 1 : entry.value + 1};
    // The latest positions come first.
    const bool known = std::any_of(result.begin(), result.end(), [&](const Disjunct &other) {
      return other.col == disjunct.col && other.side == disjunct.side;
    });
    if (!known) result.push_back(disjunct);
  }
  return result;
}

void ConflictAnalysis::analyze(WorkMeter &work) {
  if (why_.empty()) return;
  isMarked_.assign(domain_.trail().size(), 0);
  heap_.clear();
  for (const int position : Vec<int>(why_)) mark(position);
  if (!resolve(work)) return;
  shorten(work);
  const double longest =
      std::min(std::max(kLongest, kLongestShare * problem_.numCols()), kMostLongest);
  if (kept_.empty() || static_cast<double>(kept_.size()) > longest) return;
  store_.learn(disjunction());
}

}  // namespace tarvik
