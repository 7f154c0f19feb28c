// The two precisions against each other and against known answers, on models that are hard for
// finite precision; the switch between them; and the rules that ask for it.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <string>

#include "simplex/simplex.h"
#include "simplex/stability.h"
#include "support/ill_conditioned_lp.h"
#include "support/lp_checks.h"
#include "support/random_lp.h"
#include "support/reference_lp.h"

namespace tarvik::test {
namespace {

constexpr double kTol = 1e-6;

class StringLog : public Log {
 public:
  void print(const char *format, ...) override __attribute__((format(printf, 2, 3))) {
    char line[500];
    va_list args;
    va_start(args, format);
    std::vsnprintf(line, sizeof line, format, args);
    va_end(args);
    text += line;
  }
  bool has(const char *part) const { return text.find(part) != std::string::npos; }
  std::string text;
};

LpSolution solve(Simplex &simplex, SimplexMethod method, Log &log) {
  SolveControl control;
  control.log = &log;
  control.limits.iterationLimit = 100000;
  control.limits.start();
  LpSolution solution;
  simplex.solve(method, control);
  simplex.getSolution(solution);
  return solution;
}

LpSolution solve(const LpModel &lp, SimplexMethod method, int quad, int numericFocus = 0) {
  SimplexOptions options;
  options.quad = quad;
  options.numericFocus = numericFocus;
  Simplex simplex(options);
  simplex.load(lp);
  StringLog log;
  return solve(simplex, method, log);
}

// Both methods in every precision reach the known objective with a proof.
void expectKnown(const LpModel &lp, double objective, double tol = kTol) {
  for (const auto method : {SimplexMethod::Dual, SimplexMethod::Primal}) {
    for (const int quad : {-1, 0, 1}) {
      const LpSolution solution = solve(lp, method, quad);
      EXPECT_EQ(solution.status, LpStatus::Optimal)
          << "method " << static_cast<int>(method) << " quad " << quad;
      if (solution.status != LpStatus::Optimal) continue;
      EXPECT_NEAR(solution.objective, objective, tol * (1 + std::fabs(objective)))
          << "method " << static_cast<int>(method) << " quad " << quad;
      const SolutionQuality q = checkSolution(lp, solution, tol);
      EXPECT_LE(std::max(q.boundViolation, q.rowViolation), 2 * tol);
      EXPECT_LE(q.dualViolation, 2 * tol);
    }
  }
}

TEST(Precision, HilbertMatrices) {
  for (int seed = 1; seed <= 60; ++seed) {
    double objective = 0;
    const LpModel lp = hilbertLp(4 + seed % 9, seed, objective);
    SCOPED_TRACE(seed);
    expectKnown(lp, objective, 1e-5);
  }
}

TEST(Precision, NearlyParallelRows) {
  for (int seed = 1; seed <= 60; ++seed) {
    double objective = 0;
    const LpModel lp =
        nearlyParallelLp(4 + seed % 6, std::pow(10.0, -3 - seed % 8), seed, objective);
    SCOPED_TRACE(seed);
    expectKnown(lp, objective, 1e-5);
  }
}

TEST(Precision, GrowingChains) {
  for (int seed = 1; seed <= 20; ++seed) {
    double objective = 0;
    const LpModel lp = growingChainLp(5 + seed, 2.5, seed, objective);
    SCOPED_TRACE(seed);
    expectKnown(lp, objective);
  }
}

TEST(Precision, ExtendedAgreesWithTheReference) {
  for (int seed = 1; seed <= 600; ++seed) {
    const LpModel lp = randomLp(seed);
    const LpSolution reference = solveReference(lp);
    for (const auto method : {SimplexMethod::Dual, SimplexMethod::Primal}) {
      const LpSolution solution = solve(lp, method, 1);
      ASSERT_EQ(solution.status, reference.status) << seed << "\n" << describe(lp);
      if (solution.status != LpStatus::Optimal) continue;
      ASSERT_NEAR(solution.objective, reference.objective,
                  kTol * (1 + std::fabs(reference.objective)))
          << seed;
      ASSERT_TRUE(isBasicSolution(lp, solution, kTol)) << seed;
    }
  }
}

// A conversion in the middle of a solve keeps the basis: what remains is a continuation.
TEST(Precision, SwitchesBetweenSolvesAndKeepsTheBasis) {
  double objective = 0;
  const LpModel lp = wideRangeLp(20, 40, 1, 7, objective);
  Simplex simplex{SimplexOptions{}};
  simplex.load(lp);
  StringLog log;
  const LpSolution first = solve(simplex, SimplexMethod::Dual, log);
  ASSERT_EQ(first.status, LpStatus::Optimal);
  simplex.options().quad = 1;
  log.text.clear();
  const LpSolution second = solve(simplex, SimplexMethod::Dual, log);
  EXPECT_TRUE(simplex.extended());
  EXPECT_TRUE(log.has("Switch to quad precision\n")) << log.text;
  EXPECT_EQ(second.status, LpStatus::Optimal);
  EXPECT_LE(second.iterations, first.iterations + 2);
  EXPECT_NEAR(second.objective, objective, 1e-9 * (1 + std::fabs(objective)));
  // Changes reach the extended core, and so do rows.
  const NzIndex start[2] = {0, 2};
  const int index[2] = {0, 1};
  const double value[2] = {1, 1}, lower = -kInf, upper = 1;
  simplex.addRows(1, start, index, value, &lower, &upper);
  const LpSolution third = solve(simplex, SimplexMethod::Dual, log);
  simplex.options().quad = 0;
  log.text.clear();
  const LpSolution fourth = solve(simplex, SimplexMethod::Dual, log);
  EXPECT_FALSE(simplex.extended());
  EXPECT_TRUE(log.has("Switch to double precision\n")) << log.text;
  EXPECT_EQ(fourth.status, third.status);
  if (third.status == LpStatus::Optimal) {
    EXPECT_NEAR(fourth.objective, third.objective, kTol * (1 + std::fabs(third.objective)));
    EXPECT_LE(fourth.iterations, third.iterations + 5);
  }
}

TEST(Stability, ObjectiveErrorsTightenThenExtend) {
  SimplexOptions options;
  Stability stability;
  stability.startSolve(options, 10000);
  EXPECT_EQ(stability.updateLimit(), 630);
  EXPECT_EQ(stability.checkObjective(1, 1 + 1e-12, false), Stability::Check::Fine);
  EXPECT_EQ(stability.checkObjective(1, 2, false), Stability::Check::Refactor);
  EXPECT_EQ(stability.markowitz(), 0.5);
  EXPECT_EQ(stability.updateLimit(), 100);
  stability.noteRegularFactorization();
  EXPECT_EQ(stability.checkObjective(1, 2, false), Stability::Check::Extend);
  EXPECT_TRUE(stability.extendRequested());
  // In extended precision, or with a fixed precision, it is a failure.
  for (const bool extended : {false, true}) {
    options.quad = extended ? -1 : 0;
    stability.startSolve(options, 100);
    EXPECT_EQ(stability.markowitz(), options.markowitzTol);
    EXPECT_EQ(stability.checkObjective(1, 2, extended), Stability::Check::Refactor);
    stability.noteRegularFactorization();
    EXPECT_EQ(stability.checkObjective(1, 2, extended), Stability::Check::Fail);
  }
  EXPECT_EQ(stability.checkObjective(std::nan(""), 2, true), Stability::Check::Fail);
  EXPECT_EQ(stability.statistics.objectiveError.count, 3);
}

TEST(Stability, SingularBasesTightenAndEnd) {
  SimplexOptions options;
  Stability stability;
  StringLog log;
  stability.startSolve(options, 1000000);
  EXPECT_EQ(stability.noteRepair(3, true, &log), Stability::Repair::GoOn);
  EXPECT_EQ(log.text, "Warning: 3 variables dropped from basis\n");
  EXPECT_EQ(stability.markowitz(), 0.5);
  EXPECT_EQ(stability.noteRepair(1, true, &log), Stability::Repair::GoOn);
  EXPECT_EQ(stability.markowitz(), 0.9);
  for (int k = 3; k <= 99; ++k) stability.noteRepair(1, true, nullptr);
  EXPECT_EQ(stability.noteRepair(1, true, nullptr), Stability::Repair::Stop);
  EXPECT_TRUE(stability.hopeless());
  options.endFactor = 0;
  options.luInterval = 77;
  stability.startSolve(options, 1000000);
  log.text.clear();
  EXPECT_EQ(stability.noteRepair(1, false, &log), Stability::Repair::RestartFromSlackBasis);
  EXPECT_TRUE(log.has("Warning: starting basis discarded\n"));
  for (int k = 2; k <= 4; ++k)
    EXPECT_NE(stability.noteRepair(1, true, nullptr), Stability::Repair::Stop);
  EXPECT_EQ(stability.updateLimit(), 77);
  EXPECT_EQ(stability.noteRepair(1, true, nullptr), Stability::Repair::Stop);
}

TEST(Stability, DiscrepanciesTightenByTheirSeverity) {
  Stability stability;
  StringLog log;
  stability.startSolve(SimplexOptions{}, 100);
  stability.noteDiscrepancy({5e5, 1, 5e-11}, &log);
  EXPECT_EQ(log.text, "");
  stability.noteDiscrepancy({2e6, 1, 0}, &log);
  EXPECT_EQ(log.text, "Warning: Markowitz tolerance tightened to 0.03125\n");
  stability.noteDiscrepancy({0, 1, 1e-9}, &log);
  EXPECT_TRUE(log.has("tightened to 0.0625\n"));
  stability.tighten(0.03125, &log);
  EXPECT_EQ(stability.markowitz(), 0.0625);
}

TEST(Stability, AStartingBasisThatIsSingularIsDiscarded) {
  // Two proportional columns.
  LpModel lp = emptyLp(2, 2);
  appendDense(lp, {1.0, 2.0});
  appendDense(lp, {2.0, 4.0});
  lp.cost = {1.0, 1.0};
  lp.rowLower = {1.0, 1.0};
  Simplex simplex{SimplexOptions{}};
  simplex.load(lp);
  Basis basis;
  basis.col.assign(2, VarStatus::Basic);
  basis.row.assign(2, VarStatus::AtLower);
  simplex.setBasis(basis);
  StringLog log;
  const LpSolution solution = solve(simplex, SimplexMethod::Dual, log);
  EXPECT_TRUE(log.has("Warning: 1 variables dropped from basis\n")) << log.text;
  EXPECT_TRUE(log.has("Warning: starting basis discarded\n")) << log.text;
  ASSERT_EQ(solution.status, LpStatus::Optimal);
  EXPECT_NEAR(solution.objective, 0.5, 1e-9);
  EXPECT_EQ(simplex.markowitzTol(), 0.5);
}

}  // namespace
}  // namespace tarvik::test
