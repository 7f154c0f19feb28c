// The rules by which gaps end a search, and the columns in which the log shows values.
#include <gtest/gtest.h>

#include "mip/gap_rules.h"
#include "mip/node_log.h"

namespace tarvik {
namespace {

TEST(GapRules, RelativeGapKnowsItsLimits) {
  EXPECT_EQ(mipRelativeGap(1, 90, 100), 0.1);
  EXPECT_EQ(mipRelativeGap(-1, 110, 100), 0.1);
  EXPECT_EQ(mipRelativeGap(1, 101, 100), 0);
  EXPECT_EQ(mipRelativeGap(1, kUndefined, 100), kUndefined);
  EXPECT_EQ(mipRelativeGap(1, -kUserInf, 100), kUserInf);
  EXPECT_EQ(mipRelativeGap(1, -1e-7, 0), kUserInf);  // nothing to be relative to
}

TEST(GapRules, ZeroGapsNeverHold) {
  MipOptions options;
  options.mipGap = options.mipGapAbs = 0;
  EXPECT_FALSE(mipGapReached(options, 5, 5));
  EXPECT_EQ(mipPruningBound(options, 5), kUserInf);
  options.mipGapAbs = 1e-10;
  EXPECT_TRUE(mipGapReached(options, 0, 0));
  options.mipGap = 0.01;
  EXPECT_TRUE(mipGapReached(options, 100, 99.5));
  EXPECT_FALSE(mipGapReached(options, 100, 99));  // the comparison is strict
  EXPECT_NEAR(mipPruningBound(options, 100), 99, 1e-3);
  EXPECT_EQ(mipPruningBound(options, kUserInf), kUserInf);
}

TEST(GapRules, SolutionCutoffUsesTheStepsOfTheObjective) {
  MipOptions options;
  EXPECT_EQ(mipSolutionCutoff(options, kUserInf, 1, 0), kUserInf);
  const double plain = mipSolutionCutoff(options, 12, 0, 0);
  EXPECT_LT(plain, 12);
  EXPECT_GT(plain, 12 - 1e-8);
  // With objectives ... 10.5, 11.5, 12.5 the next better one than 12.5 is 11.5.
  const double stepped = mipSolutionCutoff(options, 12.5, 1, 0.5);
  EXPECT_GE(stepped, 11.5);
  EXPECT_LT(stepped, 11.6);
  options.cutoff = 3;
  EXPECT_EQ(mipSolutionCutoff(options, 12, 0, 0), 3);
}

TEST(GapRules, PoolGapsAllowWorseSolutions) {
  MipOptions options;
  EXPECT_EQ(mipPoolCutoff(options, 10), kUserInf);
  options.poolGap = 0.1;
  EXPECT_NEAR(mipPoolCutoff(options, 10), 11, 1e-6);
  options.poolGapAbs = 0.5;
  EXPECT_NEAR(mipPoolCutoff(options, 10), 10.5, 1e-6);
}

TEST(NodeLogFields, ShowAsManyDigitsAsFit) {
  EXPECT_STREQ(formatField(0, 10).text, "0.00000");
  EXPECT_STREQ(formatField(3.25, 10).text, "3.25000");
  EXPECT_STREQ(formatField(1234.5678901, 10).text, "1234.56789");
  EXPECT_STREQ(formatField(-1234.5678, 10).text, "-1234.5678");
  EXPECT_STREQ(formatField(12345678.9, 10).text, "1.2346e+07");
  EXPECT_STREQ(formatField(3089, 12).text, "3089.0000000");
}

}  // namespace
}  // namespace tarvik
