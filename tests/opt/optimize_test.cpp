// The optimize call from the caller's side: statuses, solutions and their signs on every road
// through the LP driver, and models at the edge.
#include <cmath>

#include "opt/tiny_model.h"

namespace {

using tiny::LoggedEnv;
using tiny::Spec;
using tiny::TinyModel;

constexpr double kInfinity = TVK_INFINITY;

// Every simplex variant with and without presolve.
class EveryRoad : public testing::TestWithParam<std::pair<int, int>> {
 protected:
  std::unique_ptr<TinyModel> make(const Spec &spec) {
    auto model = std::make_unique<TinyModel>(env, spec);
    model->set("Method", GetParam().first);
    model->set("Presolve", GetParam().second);
    return model;
  }
  LoggedEnv env;
};
INSTANTIATE_TEST_SUITE_P(Roads, EveryRoad,
                         testing::Values(std::pair(0, 0), std::pair(1, 0), std::pair(0, -1),
                                         std::pair(-1, -1)));

TEST_P(EveryRoad, OptimumOfAMaximizationHasItsSigns) {
  // x + y <= 4, x + 3y <= 8, x <= 3: optimum at (3, 1).
  auto model = make({{3, 2}, {{{1, 1}, '<', 4}, {{1, 3}, '<', 8}}, {}, {3, kInfinity}, -1, 0});
  ASSERT_EQ(model->solve(), TVK_OPTIMAL);
  EXPECT_NEAR(model->dblAttr("ObjVal"), 11, 1e-9);
  EXPECT_NEAR(model->dblAttr("ObjBound"), 11, 1e-9);
  const auto x = model->dblArray("X", 2), slack = model->dblArray("Slack", 2);
  EXPECT_NEAR(x[0], 3, 1e-9);
  EXPECT_NEAR(x[1], 1, 1e-9);
  EXPECT_NEAR(slack[0], 0, 1e-9);
  EXPECT_NEAR(slack[1], 2, 1e-9);
  // One unit more of the first row brings 2; of x's bound, 1.
  const auto pi = model->dblArray("Pi", 2), rc = model->dblArray("RC", 2);
  EXPECT_NEAR(pi[0], 2, 1e-9);
  EXPECT_NEAR(pi[1], 0, 1e-9);
  EXPECT_NEAR(rc[0], 1, 1e-9);
  EXPECT_NEAR(rc[1], 0, 1e-9);
  EXPECT_EQ(model->intArray("VBasis", 2), (std::vector<int>{TVK_NONBASIC_UPPER, TVK_BASIC}));
  EXPECT_EQ(model->intArray("CBasis", 2), (std::vector<int>{TVK_NONBASIC_LOWER, TVK_BASIC}));
  EXPECT_TRUE(env.logged("Optimize a model with 2 rows, 2 columns and 4 nonzeros\n"));
  EXPECT_TRUE(env.logged("\nSolved in ")) << env.log();
  EXPECT_TRUE(env.logged("\nOptimal objective  1.100000000e+01\n")) << env.log();
}

TEST_P(EveryRoad, ZerosOfAMaximizationHaveNoSign) {
  // max -x - 0y + 0z, x and y in one row that is slack, z in one that is not needed.
  auto model =
      make({{-1, 0, 0}, {{{1, 1, 0}, '<', 4}, {{-1, 0, 1}, '>', 0}}, {}, {}, TVK_MAXIMIZE});
  ASSERT_EQ(model->solve(), TVK_OPTIMAL);
  EXPECT_FALSE(env.logged("-0.0")) << env.log();
  const auto expectPlain = [](const char *name, double value) {
    EXPECT_FALSE(value == 0 && std::signbit(value)) << name;
  };
  for (const char *name : {"ObjVal", "ObjBound", "ObjCon", "DualVio", "MaxVio"})
    expectPlain(name, model->dblAttr(name));
  for (const char *name : {"X", "Obj", "RC", "SAObjLow", "SAObjUp", "SALBUp", "SAUBLow"})
    for (const double value : model->dblArray(name, 3)) expectPlain(name, value);
  for (const char *name : {"Pi", "Slack", "SARHSLow", "SARHSUp"})
    for (const double value : model->dblArray(name, 2)) expectPlain(name, value);
}

TEST_P(EveryRoad, OptimumOfAMinimizationHasItsSigns) {
  // x + y >= 4, x - y = 1: x = 2.5, y = 1.5.
  auto model = make({{2, 3}, {{{1, 1}, '>', 4}, {{1, -1}, '=', 1}}, {}, {}, TVK_MINIMIZE, 5});
  ASSERT_EQ(model->solve(), TVK_OPTIMAL);
  EXPECT_NEAR(model->dblAttr("ObjVal"), 14.5, 1e-9);
  const auto pi = model->dblArray("Pi", 2);
  EXPECT_NEAR(pi[0], 2.5, 1e-9);
  EXPECT_NEAR(pi[1], -0.5, 1e-9);
  EXPECT_EQ(model->intArray("VBasis", 2), (std::vector<int>{TVK_BASIC, TVK_BASIC}));
  EXPECT_EQ(model->intArray("CBasis", 2),
            (std::vector<int>{TVK_NONBASIC_LOWER, TVK_NONBASIC_LOWER}));
}

TEST_P(EveryRoad, InfeasibleModelHasAFarkasProofOnRequest) {
  // x + y >= 5 but x, y <= 2.
  const Spec spec{{1, 1}, {{{1, 1}, '>', 5}}, {}, {2, 2}, TVK_MINIMIZE, 0};
  auto model = make(spec);
  ASSERT_EQ(model->solve(), TVK_INFEASIBLE);
  EXPECT_TRUE(env.logged("\nInfeasible model\n")) << env.log();
  EXPECT_FALSE(model->has("X"));
  EXPECT_FALSE(model->has("ObjVal"));
  EXPECT_FALSE(model->has("FarkasDual"));
  // One of the variables of the row, or its slack.
  EXPECT_GE(model->intAttr("InfeasVar"), 0);
  EXPECT_LE(model->intAttr("InfeasVar"), 2);
  EXPECT_EQ(model->intAttr("UnbdVar"), -1);

  // The multiplier turns the row into l(x + y) <= 5l, which misses the least value 4l by -l.
  auto proven = make(spec);
  proven->set("InfUnbdInfo", 1);
  ASSERT_EQ(proven->solve(), TVK_INFEASIBLE);
  const double multiplier = proven->dblArray("FarkasDual", 1)[0];
  ASSERT_LT(multiplier, 0);
  EXPECT_NEAR(proven->dblAttr("FarkasProof") / -multiplier, 1, 1e-9);
}

TEST_P(EveryRoad, UnboundedModelHasARayOnRequest) {
  // max x + y along x - y <= 1.
  auto model = make({{1, 1}, {{{1, -1}, '<', 1}}, {}, {}, TVK_MAXIMIZE, 0});
  model->set("InfUnbdInfo", 1);
  ASSERT_EQ(model->solve(), TVK_UNBOUNDED);
  EXPECT_TRUE(env.logged("\nUnbounded model\n")) << env.log();
  EXPECT_FALSE(model->has("ObjVal"));
  EXPECT_EQ(model->intAttr("UnbdVar"), 1);
  EXPECT_EQ(model->intAttr("InfeasVar"), -1);
  const auto ray = model->dblArray("UnbdRay", 2);
  EXPECT_GT(ray[0] + ray[1], 0);
  EXPECT_LE(ray[0] - ray[1], 1e-9);
  EXPECT_GE(ray[0], -1e-9);
}

TEST_P(EveryRoad, DualReductionsOffTellInfeasibleFromUnbounded) {
  const Spec unbounded{{1, 1}, {{{1, -1}, '<', 1}}, {}, {}, TVK_MAXIMIZE, 0};
  // The same direction, but nothing is feasible.
  const Spec infeasible{
      {1, 1, 0, 0}, {{{1, -1, 0, 0}, '<', 1}, {{0, 0, 1, 1}, '>', 3}, {{0, 0, 1, 1}, '<', 2}},
      {},           {},
      TVK_MAXIMIZE, 0};
  const auto statusOf = [&](const Spec &spec, int dualReductions) {
    auto model = make(spec);
    model->set("DualReductions", dualReductions);
    return model->solve();
  };
  EXPECT_EQ(statusOf(unbounded, 0), TVK_UNBOUNDED);
  EXPECT_EQ(statusOf(infeasible, 0), TVK_INFEASIBLE);
  const int one = statusOf(unbounded, 1), two = statusOf(infeasible, 1);
  EXPECT_TRUE(one == TVK_UNBOUNDED || one == TVK_INF_OR_UNBD) << one;
  EXPECT_TRUE(two == TVK_INFEASIBLE || two == TVK_INF_OR_UNBD) << two;
}

TEST_P(EveryRoad, ModelsWithoutRowsOrColumns) {
  auto empty = make({});
  EXPECT_EQ(empty->solve(), TVK_OPTIMAL);
  EXPECT_EQ(empty->dblAttr("ObjVal"), 0);

  auto noRows = make({{1, -2, 0}, {}, {-3, 0, -kInfinity}, {3, 4, kInfinity}, TVK_MINIMIZE, 1});
  ASSERT_EQ(noRows->solve(), TVK_OPTIMAL);
  EXPECT_EQ(noRows->dblAttr("ObjVal"), -10);
  EXPECT_EQ(noRows->dblArray("X", 3), (std::vector<double>{-3, 4, 0}));
  EXPECT_EQ(make({{-1}, {}, {}, {}, TVK_MINIMIZE, 0})->solve(), TVK_UNBOUNDED);

  auto noCols = make({{}, {{{}, '<', 1}, {{}, '>', -1}, {{}, '=', 0}}, {}, {}, TVK_MINIMIZE, 2});
  ASSERT_EQ(noCols->solve(), TVK_OPTIMAL);
  EXPECT_EQ(noCols->dblAttr("ObjVal"), 2);
  EXPECT_EQ(noCols->dblArray("Slack", 3), (std::vector<double>{1, -1, 0}));
  EXPECT_EQ(make({{}, {{{}, '>', 1}}, {}, {}, TVK_MINIMIZE, 0})->solve(), TVK_INFEASIBLE);
}

TEST_P(EveryRoad, FixedVariablesAndFreeRows) {
  Spec fixed{{2, 3}, {{{1, 1}, '<', 4}}, {1, 2}, {1, 2}, TVK_MAXIMIZE, 0};
  auto allFixed = make(fixed);
  ASSERT_EQ(allFixed->solve(), TVK_OPTIMAL);
  EXPECT_EQ(allFixed->dblAttr("ObjVal"), 8);
  EXPECT_EQ(allFixed->dblArray("Slack", 1)[0], 1);
  fixed.rows[0].rhs = 2;
  EXPECT_EQ(make(fixed)->solve(), TVK_INFEASIBLE);

  auto freeRow = make({{1, 1}, {{{1, 2}, '<', kInfinity}, {{1, 1}, '>', 1}}, {}, {}, 1, 0});
  ASSERT_EQ(freeRow->solve(), TVK_OPTIMAL);
  EXPECT_NEAR(freeRow->dblAttr("ObjVal"), 1, 1e-9);
  EXPECT_EQ(freeRow->intArray("CBasis", 2)[0], TVK_BASIC);

  // Free variables, one of them only in equations.
  auto freeVars = make({{1, 1},
                        {{{1, 1}, '=', -4}, {{1, -1}, '>', 2}},
                        {-kInfinity, -kInfinity},
                        {},
                        TVK_MINIMIZE,
                        0});
  ASSERT_EQ(freeVars->solve(), TVK_OPTIMAL);
  EXPECT_NEAR(freeVars->dblAttr("ObjVal"), -4, 1e-9);
}

TEST_P(EveryRoad, ResolvesAfterChanges) {
  auto model = make({{3, 2}, {{{1, 1}, '<', 4}, {{1, 3}, '<', 6}}, {}, {3, kInfinity}, -1, 0});
  ASSERT_EQ(model->solve(), TVK_OPTIMAL);
  ASSERT_EQ(TVKsetdblattrelement(model->get(), "RHS", 0, 5), 0);
  ASSERT_EQ(model->solve(), TVK_OPTIMAL);  // the second row still stops at (3, 1)
  EXPECT_NEAR(model->dblAttr("ObjVal"), 11, 1e-9);
  EXPECT_TRUE(env.logged("LP warm-start: use basis\n")) << env.log();

  ASSERT_EQ(TVKsetdblattrelement(model->get(), "Obj", 1, 10), 0);
  const int columns[] = {0, 1};
  const double ones[] = {1, 1};
  ASSERT_EQ(TVKaddconstr(model->get(), 2, columns, ones, '>', 2, nullptr), 0);
  ASSERT_EQ(model->solve(), TVK_OPTIMAL);  // 3x + 10y over x + 3y <= 6: (0, 2)
  EXPECT_NEAR(model->dblAttr("ObjVal"), 20, 1e-9);
  EXPECT_NEAR(model->dblArray("X", 2)[1], 2, 1e-9);

  const int first = 0;
  ASSERT_EQ(TVKdelconstrs(model->get(), 1, &first), 0);
  ASSERT_EQ(TVKsetintattr(model->get(), "ModelSense", TVK_MINIMIZE), 0);
  ASSERT_EQ(model->solve(), TVK_OPTIMAL);
  EXPECT_NEAR(model->dblAttr("ObjVal"), 6, 1e-9);

  // Solved again without any change: nothing to do.
  ASSERT_EQ(model->solve(), TVK_OPTIMAL);
  EXPECT_EQ(model->dblAttr("IterCount"), 0);
  ASSERT_EQ(TVKresetmodel(model->get()), 0);
  EXPECT_EQ(model->intAttr("Status"), TVK_LOADED);
  EXPECT_EQ(model->solve(), TVK_OPTIMAL);
}

}  // namespace
