// Memory limits on a model that needs more than they allow.
#include <sys/resource.h>
#include <sys/wait.h>

#include <vector>

#include "base/random.h"
#include "env_fixture.h"

namespace {

using tarvik_test::EnvTest;

class MemoryLimitTest : public EnvTest {
 protected:
  // A feasible and bounded linear model: cover every row at least cost.
  int load(int numVars, int numConstrs, int perColumn) {
    tarvik::Random random(7);
    std::vector<int> begin, length(numVars, perColumn), index;
    std::vector<double> value, objective, rhs(numConstrs, 1.0);
    for (int j = 0; j < numVars; ++j) {
      begin.push_back(j * perColumn);
      objective.push_back(random.uniform(1, 10));
      const int first = random.below(numConstrs);
      for (int k = 0; k < perColumn; ++k) {
        index.push_back((first + k * 37) % numConstrs);
        value.push_back(random.uniform(0.5, 2));
      }
    }
    const std::vector<char> sense(numConstrs, TVK_GREATER_EQUAL);
    return TVKloadmodel(env_, &model_, "cover", numVars, numConstrs, 1, 0, objective.data(),
                        sense.data(), rhs.data(), begin.data(), length.data(), index.data(),
                        value.data(), nullptr, nullptr, nullptr, nullptr, nullptr);
  }
  int status() const {
    int value = 0;
    EXPECT_EQ(TVKgetintattr(model_, "Status", &value), 0);
    return value;
  }
  void TearDown() override {
    EXPECT_EQ(TVKfreemodel(model_), 0);
    EnvTest::TearDown();
  }

  TVKmodel *model_ = nullptr;
};

double peakMegabytes() {
  rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024;
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kOwnHeap = false;  // sanitizers keep freed memory and shadows of it
#else
constexpr bool kOwnHeap = true;
#endif

TEST_F(MemoryLimitTest, TheHardLimitHoldsForTheWholeProcess) {
  start();
  // In a process of its own: the peak of the operating system never falls.
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    TVKsetdblparam(env_, "MemLimit", 0.05);
    const double before = peakMegabytes();
    int code = load(60000, 2000, 15);
    if (code == 0) code = TVKoptimize(model_);
    const bool limited = code == TVK_ERROR_OUT_OF_MEMORY || (code == 0 && status() == 17);
    const bool usable = TVKsetintparam(env_, "Threads", 1) == 0;
    // The vectors of the caller are not the library's.
    const double callers = 60000 * 15 * 12e-6 * 1.5;
    const double used = peakMegabytes() - before - callers;
    if (kOwnHeap && used > 55) std::fprintf(stderr, "%.1f MB\n", used);
    _exit(!limited ? 1 : !usable ? 2 : kOwnHeap && used > 55 ? 3 : 0);
  }
  int result = -1;
  ASSERT_EQ(waitpid(child, &result, 0), child);
  ASSERT_TRUE(WIFEXITED(result));
  EXPECT_EQ(WEXITSTATUS(result), 0);
}

TEST_F(MemoryLimitTest, AfterARefusalAHigherLimitSolvesTheModel) {
  start();
  ASSERT_EQ(load(3000, 300, 10), 0);
  TVKenv *own = TVKgetenv(model_);
  ASSERT_EQ(TVKsetdblparam(own, "MemLimit", 0.0001), 0);
  EXPECT_EQ(TVKoptimize(model_), TVK_ERROR_OUT_OF_MEMORY);
  EXPECT_STREQ(TVKgetmerrormsg(model_), "Out of memory");
  // The limit is the model's own.
  TVKmodel *other = nullptr;
  EXPECT_EQ(TVKnewmodel(env_, &other, "other", 100000, nullptr, nullptr, nullptr, nullptr, nullptr),
            0);
  EXPECT_EQ(TVKfreemodel(other), 0);
  ASSERT_EQ(TVKsetdblparam(own, "MemLimit", 1), 0);
  EXPECT_EQ(TVKoptimize(model_), 0);
  EXPECT_EQ(status(), TVK_OPTIMAL);
}

TEST_F(MemoryLimitTest, TheSoftLimitEndsTheSolveInOrder) {
  start();
  ASSERT_EQ(load(3000, 300, 10), 0);
  ASSERT_EQ(TVKsetdblparam(TVKgetenv(model_), "SoftMemLimit", 0.0001), 0);
  EXPECT_EQ(TVKoptimize(model_), 0);
  EXPECT_EQ(status(), TVK_MEM_LIMIT);
}

TEST_F(MemoryLimitTest, WithoutCountingTheLimitIsIneffective) {
  create();
  ASSERT_EQ(TVKsetintparam(env_, "TARV_PAR_NOMEMCOUNT", 1), 0);
  ASSERT_EQ(TVKsetdblparam(env_, "MemLimit", 0.0001), 0);
  ASSERT_EQ(TVKstartenv(env_), 0);
  ASSERT_EQ(load(300, 30, 5), 0);
  takeLog();
  EXPECT_EQ(TVKoptimize(model_), 0);
  EXPECT_EQ(status(), TVK_OPTIMAL);
  EXPECT_NE(
      takeLog().find("Warning: memory counting is disabled - MemLimit parameter ineffective\n"),
      std::string::npos);
}

}  // namespace
