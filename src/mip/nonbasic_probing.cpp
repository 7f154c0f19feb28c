#include "mip/nonbasic_probing.h"

#include <algorithm>
#include <cmath>

namespace tarvik {

namespace {

constexpr int kSolves = 3;          // until the relaxation is optimal
constexpr double kIterations = 50;  // of a probe
constexpr int kLookAhead = 10;      // probes that fix nothing

struct Candidate {
  int col;
  bool atLower;
  double score;  // what its reduced cost says of a unit's move
};

Vec<Candidate> findCandidates(const Domain &domain, const Relaxation &lp) {
  const Problem &problem = domain.problem();
  const double tolerance = problem.tolerances().dual;
  Vec<Candidate> candidates;
  for (const int j : problem.integers()) {
    const double d = lp.reducedCost()[j];
    if (domain.isFixed(j) || std::fabs(d) <= tolerance) continue;
    const bool atLower = d > 0;
    const double bound = atLower ? domain.lower(j) : domain.upper(j);
    if (std::fabs(lp.x()[j] - bound) <= tolerance) candidates.push_back({j, atLower, std::fabs(d)});
  }
  std::stable_sort(candidates.begin(), candidates.end(),
                   [](const Candidate &a, const Candidate &b) { return a.score > b.score; });
  return candidates;
}

bool makeOptimal(Domain &domain, Relaxation &lp, SolveControl &control) {
  lp.follow(domain);
  for (int k = 0; k < kSolves; ++k)
    if (lp.solve(control) == LpStatus::Optimal) return true;
  return false;
}

bool tellsNothing(const BranchProbe::Result &result) {
  return !result.infeasible && !result.exact && result.status != LpStatus::IterationLimit &&
         result.status != LpStatus::Interrupted && result.status != LpStatus::Callback;
}

}  // namespace

NonbasicProbing nonbasicStrongBranch(Domain &domain, Relaxation &lp, SolutionSink &sink,
                                     int candidates, SolveControl &control) {
  NonbasicProbing result;
  if (!makeOptimal(domain, lp, control)) return result;
  BranchProbe probe(domain, lp, sink, control);
  int probed = 0, sinceFixed = 0;
  for (const Candidate &candidate : findCandidates(domain, lp)) {
    if (probed == candidates || sinceFixed == kLookAhead) break;
    const int j = candidate.col;
    if (domain.isFixed(j)) continue;
    const double bound = candidate.atLower ? domain.lower(j) : domain.upper(j);
    const BoundChange move{j, candidate.atLower ? BoundSide::Lower : BoundSide::Upper,
                           candidate.atLower ? bound + 1 : bound - 1};
    ++probed;
    ++sinceFixed;
    const BranchProbe::Result branch = probe.evaluate(move, kIterations);
    sink.alive();
    if (tellsNothing(branch))
      control.log->print("Strong branch result: %d\n", static_cast<int>(branch.status));
    if (branch.stopped) break;
    if (!branch.infeasible && branch.objective < sink.cutoff()) continue;
    sinceFixed = 0;
    ++result.fixed;
    const BoundSide side = candidate.atLower ? BoundSide::Upper : BoundSide::Lower;
    if (!domain.tighten(j, side, bound, {Reason::Other, -1}) || !domain.propagate(control.work)) {
      result.infeasible = true;
      return result;
    }
  }
  makeOptimal(domain, lp, control);
  return result;
}

}  // namespace tarvik
