// The number of threads that a solve may use.
#include "env/env.h"
#include "env_fixture.h"

namespace {

using tarvik_test::EnvTest;
using tarvik_test::VariableScope;

class EffectiveThreadsTest : public EnvTest {};

TEST_F(EffectiveThreadsTest, FollowVariablesAndParameters) {
  struct Case {
    const char *cores, *maxCores;
    int threads, threadLimit, logical, expected;
  };
  for (const Case &c : {Case{"8", nullptr, 0, 0, 8, 8}, Case{"8", "3", 0, 0, 8, 3},
                        Case{"8", "9", 0, 0, 8, 8}, Case{"8", "3", 5, 0, 8, 5},
                        Case{"64", nullptr, 0, 0, 64, 32}, Case{"64", "16", 0, 0, 64, 16},
                        Case{"8", nullptr, 0, 2, 8, 2}, Case{"8", nullptr, 100, 0, 8, 100}}) {
    const VariableScope cores("TVK_CORES", c.cores);
    if (c.maxCores) setenv("TVK_MAXCORES", c.maxCores, 1);
    create();
    TVKsetintparam(env_, "Threads", c.threads);
    TVKsetintparam(env_, "ThreadLimit", c.threadLimit);
    ASSERT_EQ(TVKstartenv(env_), 0);
    unsetenv("TVK_MAXCORES");
    EXPECT_EQ(env_->logicalProcessors(), c.logical);
    EXPECT_EQ(env_->effectiveThreads(), c.expected) << c.cores << " " << c.threads;
    TVKfreeenv(env_);
  }
  for (const char *ignored : {"0", "2000", "-1", "many"}) {
    start();
    const int plain = env_->logicalProcessors();
    TVKfreeenv(env_);
    const VariableScope cores("TVK_CORES", ignored);
    start();
    EXPECT_EQ(env_->logicalProcessors(), plain) << ignored;
    TVKfreeenv(env_);
  }
  env_ = nullptr;
}

}  // namespace
