// Solves in the background.
#include <sched.h>

#include <atomic>
#include <string>

#include "opt/tiny_model.h"

namespace {

using tiny::LoggedEnv;
using tiny::TinyModel;

// Holds the background solve at its first line until the test lets it go.
struct Gate {
  std::atomic<bool> reached{false}, open{false};

  static int hold(const char *line, void *data) {
    auto *gate = static_cast<Gate *>(data);
    if (!std::string(line).starts_with("Optimize a model")) return 0;
    gate->reached = true;
    while (!gate->open) sched_yield();
    return 0;
  }
  void waitUntilReached() const {
    while (!reached) sched_yield();
  }
};

// min x + y, x + 2y >= 4, 2x + y >= 4: optimum 8/3.
const tiny::Spec kModel{{1, 1}, {{{1, 2}, '>', 4}, {{2, 1}, '>', 4}}, {}, {}, TVK_MINIMIZE, 0};

int statusOf(TVKmodel *model) {
  int status = 0;
  EXPECT_EQ(TVKgetintattr(model, "Status", &status), 0);
  return status;
}

TEST(Async, OnlyTheStatusOfARunningModelCanBeAsked) {
  LoggedEnv env;
  TinyModel model(env, kModel);
  Gate gate;
  ASSERT_EQ(TVKsetlogcallbackfunc(model.get(), Gate::hold, &gate), 0);
  EXPECT_EQ(TVKsync(model.get()), 0) << "nothing was started";
  ASSERT_EQ(TVKoptimizeasync(model.get()), 0);
  gate.waitUntilReached();
  EXPECT_EQ(statusOf(model.get()), TVK_INPROGRESS);
  double value = 0;
  EXPECT_EQ(TVKgetdblattr(model.get(), "ObjVal", &value), TVK_ERROR_OPTIMIZATION_IN_PROGRESS);
  EXPECT_EQ(TVKoptimize(model.get()), TVK_ERROR_OPTIMIZATION_IN_PROGRESS);
  EXPECT_EQ(TVKoptimizeasync(model.get()), TVK_ERROR_OPTIMIZATION_IN_PROGRESS);
  EXPECT_EQ(TVKfreemodel(model.get()), TVK_ERROR_OPTIMIZATION_IN_PROGRESS);
  gate.open = true;
  EXPECT_EQ(TVKsync(model.get()), 0);
  EXPECT_EQ(statusOf(model.get()), TVK_OPTIMAL);
  EXPECT_NEAR(model.dblAttr("ObjVal"), 8.0 / 3, 1e-9);
}

TEST(Async, TerminateReachesTheBackground) {
  LoggedEnv env;
  TinyModel model(env, kModel);
  Gate gate;
  ASSERT_EQ(TVKsetlogcallbackfunc(model.get(), Gate::hold, &gate), 0);
  ASSERT_EQ(TVKoptimizeasync(model.get()), 0);
  EXPECT_EQ(TVKterminate(model.get()), 0);
  gate.open = true;
  EXPECT_EQ(TVKsync(model.get()), 0);
  EXPECT_EQ(statusOf(model.get()), TVK_INTERRUPTED);
  EXPECT_EQ(model.solve(), TVK_OPTIMAL);
}

TEST(Async, ErrorsWaitForTheSync) {
  LoggedEnv env;
  TinyModel model(env, kModel);
  int index = 0;
  double one = 1;
  ASSERT_EQ(TVKaddqpterms(model.get(), 1, &index, &index, &one), 0);
  ASSERT_EQ(TVKoptimizeasync(model.get()), 0);
  EXPECT_EQ(TVKsync(model.get()), TVK_ERROR_NOT_SUPPORTED);
  EXPECT_NE(std::string(TVKgetmerrormsg(model.get())).find("quadratic"), std::string::npos);
  EXPECT_EQ(TVKsync(model.get()), 0) << "reported once";
}

// A finished solve that nobody waited for hinders neither the next one nor the end of the model.
TEST(Async, TheSyncMayBeLeftOut) {
  LoggedEnv env;
  for (int round = 0; round < 20; ++round) {
    TinyModel model(env, kModel);
    ASSERT_EQ(TVKoptimizeasync(model.get()), 0);
    while (statusOf(model.get()) == TVK_INPROGRESS) sched_yield();
    EXPECT_EQ(model.solve(), TVK_OPTIMAL);
    ASSERT_EQ(TVKoptimizeasync(model.get()), 0);
    while (statusOf(model.get()) == TVK_INPROGRESS) sched_yield();
  }
}

}  // namespace
