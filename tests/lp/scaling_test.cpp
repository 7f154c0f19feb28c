#include "lp/scaling.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/random_lp.h"

namespace tarvik {
namespace {

// A matrix that badly chosen units have spread over many orders of magnitude.
LpModel badlyScaled() {
  test::RandomLpOptions options;
  options.maxRows = 30;
  options.maxCols = 40;
  LpModel lp;
  for (std::uint64_t seed = 0; lp.numRows < 15 || lp.numCols < 15; ++seed)
    lp = test::randomLp(seed, options);
  for (int j = 0; j < lp.numCols; ++j)
    for (NzIndex k = lp.a.start[j]; k < lp.a.start[j + 1]; ++k)
      lp.a.value[k] *= std::pow(10.0, j % 7 - 3) * std::pow(7.0, lp.a.index[k] % 5);
  return lp;
}

double spread(const LpModel &lp, const Scaling &s) {
  double low = 1e300, high = 0;
  for (int j = 0; j < lp.numCols; ++j) {
    for (NzIndex k = lp.a.start[j]; k < lp.a.start[j + 1]; ++k) {
      double size = std::fabs(lp.a.value[k]);
      if (s.active()) size *= s.row[lp.a.index[k]] * s.col[j];
      low = std::min(low, size);
      high = std::max(high, size);
    }
  }
  return high / low;
}

TEST(Scaling, FactorsArePowersOfTwoAndReduceTheSpread) {
  const LpModel lp = badlyScaled();
  for (const int flag : {-1, 1, 2, 3}) {
    SCOPED_TRACE(flag);
    const Scaling s = computeScaling(lp, flag);
    ASSERT_TRUE(s.active());
    for (const auto &factors : {s.row, s.col}) {
      for (const double factor : factors) {
        int exponent = 0;
        EXPECT_EQ(std::frexp(factor, &exponent), 0.5);
      }
    }
    EXPECT_LT(spread(lp, s), (flag == 1 ? 1e-2 : 1e-5) * spread(lp, {}));
    for (int j = 0; j < lp.numCols; ++j) {  // columns are equilibrated last
      double largest = 0;
      for (NzIndex k = lp.a.start[j]; k < lp.a.start[j + 1]; ++k)
        largest = std::max(largest, std::fabs(lp.a.value[k]) * s.row[lp.a.index[k]] * s.col[j]);
      if (largest == 0) continue;
      EXPECT_GT(largest, 0.5);
      EXPECT_LE(largest, 1);
    }
  }
}

TEST(Scaling, UnknownFactorsFollowFromTheKnownOnes) {
  const LpModel lp = badlyScaled();
  const Scaling full = computeScaling(lp, 2);
  Scaling known = full;
  for (std::size_t j = 1; j < known.col.size(); j += 2) known.col[j] = 0;
  known.row.pop_back();
  known.row.front() = 0;
  const Scaling completed = completeScaling(lp, 2, known);
  ASSERT_EQ(completed.row.size(), full.row.size());
  EXPECT_EQ(completed.col.front(), full.col.front());
  EXPECT_EQ(completed.row[1], full.row[1]);
  for (const auto &factors : {completed.row, completed.col})
    for (const double factor : factors) EXPECT_GT(factor, 0);
  EXPECT_LT(spread(lp, completed), 1e-3 * spread(lp, {}));
  EXPECT_FALSE(completeScaling(lp, 0, known).active());
}

TEST(Scaling, LeavesAloneWhatNeedsNone) {
  const LpModel good =
      test::denseLp({1, 1}, {{0, 1}, {0, 1}}, {{1, -1}, {0.5, 4}}, {{0, 1}, {0, 1}});
  EXPECT_FALSE(computeScaling(good, -1).active());
  EXPECT_TRUE(computeScaling(good, 2).active());
  EXPECT_FALSE(computeScaling(badlyScaled(), 0).active());
  EXPECT_FALSE(computeScaling(test::denseLp({1}, {{0, 1}}, {}, {}), 3).active());
}

}  // namespace
}  // namespace tarvik
