// Mixed-integer solves through the C interface: log, limits, starts, results.
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "tiny_model.h"

using tiny::LoggedEnv;
namespace {

// max 5x + 4y + 3z, 2x + 3y + z <= 5, 4x + y + 2z <= 11,
// 3x + 4y + 2z <= 8, integral; its optimum is 13 at (2, 0, 1).
class Mip : public testing::Test {
 protected:
  void SetUp() override {
    double obj[] = {5, 4, 3}, ub[] = {10, 10, 10};
    char types[] = {'I', 'I', 'I'};
    ASSERT_EQ(TVKnewmodel(env_.get(), &model_, "knapsack", 3, obj, nullptr, ub, types, nullptr), 0);
    const double rows[3][3] = {{2, 3, 1}, {4, 1, 2}, {3, 4, 2}};
    const double rhs[] = {5, 11, 8};
    const char *names[] = {"c0", "c1", "c2"};
    int index[] = {0, 1, 2};
    for (int i = 0; i < 3; ++i) {
      double values[3] = {rows[i][0], rows[i][1], rows[i][2]};
      ASSERT_EQ(TVKaddconstr(model_, 3, index, values, TVK_LESS_EQUAL, rhs[i], names[i]), 0);
    }
    ASSERT_EQ(TVKsetintattr(model_, "ModelSense", TVK_MAXIMIZE), 0);
    ASSERT_EQ(TVKupdatemodel(model_), 0);
  }
  void TearDown() override { TVKfreemodel(model_); }

  void set(const char *name, const char *value) {
    ASSERT_EQ(TVKsetparam(TVKgetenv(model_), name, value), 0) << name;
  }
  int status() { return intAttr("Status"); }
  int intAttr(const char *name) {
    int value = -1;
    EXPECT_EQ(TVKgetintattr(model_, name, &value), 0) << name;
    return value;
  }
  double dblAttr(const char *name) {
    double value = -1;
    EXPECT_EQ(TVKgetdblattr(model_, name, &value), 0) << name;
    return value;
  }
  void start(double x, double y, double z) {
    double values[] = {x, y, z};
    ASSERT_EQ(TVKsetdblattrarray(model_, "Start", 0, 3, values), 0);
  }

