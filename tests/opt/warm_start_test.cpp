// Which of basis and start vectors a linear solve uses, by LPWarmStart, TARV_PAR_SPXSTARTUSE and
// Method, and what the log says about it.
#include "opt/tiny_model.h"

namespace {

using tiny::LoggedEnv;
using tiny::Spec;
using tiny::TinyModel;

// Optimum at (2, 3, 0) with both rows tight: objective 13.
const Spec kSpec{{2, 3, 9},    {{{1, 0, 1}, '>', 2}, {{0, 1, 1}, '>', 3}},
                 {0, 0, 0},    {10, 10, 10},
                 TVK_MINIMIZE, 0};

struct Case {
  int warmStart, startUse, method;
  bool basis, primal, dual;
  std::vector<const char *> lines;  // of the log, in this order; none else mention a warm start
};

void giveBasis(TVKmodel *model) {
  const int vbasis[] = {0, 0, -1}, cbasis[] = {-1, -1};
  ASSERT_EQ(TVKsetintattrarray(model, "VBasis", 0, 3, const_cast<int *>(vbasis)), 0);
  ASSERT_EQ(TVKsetintattrarray(model, "CBasis", 0, 2, const_cast<int *>(cbasis)), 0);
}

TEST(WarmStart, IsTakenAsTheParametersDecide) {
  constexpr const char *kUseBasis = "LP warm-start: use basis\n";
  constexpr const char *kUseVectors = "LP warm-start: use start vectors\n";
  constexpr const char *kInside = "Primal warm-start: 2 superbasic variables.\n";
  constexpr const char *kDualCount = "Dual warm-start: 0 superbasic variables.\n";
  constexpr const char *kPrimalOnly = "Primal warm-start: use primal start, discard dual start\n";
  constexpr const char *kDualOnly = "Dual warm-start: use dual start, discard primal start\n";
  constexpr const char *kNoVectors = "LP warm-start: discard start vectors\n";
  constexpr const char *kBasisFirst = "LP warm-start: discard start vectors, use basis\n";
  const Case cases[] = {
      {0, 1, -1, true, true, true, {"LP warm-start: discard basis and start vectors\n"}},
      {0, 1, -1, true, false, false, {"LP warm-start: discard basis\n"}},
      {0, 1, -1, false, true, true, {kNoVectors}},
      {1, 1, -1, false, false, false, {}},
      {1, 1, -1, true, false, false, {kUseBasis}},
      {1, 1, 0, true, true, false, {kBasisFirst}},
      {1, 1, 0, false, true, false, {kUseVectors, kInside}},
      {1, 1, 0, false, false, true, {kNoVectors}},
      {1, 1, 1, false, true, false, {kNoVectors}},
      {1, 1, 1, false, false, true, {kUseVectors, kDualCount}},
      {1, 1, -1, false, true, false, {kNoVectors}},
      {1, 0, 0, false, true, false, {kNoVectors}},
      {1, 1, 0, false, true, true, {kUseVectors, kPrimalOnly, kInside}},
      {1, 1, -1, false, true, true, {kUseVectors, kDualOnly, kDualCount}},
      {1, 0, 0, false, true, true, {kUseVectors, kInside}},
      {1, 2, 0, true, true, true, {kPrimalOnly}},
      {2, 1, 0, true, true, false, {"LP warm-start: discard basis, use start vectors\n", kInside}},
      {2,
       1,
       1,
       true,
       false,
       false,
       {kUseBasis, "LP warm-start: get start vectors from basis, then crush them\n"}},
  };
  int number = 0;
  for (const Case &c : cases) {
    SCOPED_TRACE(number++);
    LoggedEnv env;
    TinyModel model(env, kSpec);
    model.set("LPWarmStart", c.warmStart);
    model.set("TARV_PAR_SPXSTARTUSE", c.startUse);
    model.set("Method", c.method);
    double x[] = {2, 3, 0}, y[] = {2, 3};
    ASSERT_EQ(TVKupdatemodel(model.get()), 0);
    if (c.basis) giveBasis(model.get());
    if (c.primal) {
      ASSERT_EQ(TVKsetdblattrarray(model.get(), "PStart", 0, 3, x), 0);
    }
    if (c.dual) {
      ASSERT_EQ(TVKsetdblattrarray(model.get(), "DStart", 0, 2, y), 0);
    }
    ASSERT_EQ(model.solve(), TVK_OPTIMAL);
    EXPECT_NEAR(model.dblAttr("ObjVal"), 13, 1e-9);
    std::string expected, found;
    for (const char *line : c.lines) expected += line;
    for (std::size_t at = 0, end; at < env.log().size(); at = end + 1) {
      end = env.log().find('\n', at);
      const std::string line = env.log().substr(at, end - at + 1);
      if (line.find("warm-start") != std::string::npos) found += line;
    }
    EXPECT_EQ(found, expected);
    // Whatever starts at the optimum stays there.
    const bool used = !c.lines.empty() && expected.find("use ") != std::string::npos;
    if (used) {
      EXPECT_EQ(model.dblAttr("IterCount"), 0) << env.log();
    }
  }
}

TEST(WarmStart, StartVectorsAreUsedOnce) {
  LoggedEnv env;
  TinyModel model(env, kSpec);
  model.set("Method", 0);
  double x[] = {5, 0.5, 10};
  ASSERT_EQ(TVKupdatemodel(model.get()), 0);
  ASSERT_EQ(TVKsetdblattrarray(model.get(), "PStart", 0, 3, x), 0);
  ASSERT_EQ(model.solve(), TVK_OPTIMAL);
  EXPECT_TRUE(env.logged("Primal warm-start: 2 superbasic variables.\n"));
  env.log().clear();
  ASSERT_EQ(model.solve(), TVK_OPTIMAL);
  EXPECT_TRUE(env.logged("LP warm-start: use basis\n"));
}

TEST(WarmStart, SuperbasicVariablesOfABasisAreCounted) {
  LoggedEnv env;
  TinyModel model(env, kSpec);
  ASSERT_EQ(TVKupdatemodel(model.get()), 0);
  int vbasis[] = {0, 0, TVK_SUPERBASIC}, cbasis[] = {-1, -1};
  ASSERT_EQ(TVKsetintattrarray(model.get(), "VBasis", 0, 3, vbasis), 0);
  ASSERT_EQ(TVKsetintattrarray(model.get(), "CBasis", 0, 2, cbasis), 0);
  ASSERT_EQ(model.solve(), TVK_OPTIMAL);
  EXPECT_TRUE(env.logged("Superbasic variables: 1.\n")) << env.log();
  EXPECT_NEAR(model.dblAttr("ObjVal"), 13, 1e-9);
}

TEST(WarmStart, NonbasicSlackOfAnInfiniteRowDiscardsTheBasis) {
  LoggedEnv env;
  Spec spec = kSpec;
  spec.rows.push_back({{1, 1, 1}, '<', TVK_INFINITY});
  TinyModel model(env, spec);
  ASSERT_EQ(TVKupdatemodel(model.get()), 0);
  int vbasis[] = {0, 0, 0}, cbasis[] = {-1, -1, -1};
  ASSERT_EQ(TVKsetintattrarray(model.get(), "VBasis", 0, 3, vbasis), 0);
  ASSERT_EQ(TVKsetintattrarray(model.get(), "CBasis", 0, 3, cbasis), 0);
  ASSERT_EQ(model.solve(), TVK_OPTIMAL);
  EXPECT_TRUE(
      env.logged("Warning: nonbasic slack with infinite rhs, warm-start basis discarded\n"));
  EXPECT_NEAR(model.dblAttr("ObjVal"), 13, 1e-9);
}

// A basis that no matrix can be made of is repaired, not believed.
TEST(WarmStart, SingularBasisIsRepaired) {
  for (const int presolve : {0, 2}) {
    LoggedEnv env;
    Spec spec = kSpec;
    spec.rows[1].coef = {2, 0, 1};
    TinyModel model(env, spec);
    model.set("LPWarmStart", presolve == 0 ? 1 : 2);
    model.set("Presolve", presolve);
    ASSERT_EQ(TVKupdatemodel(model.get()), 0);
    giveBasis(model.get());  // the column of the second variable is empty
    ASSERT_EQ(model.solve(), TVK_OPTIMAL);
    EXPECT_NEAR(model.dblAttr("ObjVal"), 4, 1e-9);
  }
}

}  // namespace
