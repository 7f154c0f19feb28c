// Creation, start, precedence of settings, environment variables, and the end of environments.
#include <vector>

#include "env_fixture.h"

namespace {

using tarvik_test::collectLog;
using tarvik_test::EnvTest;
using tarvik_test::readFile;
using tarvik_test::VariableScope;

class LifecycleTest : public EnvTest {};

TEST_F(LifecycleTest, HandlesAreChecked) {
  int value;
  EXPECT_EQ(TVKgetintparam(nullptr, "Threads", &value), TVK_ERROR_NULL_ARGUMENT);
  alignas(16) static const unsigned foreign[64] = {589138552};
  auto *other = reinterpret_cast<TVKenv *>(const_cast<unsigned *>(foreign));
  EXPECT_EQ(TVKgetintparam(other, "Threads", &value), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_STREQ(TVKgeterrormsg(other), "");
  EXPECT_STREQ(TVKgeterrormsg(nullptr), "");
  EXPECT_EQ(TVKfreeenv(nullptr), 0);
  EXPECT_EQ(TVKfreeenv(other), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(TVKemptyenv(nullptr), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(TVKloadenv(nullptr, nullptr), TVK_ERROR_NULL_ARGUMENT);
}

TEST_F(LifecycleTest, StartingTwiceDoesNothing) {
  start();
  EXPECT_EQ(TVKsetintparam(env_, "Threads", 2), 0);
  takeLog();
  EXPECT_EQ(TVKstartenv(env_), 0);
  EXPECT_EQ(takeLog(), "");
  EXPECT_EQ(intParam("Threads"), 2);
}

TEST_F(LifecycleTest, CallersSettingsWinOverTheSettingsFile) {
  write("tarvik.env", "Threads 4\nOutputFlag 1\nLogToConsole 1\nMIPGap 0.5\nLogFile file.log\n");
  create();
  EXPECT_EQ(TVKsetintparam(env_, "Threads", 2), 0);
  EXPECT_EQ(TVKsetstrparam(env_, "LogFile", "mine.log"), 0);
  EXPECT_EQ(TVKsetstrparam(env_, "ServerPassword", "secret"), 0);
  ::testing::internal::CaptureStdout();
  EXPECT_EQ(TVKstartenv(env_), 0);
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(takeLog(),
            "Set parameter Threads to value 4\n"
            "Set parameter LogToConsole to value 1\n"
            "Set parameter MIPGap to value 0.5\n"
            "Set parameter LogFile to value \"file.log\"\n"
            "Set parameter ServerPassword\n"
            "Set parameter LogFile to value \"mine.log\"\n"
            "Set parameter Threads to value 2\n"
            "Using tarvik.env file\n");
  EXPECT_EQ(intParam("Threads"), 2);
  EXPECT_EQ(intParam("LogToConsole"), 0);
  EXPECT_EQ(dblParam("MIPGap"), 0.5);
  EXPECT_EQ(strParam("LogFile"), "mine.log");
  EXPECT_NE(readFile("mine.log").find("Using tarvik.env file\n"), std::string::npos);
}

TEST_F(LifecycleTest, ASilencedStartPrintsNothing) {
  write("tarvik.env", "OutputFlag 1\nThreads 4\n");
  ASSERT_EQ(TVKemptyenv(&env_), 0);
  TVKsetlogcallbackfuncenv(env_, collectLog, &log_);
  ASSERT_EQ(TVKsetintparam(env_, "OutputFlag", 0), 0);
  ::testing::internal::CaptureStdout();
  EXPECT_EQ(TVKstartenv(env_), 0);
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(takeLog(), "");
  EXPECT_EQ(intParam("OutputFlag"), 0);
  EXPECT_EQ(intParam("Threads"), 4);
}

TEST_F(LifecycleTest, ThreadLimitLowersThreads) {
  create();
  TVKsetintparam(env_, "Threads", 8);
  TVKsetintparam(env_, "ThreadLimit", 3);
  EXPECT_EQ(TVKstartenv(env_), 0);
  EXPECT_NE(
      takeLog().find("Limit parameter Threads to value 3\nSet parameter Threads to value 3\n"),
      std::string::npos);
  EXPECT_EQ(intParam("Threads"), 3);
  EXPECT_EQ(TVKsetintparam(env_, "Threads", 4), 0);
  EXPECT_EQ(takeLog(), "Warning: Unable to set parameter Threads to value 4 (limit is 3)\n");
  EXPECT_EQ(TVKsetintparam(env_, "Threads", 2), 0);
  EXPECT_EQ(TVKresetparams(env_), 0);
  EXPECT_EQ(intParam("Threads"), 0);
}

TEST_F(LifecycleTest, MemoryVariableLowersTheLimits) {
  {
    const VariableScope variable("TVK_MEMLIMIT", "-3");
    start();
    EXPECT_EQ(dblParam("SoftMemLimit"), 3);
    EXPECT_EQ(dblParam("MemLimit"), 1e100);
    EXPECT_EQ(TVKfreeenv(env_), 0);
  }
  for (const auto &[text, expected] :
       {std::pair{"2.5", 2.5}, {"10", 5.0}, {"1e100", 5.0}, {"much", 5.0}}) {
    const VariableScope variable("TVK_MEMLIMIT", text);
    create();
    TVKsetdblparam(env_, "MemLimit", 5);
    ASSERT_EQ(TVKstartenv(env_), 0);
    EXPECT_EQ(dblParam("MemLimit"), expected) << text;
    EXPECT_EQ(TVKfreeenv(env_), 0);
  }
  env_ = nullptr;
}

TEST_F(LifecycleTest, WithoutLocalDiskTheFileParametersAreLocked) {
  create();
  TVKsetintparam(env_, "TARV_PAR_NOLOCALDISK", 1);
  TVKsetstrparam(env_, "NodefileDir", "x");
  EXPECT_EQ(TVKstartenv(env_), 0);
  EXPECT_EQ(strParam("NodefileDir"), ".");
  takeLog();
  EXPECT_EQ(TVKsetstrparam(env_, "SolFiles", "y"), 0);
  EXPECT_EQ(
      takeLog(),
      "Warning: changing parameter SolFiles on this environment is not allowed, keeping value "
      "\n");
  EXPECT_EQ(TVKfreeenv(env_), 0);
  // The settings file may ask for it too; what it set before is reset.
  write("tarvik.env", "NodefileStart 0.5\nTARV_PAR_NOLOCALDISK 1\n");
  create();
  takeLog();
  EXPECT_EQ(TVKstartenv(env_), 0);
  EXPECT_NE(takeLog().find("Reset param NodefileStart to default value\n"), std::string::npos);
  EXPECT_EQ(dblParam("NodefileStart"), 1e100);
}

TEST_F(LifecycleTest, RemoteServicesAreRefusedAtTheStart) {
  EXPECT_EQ(TVKloadenvadv(&env_, nullptr, -1, 11, 0, 3, "server", nullptr, nullptr, nullptr, 0, -1,
                          nullptr, nullptr, nullptr, nullptr, collectLog, &log_),
            TVK_ERROR_NOT_SUPPORTED);
  ASSERT_NE(env_, nullptr);
  EXPECT_NE(message(), "");
  EXPECT_EQ(TVKstartenv(env_), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(message(), "ERROR: Environment already started");
}

TEST_F(LifecycleTest, LoadingTakesItsArguments) {
  ::testing::internal::CaptureStdout();
  ASSERT_EQ(TVKloadenvadv(&env_, "adv.log", 0, 11, 0, 3, nullptr, nullptr, nullptr, nullptr, 7, 30,
                          nullptr, nullptr, nullptr, nullptr, collectLog, &log_),
            0);
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");  // this interface prints by callback
  EXPECT_EQ(intParam("CSPriority"), 7);
  EXPECT_EQ(intParam("CSIdleTimeout"), 30);
  EXPECT_EQ(strParam("LogFile"), "adv.log");
  EXPECT_EQ(takeLog(),
            "Set parameter CSPriority to value 7\nSet parameter CSIdleTimeout to value 30\n"
            "Set parameter LogFile to value \"adv.log\"\n");
  EXPECT_NE(readFile("adv.log").find(", Python) logging started "), std::string::npos);
  TVKlogcallback callback = nullptr;
  void *data = nullptr;
  EXPECT_EQ(TVKgetlogcallbackfuncenv(env_, &callback, &data), 0);
  EXPECT_EQ(callback, &collectLog);
  EXPECT_EQ(data, &log_);
  EXPECT_EQ(TVKgetlogcallbackfuncenv(env_, nullptr, nullptr), 0);
}

TEST_F(LifecycleTest, TuningEnvironmentsAreChildren) {
  start();
  TVKsetintparam(env_, "Threads", 3);
  TVKenv *tune = TVKgettuneenv(env_, 2000000000);
  ASSERT_NE(tune, nullptr);
  EXPECT_EQ(TVKgettuneenv(env_, 2000000000), tune);
  int threads = 0;
  EXPECT_EQ(TVKgetintparam(tune, "Threads", &threads), 0);
  EXPECT_EQ(threads, 3);
  EXPECT_EQ(TVKsetintparam(tune, "Threads", 1), 0);
  EXPECT_EQ(intParam("Threads"), 3);
  takeLog();
  EXPECT_EQ(TVKsetstrparam(tune, "LogFile", "x"), 0);
  EXPECT_EQ(takeLog(),
            "Warning: changing parameter LogFile on this environment is not allowed, keeping value "
            "\n");
  EXPECT_EQ(TVKsetintparam(tune, "TARV_PAR_BUFFERRPC", 1), 0);
  EXPECT_EQ(
      takeLog(),
      "Warning: changing parameter TARV_PAR_BUFFERRPC has only an effect if set in the master "
      "environment.\n");
  EXPECT_EQ(TVKsetintparam(env_, "Method", 1), 0);
  EXPECT_EQ(TVKsetintparam(env_, "Method", 2), 0);
  EXPECT_EQ(takeLog(),
            "Warning: parameter changes on this environment will not affect existing models.\n"
            "Set parameter Method to value 1\nSet parameter Method to value 2\n");
  EXPECT_EQ(TVKfreeenv(tune), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(TVKgettuneenv(env_, -1), nullptr);
  EXPECT_EQ(TVKgettuneenv(nullptr, 0), nullptr);
  TVKdiscardtuneenvs(env_);
  TVKdiscardtuneenvs(nullptr);
  EXPECT_NE(TVKgettuneenv(env_, 0), nullptr);
}

TEST_F(LifecycleTest, ModelsHaveChildEnvironments) {
  start();
  TVKmodel *model = nullptr;
  ASSERT_EQ(TVKnewmodel(env_, &model, "m", 0, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
  ASSERT_EQ(TVKsetintparam(TVKgetenv(model), "Threads", 3), 0);
  EXPECT_EQ(TVKgetconcurrentenv(model, 64), nullptr);
  EXPECT_EQ(TVKgetconcurrentenv(model, -1), nullptr);
  EXPECT_EQ(TVKgetconcurrentenv(nullptr, 0), nullptr);
  EXPECT_EQ(TVKgetmultiobjenv(model, -1), nullptr);
  TVKenv *last = TVKgetconcurrentenv(model, 63);
  TVKenv *objective = TVKgetmultiobjenv(model, 1000000);
  ASSERT_NE(last, nullptr);
  ASSERT_NE(objective, nullptr);
  EXPECT_NE(last, objective);
  EXPECT_EQ(TVKgetconcurrentenv(model, 63), last);
  for (TVKenv *child : {last, objective}) {
    int threads = 0;
    EXPECT_EQ(TVKgetintparam(child, "Threads", &threads), 0);
    EXPECT_EQ(threads, 3);
    unsigned flags = 0;
    EXPECT_EQ(TVKgetparamflags(child, "LogFile", &flags), 0);
    EXPECT_EQ(flags & 0x100u, 0x100u);
  }
  EXPECT_EQ(TVKfreeenv(TVKgetenv(model)), TVK_ERROR_INVALID_ARGUMENT);
  TVKdiscardconcurrentenvs(model);
  TVKdiscardmultiobjenvs(model);
  TVKdiscardconcurrentenvs(nullptr);
  TVKdiscardmultiobjenvs(nullptr);
  EXPECT_NE(TVKgetconcurrentenv(model, 0), nullptr);
  EXPECT_EQ(TVKfreemodel(model), 0);
}

TEST_F(LifecycleTest, VersionFillsWhatIsAsked) {
  int minor = -1, major = -1, technical = -1;
  EXPECT_EQ(TVKversion(nullptr, &minor, nullptr), 0);
  EXPECT_EQ(minor, 0);
  EXPECT_EQ(TVKversion(&major, nullptr, &technical), 0);
  EXPECT_EQ(major, 11);
  EXPECT_EQ(technical, 3);
}

}  // namespace
