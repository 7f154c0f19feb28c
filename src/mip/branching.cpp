#include "mip/branching.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace tarvik {

namespace {

constexpr int kReliable = 8;         // observations in both directions
constexpr int kMaxCandidates = 100;  // probed at one node
constexpr int kLookAhead = 9;        // probes without a better score
// Weight of a column's part in conflicts, 0 to 1 (Achterberg and Berthold, 2009).
constexpr double kConflictWeight = 0.01;
// Weight of the depth of Gomory cuts, 0 to 1: little more than what decides between equals.
constexpr double kCutWeight = 0.01;
constexpr double kFreeIterations = 10000;
// A value that has moved so far from the root's shows where the search is going.
constexpr double kRootMove = 0.4;

// Relative accuracy of an objective value.
constexpr double kRounding = 1e-8;

double fractionality(double x) { return std::fabs(x - std::round(x)); }

}  // namespace

void Brancher::keepHighestPriority(Vec<int> &cols) const {
  const Vec<int> &priority = problem_.model().branchPriority;
  if (priority.empty() || cols.empty()) return;
  int highest = priority[cols[0]];
  for (const int j : cols) highest = std::max(highest, priority[j]);
  cols.erase(std::remove_if(cols.begin(), cols.end(), [&](int j) { return priority[j] < highest; }),
             cols.end());
}

int Brancher::reliability() const {
  const double allowed = 0.5 * nodeIterations_ + kFreeIterations;
  if (strongIterations_ < allowed) return kReliable;
  return strongIterations_ < 2 * allowed ? 1 : 0;
}

double Brancher::iterationsPerProbe() const {
  const double average = nodeSolves_ > 0 ? nodeIterations_ / nodeSolves_ : 100;
  return std::min(std::max(2 * average, 10.0), 500.0);
}

double Brancher::scoreOf(int col, double downGain, double upGain) const {
  const double cutoffs = pseudoCosts_.cutoffRate(col, false) + pseudoCosts_.cutoffRate(col, true);
  const double average = pseudoCosts_.averageScore();
  const double conflicts =
      conflicts_ ? kConflictWeight * conflicts_->store().activityScore(col) : 0;
  return PseudoCosts::score(downGain, upGain) / std::max(average, 1e-12) + 0.01 * cutoffs +
         conflicts;
}

void Brancher::setCutEfficacy(Vec<double> efficacy) {
  cutEfficacy_ = std::move(efficacy);
  double largest = 0;
  for (const double value : cutEfficacy_) largest = std::max(largest, value);
  for (double &value : cutEfficacy_) value = largest > 0 ? value / largest : 0;
}

// What is expected of a column before it is probed.
double Brancher::orderOf(int col, double x) const {
  const double score = scoreOf(col, pseudoCosts_.down(col, x), pseudoCosts_.up(col, x));
  const bool unknown = pseudoCosts_.count(col, false) + pseudoCosts_.count(col, true) == 0;
  return unknown && !cutEfficacy_.empty() ? score + kCutWeight * cutEfficacy_[col] : score;
}

bool Brancher::upFirst(int col, double x, double downGain, double upGain) const {
  if (options_.branchDir != 0) return options_.branchDir > 0;
  if (!rootX_.empty() && std::fabs(x - rootX_[col]) > kRootMove) return x > rootX_[col];
  // A binary column at one decides much more than one at zero.
  if (problem_.isBinary(col)) return true;
  const double up = upGain * (1 - (x - std::floor(x)));
  const double down = downGain * (x - std::floor(x));
  return up == down ? x - std::floor(x) > 0.5 : up < down;
}

Branching Brancher::split(int col, double x) const {
  Branching branching;
  branching.result = Branching::Split;
  branching.col = col;
  branching.value = x;
  branching.down.push_back({col, BoundSide::Upper, std::floor(x)});
  branching.up.push_back({col, BoundSide::Lower, std::floor(x) + 1});
  return branching;
}

