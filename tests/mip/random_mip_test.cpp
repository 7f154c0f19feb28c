// Tiny random mixed-integer programs against enumeration, under many settings.
#include <gtest/gtest.h>

#include <cstdlib>

#include "mip/mip_solve.h"
#include "reference_mip.h"
#include "structured_mip.h"
#include "support/random_lp.h"

namespace tarvik {
namespace {

using test::ReferenceMip;

MipModel randomMip(std::uint64_t seed) {
  Random random(seed + 77);
  MipModel model;
  test::RandomLpOptions options;
  options.maxRows = 5;
  options.maxCols = 6;
  model.lp = test::randomLp(seed, options);
  const int n = model.lp.numCols;
  model.kind.assign(n, VarKind::Continuous);
  const bool withSemi = random.uniform() < 0.2, withSets = random.uniform() < 0.2;
  for (int j = 0; j < n; ++j) {
    double &lower = model.lp.colLower[j], &upper = model.lp.colUpper[j];
    if (withSemi && random.uniform() < 0.4) {
      if (model.holeLower.empty()) {
        model.holeLower.assign(n, 0);
        model.holeUpper.assign(n, 0);
      }
      model.kind[j] = random.uniform() < 0.5 ? VarKind::SemiContinuous : VarKind::SemiInteger;
      const double size = 1 + random.below(2);
      const bool negative = random.uniform() < 0.3;
      model.holeLower[j] = negative ? -size : 0;
      model.holeUpper[j] = negative ? 0 : size;
      lower = negative ? -size - 2 : 0;
      upper = negative ? 0 : size + random.below(3);
    } else if (random.uniform() < 0.6) {
      model.kind[j] = VarKind::Integer;
      const bool binary = random.uniform() < 0.5;
      if (isInf(lower)) lower = isInf(upper) ? -1 : std::floor(upper) - 2;
      lower = std::floor(lower);
      upper = std::min(upper, lower + 2);
      if (binary) lower = 0, upper = 1;
    }
  }
  if (withSets && n >= 3) {
    SosSet set;
    set.type = 1 + random.below(2);
    for (int j = 0; j < n; ++j) {
      if (random.uniform() > 0.7 || model.lp.colLower[j] > 0 || model.lp.colUpper[j] < 0) continue;
      set.cols.push_back(j);
      set.weights.push_back(j);
    }
    if (set.cols.size() > 1) model.sos.push_back(set);
  }
  return model;
}

// Every family at its aggressive level.
CutSettings allCuts() {
  CutSettings cuts;
  cuts.cover = cuts.clique = cuts.implied = cuts.projImplied = cuts.mir = cuts.strongCg = 2;
  cuts.flowCover = cuts.mixing = cuts.flowPath = cuts.gubCover = cuts.infProof = 2;
  cuts.liftProject = cuts.zeroHalf = cuts.modK = cuts.network = 2;
  cuts.gomoryPasses = -3;
  return cuts;
}

MipOptions randomOptions(std::uint64_t seed) {
  Random random(seed + 5);
  MipOptions options;
  options.mipGap = 0;
  options.simplex.logging = false;
  options.simplex.seed = random.below(5);
  options.seed = options.simplex.seed;
  options.presolve.level = random.uniform() < 0.5 ? 0 : -1;
  options.heuristics = random.uniform() < 0.3 ? 0 : random.uniform() < 0.5 ? 0.05 : 0.5;
  options.varBranch = random.below(5) - 1;
  options.branchDir = random.below(3) - 1;
  options.focus = random.below(4);
  if (random.uniform() < 0.6) options.cuts = allCuts();
  if (random.uniform() < 0.3) options.cuts.passes = 0;
  options.subMip = random.uniform() < 0.5;  // without searches inside
  options.threads = random.uniform() < 0.1 ? 2 : 1;
  options.infProof = random.uniform() < 0.7;
  for (int type = 0; type < 2; ++type) {
    options.sosBigM.limit[type] = 10.0 * (random.below(3) - 1);
    options.sosBigM.encoding[type] = random.below(5) - 1;
  }
  options.presolve.affine = random.uniform() < 0.2;
  options.presolve.keepPoints = random.uniform() < 0.1;
  options.degenMoves = random.below(4);
  options.fixByStrongBranching = random.uniform() < 0.7;
  options.strongBranchCandidates = random.below(4) - 1;
  return options;
}

std::string describeDiscrete(const MipModel &model) {
  std::string text = "kinds";
  for (const VarKind kind : model.kind) text.append(" ").append(std::to_string(int(kind)));
  for (const SosSet &set : model.sos) {
    text.append("; set of type ").append(std::to_string(set.type)).append(":");
    for (const int j : set.cols) text.append(" x").append(std::to_string(j));
  }
  return text;
}

MipOptions structuredOptions(std::uint64_t seed) {
  MipOptions options = randomOptions(seed);
  options.presolve.level = -1 + static_cast<int>(seed % 4 == 0) * 3;
  return options;
}

// How far integral values are from integers.
double offIntegers(const MipModel &model, const Vec<double> &x) {
  double worst = 0;
  for (int j = 0; j < model.lp.numCols; ++j)
    if (isIntegral(model.kind[j])) worst = std::max(worst, std::fabs(x[j] - std::round(x[j])));
  return worst;
}

// An optimum found, and its bound, against the enumerated one. It may be better by what breaking
// rows and bounds by the tolerance gains, with integral values as far off as its own, and by no
// more.
testing::AssertionResult isOptimum(const MipModel &model, double expected, const MipSolution &found,
                                   double bound) {
  const double objective = found.objective, tolerance = 1e-5 * (1 + std::fabs(expected));
  if (!(objective <= expected + tolerance))
    return testing::AssertionFailure() << objective << " is worse than " << expected;
  const bool better = objective < expected - tolerance;
  if (better) {
    const LpSolution least =
        ReferenceMip(model, MipTolerances().primal, offIntegers(model, found.x)).solve();
    // Unbounded: so little makes any objective possible.
    if (least.status == LpStatus::Optimal &&
        objective < least.objective - 1e-9 * (1 + std::fabs(least.objective)))
      return testing::AssertionFailure() << objective << " is better than " << expected << " and "
                                         << least.objective << " within tolerances";
  }
  if (!(std::fabs(bound - (better ? objective : expected)) <= tolerance))
    return testing::AssertionFailure()
           << "bound " << bound << ", objective " << objective << ", optimum " << expected;
  return testing::AssertionSuccess();
}

void check(const MipModel &model, const MipOptions &options, std::uint64_t seed) {
  const LpSolution expected = ReferenceMip(model).solve();
  SilentLog log;
  SolveControl control;
  control.log = &log;
  control.limits.start();
  MipSolve solve(model, options, control);
  const MipOutcome outcome = solve.run();
  SCOPED_TRACE(std::string("seed ").append(std::to_string(seed)).append("\n") +
               test::describe(model.lp) + describeDiscrete(model));
  switch (outcome.status) {
    case MipStatus::Optimal:
      ASSERT_EQ(expected.status, LpStatus::Optimal);
      break;
    case MipStatus::Infeasible:
      ASSERT_EQ(expected.status, LpStatus::Infeasible);
      return;
    case MipStatus::Unbounded:
      ASSERT_EQ(expected.status, LpStatus::Unbounded);
      return;
    case MipStatus::InfeasibleOrUnbounded:
      ASSERT_NE(expected.status, LpStatus::Optimal);
      return;
    default:
      FAIL() << "status " << static_cast<int>(outcome.status);
  }
  ASSERT_FALSE(outcome.solutions.empty());
  EXPECT_TRUE(isOptimum(model, expected.objective, outcome.solutions.front(), outcome.bound));
  const Problem problem(MipModel(model), MipTolerances{});
  for (const MipSolution &solution : outcome.solutions) {
    EXPECT_LE(problem.violation(solution.x), 1e-6);
    EXPECT_NEAR(problem.objective(solution.x), solution.objective, 1e-9);
  }
}

TEST(RandomMip, AgreesWithEnumeration) {
  const char *wanted = std::getenv("TARVIK_RANDOM_MIPS");
  const char *first = std::getenv("TARVIK_RANDOM_FIRST");
  const std::uint64_t begin = first ? std::strtoull(first, nullptr, 10) : 1;
  const std::uint64_t count = wanted ? std::strtoull(wanted, nullptr, 10) : 1500;
  for (std::uint64_t seed = begin; seed < begin + count && !HasFailure(); ++seed)
    check(randomMip(seed), randomOptions(seed), seed);
}

// Long runs found them: an unbounded node without integral points, and a restart that proves the
// incumbent before it solves a relaxation.
TEST(RandomMip, RareModelsAgreeWithEnumeration) {
  for (const std::uint64_t seed : {920498534, 930362279})
    check(test::StructuredMip(seed).generate(), structuredOptions(seed), seed);
}

// Models full of what presolve looks for, presolved, mostly without help from cuts.
TEST(RandomMip, StructuredModelsAgreeWithEnumeration) {
  const char *wanted = std::getenv("TARVIK_RANDOM_MIPS");
  const char *first = std::getenv("TARVIK_RANDOM_FIRST");
  const std::uint64_t begin = first ? std::strtoull(first, nullptr, 10) : 1;
  const std::uint64_t count = wanted ? std::strtoull(wanted, nullptr, 10) : 2500;
  for (std::uint64_t seed = begin; seed < begin + count && !HasFailure(); ++seed)
    check(test::StructuredMip(seed).generate(), structuredOptions(seed), seed);
}

// An objective cutoff that ends just short of a hole's end left the hole undecided.
TEST(RandomMip, SeedsOfOldFaults) {
  for (const std::uint64_t seed : {704415, 21008236, 50108615})
    check(randomMip(seed), randomOptions(seed), seed);
}

// A violation of 8e-7 in a row with small coefficients moves the objective by 2e-4.
TEST(RandomMip, ToleranceExplainsABetterObjective) {
  for (const std::uint64_t seed : {50144351, 9303604})
    check(test::StructuredMip(seed).generate(), structuredOptions(seed), seed);
  const MipModel model = test::StructuredMip(9303604).generate();
  const double expected = ReferenceMip(model).solve().objective;
  const auto passes = [&](double objective, double bound) {
    MipSolution found;
    found.objective = objective;
    found.x.assign(model.lp.numCols, 0);
    return isOptimum(model, expected, found, bound);
  };
  EXPECT_TRUE(passes(expected, expected));
  EXPECT_TRUE(passes(expected - 2e-4, expected - 2e-4));
  EXPECT_FALSE(passes(expected - 2e-4, expected));
  EXPECT_FALSE(passes(expected - 5e-4, expected - 5e-4));
  EXPECT_FALSE(passes(expected + 2e-4, expected + 2e-4));
  EXPECT_FALSE(passes(std::nan(""), expected));
}

}  // namespace
}  // namespace tarvik
