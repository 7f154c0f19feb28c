// Re-solves after changes of a model, from the basis and the engine that the last solve left,
// against first solves of the same model.
#include <algorithm>
#include <cmath>
#include <random>

#include "opt/tiny_model.h"
#include "support/random_lp.h"

namespace {

using tiny::LoggedEnv;
using tiny::Spec;
using tiny::TinyModel;

int draw(std::mt19937 &random, int from, int to) {
  return from + static_cast<int>(random() % static_cast<unsigned>(to - from + 1));
}

Spec randomSpec(std::mt19937 &random, int maxCols, int maxRows) {
  Spec spec;
  const int n = draw(random, 2, maxCols), m = draw(random, 1, maxRows);
  spec.sense = draw(random, 0, 1) ? TVK_MINIMIZE : TVK_MAXIMIZE;
  for (int j = 0; j < n; ++j) {
    spec.obj.push_back(draw(random, -5, 9));
    spec.lb.push_back(draw(random, 0, 5) ? draw(random, -3, 1) : -TVK_INFINITY);
    spec.ub.push_back(draw(random, 0, 2) ? draw(random, 1, 9) : TVK_INFINITY);
  }
  for (int i = 0; i < m; ++i) {
    tiny::Row row{{}, "<>="[draw(random, 0, 2)], static_cast<double>(draw(random, -2, 12))};
    for (int j = 0; j < n; ++j) row.coef.push_back(draw(random, 0, 2) ? draw(random, -3, 6) : 0);
    spec.rows.push_back(row);
  }
  return spec;
}

// One change, the same for both models. The first kinds leave reduced costs and factors alone.
constexpr int kBoundKinds = 4, kKinds = 11;
void change(std::mt19937 &random, int kinds, TVKmodel *a, TVKmodel *b) {
  int n = 0, m = 0;
  ASSERT_EQ(TVKgetintattr(a, "NumVars", &n), 0);
  ASSERT_EQ(TVKgetintattr(a, "NumConstrs", &m), 0);
  const int kind = draw(random, 0, kinds - 1), j = draw(random, 0, n - 1), i = draw(random, 0, m);
  const double value = draw(random, -6, 9);
  const double coef = draw(random, 1, 4);
  const int drop = draw(random, 0, 1);
  for (TVKmodel *model : {a, b}) {
    int code = 0;
    if (kind == 0)
      code = TVKsetdblattrelement(model, "LB", j, value > 6 ? -TVK_INFINITY : value - 3);
    else if (kind <= 2)
      code = TVKsetdblattrelement(model, "UB", j, value > 7 ? TVK_INFINITY : value + 3);
    else if (kind == 3 && i < m)
      code = TVKsetdblattrelement(model, "RHS", i, value);
    else if (kind == 4)
      code = TVKsetdblattrelement(model, "Obj", j, value);
    else if (kind == 5)
      code = TVKaddconstr(model, 1, &j, &coef, value > 0 ? '<' : '>', value, nullptr);
    else if (kind == 6 && i < m && m > 1 && drop)
      code = TVKdelconstrs(model, 1, &i);
    else if (kind == 7 && i < m)
      code = TVKchgcoeffs(model, 1, &i, &j, &value);
    else if (kind == 8)
      code = TVKaddvar(model, m > 0, &drop, &coef, value, 0, 5, TVK_CONTINUOUS, nullptr);
    else if (kind == 9)
      code = TVKsetdblattr(model, "ObjCon", value);
    else if (kind == 10)
      code = TVKsetdblparam(TVKgetenv(model), "OptimalityTol", value > 2 ? 1e-6 : 1e-8);
    ASSERT_TRUE(code == 0 || (kind == 8 && m <= drop)) << kind;
  }
}

// A solve that tells infeasible from unbounded.
int verdict(TinyModel &model) {
  int status = model.solve();
  EXPECT_NE(status, TVK_INF_OR_UNBD);
  return status;
}

class Resolve : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Methods, Resolve, testing::Values(-1, 0, 1));

TEST_P(Resolve, AgreesWithAFirstSolveAfterAnyChanges) {
  std::mt19937 random(11);
  LoggedEnv env;
  int optima = 0;
  const int count = tarvik::test::randomLpCount(60);
  for (int k = 0; k < count; ++k) {
    const bool larger = k % 5 == 4;
    const Spec spec = randomSpec(random, larger ? 30 : 7, larger ? 18 : 5);
    const int kinds = k % 4 == 1 ? kBoundKinds : kKinds;
    TinyModel warm(env, spec), cold(env, spec);
    for (TinyModel *model : {&warm, &cold}) {
      model->set("Method", GetParam());
      model->set("DualReductions", 0);
      model->set("Presolve", k % 2 ? -1 : 0);
      model->set("ScaleFlag", k % 3 == 0 ? 2 : -1);
    }
    for (int step = 0; step < 12; ++step) {
      SCOPED_TRACE(k * 100 + step);
      ASSERT_EQ(TVKreset(cold.get(), 0), 0);
      const int status = verdict(warm);
      ASSERT_EQ(status, verdict(cold));
      if (status == TVK_OPTIMAL) {
        ++optima;
        const double objective = cold.dblAttr("ObjVal");
        ASSERT_NEAR(warm.dblAttr("ObjVal"), objective, 1e-6 * (1 + std::fabs(objective)));
      }
      for (int changes = draw(random, 1, 3); changes > 0; --changes)
        change(random, kinds, warm.get(), cold.get());
    }
  }
  EXPECT_GT(optima, 100);
}

