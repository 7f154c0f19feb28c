// Strong branching for callers: bounds compared with solves of the branches themselves on random
// models, the answers where there is nothing to compute, and what the call leaves alone.
#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>

#include "opt/tiny_model.h"

namespace {

using tiny::LoggedEnv;
using tiny::Spec;
using tiny::TinyModel;

Spec randomSpec(std::mt19937 &random) {
  const auto draw = [&](int from, int to) {
    return from + static_cast<int>(random() % static_cast<unsigned>(to - from + 1));
  };
  const int n = draw(1, 6), m = draw(0, 5);
  Spec spec;
  for (int j = 0; j < n; ++j) {
    spec.obj.push_back(draw(-6, 6) + 0.5 * draw(0, 1));
    spec.lb.push_back(draw(-3, 1) + 0.25 * draw(0, 2));
    spec.ub.push_back(spec.lb.back() + draw(0, 7) * 0.75);
  }
  for (int i = 0; i < m; ++i) {
    tiny::Row row{{}, "<>="[draw(0, 2)], draw(-4, 12) * 0.5};
    for (int j = 0; j < n; ++j) row.coef.push_back(draw(0, 2) ? draw(-3, 6) : 0);
    spec.rows.push_back(row);
  }
  return spec;
}

// Optimum of the spec; 1e100 when it is infeasible.
double optimum(LoggedEnv &env, const Spec &spec) {
  TinyModel model(env, spec);
  const int status = model.solve();
  if (status == TVK_OPTIMAL) return model.dblAttr("ObjVal");
  EXPECT_EQ(status, TVK_INFEASIBLE);
  return 1e100;
}

double optimumWithin(LoggedEnv &env, Spec spec, int j, double low, double high) {
  spec.lb[j] = std::max(spec.lb[j], low);
  spec.ub[j] = std::min(spec.ub[j], high);
  return spec.lb[j] > spec.ub[j] ? 1e100 : optimum(env, spec);
}

void expectSame(double found, double expected) {
  EXPECT_NEAR(found, expected, 1e-6 * (1 + std::fabs(expected)));
}

struct Call {
  explicit Call(int n) : candidates(n), down(n, -7), up(n, -7) {
    std::iota(candidates.begin(), candidates.end(), 0);
  }
  int operator()(const TinyModel &model) {
    return TVKstrongbranch(model.get(), static_cast<int>(candidates.size()), candidates.data(),
                           down.data(), up.data(), &status);
  }
  std::vector<int> candidates;
  std::vector<double> down, up;
  int status = 99;
};

TEST(StrongBranch, BoundsAreTheOptimaOfTheBranches) {
  LoggedEnv env;
  int solved = 0, infeasible = 0;
  for (unsigned seed = 1; seed <= 250; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const Spec spec = randomSpec(random);
    const int n = static_cast<int>(spec.obj.size());
    const double relaxed = optimum(env, spec);
    TinyModel model(env, spec);
    model.set("Presolve", static_cast<int>(seed % 3) - 1);
    // Types change nothing.
    for (int j = 0; j < n; ++j)
      ASSERT_EQ(TVKsetcharattrelement(model.get(), "VType", j, seed % 2 ? 'I' : 'C'), 0);
    if (seed % 4 < 2) model.solve();
    Call call(n);
    std::reverse(call.candidates.begin(), call.candidates.end());
    ASSERT_EQ(call(model), 0);
    ASSERT_EQ(call.status, relaxed < 1e100 ? 0 : 1);
    if (call.status == 1) continue;
    ++solved;
    for (int k = 0; k < n; ++k) {
      const int j = call.candidates[k];
      EXPECT_GE(std::min(call.down[k], call.up[k]), relaxed - 1e-6 * (1 + std::fabs(relaxed)));
      infeasible += call.down[k] >= 1e100 || call.up[k] >= 1e100;
      // The vertex is not known where optima are several: some integer splits the range this way.
      bool matches = false;
      for (int split = -5; split <= 8 && !matches; ++split) {
        const auto close = [](double a, double b) {
          return std::fabs(a - b) <= 1e-6 * (1 + std::fabs(b));
        };
        matches = close(call.down[k], optimumWithin(env, spec, j, -1e20, split)) &&
                  close(call.up[k], optimumWithin(env, spec, j, split + 1, 1e20));
      }
      EXPECT_TRUE(matches) << j << ": " << call.down[k] << " " << call.up[k];
    }
  }
  EXPECT_GT(solved, 80);
  EXPECT_GT(infeasible, 20);
}

// min -2x - y, 2x + 2y <= 7, x - y <= 0.5: its only optimum is (2, 1.5).
Spec fractionalSpec() {
  Spec spec;
  spec.obj = {-2, -1};
  spec.rows = {{{2, 2}, '<', 7}, {{1, -1}, '<', 0.5}};
  return spec;
}

TEST(StrongBranch, KeepsResultsAndRepeats) {
  LoggedEnv env;
  TinyModel model(env, fractionalSpec());
  ASSERT_EQ(TVKsetcharattrelement(model.get(), "VType", 0, 'I'), 0);
  ASSERT_EQ(model.solve(), TVK_OPTIMAL);
  const double before = model.dblAttr("ObjVal");
  Call first(2), second(2);
  ASSERT_EQ(first(model), 0);
  ASSERT_EQ(second(model), 0);
  EXPECT_EQ(first.status, 0);
  EXPECT_EQ(first.down, second.down);
  EXPECT_EQ(first.up, second.up);
  EXPECT_EQ(model.intAttr("Status"), TVK_OPTIMAL);
  EXPECT_EQ(model.dblAttr("ObjVal"), before);
  // The vertex is (2, 1.5): x is integral there, its own down branch costs nothing.
  expectSame(first.down[0], -5.5);
  EXPECT_EQ(first.up[0], 1e100);
  expectSame(first.down[1], -4);
  expectSame(first.up[1], -5);
  int value = 0;
  ASSERT_EQ(TVKgetintparam(TVKgetenv(model.get()), "TARV_PAR_SIMPLEXENDFAC", &value), 0);
  EXPECT_EQ(value, 1);
}

TEST(StrongBranch, AnswersWithoutBounds) {
  LoggedEnv env;
  const std::vector<double> untouched{-7, -7};
  const auto expectNone = [&](const Spec &spec, int status, const char *warning,
                              double cutoff = 1e100) {
    env.log().clear();
    TinyModel model(env, spec);
    model.set("Cutoff", cutoff);
    Call call(2);
    EXPECT_EQ(call(model), 0);
    EXPECT_EQ(call.status, status);
    EXPECT_EQ(call.down, untouched);
    EXPECT_EQ(call.up, untouched);
    EXPECT_EQ(env.logged("strong branch"), warning != nullptr) << env.log();
    EXPECT_TRUE(!warning || env.logged(warning)) << env.log();
  };
  constexpr const char *kInfeasible = "Warning: relaxation becomes infeasible in strong branch.\n";
  constexpr const char *kNumeric = "Warning: numeric error in strong branch.\n";
  Spec maximize = fractionalSpec();
  maximize.sense = TVK_MAXIMIZE;
  expectNone(maximize, -1, nullptr);
  Spec infeasible = fractionalSpec();
  infeasible.rows.push_back({{1, 1}, '>', 9});
  expectNone(infeasible, 1, kInfeasible);
  Spec crossed = fractionalSpec();
  crossed.lb = {3, 0};
  crossed.ub = {2, 9};
  expectNone(crossed, 1, kInfeasible);
  expectNone(fractionalSpec(), 1, kInfeasible, -100);
  Spec unbounded = fractionalSpec();
  unbounded.rows.clear();
  expectNone(unbounded, 1, kNumeric);

  TinyModel limited(env, fractionalSpec());
  limited.set("IterationLimit", 0.0);
  env.log().clear();
  Call call(2);
  EXPECT_EQ(call(limited), 0);
  EXPECT_EQ(call.status, 1);
  EXPECT_FALSE(env.logged("Warning"));
}

TEST(StrongBranch, ArgumentsAreChecked) {
  LoggedEnv env;
  TinyModel model(env, fractionalSpec());
  int candidate = 2, status = 99;
  double down = 0, up = 0;
  EXPECT_EQ(TVKstrongbranch(nullptr, 1, &candidate, &down, &up, &status), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(TVKstrongbranch(model.get(), 1, &candidate, &down, &up, nullptr),
            TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(TVKstrongbranch(model.get(), 1, &candidate, &down, &up, &status),
            TVK_ERROR_INDEX_OUT_OF_RANGE);
  EXPECT_EQ(TVKstrongbranch(model.get(), -1, &candidate, &down, &up, &status),
            TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(TVKstrongbranch(model.get(), 1, nullptr, &down, &up, &status), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(TVKstrongbranch(model.get(), 0, nullptr, nullptr, nullptr, &status), 0);
  EXPECT_EQ(status, 0);
  int index[] = {0}, other[] = {1};
  double one[] = {1};
  ASSERT_EQ(TVKaddqpterms(model.get(), 1, index, other, one), 0);
  EXPECT_EQ(TVKstrongbranch(model.get(), 0, nullptr, nullptr, nullptr, &status),
            TVK_ERROR_NOT_SUPPORTED);
}

}  // namespace
