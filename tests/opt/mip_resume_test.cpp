// A search that a limit has stopped goes on with the next call, as if it had not been stopped.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "tiny_model.h"

using tiny::LoggedEnv;

namespace {

// Equality knapsacks with two slacks each: thousands of nodes from few rows (market split).
class Resume : public testing::Test {
 protected:
  void SetUp() override { model_ = make(); }
  void TearDown() override {
    TVKfreemodel(model_);
    TVKfreemodel(other_);
  }

  TVKmodel *make() {
    constexpr int kBinaries = 18, kRows = 2;
    TVKmodel *model = nullptr;
    EXPECT_EQ(
        TVKnewmodel(env_.get(), &model, "split", 0, nullptr, nullptr, nullptr, nullptr, nullptr),
        0);
    for (int j = 0; j < kBinaries; ++j)
      EXPECT_EQ(TVKaddvar(model, 0, nullptr, nullptr, 0, 0, 1, TVK_BINARY, nullptr), 0);
    for (int i = 0; i < 2 * kRows; ++i)
      EXPECT_EQ(TVKaddvar(model, 0, nullptr, nullptr, 1, 0, TVK_INFINITY, TVK_CONTINUOUS, nullptr),
                0);
    EXPECT_EQ(TVKupdatemodel(model), 0);
    std::mt19937 random(3);
    for (int i = 0; i < kRows; ++i) {
      std::vector<int> index;
      std::vector<double> value;
      double sum = 0;
      for (int j = 0; j < kBinaries; ++j) {
        index.push_back(j);
        value.push_back(static_cast<double>(random() % 100));
        sum += value.back();
      }
      for (const int s : {0, 1}) {
        index.push_back(kBinaries + 2 * i + s);
        value.push_back(s == 0 ? 1 : -1);
      }
      EXPECT_EQ(TVKaddconstr(model, static_cast<int>(index.size()), index.data(), value.data(),
                             TVK_EQUAL, std::floor(sum / 2), nullptr),
                0);
    }
    for (const char *off : {"Heuristics", "Presolve", "Cuts"}) set(model, off, "0");
    set(model, "Threads", "1");
    EXPECT_EQ(TVKupdatemodel(model), 0);
    return model;
  }
  void set(TVKmodel *model, const char *name, const char *value) {
    ASSERT_EQ(TVKsetparam(TVKgetenv(model), name, value), 0) << name;
  }
  int solve(TVKmodel *model) {
    env_.log().clear();
    EXPECT_EQ(TVKoptimize(model), 0);
    int status = -1;
    EXPECT_EQ(TVKgetintattr(model, "Status", &status), 0);
    return status;
  }
  double attr(TVKmodel *model, const char *name) {
    double value = -1;
    EXPECT_EQ(TVKgetdblattr(model, name, &value), 0) << name;
    return value;
  }
  bool wentOn() const { return env_.logged("\nContinuing optimization...\n\n"); }