// The node itself takes the bound of the branch that is left, or becomes one of two children the
// other of which is never looked at.
Branching Brancher::oneBranchLeft(Branching branching, bool up, Domain &domain) const {
  if (!options_.fixByStrongBranching) {
    (up ? branching.downBound : branching.upBound) = kUserInf;
    branching.upFirst = up;
    return branching;
  }
  const BoundChange &left = up ? branching.up.front() : branching.down.front();
  branching.result = domain.tighten(left.col, left.side, left.value, {Reason::Other, -1})
                         ? Branching::Tightened
                         : Branching::Pruned;
  return branching;
}

Branching Brancher::chooseIntegral(Domain &domain, Relaxation &lp, SolutionSink &sink,
                                   SolveControl &control) {
  const Vec<double> x(lp.x());
  const double objective = lp.objective();
  struct Candidate {
    int col;
    double score;
  };
  Vec<Candidate> order;
  for (const int j : candidates_)
    order.push_back({j, options_.varBranch == 2 ? fractionality(x[j]) : orderOf(j, x[j])});
  std::stable_sort(order.begin(), order.end(),
                   [](const Candidate &a, const Candidate &b) { return a.score > b.score; });
  const int reliable = options_.varBranch < 0    ? reliability()
                       : options_.varBranch == 3 ? kMaxInt
                                                 : 0;
  const int most =
      options_.strongBranchCandidates < 0 ? kMaxCandidates : options_.strongBranchCandidates;
  Branching best;
  double bestScore = -1;
  int probed = 0, sinceBetter = 0;
  std::optional<BranchProbe> probe;
  for (const Candidate &candidate : order) {
    const int j = candidate.col;
    double downGain = pseudoCosts_.down(j, x[j]), upGain = pseudoCosts_.up(j, x[j]);
    double downBound = objective, upBound = objective;
    double score = candidate.score;
    const bool unsure =
        std::min(pseudoCosts_.count(j, false), pseudoCosts_.count(j, true)) < reliable;
    if (unsure && probed < most && sinceBetter < kLookAhead) {
      if (!probe) probe.emplace(domain, lp, sink, control, conflicts_, proofs_);
      ++probed;
      const double before = probe->iterations(), limit = iterationsPerProbe();
      const BranchProbe::Result down =
          probe->evaluate({j, BoundSide::Upper, std::floor(x[j])}, limit);
      const BranchProbe::Result up =
          probe->evaluate({j, BoundSide::Lower, std::floor(x[j]) + 1}, limit);
      strongIterations_ += probe->iterations() - before;
      sink.alive();
      if (down.stopped || up.stopped) {
        best.result = Branching::Stopped;
        return best;
      }
      const double f = x[j] - std::floor(x[j]);
      if (down.infeasible) pseudoCosts_.noteCutoff(j, false);
      if (up.infeasible) pseudoCosts_.noteCutoff(j, true);
      // With their reasons, as far as these are known.
      if (conflicts_ && (down.infeasible || up.infeasible)) conflicts_->store().enter(domain);
      if (down.infeasible && up.infeasible) {
        best.result = Branching::Pruned;
        return best;
      }
      if (down.infeasible || up.infeasible)
        return oneBranchLeft(split(j, x[j]), down.infeasible, domain);
      downBound = std::max(down.objective, objective);
      upBound = std::max(up.objective, objective);
      downGain = downBound - objective;
      upGain = upBound - objective;
      if (down.exact) pseudoCosts_.update(j, -f, downGain);
      if (up.exact) pseudoCosts_.update(j, 1 - f, upGain);
      score = scoreOf(j, downGain, upGain);
      sinceBetter = score > bestScore ? 0 : sinceBetter + 1;
    }
    if (score <= bestScore) continue;
    bestScore = score;
    best = split(j, x[j]);
    best.downGain = downGain;
    best.upGain = upGain;
    best.downBound = downBound;
    best.upBound = upBound;
    best.upFirst = upFirst(j, x[j], downGain, upGain);
  }
  return best;
}

