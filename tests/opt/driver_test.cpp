// The LP driver on thousands of tiny random models against an independent solver: the same
// status and objective on every road, claims that carry their proof, warm starts of any quality.
#include "opt/lp_driver.h"

#include <gtest/gtest.h>

#include <cmath>

#include "base/random.h"
#include "support/ill_conditioned_lp.h"
#include "support/lp_checks.h"
#include "support/random_lp.h"
#include "support/reference_lp.h"

namespace tarvik {
namespace {

constexpr double kTol = 1e-6;

struct Road {
  const char *name;
  SimplexMethod method;
  int presolve;
  bool certificates;
  int scaleFlag;
  int preDual = 0;
  bool crash = false;
  bool sparsify = false;  // models of any size
};
constexpr Road kRoads[] = {
    {"dual", SimplexMethod::Dual, 0, true, -1},
    {"primal", SimplexMethod::Primal, 0, true, -1},
    {"dual, unscaled", SimplexMethod::Dual, 0, false, 0},
    {"presolve and dual", SimplexMethod::Dual, -1, false, -1},
    {"presolve and primal", SimplexMethod::Primal, 2, false, -1},
    {"presolve with certificates", SimplexMethod::Dual, -1, true, -1},
    {"dual form", SimplexMethod::Dual, 1, false, -1, 1},
    {"dual form with certificates", SimplexMethod::Primal, -1, true, -1, 1},
    {"crash", SimplexMethod::Dual, 0, true, -1, 0, true},
    {"presolve and crash", SimplexMethod::Dual, -1, false, 0, 0, true},
};

LpOutcome drive(const LpModel &lp, const Road &road, const Basis *start = nullptr,
                bool presolveWarmStart = false, int quad = -1, double patience = 1e100) {
  LpDriverOptions options;
  options.method = road.method;
  options.presolve.level = road.presolve;
  options.presolve.preDual = road.preDual;
  if (road.sparsify) {
    options.presolve.sparsify = 2;
    options.presolve.sparsifyMinSize = 2;
    options.presolve.sparsifyMinLength = 1;
    options.presolve.aggregate = 0;
  }
  options.presolveWarmStart = presolveWarmStart;
  options.warmIterationLimit = patience;
  options.wantCertificates = road.certificates;
  options.simplex.scaleFlag = road.scaleFlag;
  options.simplex.quad = quad;
  options.simplex.crash = road.crash ? 1 : 0;
  options.mayChangeMethod = road.crash;
  SilentLog log;
  SolveControl control;
  control.log = &log;
  control.limits.start();
  WarmEngine engine;
  return LpDriver(lp, options, control, engine).run(start, nullptr);
}

// The status, with the freedom that presolve has when nobody asks for certificates.
void expectStatus(LpStatus found, LpStatus expected, const Road &road) {
  const bool undecided = found == LpStatus::InfeasibleOrUnbounded && road.presolve != 0 &&
                         !road.certificates && expected != LpStatus::Optimal;
  EXPECT_TRUE(found == expected || undecided)
      << "found " << static_cast<int>(found) << ", expected " << static_cast<int>(expected);
}

void expectResult(const LpModel &lp, const LpSolution &expected, const LpOutcome &outcome,
                  const Road &road) {
  const LpSolution &found = outcome.solution;
  EXPECT_FALSE(outcome.suboptimal);
  if (test::edgeOfFeasibility(lp, found, expected, kTol)) return;
  expectStatus(found.status, expected.status, road);
  if (expected.status == LpStatus::Optimal) {
    EXPECT_TRUE(test::isOptimal(lp, found, kTol));
    EXPECT_TRUE(test::isBasicSolution(lp, found, kTol));
    EXPECT_NEAR(found.objective, expected.objective,
                kTol * std::max(1.0, std::fabs(expected.objective)));
  } else if (found.status == LpStatus::Infeasible && road.certificates) {
    EXPECT_GT(farkasViolation(lp, found.farkas), 0);
  } else if (found.status == LpStatus::Unbounded && road.certificates) {
    EXPECT_LT(rayImprovement(lp, found.ray), 0);
  }
}

TEST(LpDriver, AgreesWithTheReferenceOnEveryRoad) {
  const std::uint64_t count = test::randomLpCount(3000);
  for (std::uint64_t seed = 0; seed < count && !::testing::Test::HasFailure(); ++seed) {
    const LpModel lp = test::randomLp(seed);
    const LpSolution expected = test::solveReference(lp);
    for (const Road &road : kRoads) {
      SCOPED_TRACE(std::string(road.name) + ", seed " + std::to_string(seed) + "\n" +
                   test::describe(lp));
      expectResult(lp, expected, drive(lp, road), road);
    }
  }
}

// Statuses at random, whatever their number of basic variables and their bounds.
Basis randomBasis(const LpModel &lp, std::uint64_t seed) {
  Random random(seed);
  const auto status = [&](double lower, double upper) {
    if (random.uniform() < 0.5) return VarStatus::Basic;
    if (isInf(lower) && isInf(upper)) return VarStatus::Free;
    if (isInf(lower)) return VarStatus::AtUpper;
    if (isInf(upper)) return VarStatus::AtLower;
    return random.uniform() < 0.5 ? VarStatus::AtLower : VarStatus::AtUpper;
  };
  Basis basis;
  for (int j = 0; j < lp.numCols; ++j) basis.col.push_back(status(lp.colLower[j], lp.colUpper[j]));
  for (int i = 0; i < lp.numRows; ++i) basis.row.push_back(status(lp.rowLower[i], lp.rowUpper[i]));
  return basis;
}

TEST(LpDriver, AnyWarmStartLeadsToTheSameResult) {
  const std::uint64_t count = test::randomLpCount(3000) / 2;
  for (std::uint64_t seed = 0; seed < count && !::testing::Test::HasFailure(); ++seed) {
    const LpModel lp = test::randomLp(seed);
    const LpSolution expected = test::solveReference(lp);
    const Basis start = randomBasis(lp, seed);
    for (const Road &road : kRoads) {
      SCOPED_TRACE(std::string(road.name) + ", seed " + std::to_string(seed) + "\n" +
                   test::describe(lp));
      expectResult(lp, expected, drive(lp, road, &start, road.presolve != 0), road);
      if (seed % 3 == 0)  // given up at once for a solve from scratch
        expectResult(lp, expected, drive(lp, road, &start, false, -1, 1), road);
    }
  }
}

// Known answers of badly conditioned and badly scaled models, in every precision.
// Bases that postsolve cannot restore are found by the simplex.
TEST(LpDriver, CancelledEntriesLeaveAnOptimalBasis) {
  const Road roads[] = {
      {"cancel", SimplexMethod::Dual, -1, false, -1, 0, false, true},
      {"cancel, certificates", SimplexMethod::Primal, -1, true, -1, 0, false, true}};
  test::RandomLpOptions shape;
  shape.plantFeasible = 0.9;
  shape.fractional = 0;
  shape.maxCols = 14;
  const int count = test::randomLpCount(2000);
  for (int seed = 0; seed < count && !::testing::Test::HasFailure(); ++seed) {
    const LpModel lp = test::withCombinedRows(test::randomLp(seed, shape), seed);
    const LpSolution expected = test::solveReference(lp);
    const Basis start = randomBasis(lp, seed);
    for (const Road &road : roads) {
      SCOPED_TRACE(std::string(road.name) + ", seed " + std::to_string(seed) + "\n" +
                   test::describe(lp));
      expectResult(lp, expected, drive(lp, road), road);
      expectResult(lp, expected, drive(lp, road, &start, true), road);
    }
  }
}

TEST(LpDriver, IllConditionedModelsOnEveryRoad) {
  for (int seed = 1; seed <= 40; ++seed) {
    double objective = 0;
    const LpModel lp = seed % 4 == 0   ? test::hilbertLp(4 + seed % 9, seed, objective)
                       : seed % 4 == 1 ? test::nearlyParallelLp(5, 1e-7, seed, objective)
                       : seed % 4 == 2 ? test::growingChainLp(5 + seed / 2, 2.5, seed, objective)
                                       : test::wideRangeLp(6 + seed % 10, 20, 6, seed, objective);
    for (const Road &road : kRoads) {
      for (const int quad : {-1, 0, 1}) {
        const LpOutcome outcome = drive(lp, road, nullptr, false, quad);
        EXPECT_EQ(outcome.solution.status, LpStatus::Optimal)
            << seed << " " << road.name << " quad " << quad;
        EXPECT_NEAR(outcome.solution.objective, objective, 1e-5 * (1 + std::fabs(objective)))
            << seed << " " << road.name << " quad " << quad;
      }
    }
  }
}

TEST(LpDriver, AnOptimalBasisNeedsNoIterations) {
  int warm = 0;
  for (std::uint64_t seed = 0; seed < 300; ++seed) {
    const LpModel lp = test::randomLp(seed);
    const LpOutcome first = drive(lp, kRoads[0]);
    if (first.solution.status != LpStatus::Optimal) continue;
    for (const Road &road : {kRoads[0], kRoads[1]}) {
      const LpOutcome again = drive(lp, road, &first.solution.basis);
      ASSERT_EQ(again.solution.status, LpStatus::Optimal) << test::describe(lp);
      EXPECT_EQ(again.solution.iterations, 0) << test::describe(lp);
    }
    ++warm;
  }
  EXPECT_GT(warm, 100);
}

// A reduced cost of 1e12 cannot be stored more exactly than to 1e-4.
TEST(LpDriver, RoundingOfLargeReducedCostsIsNoResidual) {
  const LpModel lp = test::denseLp({1e12, 1}, {{0, kInf}, {0, kInf}}, {{0.1, 1}}, {{1, kInf}});
  LpSolution solution;
  solution.status = LpStatus::Optimal;
  solution.colValue = {0, 1};
  solution.rowActivity = {1};
  solution.rowDual = {1};
  solution.colDual = {std::nextafter(1e12 - 0.1, 0.0), 0};
  EXPECT_TRUE(verify(lp, solution, {}).proven);
  solution.colDual[0] -= 0.01;
  EXPECT_FALSE(verify(lp, solution, {}).proven);
}

// The iteration limit holds for all engines of a solve together.
TEST(LpDriver, IterationLimitSpansPresolveAndRepair) {
  for (std::uint64_t seed = 0; seed < 300; ++seed) {
    const LpModel lp = test::randomLp(seed);
    LpDriverOptions options;
    options.presolve.level = seed % 2 ? -1 : 0;
    options.simplex.crash = static_cast<int>(seed / 2 % 2);
    options.mayChangeMethod = true;
    options.warmIterationLimit = 1;
    const Basis start = randomBasis(lp, seed);
    SilentLog log;
    SolveControl control;
    control.log = &log;
    control.limits.start();
    control.limits.iterationLimit = static_cast<double>(seed % 3);
    WarmEngine engine;
    const LpOutcome outcome =
        LpDriver(lp, options, control, engine).run(seed % 5 == 0 ? &start : nullptr, nullptr);
    EXPECT_LE(outcome.solution.iterations, control.limits.iterationLimit);
    if (outcome.solution.status == LpStatus::Optimal) {
      EXPECT_TRUE(test::isOptimal(lp, outcome.solution, kTol));
    }
  }
}

}  // namespace
}  // namespace tarvik
