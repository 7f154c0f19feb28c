// How solves end early, what they refuse, and the parameters around them.
#include <filesystem>
#include <fstream>
#include <random>

#include "opt/tiny_model.h"

namespace {

using tiny::LoggedEnv;
using tiny::Spec;
using tiny::TinyModel;

constexpr double kInfinity = TVK_INFINITY;

// Optimum 11 at (3, 1).
Spec smallMax() {
  return {{3, 2}, {{{1, 1}, '<', 4}, {{1, 3}, '<', 6}}, {}, {3, kInfinity}, TVK_MAXIMIZE, 0};
}

// Enough work for limits and interrupts to bite: a dense random covering model.
Spec covering(int rows, int cols) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> number(0.1, 1.0);
  Spec spec;
  for (int j = 0; j < cols; ++j) spec.obj.push_back(number(random));
  for (int i = 0; i < rows; ++i) {
    tiny::Row row{{}, '>', 1 + number(random)};
    for (int j = 0; j < cols; ++j) row.coef.push_back(number(random));
    spec.rows.push_back(row);
  }
  return spec;
}

TEST(Optimize, WarmStartFollowsItsParameter) {
  LoggedEnv env;
  TinyModel model(env, smallMax());
  ASSERT_EQ(model.solve(), TVK_OPTIMAL);
  model.set("LPWarmStart", 0);
  ASSERT_EQ(model.solve(), TVK_OPTIMAL);
  EXPECT_TRUE(env.logged("LP warm-start: discard basis\n")) << env.log();
  model.set("LPWarmStart", 2);
  ASSERT_EQ(model.solve(), TVK_OPTIMAL);
  EXPECT_NEAR(model.dblAttr("ObjVal"), 11, 1e-9);
}

TEST(Optimize, BadBoundsEndTheSolveWithAWarning) {
  LoggedEnv env;
  TinyModel crossed(env, {{1}, {{{1}, '>', 0}}, {2}, {1}, TVK_MINIMIZE, 0});
  EXPECT_EQ(crossed.solve(), TVK_INFEASIBLE);
  EXPECT_TRUE(env.logged("Warning: variable C0 has bad bounds, lower = 2 and upper = 1\n"))
      << env.log();
  TinyModel pulled(env, {{-1}, {{{1}, '>', 0}}, {kInfinity}, {kInfinity}, TVK_MINIMIZE, 0});
  EXPECT_EQ(pulled.solve(), TVK_UNBOUNDED);
  TinyModel hopeless(env, {{1}, {{{1}, '>', kInfinity}}, {}, {}, TVK_MINIMIZE, 0});
  EXPECT_EQ(hopeless.solve(), TVK_INFEASIBLE);
  // Bounds that cross by less than the feasibility tolerance are no reason to give up.
  TinyModel touching(env, {{1}, {{{1}, '>', 0}}, {1 + 1e-9}, {1}, TVK_MINIMIZE, 0});
  EXPECT_EQ(touching.solve(), TVK_OPTIMAL);
  EXPECT_NEAR(touching.dblAttr("ObjVal"), 1, 1e-8);
}