// Bounds that come from the objective may stop just short of an end of the hole.
bool Brancher::holeIsDecided(const Domain &domain, int col) const {
  const double tolerance = problem_.tolerances().primal;
  return domain.lower(col) >= problem_.model().holeUpper[col] - tolerance ||
         domain.upper(col) <= problem_.model().holeLower[col] + tolerance;
}

Branching Brancher::chooseSemi(const Domain &domain, const Vec<double> &x) const {
  Branching best;
  double worst = problem_.tolerances().integral;
  for (const int j : problem_.semis()) {
    const double low = problem_.model().holeLower[j], high = problem_.model().holeUpper[j];
    if (holeIsDecided(domain, j)) continue;
    const double off = std::min(x[j] - low, high - x[j]);
    if (off <= worst) continue;
    worst = off;
    best = {};
    best.result = Branching::Split;
    best.down.push_back({j, BoundSide::Upper, low});
    best.up.push_back({j, BoundSide::Lower, high});
    best.upFirst = x[j] > (low + high) / 2;
  }
  return best;
}

// The members are split at their centre of gravity: one child has zeros to the right, the other to
// the left (Beale and Tomlin, 1970). None when the nonzeros of x satisfy the set.
Branching Brancher::splitSet(const SosSet &set, const Domain &domain, const Vec<double> &x) const {
  Branching branching;
  const int count = static_cast<int>(set.cols.size());
  double weighted = 0, total = 0;
  int first = -1, last = -1;
  for (int k = 0; k < count; ++k) {
    const double size = std::fabs(x[set.cols[k]]);
    if (size <= problem_.tolerances().integral) continue;
    if (first < 0) first = k;
    last = k;
    weighted += size * k;
    total += size;
  }
  if (first < 0 || last - first < set.type) return branching;
  // Type 1: zeros behind r, or up to it; type 2: the member r itself may stay in both children.
  const int centre = static_cast<int>(weighted / total);
  const int r = std::min(std::max(centre, set.type == 1 ? first : first + 1), last - 1);
  branching.result = Branching::Split;
  for (int k = 0; k < count; ++k) {
    const int j = set.cols[k];
    Vec<BoundChange> *side = nullptr;
    if (k > r) side = &branching.down;
    if (set.type == 1 ? k <= r : k < r) side = &branching.up;
    if (!side) continue;
    if (domain.lower(j) < 0) side->push_back({j, BoundSide::Lower, 0});
    if (domain.upper(j) > 0) side->push_back({j, BoundSide::Upper, 0});
  }
  branching.upFirst = weighted / total > r;
  return branching;
}

void Brancher::setBranchSets(const BranchSetList &sets) {
  branchSets_ = &sets;
  setOf_.clear();
  if (sets.count() == 0) return;
  setOf_.assign(problem_.numCols(), -1);
  for (int k = 0; k < sets.count(); ++k)
    for (int m = sets.start[k]; m < sets.start[k + 1]; ++m) setOf_[sets.member[m]] = k;
}

// Splits the chain of the column instead, where enough of its members are fractional for that to
// decide more.
Branching Brancher::orSet(Branching branching, const Domain &domain, const Vec<double> &x) const {
  if (branching.result != Branching::Split || setOf_.empty() || setOf_[branching.col] < 0)
    return branching;
  const SosSet set = branchSets_->set(setOf_[branching.col]);
  const auto open = std::count_if(set.cols.begin(), set.cols.end(), [&](int j) {
    return fractionality(x[j]) > problem_.tolerances().integral;
  });
  if (static_cast<double>(open) <= options_.setBranchRatio) return branching;
  Branching split = splitSet(set, domain, x);
  return split.result == Branching::Split ? split : branching;
}

