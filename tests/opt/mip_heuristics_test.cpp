// Parameters of the heuristics through the C interface: what runs, and what the log says of it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tiny_model.h"

using tiny::LoggedEnv;
namespace {

// Rows of binaries of which exactly one is chosen, around a hidden solution; columns 3k are in it.
class MipHeuristics : public testing::Test {
 protected:
  void SetUp() override {
    const int n = 60, rows = 25;
    std::vector<double> obj;
    for (int j = 0; j < n; ++j) obj.push_back(1 + (j * 7) % 11);
    const std::vector<char> types(n, 'B');
    ASSERT_EQ(TVKnewmodel(env_.get(), &model_, "rows", n, obj.data(), nullptr, nullptr,
                          const_cast<char *>(types.data()), nullptr),
              0);
    unsigned state = 12345;
    const auto below = [&](unsigned k) { return (state = state * 1664525u + 1013904223u) / 7 % k; };
    for (int i = 0; i < rows; ++i) {
      std::vector<int> index{static_cast<int>(3 * below(n / 3))};
      for (int j = 0; j < n; ++j)
        if (j % 3 != 0 && below(n) < 6) index.push_back(j);
      std::vector<double> value(index.size(), 1);
      ASSERT_EQ(TVKaddconstr(model_, static_cast<int>(index.size()), index.data(), value.data(),
                             TVK_EQUAL, 1, nullptr),
                0);
    }
    ASSERT_EQ(TVKupdatemodel(model_), 0);
    set("Presolve", "0");
    set("Heuristics", "0");
    set("CutPasses", "0");
    set("NodeLimit", "0");
  }
  void TearDown() override { TVKfreemodel(model_); }

  void set(const char *name, const char *value) {
    ASSERT_EQ(TVKsetparam(TVKgetenv(model_), name, value), 0) << name;
  }
  // The log of a solve from scratch.
  const std::string &solve() {
    EXPECT_EQ(TVKreset(model_, 0), 0);
    env_.log().clear();
    EXPECT_EQ(TVKoptimize(model_), 0);
    return env_.log();
  }
  bool says(const char *part) const { return env_.logged(part); }
  int solutions() {
    int count = -1;
    EXPECT_EQ(TVKgetintattr(model_, "SolCount", &count), 0);
    return count;
  }

