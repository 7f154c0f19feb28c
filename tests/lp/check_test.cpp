#include "lp/check.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/lp_checks.h"
#include "support/random_lp.h"
#include "support/reference_lp.h"

namespace tarvik {
namespace {

using test::denseLp;

// min x + y, x + y >= 1, 0 <= x <= 1, 0 <= y
LpModel corner() { return denseLp({1, 1}, {{0, 1}, {0, kInf}}, {{1, 1}}, {{1, kInf}}); }

TEST(CheckSolution, MeasuresEachKindOfViolation) {
  LpSolution s;
  s.colValue = {1.5, -0.25};
  s.rowActivity = {1.0};
  s.rowDual = {-0.5};
  s.colDual = {1.5, 1.0};
  const SolutionQuality q = checkSolution(corner(), s, 1e-6);
  EXPECT_DOUBLE_EQ(q.boundViolation, 0.5);
  EXPECT_DOUBLE_EQ(q.boundViolationSum, 0.75);
  EXPECT_DOUBLE_EQ(q.rowViolation, 0);
  EXPECT_DOUBLE_EQ(q.activityResidual, 0.25);
  EXPECT_DOUBLE_EQ(q.dualViolation, 1.5);           // x is not at its lower bound
  EXPECT_DOUBLE_EQ(q.dualViolationSum, 1.5 + 0.5);  // and the row has no upper bound
  EXPECT_DOUBLE_EQ(q.dualResidual, 0.5);
  EXPECT_DOUBLE_EQ(q.complementarity, 1.5 * 1.5);
  EXPECT_DOUBLE_EQ(q.objective, 1.25);
}

TEST(CheckSolution, ToleranceDecidesWhatIsAtABound) {
  LpSolution s;
  s.colValue = {1 + 1e-7, 0};
  s.rowDual = {2};
  s.colDual = {-1, 0};
  EXPECT_EQ(checkSolution(corner(), s, 1e-6).dualViolation, 0);
  EXPECT_EQ(checkSolution(corner(), s, 1e-8).dualViolation, 2);
}

TEST(CheckSolution, NotANumberIsTheWorstViolation) {
  LpSolution s;
  s.colValue = {std::numeric_limits<double>::quiet_NaN(), 0};
  const SolutionQuality q = checkSolution(corner(), s, 1e-6);
  EXPECT_TRUE(std::isinf(q.boundViolation));
  EXPECT_TRUE(std::isinf(q.rowViolation));
}

TEST(CheckSolution, SumsSurviveCancellation) {
  // 1e17 x - 1e17 y + z with x = y: a plain sum in another order loses z.
  const LpModel lp = denseLp({0, 0, 0}, {{-kInf, kInf}, {-kInf, kInf}, {-kInf, kInf}},
                             {{1e17, 1, -1e17}}, {{1, 1}});
  LpSolution s;
  s.colValue = {1, 1, 1};
  EXPECT_EQ(checkSolution(lp, s, 1e-9).rowViolation, 0);
}

TEST(Farkas, AcceptsProofsOfEitherSignAndNothingElse) {
  // x + y >= 3, x - y <= 0, x <= 1, y <= 1: the first row alone is a proof.
  const LpModel lp = denseLp({0, 0}, {{0, 1}, {0, 1}}, {{1, 1}, {1, -1}}, {{3, kInf}, {-kInf, 0}});
  EXPECT_GT(farkasViolation(lp, {1, 0}), 0.1);
  EXPECT_GT(farkasViolation(lp, {-1, 0}), 0.1);
  EXPECT_LE(farkasViolation(lp, {0, 1}), 0);
  EXPECT_LE(farkasViolation(lp, {0, 0}), 0);
  EXPECT_LE(farkasViolation(lp, {1}), 0);
  EXPECT_LE(farkasViolation(lp, {std::nan(""), 0}), 0);
  EXPECT_GT(farkasViolation(lp, {1, 1e-12}), 0.1) << "dust is dropped";
}

TEST(Farkas, FindsTheProofBetweenSmallMultipliersAndNoise) {
  // 1e-10 f + a >= 2 and f + b <= 0 with a, b in [0, 1] and f free: (1, -1e-10) is a proof. The
  // third row has another free column, the fourth no lower bound.
  const LpModel lp = denseLp({0, 0, 0, 0}, {{-kInf, kInf}, {0, 1}, {0, 1}, {-kInf, kInf}},
                             {{1e-10, 1, 0, 0}, {1, 0, 1, 0}, {0, 0, 0, 1}, {0, 1, 0, 0}},
                             {{2, kInf}, {-kInf, 0}, {0, kInf}, {-kInf, 5}});
  EXPECT_GT(farkasViolation(lp, {1, -1e-10, 0, 0}), 0.1);
  EXPECT_GT(farkasViolation(lp, {1, -1e-10, 1e-14, 0}), 0.1) << "noise on a free column";
  EXPECT_GT(farkasViolation(lp, {1, -1e-10, 0, 1e-8}), 0.1) << "noise on an infinite row bound";
  EXPECT_LE(farkasViolation(lp, {1, 0, 0, 0}), 0);
}

TEST(Farkas, InfiniteBoundsForgiveOnlyRoundingNoise) {
  // Two rows over a free column that cancel only up to the given error.
  const auto violation = [](double error) {
    const LpModel lp = denseLp({0}, {{-kInf, kInf}}, {{1.0 / 3}, {-1.0 / 3 * (1 + error)}},
                               {{1, kInf}, {1, kInf}});
    return farkasViolation(lp, {1, 1});
  };
  EXPECT_GT(violation(0), 0.5);
  EXPECT_GT(violation(1e-15), 0.5);
  EXPECT_LE(violation(1e-10), 0);
}

TEST(Ray, NeedsImprovementAndRecession) {
  const LpModel lp = denseLp({-1, 0}, {{0, kInf}, {0, kInf}}, {{1, -1}}, {{-kInf, 2}});
  EXPECT_DOUBLE_EQ(rayImprovement(lp, {2, 2}), -1);
  EXPECT_EQ(rayImprovement(lp, {2, 1}), 0) << "leaves the row";
  EXPECT_EQ(rayImprovement(lp, {0, 1}), 0) << "improves nothing";
  EXPECT_EQ(rayImprovement(lp, {1, -1}), 0) << "leaves a bound";
  EXPECT_EQ(rayImprovement(lp, {0, 0}), 0);
}

// The reference solver and the checks watch each other.
TEST(Reference, AnswersCarryTheirProof) {
  int seen[3] = {0, 0, 0};
  for (std::uint64_t seed = 0; seed < 4000; ++seed) {
    const LpModel lp = test::randomLp(seed);
    const LpSolution s = test::solveReference(lp);
    SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + test::describe(lp));
    if (s.status == LpStatus::Optimal) {
      ++seen[0];
      ASSERT_TRUE(test::isOptimal(lp, s, 1e-8));
      ASSERT_TRUE(test::isBasicSolution(lp, s, 1e-8));
    } else if (s.status == LpStatus::Infeasible) {
      ++seen[1];
      ASSERT_GT(farkasViolation(lp, s.farkas), 0);
    } else {
      ++seen[2];
      ASSERT_LT(rayImprovement(lp, s.ray), 0);
    }
  }
  for (const int count : seen) EXPECT_GT(count, 300);
}

}  // namespace
}  // namespace tarvik