  LoggedEnv env_;
  TVKmodel *model_ = nullptr;
};

TEST_F(Mip, OptimumWithItsLinesAndAttributes) {
  set("Presolve", "0");
  set("Heuristics", "0");
  ASSERT_EQ(TVKoptimize(model_), 0);
  EXPECT_EQ(status(), TVK_OPTIMAL);
  EXPECT_EQ(dblAttr("ObjVal"), 13);
  EXPECT_NEAR(dblAttr("ObjBound"), 13, 13 * 1e-4);
  EXPECT_LE(dblAttr("MIPGap"), 1e-4);
  EXPECT_GE(intAttr("SolCount"), 1);
  double x[3];
  ASSERT_EQ(TVKgetdblattrarray(model_, "X", 0, 3, x), 0);
  EXPECT_EQ(x[0] * 100 + x[1] * 10 + x[2], 201);
  double slack = -1;
  ASSERT_EQ(TVKgetdblattrelement(model_, "Slack", 1, &slack), 0);
  EXPECT_EQ(slack, 1);
  EXPECT_TRUE(env_.logged("Variable types: 0 continuous, 3 integer (0 binary)\n"));
  EXPECT_TRUE(env_.logged("\n\nRoot simplex log...\n\nIteration ")) << env_.log();
  EXPECT_TRUE(env_.logged("\nRoot relaxation: objective 1.")) << env_.log();
  EXPECT_TRUE(env_.logged("\nExplored "));
  EXPECT_TRUE(env_.logged("Optimal solution found (tolerance 1.00e-04)\n"));
  EXPECT_TRUE(env_.logged("\nBest objective 1.300000000000e+01, best bound "));
  double pi = 0;
  EXPECT_NE(TVKgetdblattrelement(model_, "Pi", 0, &pi), 0) << "integral models have no duals";
}

TEST_F(Mip, LimitsEndTheSearch) {
  // Fractional at the root.
  ASSERT_EQ(TVKsetdblattrelement(model_, "RHS", 2, 7.5), 0);
  set("Presolve", "0");
  set("Heuristics", "0");
  set("Cuts", "0");
  set("NodeLimit", "0");
  ASSERT_EQ(TVKoptimize(model_), 0);
  EXPECT_EQ(status(), TVK_NODE_LIMIT);
  EXPECT_TRUE(env_.logged("Node limit reached\n"));
  set("NodeLimit", "1e100");
  set("SolutionLimit", "1");
  ASSERT_EQ(TVKreset(model_, 0), 0);
  start(1, 0, 0);
  ASSERT_EQ(TVKoptimize(model_), 0);
  EXPECT_EQ(status(), TVK_SOLUTION_LIMIT);
  EXPECT_EQ(dblAttr("ObjVal"), 5);
  set("SolutionLimit", "2000000000");
  set("TimeLimit", "0");
  ASSERT_EQ(TVKreset(model_, 0), 0);
  ASSERT_EQ(TVKoptimize(model_), 0);
  EXPECT_EQ(status(), TVK_TIME_LIMIT);
}

TEST_F(Mip, InfeasibleAndUnboundedAreTold) {
  ASSERT_EQ(TVKsetdblattrelement(model_, "LB", 0, 3), 0);
  ASSERT_EQ(TVKoptimize(model_), 0);
  EXPECT_EQ(status(), TVK_INFEASIBLE);
  EXPECT_TRUE(env_.logged("Solution count 0\n"));
  EXPECT_TRUE(env_.logged("Model is infeasible\n"));
  ASSERT_EQ(TVKsetdblattrelement(model_, "LB", 0, 0), 0);
  ASSERT_EQ(TVKaddvar(model_, 0, nullptr, nullptr, 1, 0, TVK_INFINITY, TVK_INTEGER, "free"), 0);
  set("Presolve", "0");
  ASSERT_EQ(TVKoptimize(model_), 0);
  EXPECT_EQ(status(), TVK_UNBOUNDED) << env_.log();
}

// The model has solutions, but none that is good enough: infeasible would be a wrong answer.
TEST_F(Mip, CutoffsBeyondTheOptimumAreTold) {
  for (const char *cutoff : {"13.5", "20", "1000"}) {
    set("Cutoff", cutoff);
    ASSERT_EQ(TVKreset(model_, 0), 0);
    ASSERT_EQ(TVKoptimize(model_), 0);
    EXPECT_EQ(status(), TVK_CUTOFF) << cutoff;
    EXPECT_TRUE(env_.logged("\nModel objective exceeds cutoff\n"));
    EXPECT_NEAR(dblAttr("ObjBound"), std::stod(cutoff), 1e-6);
    EXPECT_EQ(intAttr("SolCount"), 0);
  }
  // What has no solution at all has none with a cutoff.
  ASSERT_EQ(TVKsetdblattrelement(model_, "LB", 0, 3), 0);
  ASSERT_EQ(TVKoptimize(model_), 0);
  EXPECT_EQ(status(), TVK_INFEASIBLE);
  ASSERT_EQ(TVKsetdblattrelement(model_, "LB", 0, 0), 0);
  set("Cutoff", "13");
  ASSERT_EQ(TVKoptimize(model_), 0);
  EXPECT_EQ(status(), TVK_OPTIMAL);
  EXPECT_EQ(dblAttr("ObjVal"), 13);
}

TEST_F(Mip, ObjectivesBeyondInfinityAreNotInfeasible) {
  ASSERT_EQ(TVKsetintattr(model_, "ModelSense", TVK_MINIMIZE), 0);
  ASSERT_EQ(TVKsetdblattrelement(model_, "Obj", 0, 1e99), 0);
  ASSERT_EQ(TVKsetdblattrelement(model_, "LB", 0, 1e3), 0);
  ASSERT_EQ(TVKsetdblattrelement(model_, "UB", 0, 1e4), 0);
  const int rows[] = {0, 1, 2};
  ASSERT_EQ(TVKdelconstrs(model_, 3, rows), 0);
  for (const char *presolve : {"0", "-1"}) {
    set("Presolve", presolve);
    ASSERT_EQ(TVKreset(model_, 0), 0);
    ASSERT_EQ(TVKoptimize(model_), 0);
    EXPECT_EQ(status(), TVK_CUTOFF) << presolve;
  }
}

TEST_F(Mip, StartsBeyondTheCutoffAreNoIncumbents) {
  start(1, 1, 0);
  set("Cutoff", "10");
  ASSERT_EQ(TVKoptimize(model_), 0);
  EXPECT_EQ(dblAttr("ObjVal"), 13);
  set("Cutoff", "20");
  ASSERT_EQ(TVKreset(model_, 1), 0);
  start(1, 1, 0);
  ASSERT_EQ(TVKoptimize(model_), 0);
  EXPECT_EQ(status(), TVK_CUTOFF);
  EXPECT_EQ(intAttr("SolCount"), 0);
}

TEST_F(Mip, StartsProveThatUnboundedIsNotInfeasible) {
  ASSERT_EQ(TVKaddvar(model_, 0, nullptr, nullptr, 1, 0, TVK_INFINITY, TVK_INTEGER, "free"), 0);
  ASSERT_EQ(TVKupdatemodel(model_), 0);
  start(1, 1, 0);
  ASSERT_EQ(TVKsetdblattrelement(model_, "Start", 3, 0), 0);
  ASSERT_EQ(TVKoptimize(model_), 0);
  EXPECT_EQ(status(), TVK_UNBOUNDED) << env_.log();
}

TEST_F(Mip, StartsAreLoadedCompletedOrRefused) {
  start(1, 1, 0);
  ASSERT_EQ(TVKoptimize(model_), 0);
  EXPECT_TRUE(env_.logged("Loaded user MIP start with objective 9\n")) << env_.log();
  EXPECT_EQ(dblAttr("ObjVal"), 13);
  ASSERT_EQ(TVKreset(model_, 1), 0);
  start(2, TVK_UNDEFINED, TVK_UNDEFINED);
  ASSERT_EQ(TVKoptimize(model_), 0);
  EXPECT_TRUE(env_.logged("user MIP start produced solution with objective 13 ")) << env_.log();
  ASSERT_EQ(TVKreset(model_, 1), 0);
  start(4, 4, 4);
  ASSERT_EQ(TVKoptimize(model_), 0);
  EXPECT_TRUE(env_.logged("user MIP start violates constraint c2 by 28.000000000\n")) << env_.log();
  EXPECT_TRUE(env_.logged("user MIP start did not produce a new incumbent solution\n"));
  EXPECT_EQ(dblAttr("ObjVal"), 13);
  set("StartNodeLimit", "-3");
  ASSERT_EQ(TVKreset(model_, 0), 0);
  ASSERT_EQ(TVKoptimize(model_), 0);
  EXPECT_TRUE(env_.logged("Skipped MIP start processing due to StartNodeLimit parameter\n"));
}

TEST_F(Mip, LargeModelsThatHardlyChangeKeepWhatTheyHad) {
  // min y + sum x, 0 <= x <= 1, 2 y + x0 >= 4; then a few of the x shall be one.
  constexpr int kVars = 2101;
  std::vector<double> obj(kVars, 1), ub(kVars, 1);
  std::vector<char> types(kVars, TVK_CONTINUOUS);
  types[0] = TVK_INTEGER;
  ub[0] = 9;
  int index[] = {0, 1};
  double values[] = {2, 1};
  for (const auto &[changes, ofInteger, loaded] :
       {std::tuple(50, false, "2"), {51, false, "-49"}, {1, true, "3"}}) {
    TVKmodel *model = nullptr;
    ASSERT_EQ(TVKnewmodel(env_.get(), &model, "large", kVars, obj.data(), nullptr, ub.data(),
                          types.data(), nullptr),
              0);
    ASSERT_EQ(TVKaddconstr(model, 2, index, values, TVK_GREATER_EQUAL, 4, nullptr), 0);
    ASSERT_EQ(TVKoptimize(model), 0);
    const std::vector<double> wanted(changes, -1);
    ASSERT_EQ(TVKsetdblattrarray(model, "Obj", 2, changes, wanted.data()), 0);
    if (ofInteger) {
      ASSERT_EQ(TVKsetdblattrelement(model, "Obj", 0, 2), 0);
    }
    env_.log().clear();
    ASSERT_EQ(TVKoptimize(model), 0);
    EXPECT_TRUE(env_.logged(std::string("Loaded MIP start from previous solve with objective ") +
                            loaded + "\n"))
        << changes << env_.log();
    TVKfreemodel(model);
  }
}

TEST_F(Mip, PrioritiesAreAnnounced) {
  ASSERT_EQ(TVKsetintattrelement(model_, "BranchPriority", 1, 3), 0);
  ASSERT_EQ(TVKoptimize(model_), 0);
  EXPECT_TRUE(env_.logged("Using branch priorities.\n"));
  EXPECT_EQ(dblAttr("ObjVal"), 13);
}

TEST_F(Mip, SetsAndHolesAreRespected) {
  // With at most one of x and z nonzero the optimum is 12 at z = 4.
  int members[] = {0, 2}, type = TVK_SOS_TYPE1, begin = 0;
  double weights[] = {1, 2};
  ASSERT_EQ(TVKaddsos(model_, 1, 2, &type, &begin, members, weights), 0);
  ASSERT_EQ(TVKoptimize(model_), 0);
  EXPECT_EQ(status(), TVK_OPTIMAL);
  EXPECT_EQ(dblAttr("ObjVal"), 12);
  // z is zero or at least 5, which is too much.
  ASSERT_EQ(TVKsetcharattrelement(model_, "VType", 2, TVK_SEMIINT), 0);
  ASSERT_EQ(TVKsetdblattrelement(model_, "LB", 2, 5), 0);
  ASSERT_EQ(TVKoptimize(model_), 0);
  EXPECT_EQ(dblAttr("ObjVal"), 10) << env_.log();
}

}  // namespace