  LoggedEnv env_;
  TVKmodel *model_ = nullptr, *other_ = nullptr;
};

TEST_F(Resume, StepsLeadToWhereOneCallLeads) {
  ASSERT_EQ(solve(model_), TVK_OPTIMAL);
  const double nodes = attr(model_, "NodeCount"), iterations = attr(model_, "IterCount");
  ASSERT_GT(nodes, 200);
  other_ = make();
  double limit = 0;
  int status = TVK_NODE_LIMIT, calls = 0;
  for (; status == TVK_NODE_LIMIT; ++calls) {
    set(other_, "NodeLimit", std::to_string(limit += 50).c_str());
    status = solve(other_);
    EXPECT_EQ(wentOn(), calls > 0);
    EXPECT_LE(attr(other_, "ObjBound"), attr(model_, "ObjVal") + 1e-6);
  }
  EXPECT_EQ(status, TVK_OPTIMAL);
  EXPECT_GT(calls, 4);
  EXPECT_EQ(attr(other_, "NodeCount"), nodes);
  EXPECT_EQ(attr(other_, "IterCount"), iterations);
  EXPECT_EQ(attr(other_, "ObjVal"), attr(model_, "ObjVal"));
  EXPECT_LT(attr(other_, "Work"), attr(model_, "Work"));  // of the last call only
  // Solved to its end, it begins anew.
  EXPECT_EQ(solve(other_), TVK_OPTIMAL);
  EXPECT_FALSE(wentOn());
}

TEST_F(Resume, MemoryThatRunsOutKeepsTheTree) {
  ASSERT_EQ(solve(model_), TVK_OPTIMAL);
  other_ = make();
  set(other_, "NodeLimit", "60");
  ASSERT_EQ(solve(other_), TVK_NODE_LIMIT);
  set(other_, "NodeLimit", "1e100");
  set(other_, "SoftMemLimit", "1e-6");
  ASSERT_EQ(solve(other_), TVK_MEM_LIMIT);
  EXPECT_TRUE(wentOn());
  EXPECT_TRUE(env_.logged("Memory limit reached\n"));
  set(other_, "SoftMemLimit", "1e100");
  ASSERT_EQ(solve(other_), TVK_OPTIMAL);
  EXPECT_TRUE(wentOn());
  EXPECT_EQ(attr(other_, "NodeCount"), attr(model_, "NodeCount"));
  EXPECT_EQ(attr(other_, "ObjVal"), attr(model_, "ObjVal"));
}

TEST_F(Resume, OtherNumbersOfThreadsTakeOver) {
  ASSERT_EQ(solve(model_), TVK_OPTIMAL);
  // With cuts in the tree, too.
  for (const char *cuts : {"0", "2"}) {
    TVKfreemodel(other_);
    other_ = make();
    set(other_, "Cuts", cuts);
    const char *threads[] = {"2", "1", "3"};
    for (int k = 0; k < 3; ++k) {
      set(other_, "Threads", threads[k]);
      set(other_, "NodeLimit", std::to_string(40 * (k + 1)).c_str());
      ASSERT_EQ(solve(other_), TVK_NODE_LIMIT);
      EXPECT_EQ(wentOn(), k > 0);
    }
    set(other_, "NodeLimit", "1e100");
    ASSERT_EQ(solve(other_), TVK_OPTIMAL);
    EXPECT_NEAR(attr(other_, "ObjVal"), attr(model_, "ObjVal"), 1e-6);
  }
}

TEST_F(Resume, ChangedModelsAndWiderQuestionsBeginAnew) {
  set(model_, "NodeLimit", "50");
  ASSERT_EQ(solve(model_), TVK_NODE_LIMIT);
  ASSERT_EQ(TVKsetdblattrelement(model_, "Obj", 18, 1.5), 0);
  ASSERT_EQ(solve(model_), TVK_NODE_LIMIT);
  EXPECT_FALSE(wentOn());
  ASSERT_EQ(TVKreset(model_, 0), 0);
  ASSERT_EQ(solve(model_), TVK_NODE_LIMIT);
  EXPECT_FALSE(wentOn());
  // What a wide gap has cut off a narrow one asks for.
  other_ = make();
  set(other_, "MIPGap", "0.9");
  set(other_, "NodeLimit", "100");
  ASSERT_EQ(solve(other_), TVK_NODE_LIMIT);
  ASSERT_LT(attr(other_, "ObjVal"), 1e100);
  set(other_, "MIPGap", "0");
  set(other_, "NodeLimit", "1e100");
  ASSERT_EQ(solve(other_), TVK_OPTIMAL);
  EXPECT_FALSE(wentOn());
  ASSERT_EQ(TVKsetdblattrelement(model_, "Obj", 18, 1), 0);
  set(model_, "NodeLimit", "1e100");
  ASSERT_EQ(solve(model_), TVK_OPTIMAL);
  EXPECT_NEAR(attr(other_, "ObjVal"), attr(model_, "ObjVal"), 1e-6);
}

// Nothing beyond the cutoff may be left from before it was set, nor be found in old nodes.
TEST_F(Resume, ATighterCutoffHoldsForWhatIsKnown) {
  ASSERT_EQ(solve(model_), TVK_OPTIMAL);
  const double optimum = attr(model_, "ObjVal");
  for (const char *nodes : {"0", "30", "100"}) {
    for (const char *threads : {"1", "2"}) {
      ASSERT_EQ(TVKreset(model_, 1), 0);
      set(model_, "Threads", threads);
      set(model_, "Cutoff", "1e100");
      set(model_, "NodeLimit", nodes);
      ASSERT_EQ(solve(model_), TVK_NODE_LIMIT);
      set(model_, "NodeLimit", "1e100");
      set(model_, "Cutoff", std::to_string(optimum - 0.5).c_str());
      EXPECT_EQ(solve(model_), TVK_CUTOFF);
      int count = -1;
      ASSERT_EQ(TVKgetintattr(model_, "SolCount", &count), 0);
      EXPECT_EQ(count, 0);
    }
  }
}

TEST_F(Resume, AnInterruptedImprovementGoesOnImproving) {
  set(model_, "ImproveStartNodes", "20");
  set(model_, "NodeLimit", "60");
  ASSERT_EQ(solve(model_), TVK_NODE_LIMIT);
  const char *reset = "\nResetting heuristic parameters to focus on improving solution\n";
  EXPECT_TRUE(env_.logged(reset));
  set(model_, "NodeLimit", "1e100");
  ASSERT_EQ(solve(model_), TVK_OPTIMAL);
  EXPECT_TRUE(env_.logged(reset)) << env_.log();
  EXPECT_FALSE(wentOn());
  double heuristics = -1;
  EXPECT_EQ(TVKgetdblparam(TVKgetenv(model_), "Heuristics", &heuristics), 0);
  EXPECT_EQ(heuristics, 0);
}

TEST_F(Resume, SoftLimitsEndTheTree) {
  set(model_, "TARV_PAR_VTIMESOFTLIMIT", "1000");
  EXPECT_EQ(solve(model_), TVK_TIME_LIMIT);
  EXPECT_LT(attr(model_, "NodeCount"), 20);
  set(model_, "TARV_PAR_VTIMESOFTLIMIT", "1e100");
  EXPECT_EQ(solve(model_), TVK_OPTIMAL);
  EXPECT_TRUE(wentOn());
}

// A model may become linear while a search is kept.
TEST_F(Resume, KeptSearchesGiveWayToLinearSolves) {
  set(model_, "NodeLimit", "10");
  ASSERT_EQ(solve(model_), TVK_NODE_LIMIT);
  std::vector<char> types(22, TVK_CONTINUOUS);
  ASSERT_EQ(TVKsetcharattrarray(model_, "VType", 0, 22, types.data()), 0);
  ASSERT_EQ(solve(model_), TVK_OPTIMAL);
  EXPECT_NEAR(attr(model_, "ObjVal"), 0, 1e-6);
  double kappa = 0;
  EXPECT_EQ(TVKgetdblattr(model_, "Kappa", &kappa), 0);
}

}  // namespace
