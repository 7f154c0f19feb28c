// Searches for several solutions against the list of all feasible points.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "mip/heuristic_fixture.h"
#include "mip/mip_solve.h"

namespace tarvik::test {
namespace {

// Objectives of all feasible points of a problem whose columns are all integral, best first.
Vec<double> allObjectives(const Problem &problem) {
  Vec<double> objectives, x(problem.lp().colLower);
  const int n = problem.numCols();
  while (true) {
    if (problem.violation(x) <= 1e-6) objectives.push_back(problem.objective(x));
    int j = 0;
    while (j < n && x[j] == problem.lp().colUpper[j]) {
      x[j] = problem.lp().colLower[j];
      ++j;
    }
    if (j == n) break;
    ++x[j];
  }
  std::sort(objectives.begin(), objectives.end());
  return objectives;
}

MipOutcome solveFor(const MipModel &model, const MipOptions &options) {
  SilentLog log;
  SolveControl control;
  control.log = &log;
  control.limits.start();
  return MipSolve(model, options, control).run();
}

TEST(SolutionPool, HoldsTheBestSolutions) {
  for (int seed = 1; seed <= 60 && !::testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    Random random(static_cast<std::uint64_t>(seed));
    const MipModel model = seed % 3 == 0 ? randomPartitioning(9, 3, random)
                                         : randomPacking(5 + random.below(3), 3, random);
    const Problem problem(MipModel(model), MipTolerances{});
    Vec<double> expected = allObjectives(problem);
    MipOptions options;
    options.simplex.logging = false;
    options.mipGap = options.mipGapAbs = 0;
    options.poolSearchMode = 1 + random.below(2);
    options.poolSolutions = 1 + random.below(12);
    options.threads = 1 + random.below(2);
    options.heuristics = random.below(2) == 0 ? 0 : 0.1;
    if (random.below(3) == 0 && !expected.empty()) {
      options.poolGapAbs = random.below(6);
      const double limit = expected.front() + options.poolGapAbs + 1e-6;
      while (expected.back() > limit) expected.pop_back();
    }
    if (static_cast<int>(expected.size()) > options.poolSolutions)
      expected.resize(static_cast<std::size_t>(options.poolSolutions));
    const MipOutcome outcome = solveFor(model, options);
    if (expected.empty()) {
      EXPECT_EQ(outcome.status, MipStatus::Infeasible);
      continue;
    }
    EXPECT_EQ(outcome.status, MipStatus::Optimal);
    Vec<MipSolution> found = outcome.solutions;
    if (options.poolGapAbs < kUserInf) {
      // Found before the optimum was known.
      const double limit = expected.front() + options.poolGapAbs + 1e-6;
      while (!found.empty() && found.back().objective > limit) found.pop_back();
    }
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t k = 0; k < expected.size(); ++k) {
      EXPECT_NEAR(found[k].objective, expected[k], 1e-6) << k;
      EXPECT_LE(problem.violation(found[k].x), 1e-6);
      for (std::size_t other = 0; other < k; ++other) EXPECT_NE(found[k].x, found[other].x);
    }
  }
}

}  // namespace
}  // namespace tarvik::test