TEST(Optimize, BoundsAreReadByTheirParameters) {
  LoggedEnv env;
  // The first variable may exceed the second, which has a large bound, by one.
  const Spec tall{{1, 0}, {{{1, -1}, '<', 1}}, {}, {kInfinity, 1e7}, TVK_MAXIMIZE, 0};
  for (const int presolve : {0, 1}) {
    TinyModel model(env, tall);
    model.set("Presolve", presolve);
    model.set("DualReductions", 0);
    EXPECT_EQ(model.solve(), TVK_OPTIMAL);
    EXPECT_NEAR(model.dblAttr("ObjVal"), 1e7 + 1, 1e-3);
    model.set("TARV_PAR_INFBOUND", 1e7);
    EXPECT_EQ(model.solve(), TVK_UNBOUNDED);
    model.set("TARV_PAR_INFBOUND", 2e7);
    EXPECT_EQ(model.solve(), TVK_OPTIMAL);
    ASSERT_EQ(TVKsetdblattrelement(model.get(), "LB", 0, 3e7), 0);
    env.log().clear();
    EXPECT_EQ(model.solve(), TVK_UNBOUNDED);
    EXPECT_TRUE(
        env.logged("Warning: variable C0 has bad bounds, lower = 3e+07 and upper = 1e+30\n"))
        << env.log();
  }
  const Spec narrow{{1, 1}, {{{1, 1}, '>', 2}}, {1, 0}, {1 + 5e-7, 9}, TVK_MINIMIZE, 0};
  for (const double tol : {-1.0, 1e-7, 1e-6}) {
    TinyModel model(env, narrow);
    model.set("TARV_PAR_FIXTOL", tol);
    ASSERT_EQ(TVKsetdblattrelement(model.get(), "Obj", 0, 2), 0);
    EXPECT_EQ(model.solve(), TVK_OPTIMAL);
    EXPECT_NEAR(model.dblArray("X", 2)[0], tol == 1e-6 ? 1 + 2.5e-7 : 1, 1e-10) << tol;
    EXPECT_NEAR(model.dblArray("X", 2)[0] + model.dblArray("X", 2)[1], 2, 1e-9);
  }
}

// Each switch of presolve leaves something in some of these models, and the optimum as it is.
TEST(Optimize, PresolveStagesHaveTheirSwitches) {
  const char *const switches[] = {"TARV_PAR_PRESINGLECOL", "TARV_PAR_PREPARALLEL",
                                  "TARV_PAR_PREDOMINATE", "Aggregate"};
  std::mt19937 random(3);
  const auto digit = [&](int n) { return static_cast<double>(random() % n); };
  int differ[4] = {};
  for (int trial = 0; trial < 40; ++trial) {
    Spec spec;
    for (int j = 0; j < 7; ++j) spec.obj.push_back(digit(4)), spec.ub.push_back(5);
    for (int i = 0; i < 5; ++i) {
      tiny::Row row{{}, i % 2 ? '=' : '>', 3};
      for (int j = 0; j < 7; ++j) row.coef.push_back(digit(5) < 2 ? 1 + digit(2) : 0);
      spec.rows.push_back(row);
    }
    spec.rows.push_back({spec.rows[0].coef, '<', 9});
    const auto run = [&](const char *parameter, double &objective) {
      LoggedEnv env;
      TinyModel model(env, spec);
      if (parameter) model.set(parameter, 0);
      objective = model.solve() == TVK_OPTIMAL ? model.dblAttr("ObjVal") : -1;
      const std::size_t at = env.log().find("Presolved:");
      return at == std::string::npos ? std::string() : env.log().substr(at, 40);
    };
    double expected, found;
    const std::string usual = run(nullptr, expected);
    for (int k = 0; k < 4; ++k) {
      differ[k] += run(switches[k], found) != usual;
      EXPECT_NEAR(found, expected, 1e-8) << switches[k];
    }
  }
  for (int k = 0; k < 4; ++k) EXPECT_GT(differ[k], 0) << switches[k];
}

TEST(Optimize, CutoffKeepsSolutionsThatEqualIt) {
  LoggedEnv env;
  const auto statusOf = [&](const Spec &spec, double cutoff) {
    TinyModel model(env, spec);
    model.set("Cutoff", cutoff);
    const int status = model.solve();
    double after = 0;
    EXPECT_EQ(TVKgetdblparam(TVKgetenv(model.get()), "Cutoff", &after), 0);
    EXPECT_EQ(after, cutoff) << "the parameter changed";
    return status;
  };
  const Spec max = smallMax();
  EXPECT_EQ(statusOf(max, 11), TVK_OPTIMAL);
  EXPECT_EQ(statusOf(max, 10), TVK_OPTIMAL);
  EXPECT_EQ(statusOf(max, 11.01), TVK_CUTOFF);
  EXPECT_TRUE(env.logged("\nModel objective exceeds cutoff\n")) << env.log();
  EXPECT_EQ(statusOf(max, 1e100), TVK_OPTIMAL);
  EXPECT_EQ(statusOf(max, -1e100), TVK_OPTIMAL);
  Spec min = max;
  min.sense = TVK_MINIMIZE;
  for (double &cost : min.obj) cost = -cost;
  EXPECT_EQ(statusOf(min, -11), TVK_OPTIMAL);
  EXPECT_EQ(statusOf(min, -11.01), TVK_CUTOFF);
  EXPECT_EQ(statusOf(min, -1e100), TVK_CUTOFF);
}