// After an optimum a harmless change costs no iteration, a cutting row only a few.
TEST(Resolve, GoesOnFromTheLastBasis) {
  LoggedEnv env;
  std::mt19937 random(3);
  Spec spec;
  const int n = 40, m = 20;
  for (int j = 0; j < n; ++j) {
    spec.obj.push_back(draw(random, 1, 20));
    spec.lb.push_back(0);
    spec.ub.push_back(50);
  }
  for (int i = 0; i < m; ++i) {
    tiny::Row row{{}, '>', 30};
    for (int j = 0; j < n; ++j) row.coef.push_back(draw(random, 0, 3) ? 0 : draw(random, 1, 5));
    spec.rows.push_back(row);
  }
  TinyModel model(env, spec);
  ASSERT_EQ(model.solve(), TVK_OPTIMAL);
  ASSERT_EQ(TVKsetdblattrelement(model.get(), "UB", 0, 60), 0);
  env.log().clear();
  ASSERT_EQ(model.solve(), TVK_OPTIMAL);
  EXPECT_TRUE(env.logged("LP warm-start: use basis\n")) << env.log();
  EXPECT_EQ(model.dblAttr("IterCount"), 0);

  const auto x = model.dblArray("X", n);
  std::vector<int> cols;
  double activity = 0;
  for (int j = 0; j < n && cols.size() < 3; ++j) {
    if (x[j] < 0.1) continue;
    cols.push_back(j);
    activity += x[j];
  }
  const std::vector<double> ones(cols.size(), 1);
  ASSERT_EQ(TVKaddconstr(model.get(), static_cast<int>(cols.size()), cols.data(), ones.data(), '<',
                         0.9 * activity, nullptr),
            0);
  ASSERT_EQ(model.solve(), TVK_OPTIMAL);
  EXPECT_GT(model.dblAttr("IterCount"), 0);
  EXPECT_LT(model.dblAttr("IterCount"), 15);
}

// Edge weights come out with a basis that the dual simplex found, and go back in with it.
TEST(Resolve, DualNormsTravelWithTheBasis) {
  LoggedEnv env;
  const Spec spec{{1, 2, 3},    {{{1, 1, 0}, '>', 2}, {{0, 1, 2}, '>', 3}, {{3, 0, 1}, '>', 1}},
                  {},           {},
                  TVK_MINIMIZE, 0};
  TinyModel model(env, spec);
  model.set("Presolve", 0);
  EXPECT_EQ(model.intAttr("HasDualNorm"), 0);
  ASSERT_EQ(model.solve(), TVK_OPTIMAL);
  ASSERT_EQ(model.intAttr("HasDualNorm"), 1);
  const auto vNorm = model.dblArray("VDualNorm", 3), cNorm = model.dblArray("CDualNorm", 3);
  for (int j = 0; j < 3; ++j) EXPECT_TRUE(vNorm[j] > 0 && cNorm[j] > 0);

  TinyModel other(env, spec);
  ASSERT_EQ(TVKupdatemodel(other.get()), 0);
  const auto vbasis = model.intArray("VBasis", 3), cbasis = model.intArray("CBasis", 3);
  for (int j = 0; j < 3; ++j) {
    ASSERT_EQ(TVKsetintattrelement(other.get(), "VBasis", j, vbasis[j]), 0);
    ASSERT_EQ(TVKsetintattrelement(other.get(), "CBasis", j, cbasis[j]), 0);
    ASSERT_EQ(TVKsetdblattrelement(other.get(), "VDualNorm", j, vNorm[j]), 0);
    ASSERT_EQ(TVKsetdblattrelement(other.get(), "CDualNorm", j, cNorm[j]), 0);
  }
  ASSERT_EQ(other.solve(), TVK_OPTIMAL);
  EXPECT_EQ(other.dblAttr("IterCount"), 0);
  EXPECT_EQ(other.dblArray("VDualNorm", 3), vNorm);
}

TEST(Resolve, ResetForgetsTheBasis) {
  LoggedEnv env;
  TinyModel model(env, {{1, 2}, {{{1, 1}, '>', 2}}, {}, {}, TVK_MINIMIZE, 0});
  ASSERT_EQ(model.solve(), TVK_OPTIMAL);
  ASSERT_EQ(TVKreset(model.get(), 0), 0);
  env.log().clear();
  ASSERT_EQ(model.solve(), TVK_OPTIMAL);
  EXPECT_FALSE(env.logged("LP warm-start"));
}

TEST(Resolve, PrecisionOfTheLastSolveIsLeftOnRequest) {
  LoggedEnv env;
  TinyModel model(env, {{-1, -2}, {{{1, 1}, '<', 5}}, {}, {3, 4}, TVK_MINIMIZE, 0});
  const std::string line = "Switch to double precision\n";
  model.set("Quad", 1);
  ASSERT_EQ(model.solve(), TVK_OPTIMAL);
  model.set("Quad", 0);
  ASSERT_EQ(TVKsetdblattrelement(model.get(), "UB", 0, 2.0), 0);
  ASSERT_EQ(model.solve(), TVK_OPTIMAL);
  EXPECT_TRUE(env.logged(line)) << env.log();
  env.log().clear();
  ASSERT_EQ(model.solve(), TVK_OPTIMAL);
  EXPECT_FALSE(env.logged(line)) << env.log();
}

}  // namespace
