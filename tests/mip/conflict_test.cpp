// Every learned conflict against enumeration: no feasible point better than the cutoff violates it.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <map>

#include "mip/heuristic_fixture.h"
#include "mip/mip_solve.h"
#include "mip/quiet_solve.h"
#include "mip/worker.h"
#include "support/reference_lp.h"

namespace tarvik::test {
namespace {

// Rows over binaries, small general integers and a few continuous columns, tight around a point
// that need not be feasible: most of the tree comes to nothing.
MipModel tightMip(std::uint64_t seed) {
  Random random(seed * 31 + 7);
  const int n = 8 + random.below(5), m = 3 + random.below(5);
  Vec<double> cost, upper, point;
  Vec<int> continuous;
  for (int j = 0; j < n; ++j) {
    const double kind = random.uniform();
    cost.push_back(random.below(11) - 5);
    upper.push_back(kind < 0.75 ? 1 : 2 + random.below(2));
    if (kind > 0.9) continuous.push_back(j);
    point.push_back(random.below(static_cast<int>(upper.back()) + 1));
  }
  const bool fractional = random.uniform() < 0.3;
  Vec<Row> rows;
  for (int i = 0; i < m; ++i) {
    Row row{-kInf, {}, kInf};
    double activity = 0;
    for (int j = 0; j < n; ++j) {
      if (random.uniform() > 0.7) continue;
      const double a = random.below(19) - 6 + (fractional ? random.uniform() : 0);
      if (a == 0) continue;
      row.entries.push_back({j, a});
      activity += a * point[j];
    }
    if (row.entries.size() < 2) continue;
    activity += random.below(3) - 1;
    const double kind = random.uniform();
    if (kind < 0.6) row.upper = activity + random.below(2);
    if (kind > 0.4) row.lower = activity - random.below(2);
    rows.push_back(row);
  }
  return makeModel(cost, upper, rows, continuous);
}

// Searches for points below a given cutoff, and takes none.
class FixedCutoff : public SolutionSink {
 public:
  explicit FixedCutoff(double cutoff) : cutoff_(cutoff) {}
  bool submit(const Vec<double> &, SolutionSource) override { return false; }
  bool hasIncumbent() const override { return false; }
  double incumbentObjective() const override { return kUserInf; }
  const Vec<double> &incumbent() const override { return none_; }
  double cutoff() const override { return cutoff_; }

 private:
  double cutoff_;
  Vec<double> none_;
};

// Whether a conflict cuts off a point that it must not: all integral assignments that violate it
// are enumerated and completed by the reference simplex.
class Enumeration {
 public:
  Enumeration(const Problem &problem, double cutoff) : problem_(problem), cutoff_(cutoff) {}

  bool cutsOff(const Disjunction &conflict) {
    Vec<double> lower(problem_.lp().colLower), upper(problem_.lp().colUpper);
    for (const Disjunct &d : conflict) {
      if (d.side == BoundSide::Lower)
        upper[d.col] = std::min(upper[d.col], d.value - 1);
      else
        lower[d.col] = std::max(lower[d.col], d.value + 1);
    }
    LpModel lp = problem_.lp();
    return visit(0, lower, upper, lp);
  }

 private:
  bool visit(int j, const Vec<double> &lower, const Vec<double> &upper, LpModel &lp) {
    if (j == problem_.numCols()) return best(lp) < cutoff_ - 1e-6;
    if (!problem_.isIntegral(j)) return visit(j + 1, lower, upper, lp);
    for (double v = lower[j]; v <= upper[j]; ++v) {
      lp.colLower[j] = lp.colUpper[j] = v;
      if (visit(j + 1, lower, upper, lp)) return true;
    }
    return false;
  }
  double best(const LpModel &lp) {
    Vec<double> key;
    for (int j = 0; j < problem_.numCols(); ++j)
      if (problem_.isIntegral(j)) key.push_back(lp.colLower[j]);
    const auto known = best_.find(key);
    if (known != best_.end()) return known->second;
    const LpSolution solution = solveReference(lp);
    return best_[key] = solution.status == LpStatus::Optimal ? solution.objective : kUserInf;
  }

  const Problem &problem_;
  double cutoff_;
  std::map<Vec<double>, double> best_;
};

std::shared_ptr<Node> child(const Node &parent, const Vec<BoundChange> &decision) {
  auto path = std::make_shared<NodePath>();
  path->parent = parent.path;
  path->decision = decision;
  auto node = std::make_shared<Node>();
  node->path = path;
  node->depth = parent.depth + 1;
  return node;
}

struct Tally {
  int conflicts = 0, nodes = 0;
};

// At the optimum or a little above it, so that much is cut off.
double chooseCutoff(const MipModel &model, Random &random) {
  if (random.uniform() < 0.2) return kUserInf;
  const MipOutcome outcome = solveQuietly(model);
  if (outcome.status != MipStatus::Optimal) return kUserInf;
  return outcome.solutions.front().objective + 0.5 * random.below(6);
}

// A whole tree, depth first, in which every conflict is judged as it is learned.
void searchAndJudge(std::uint64_t seed, Tally &tally) {
  const MipModel model = tightMip(seed);
  const Problem problem(MipModel(model), {});
  Random random(seed);
  const double cutoff = chooseCutoff(model, random);
  SilentLog log;
  SolveControl control;
  control.log = &log;
  control.limits.start();
  MipOptions options;
  options.simplex.logging = false;
  options.varBranch = random.below(3) - 1;
  options.infProof = 1;
  FixedCutoff sink(cutoff);
  Worker worker(problem, options, sink, control);
  worker.conflicts()->shareLearned(true);
  worker.domain().setCutoff(cutoff);
  if (!worker.domain().propagate(control.work)) return;
  Enumeration enumeration(problem, cutoff);
  Vec<std::shared_ptr<Node>> open{std::make_shared<Node>()};
  for (int nodes = 0; nodes < 200 && !open.empty(); ++nodes) {
    // Now and then from elsewhere: backtracking of all depths.
    const std::size_t pick =
        random.uniform() < 0.3 ? random.below(static_cast<int>(open.size())) : open.size() - 1;
    const std::shared_ptr<Node> node = open[pick];
    open.erase(open.begin() + static_cast<std::ptrdiff_t>(pick));
    const NodeResult result = worker.process(*node);
    ++tally.nodes;
    for (const Disjunction &conflict : worker.conflicts()->takeShared()) {
      ++tally.conflicts;
      ASSERT_FALSE(conflict.empty());
      ASSERT_FALSE(enumeration.cutsOff(conflict)) << "seed " << seed << " node " << tally.nodes;
    }
    if (result.branching.result != Branching::Split) continue;
    open.push_back(child(*node, result.branching.up));
    open.push_back(child(*node, result.branching.down));
  }
}

TEST(Conflict, HoldsForAllBetterPoints) {
  const char *wanted = std::getenv("TARVIK_RANDOM_CONFLICTS");
  const char *first = std::getenv("TARVIK_RANDOM_FIRST");
  const int count = wanted ? std::atoi(wanted) : 60;
  const std::uint64_t begin = first ? std::strtoull(first, nullptr, 10) : 1;
  Tally tally;
  for (std::uint64_t seed = begin; seed < begin + count && !HasFailure(); ++seed)
    searchAndJudge(seed, tally);
  EXPECT_GT(tally.conflicts, count);
}

}  // namespace
}  // namespace tarvik::test