TEST(Optimize, LimitsStopAndTheNextCallGoesOn) {
  LoggedEnv env;
  TinyModel model(env, covering(40, 30));
  model.set("Presolve", 0);
  model.set("IterationLimit", 2.0);
  EXPECT_EQ(model.solve(), TVK_ITERATION_LIMIT);
  EXPECT_TRUE(env.logged("\nStopped in 2 iterations")) << env.log();
  EXPECT_TRUE(env.logged("\nIteration limit reached\n"));
  EXPECT_EQ(model.dblAttr("IterCount"), 2);
  model.set("IterationLimit", 1e100);
  model.set("TimeLimit", 0.0);
  EXPECT_EQ(model.solve(), TVK_TIME_LIMIT);
  EXPECT_TRUE(env.logged("\nTime limit reached\n")) << env.log();
  model.set("TimeLimit", 1e100);
  model.set("WorkLimit", 0.0);
  EXPECT_EQ(model.solve(), TVK_WORK_LIMIT);
  EXPECT_TRUE(env.logged("\nWork limit reached\n"));
  model.set("WorkLimit", 1e100);
  EXPECT_EQ(model.solve(), TVK_OPTIMAL);
  EXPECT_GT(model.dblAttr("Work"), 0);
  EXPECT_GE(model.dblAttr("Runtime"), 0);
}

TEST(Optimize, LimitsHoldDuringPresolve) {
  LoggedEnv env;
  TinyModel model(env, covering(40, 30));
  model.set("TimeLimit", 0.0);
  EXPECT_EQ(model.solve(), TVK_TIME_LIMIT);
  EXPECT_FALSE(env.logged("Optimal objective"));
  model.set("TimeLimit", 1e100);
  EXPECT_EQ(model.solve(), TVK_OPTIMAL);
}

// Asks for the end as soon as the solve has begun.
int terminateOnFirstLine(const char *line, void *model) {
  if (std::string(line).starts_with("Optimize a model"))
    TVKterminate(static_cast<TVKmodel *>(model));
  return 0;
}

TEST(Optimize, TerminateEndsARunningSolve) {
  LoggedEnv env;
  EXPECT_EQ(TVKterminate(nullptr), 0);
  TinyModel model(env, covering(40, 30));
  ASSERT_EQ(TVKsetlogcallbackfunc(model.get(), terminateOnFirstLine, model.get()), 0);
  EXPECT_EQ(model.solve(), TVK_INTERRUPTED);
  // The request is gone with the solve that it ended.
  ASSERT_EQ(TVKsetlogcallbackfunc(model.get(), nullptr, nullptr), 0);
  EXPECT_EQ(model.solve(), TVK_OPTIMAL);
}

// Tries to modify the model under the running solve.
struct Intruder {
  TVKmodel *model;
  int code = 0;
};
int modifyOnEveryLine(const char *, void *data) {
  auto *intruder = static_cast<Intruder *>(data);
  intruder->code = TVKsetdblattrelement(intruder->model, "LB", 0, 1);
  return 0;
}

TEST(Optimize, RunningModelRefusesChanges) {
  LoggedEnv env;
  TinyModel model(env, smallMax());
  Intruder intruder{model.get()};
  ASSERT_EQ(TVKsetlogcallbackfunc(model.get(), modifyOnEveryLine, &intruder), 0);
  EXPECT_EQ(model.solve(), TVK_OPTIMAL);
  EXPECT_EQ(intruder.code, TVK_ERROR_OPTIMIZATION_IN_PROGRESS);
}

