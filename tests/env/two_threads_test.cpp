// Environments are independent of each other: each may be used from a thread of its own.
#include <thread>

#include "env_fixture.h"
#include "small_program.h"

namespace {

using tarvik_test::collectLog;
using tarvik_test::EnvTest;
using tarvik_test::SmallProgram;

void useEnvironment(int which, std::string &log) {
  const std::string logName = "thread" + std::to_string(which) + ".log";
  for (int round = 0; round < 20; ++round) {
    TVKenv *env = nullptr;
    ASSERT_EQ(TVKemptyenv(&env), 0);
    TVKsetlogcallbackfuncenv(env, collectLog, &log);
    TVKsetintparam(env, "LogToConsole", 0);
    ASSERT_EQ(TVKsetstrparam(env, "LogFile", logName.c_str()), 0);
    ASSERT_EQ(TVKstartenv(env), 0) << TVKgeterrormsg(env);
    ASSERT_EQ(TVKsetintparam(env, "Threads", which), 0);
    TVKenv *child = TVKgettuneenv(env, round);
    ASSERT_NE(child, nullptr);
    ASSERT_NE(TVKsetintparam(child, "nonsense", 1), 0);
    {
      SmallProgram program(env, which == 1 ? "1" : "2");
      ASSERT_EQ(program.run(), 0);
    }
    ASSERT_EQ(TVKfreeenv(env), 0);
  }
}

class TwoThreadsTest : public EnvTest {};

TEST_F(TwoThreadsTest, WorkWithoutTouchingEachOther) {
  std::string logs[2];
  std::thread first(useEnvironment, 1, std::ref(logs[0]));
  std::thread second(useEnvironment, 2, std::ref(logs[1]));
  first.join();
  second.join();
  EXPECT_NE(logs[0].find("Set parameter Threads to value 1\n"), std::string::npos);
  EXPECT_EQ(logs[0].find("Set parameter Threads to value 2\n"), std::string::npos);
  EXPECT_NE(logs[1].find("Set parameter Threads to value 2\n"), std::string::npos);
}

}  // namespace
