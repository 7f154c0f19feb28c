// Searches with several threads: as right as with one, and the same every time.
#include <gtest/gtest.h>

#include <cmath>

#include "mip/heuristic_fixture.h"
#include "mip/mip_solve.h"
#include "mip/quiet_solve.h"

namespace tarvik::test {
namespace {

MipOutcome solveWith(const MipModel &model, int threads, double nodeLimit) {
  MipOptions options;
  options.mipGap = 0;
  options.threads = threads;
  options.nodeLimit = nodeLimit;
  options.infProof = 1;
  return solveQuietly(model, options);
}

// Hard enough that the tree outlives the first round.
MipModel hardKnapsacks(int seed) {
  Random random(static_cast<std::uint64_t>(seed));
  MipModel model = randomPacking(25, 8, random);
  for (double &cost : model.lp.cost) cost = -100 - random.below(20);
  return model;
}

TEST(Threads, FindTheOptimumOfOne) {
  for (int seed = 1; seed <= 3; ++seed) {
    const MipModel model = hardKnapsacks(seed);
    const MipOutcome one = solveWith(model, 1, kUserInf);
    for (const int threads : {2, 3}) {
      const MipOutcome several = solveWith(model, threads, kUserInf);
      ASSERT_EQ(several.status, MipStatus::Optimal) << seed;
      EXPECT_NEAR(several.solutions.front().objective, one.solutions.front().objective, 1e-6)
          << seed;
      EXPECT_NEAR(several.bound, one.bound, 1e-6) << seed;
    }
  }
}

TEST(Threads, RepeatTheirSearchExactly) {
  for (int seed = 5; seed <= 7; ++seed) {
    const MipModel model = hardKnapsacks(seed);
    const MipOutcome first = solveWith(model, 3, 150), second = solveWith(model, 3, 150);
    EXPECT_EQ(first.status, second.status) << seed;
    EXPECT_EQ(first.explored, second.explored) << seed;
    EXPECT_EQ(first.iterations, second.iterations) << seed;
    EXPECT_EQ(first.bound, second.bound) << seed;
    ASSERT_EQ(first.solutions.size(), second.solutions.size()) << seed;
    for (std::size_t k = 0; k < first.solutions.size(); ++k)
      EXPECT_EQ(first.solutions[k].x, second.solutions[k].x) << seed;
  }
}

}  // namespace
}  // namespace tarvik::test