TEST(Optimize, ModelsWithoutAnAlgorithmAreRefusedByName) {
  LoggedEnv env;
  EXPECT_EQ(TVKoptimize(nullptr), TVK_ERROR_NULL_ARGUMENT);
  TinyModel model(env, smallMax());
  int index = 0;
  double one = 1;
  ASSERT_EQ(TVKaddqpterms(model.get(), 1, &index, &index, &one), 0);
  EXPECT_EQ(TVKoptimize(model.get()), TVK_ERROR_NOT_SUPPORTED);
  EXPECT_STREQ(TVKgetmerrormsg(model.get()),
               "This version cannot solve models with a quadratic objective");
  EXPECT_EQ(model.intAttr("Status"), TVK_LOADED);
  ASSERT_EQ(TVKdelq(model.get()), 0);
  EXPECT_EQ(model.solve(), TVK_OPTIMAL);
}

TEST(Optimize, MissingAlgorithmsAreReplacedWithAWarning) {
  LoggedEnv env;
  TinyModel model(env, smallMax());
  model.set("Method", 2);
  EXPECT_EQ(model.solve(), TVK_OPTIMAL);
  EXPECT_TRUE(env.logged("Warning: barrier is not available")) << env.log();
}

TEST(Optimize, ParametersOfTheSolveAreRestored) {
  LoggedEnv env;
  TinyModel model(env, smallMax());
  model.set("NumericFocus", 3);
  model.set("Presolve", 0);
  EXPECT_EQ(model.solve(), TVK_OPTIMAL);
  int value = 0;
  double markowitz = 0;
  TVKenv *own = TVKgetenv(model.get());
  EXPECT_EQ(TVKgetintparam(own, "DualReductions", &value), 0);
  EXPECT_EQ(value, 1);
  EXPECT_EQ(TVKgetintparam(own, "Quad", &value), 0);
  EXPECT_EQ(value, -1);
  EXPECT_EQ(TVKgetintparam(own, "UpdateMode", &value), 0);
  EXPECT_EQ(value, 1);
  EXPECT_EQ(TVKgetdblparam(own, "MarkowitzTol", &markowitz), 0);
  EXPECT_EQ(markowitz, 0.0078125);
}

TEST(Optimize, WritesTheResultFileOrWarns) {
  LoggedEnv env;
  const auto directory = std::filesystem::temp_directory_path() / "tarvik_result_test";
  std::filesystem::create_directories(directory);
  const std::string good = directory / "plan.sol", bad = directory / "missing" / "plan.sol";
  TinyModel model(env, smallMax());
  model.set("ResultFile", good.c_str());
  EXPECT_EQ(model.solve(), TVK_OPTIMAL);
  EXPECT_TRUE(env.logged("\n\nWrote requested result file '" + good + "'\n\n")) << env.log();
  EXPECT_TRUE(std::ifstream(good).good());
  model.set("ResultFile", bad.c_str());
  EXPECT_EQ(model.solve(), TVK_OPTIMAL);
  EXPECT_TRUE(env.logged("\n\nWarning: unable to write requested result file '" + bad + "'\n\n"));
  EXPECT_STREQ(TVKgetmerrormsg(model.get()), "");
  std::filesystem::remove_all(directory);
}

TEST(Optimize, SameInputSameRoad) {
  double iterations[2], work[2];
  for (int run = 0; run < 2; ++run) {
    LoggedEnv env;
    TinyModel model(env, covering(60, 40));
    ASSERT_EQ(model.solve(), TVK_OPTIMAL);
    iterations[run] = model.dblAttr("IterCount");
    work[run] = model.dblAttr("Work");
  }
  EXPECT_EQ(iterations[0], iterations[1]);
  EXPECT_EQ(work[0], work[1]);
}

}  // namespace