  LoggedEnv env_;
  TVKmodel *model_ = nullptr;
};

TEST_F(MipHeuristics, NothingRunsWithoutAShare) {
  const std::string log = solve();
  for (const char *part : {"pump", "MinRel", "objective heuristic", "NoRel", "int2bin"})
    EXPECT_EQ(log.find(part), std::string::npos) << log;
  EXPECT_EQ(solutions(), 0);
}

TEST_F(MipHeuristics, OwnParametersNeedNoShare) {
  set("PumpPasses", "30");
  solve();
  EXPECT_TRUE(says("Feasibility pump: ")) << env_.log();
  set("PumpPasses", "0");
  set("ZeroObjNodes", "200");
  solve();
  EXPECT_TRUE(says("Exploring 200 nodes in zero objective heuristic\n"));
  EXPECT_TRUE(says("Feasible solution found by zero objective heuristic at node "));
  EXPECT_GE(solutions(), 1);
  set("ZeroObjNodes", "0");
  set("MinRelNodes", "300");
  solve();
  EXPECT_TRUE(says("Exploring 300 nodes in MinRel heuristic\n"));
  EXPECT_TRUE(says("Feasible solution found by MinRel heuristic at node "));
  set("MinRelNodes", "0");
  set("NoRelHeurWork", "0.2");
  solve();
  EXPECT_TRUE(says("Starting NoRel heuristic\n"));
  EXPECT_TRUE(says("NoRel heuristic complete\n"));
  EXPECT_GE(solutions(), 1);
}

// What lazy constraints may still refuse is only a candidate.
TEST_F(MipHeuristics, LazyConstraintsMakeCandidatesOfSolutions) {
  set("LazyConstraints", "1");
  set("MinRelNodes", "300");
  solve();
  EXPECT_TRUE(says("Solution candidate found by MinRel heuristic at node ")) << env_.log();
  EXPECT_FALSE(says("Feasible solution found by MinRel heuristic"));
  EXPECT_EQ(solutions(), 1);
}

TEST_F(MipHeuristics, GatesOfTheZeroObjectiveHeuristic) {
  set("MinRelNodes", "0");
  set("PumpPasses", "0");
  set("ZeroObjNodes", "0");
  set("MIPFocus", "1");
  set("Heuristics", "0.001");
  solve();
  EXPECT_FALSE(says("zero objective heuristic"));
}

TEST_F(MipHeuristics, SetsKeepThePumpAway) {
  int type = TVK_SOS_TYPE1, begin = 0, index[] = {1, 2};
  double weight[] = {1, 2};
  ASSERT_EQ(TVKaddsos(model_, 1, 2, &type, &begin, index, weight), 0);
  set("PumpPasses", "5");
  solve();
  EXPECT_TRUE(says("Feasibility pump skipped - SOS constraints in model\n")) << env_.log();
}

TEST_F(MipHeuristics, InfeasibilityProvenByTheWay) {
  // An odd cycle of pairs, of which exactly one is chosen each.
  for (int k = 0; k < 3; ++k) {
    int index[] = {k, (k + 1) % 3};
    double value[] = {1, 1};
    ASSERT_EQ(TVKaddconstr(model_, 2, index, value, TVK_EQUAL, 1, nullptr), 0);
  }
  for (const char *name : {"ZeroObjNodes", "MinRelNodes"}) {
    set("ZeroObjNodes", "0");
    set("MinRelNodes", "0");
    set(name, "1000");
    solve();
    int status = 0;
    ASSERT_EQ(TVKgetintattr(model_, "Status", &status), 0);
    EXPECT_EQ(status, TVK_INFEASIBLE) << env_.log();
  }
  EXPECT_TRUE(says("Model proven infeasible by MinRel heuristic\n")) << env_.log();
}

TEST_F(MipHeuristics, PartitionsAreFollowed) {
  solve();
  EXPECT_FALSE(says("partitions.\n"));
  for (int j = 0; j < 60; ++j)
    ASSERT_EQ(TVKsetintattrelement(model_, "Partition", j, 1 + j / 20), 0);
  set("PartitionPlace", "0");
  solve();
  EXPECT_TRUE(says("Ignoring partitions.\n"));
  EXPECT_FALSE(says("partition heuristic"));
  set("ZeroObjNodes", "200");
  // At the end of the search is the first call with an incumbent.
  set("PartitionPlace", "1");
  solve();
  EXPECT_TRUE(says("Using partitions.\n"));
  EXPECT_TRUE(says("Starting partition heuristic: 3 partitions, 1 threads\n")) << env_.log();
  EXPECT_TRUE(says("Completed partition heuristic\n"));
  set("ZeroObjNodes", "0");
  set("TARV_PAR_PARTRELAXANDFIXHEUR", "1");
  solve();
  EXPECT_TRUE(says("Relax-and-fix started: explore 0 nodes per partition (3 partitions)...\n"))
      << env_.log();
}

TEST_F(MipHeuristics, ImproveStartChangesTheShareOnce) {
  set("NodeLimit", "1e100");
  set("ImproveStartNodes", "0");
  solve();
  const char *lines =
      "\nResetting heuristic parameters to focus on improving solution\n"
      "(using Heuristics=0.5 and RINS=10)...\n\n";
  const std::size_t first = env_.log().find(lines);
  EXPECT_NE(first, std::string::npos) << env_.log();
  EXPECT_EQ(env_.log().find(lines, first + 1), std::string::npos);
  double share = -1;
  ASSERT_EQ(TVKgetdblparam(TVKgetenv(model_), "Heuristics", &share), 0);
  EXPECT_EQ(share, 0);
}

}  // namespace