Branching Brancher::chooseSos(const Domain &domain, const Vec<double> &x) const {
  Branching best;
  std::size_t most = 0;
  for (const SosSet &set : problem_.model().sos) {
    Branching branching = splitSet(set, domain, x);
    const std::size_t changes = branching.down.size() + branching.up.size();
    if (branching.result != Branching::Split || changes <= most) continue;
    most = changes;
    best = std::move(branching);
  }
  return best;
}

// For a point that satisfies everything within tolerance, but that was refused: any column that is
// not fixed yet.
Branching Brancher::chooseAny(const Domain &domain, const Vec<double> &x) const {
  int chosen = -1;
  double most = -1;
  for (const int j : problem_.integers()) {
    if (domain.isFixed(j)) continue;
    if (fractionality(x[j]) <= most) continue;
    most = fractionality(x[j]);
    chosen = j;
  }
  if (chosen < 0) return {};
  const double value =
      std::min(std::max(std::round(x[chosen]), domain.lower(chosen)), domain.upper(chosen));
  Branching branching = split(chosen, value);
  if (value == domain.upper(chosen)) branching = split(chosen, value - 0.5);
  branching.upFirst = value == domain.upper(chosen);
  return branching;
}

Branching Brancher::choose(Domain &domain, Relaxation &lp, SolutionSink &sink,
                           SolveControl &control) {
  fractionalColumns(domain, lp.x(), candidates_);
  keepHighestPriority(candidates_);
  if (!candidates_.empty()) {
    const Vec<double> x(lp.x());
    return orSet(chooseIntegral(domain, lp, sink, control), domain, x);
  }
  Branching branching = chooseSemi(domain, lp.x());
  if (branching.result == Branching::None) branching = chooseSos(domain, lp.x());
  if (branching.result != Branching::None) return branching;
  // Everything holds within tolerance. The sink may refuse the point, or accept a worse one made
  // from it: the node is done only when nothing better than what is known is left in it.
  const Vec<double> x(lp.x());
  const bool accepted = sink.submit(x, SolutionSource::Node);
  const double margin = kRounding * (1 + std::fabs(lp.objective()));
  if (lp.objective() >= sink.cutoff() - margin) return branching;
  const bool several = sink.wantsSeveral();
  if (!several && sink.incumbentObjective() <= lp.objective() + margin) return branching;
  branching = chooseAny(domain, x);
  if (branching.result == Branching::None && !(several && (accepted || sink.knows(x))))
    branching.result = Branching::Refused;
  return branching;
}

// A set in which more members than it allows may still be nonzero is split in the middle of those.
Branching Brancher::chooseOpenSet(const Domain &domain) const {
  Branching branching;
  for (const SosSet &set : problem_.model().sos) {
    Vec<double> open(problem_.numCols(), 0);
    for (const int j : set.cols)
      if (domain.lower(j) < 0 || domain.upper(j) > 0) open[j] = 1;
    branching = splitSet(set, domain, open);
    if (branching.result == Branching::Split) return branching;
  }
  return branching;
}

Branching Brancher::chooseWithoutPoint(const Domain &domain) const {
  for (const int j : problem_.semis()) {
    const double low = problem_.model().holeLower[j], high = problem_.model().holeUpper[j];
    if (holeIsDecided(domain, j)) continue;
    Branching branching;
    branching.result = Branching::Split;
    branching.down.push_back({j, BoundSide::Upper, low});
    branching.up.push_back({j, BoundSide::Lower, high});
    return branching;
  }
  return chooseOpenSet(domain);
}

Branching Brancher::chooseBlindly(const Domain &domain) const {
  Branching branching = chooseWithoutPoint(domain);
  if (branching.result != Branching::None) return branching;
  Vec<double> x(problem_.numCols(), 0);
  for (const int j : problem_.integers())
    x[j] = isInf(domain.lower(j)) ? domain.upper(j) : domain.lower(j);
  for (double &value : x)
    if (isInf(value)) value = 0;
  branching = chooseAny(domain, x);
  if (branching.result == Branching::None) branching.result = Branching::Refused;
  return branching;
}

}  // namespace tarvik
