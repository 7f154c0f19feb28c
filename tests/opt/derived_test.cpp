// Models made from other models: what a copy keeps, and that relaxations, fixed models, duals,
// scenarios and linear forms have the optimal values that theory gives them.
#include <cmath>
#include <memory>
#include <random>

#include "model/model.h"
#include "model/model_fixture.h"

namespace {

struct Freer {
  void operator()(TVKmodel *model) const { TVKfreemodel(model); }
};
using Owned = std::unique_ptr<TVKmodel, Freer>;

class DerivedTest : public ModelTest {
 protected:
  Owned derive(int (*function)(TVKmodel *, TVKmodel **)) {
    TVKmodel *derived = nullptr;
    EXPECT_EQ(function(model, &derived), 0) << error();
    return Owned(derived);
  }
  Owned result(const char *type) {
    TVKmodel *derived = nullptr;
    EXPECT_EQ(TVKresultmodel(model, type, &derived), 0) << type << ": " << error();
    return Owned(derived);
  }
  static int intOf(TVKmodel *m, const char *name) {
    int value = -77;
    EXPECT_EQ(TVKgetintattr(m, name, &value), 0) << name;
    return value;
  }
  static double element(TVKmodel *m, const char *name, int k) {
    double value = -77;
    EXPECT_EQ(TVKgetdblattrelement(m, name, k, &value), 0) << name;
    return value;
  }
  static std::string textOf(TVKmodel *m, const char *name, int k) {
    char *value = nullptr;
    EXPECT_EQ(TVKgetstrattrelement(m, name, k, &value), 0) << name;
    return value ? value : "";
  }
  static int indexOf(TVKmodel *m, const char *name) {
    int index = -77;
    EXPECT_EQ(TVKgetvarbyname(m, name, &index), 0) << name;
    return index;
  }
  static void set(TVKmodel *m, const char *name, int k, double value) {
    EXPECT_EQ(TVKsetdblattrelement(m, name, k, value), 0) << name << TVKgetmerrormsg(m);
  }
  // The optimal value, NaN with the status as payload of the failure when there is none.
  static double optimum(TVKmodel *m) {
    EXPECT_EQ(TVKoptimize(m), 0) << TVKgetmerrormsg(m);
    double value = std::nan("");
    EXPECT_EQ(TVKgetdblattr(m, "ObjVal", &value), 0) << "status " << intOf(m, "Status");
    return value;
  }
  void constr(std::vector<int> ind, std::vector<double> val, char sense, double rhs,
              const char *name = nullptr) {
    ASSERT_EQ(
        TVKaddconstr(model, static_cast<int>(ind.size()), ind.data(), val.data(), sense, rhs, name),
        0);
  }

  // x, y binary, z in [-2, 3], n integer in [0, 9], with every kind of part.
  void buildEverything() {
    addVar(1, 0, 1, 'B', "x");
    addVar(2, 0, 1, 'B', "y");
    addVar(3, -2, 3, 'C', "z");
    addVar(4, 0, 9, 'I', "n");
    constr({0, 2, 3}, {1, 2, 3}, '<', 20, "first");
    const int ind[] = {1, 2};
    const double ones[] = {1, 1};
    TVKaddrangeconstr(model, 2, ind, ones, -1, 4, "range");
    const int row[] = {0, 2}, col[] = {2, 2};
    const double q[] = {1.5, 2.5};
    TVKaddqpterms(model, 2, row, col, q);
    TVKaddqconstr(model, 1, ind, ones, 2, row, col, q, '<', 30, "quad");
    const int members[] = {3, 2};
    TVKaddcone(model, 2, members);
    const int type = 1, beg = 0;
    TVKaddsos(model, 1, 2, &type, &beg, ind, ones);
    TVKaddgenconstrIndicator(model, "ind", 0, 1, 2, ind, ones, '<', 2);
    TVKaddgenconstrExp(model, "exp", 2, 3, "FuncPieces=7");
    const double px[] = {0, 1, 2}, py[] = {0, 1, 4};
    TVKsetpwlobj(model, 3, 3, px, py);
    TVKsetintattr(model, "NumScenarios", 1);
    TVKsetintparam(modelEnv(), "ScenarioNumber", 0);
    set(model, "ScenNUB", 2, 1.5);
    TVKsetstrattr(model, "ScenNName", "low");
    TVKsetstrattrelement(model, "VTag", 1, "tag");
    set(model, "Start", 0, 1);
    set(model, "VarHintVal", 3, 5);
    TVKsetintattrelement(model, "BranchPriority", 1, 8);
    TVKsetintattrelement(model, "Lazy", 0, 2);
    update();
  }
};

TEST_F(DerivedTest, CopyHasEverythingAndLivesOnItsOwn) {
  buildEverything();
  set(model, "UB", 2, 2.75);  // pending: not copied
  log.clear();
  Owned copy(TVKcopymodel(model));
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(log,
            "Warning: model has pending changes.\nNew model does not contain these changes.\n");
  EXPECT_EQ(intOf(copy.get(), "Fingerprint"), count("Fingerprint"));
  for (const char *name : {"NumVars", "NumConstrs", "NumSOS", "NumQConstrs", "NumGenConstrs",
                           "NumQNZs", "NumPWLObjVars", "NumScenarios", "NumTagged", "NumStart"})
    EXPECT_EQ(intOf(copy.get(), name), count(name)) << name;
  EXPECT_EQ(textOf(copy.get(), "VarName", 3), "n");
  EXPECT_EQ(textOf(copy.get(), "VTag", 1), "tag");
  EXPECT_EQ(element(copy.get(), "Start", 0), 1);
  EXPECT_EQ(element(copy.get(), "VarHintVal", 3), 5);
  EXPECT_EQ(element(copy.get(), "UB", 2), 3);
  EXPECT_EQ(element(copy.get(), "ScenNUB", 2), 1.5);

  set(copy.get(), "UB", 2, 1);
  EXPECT_EQ(TVKupdatemodel(copy.get()), 0);
  EXPECT_EQ(element(model, "UB", 2), 3);
  TVKfreemodel(model);
  model = nullptr;
  EXPECT_EQ(element(copy.get(), "UB", 2), 1);
  EXPECT_EQ(TVKupdatemodel(copy.get()), 0);
}

TEST_F(DerivedTest, CopyInAnotherEnvironmentOutlivesTheFirst) {
  buildEverything();
  TVKenv *other = nullptr;
  ASSERT_EQ(TVKemptyenv(&other), 0);
  TVKmodel *copy = model;
  EXPECT_EQ(TVKcopymodeltoenv(model, other, &copy), TVK_ERROR_NOT_STARTED);
  EXPECT_EQ(copy, nullptr);
  TVKsetintparam(other, "OutputFlag", 0);
  TVKsetdblparam(other, "TimeLimit", 77);
  ASSERT_EQ(TVKstartenv(other), 0);
  EXPECT_EQ(TVKcopymodeltoenv(model, nullptr, &copy), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(TVKcopymodeltoenv(model, other, nullptr), TVK_ERROR_INVALID_ARGUMENT);
  ASSERT_EQ(TVKcopymodeltoenv(model, other, &copy), 0);
  const int fingerprint = count("Fingerprint");
  TVKfreemodel(model);
  TVKfreeenv(env);
  model = nullptr;
  env = nullptr;
  EXPECT_EQ(intOf(copy, "Fingerprint"), fingerprint);
  double limit = 0;
  EXPECT_EQ(TVKgetdblparam(TVKgetenv(copy), "TimeLimit", &limit), 0);
  EXPECT_EQ(limit, 77);
  EXPECT_EQ(TVKfreemodel(copy), 0);
  TVKfreeenv(other);
}

TEST_F(DerivedTest, CopyKeepsTheBasisThatTheCallerSet) {
  addVar(1, 0, 4, 'C');
  constr({0}, {1}, '>', 2);
  update();
  const int vbasis = 0, cbasis = -1;
  TVKsetintattrarray(model, "VBasis", 0, 1, &vbasis);
  TVKsetintattrarray(model, "CBasis", 0, 1, &cbasis);
  update();
  Owned copy(TVKcopymodel(model));
  int status = -77;
  EXPECT_EQ(TVKgetintattrelement(copy.get(), "CBasis", 0, &status), 0);
  EXPECT_EQ(status, -1);
  EXPECT_EQ(intOf(copy.get(), "Status"), TVK_LOADED);
}

TEST_F(DerivedTest, RelaxationHasNoDiscretePartsLeft) {
  buildEverything();
  log.clear();
  Owned relaxed = derive(TVKrelaxmodel);
  EXPECT_EQ(intOf(relaxed.get(), "NumIntVars"), 0);
  EXPECT_EQ(intOf(relaxed.get(), "NumSOS"), 0);
  EXPECT_EQ(intOf(relaxed.get(), "NumGenConstrs"), 0);
  EXPECT_EQ(intOf(relaxed.get(), "NumQConstrs"), 1);
  // Scenarios make a model a discrete one.
  EXPECT_NE(log.find("Warning: model attributes, such as non-convex PWL objective, cannot be "
                     "relaxed\n"),
            std::string::npos);
  Owned feasible = derive(TVKfeasibility);
  EXPECT_EQ(intOf(feasible.get(), "NumQNZs"), 0);
  EXPECT_EQ(intOf(feasible.get(), "NumPWLObjVars"), 0);
  EXPECT_EQ(element(feasible.get(), "Obj", 3), 0);
  EXPECT_EQ(intOf(feasible.get(), "NumIntVars"), 3);
}

TEST_F(DerivedTest, RelaxedSemiContinuousVariableReachesZero) {
  addVar(1, 2, 5, 'S');
  addVar(-1, -7, -3, 'N');
  constr({0, 1}, {1, 1}, '<', 100);
  update();
  Owned relaxed = derive(TVKrelaxmodel);
  EXPECT_EQ(element(relaxed.get(), "LB", 0), 0);
  EXPECT_EQ(element(relaxed.get(), "UB", 0), 5);
  EXPECT_EQ(element(relaxed.get(), "UB", 1), 0);
  EXPECT_NEAR(optimum(relaxed.get()), 0, 1e-9);
}

TEST_F(DerivedTest, FixedModelKeepsTheChoicesOfTheSolution) {
  EXPECT_EQ(TVKfixedmodel(model), nullptr);  // nothing discrete: no model and no error
  addVar(1, 0, 1, 'B', "b");
  addVar(1, 0, 9, 'I', "n");
  addVar(1, 2, 5, 'S', "off");
  addVar(1, 2, 5, 'S', "on");
  addVar(-1, 0, 8, 'C', "s1");
  addVar(-1, 0, 8, 'C', "s2");
  addVar(-1, 0, 8, 'C', "s3");
  const int members[] = {4, 5, 6}, type = 2, beg = 0;
  const double weights[] = {1, 2, 3}, ones[] = {1, 1, 1};
  TVKaddsos(model, 1, 3, &type, &beg, members, weights);
  const int repeated[] = {4, 5, 6, 4};
  const double halves[] = {0.5, 1, 1, 0.5};
  TVKaddgenconstrIndicator(model, "holds", 0, 1, 4, repeated, halves, '<', 6);
  TVKaddgenconstrIndicator(model, "idle", 0, 0, 3, members, ones, '<', 1);
  update();
  TVKmodel *fixed = model;
  EXPECT_EQ(TVKfixmodel(model, &fixed), TVK_ERROR_DATA_NOT_AVAILABLE);
  EXPECT_EQ(fixed, nullptr);
  model->solution().x.assign({1 - 1e-7, 4 + 1e-7, 1e-8, 2.5, 3, 3, 0});
  Owned owned = derive(TVKfixmodel);
  ASSERT_NE(owned, nullptr);
  fixed = owned.get();
  EXPECT_EQ(intOf(fixed, "IsMIP"), 0);
  EXPECT_EQ(intOf(fixed, "NumConstrs"), 1);
  EXPECT_EQ(textOf(fixed, "ConstrName", 0), "holds");
  EXPECT_EQ(intOf(fixed, "NumNZs"), 3);
  EXPECT_EQ(element(fixed, "LB", 0), 1);
  EXPECT_EQ(element(fixed, "UB", 1), 4);
  EXPECT_EQ(element(fixed, "UB", 2), 0);
  EXPECT_EQ(element(fixed, "LB", 3), 2);
  EXPECT_EQ(element(fixed, "UB", 6), 0);
  EXPECT_NEAR(optimum(fixed), 1 + 4 + 0 + 2 - 6, 1e-9);

  ASSERT_EQ(TVKconverttofixed(model), 0) << error();
  EXPECT_NEAR(optimum(model), 1, 1e-9);
}

TEST_F(DerivedTest, DualHasTheOptimalValueOfThePrimal) {
  std::mt19937 random(7);
  const auto pick = [&](int n) { return static_cast<int>(random() % n); };
  int solved = 0;
  for (int round = 0; round < 300; ++round) {
    TVKmodel *primal = nullptr;
    const int n = 1 + pick(4), rows = 1 + pick(4);
    ASSERT_EQ(TVKnewmodel(env, &primal, "p", 0, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
    const Owned ownedPrimal(primal);
    std::vector<double> inside(n);
    for (int j = 0; j < n; ++j) {
      const double at = pick(7) - 3;
      const double bounds[] = {-TVK_INFINITY, TVK_INFINITY, 0, 0, at - pick(3), at + pick(3)};
      double lb = bounds[2 * pick(3)], ub = bounds[2 * pick(3) + 1];
      if (lb > ub) std::swap(lb, ub);
      inside[j] = lb > -TVK_INFINITY ? lb : ub < TVK_INFINITY ? ub : at;
      TVKaddvar(primal, 0, nullptr, nullptr, pick(9) - 4, lb, ub, 'C', nullptr);
    }
    for (int i = 0; i < rows; ++i) {
      std::vector<int> ind(n);
      std::vector<double> val(n);
      double activity = 0;
      for (int j = 0; j < n; ++j) {
        ind[j] = j;
        val[j] = pick(7) - 3;
        activity += val[j] * inside[j];
      }
      const char sense = "<>="[pick(3)];
      TVKaddconstr(primal, n, ind.data(), val.data(), sense,
                   activity + (sense == '<'   ? pick(4)
                               : sense == '>' ? -pick(4)
                                              : 0),
                   nullptr);
    }
    TVKsetdblattr(primal, "ObjCon", pick(5));
    TVKsetintattr(primal, "ModelSense", pick(2) ? 1 : -1);
    ASSERT_EQ(TVKoptimize(primal), 0);
    TVKmodel *dual = nullptr;
    ASSERT_EQ(TVKdualmodel(primal, &dual), 0);
    const Owned ownedDual(dual);
    EXPECT_EQ(intOf(dual, "ModelSense"), -intOf(primal, "ModelSense"));
    ASSERT_EQ(TVKoptimize(dual), 0);
    const int status = intOf(primal, "Status");
    if (status == TVK_OPTIMAL) {
      double value = 0;
      ASSERT_EQ(TVKgetdblattr(primal, "ObjVal", &value), 0);
      EXPECT_NEAR(optimum(dual), value, 1e-6) << "round " << round;
      ++solved;
    } else {  // feasible by construction, so unbounded
      const int dualStatus = intOf(dual, "Status");
      EXPECT_TRUE(dualStatus == TVK_INFEASIBLE || dualStatus == TVK_INF_OR_UNBD)
          << "round " << round << ": " << status << " and " << dualStatus;
    }
  }
  EXPECT_GT(solved, 50);
}

TEST_F(DerivedTest, DualNeedsAContinuousLinearModel) {
  buildEverything();
  TVKmodel *dual = model;
  EXPECT_EQ(TVKdualmodel(model, &dual), TVK_ERROR_NOT_SUPPORTED);
  EXPECT_EQ(dual, nullptr);
}

TEST_F(DerivedTest, ScenariosBecomeModels) {
  addVar(1, 0, 10, 'C', "x");
  addVar(1, 0, 10, 'C', "y");
  constr({0, 1}, {1, 1}, '>', 3, "sum");
  update();
  TVKmodel *derived = nullptr;
  EXPECT_NE(TVKsinglescenariomodel(model, &derived), 0);
  EXPECT_EQ(error(), "Model is not a multi-scenario model");
  TVKsetintattr(model, "ModelSense", -1);
  TVKsetintattr(model, "NumScenarios", 3);
  update();
  TVKsetintparam(modelEnv(), "ScenarioNumber", 1);
  set(model, "ScenNObj", 0, 2);
  TVKsetstrattr(model, "ScenNName", "dear");
  TVKsetintparam(modelEnv(), "ScenarioNumber", 2);
  set(model, "ScenNUB", 1, 4);
  set(model, "ScenNLB", 0, 1);
  set(model, "ScenNRHS", 0, 5);
  update();
  Owned low = derive(TVKsinglescenariomodel);
  EXPECT_EQ(intOf(low.get(), "NumScenarios"), 0);
  EXPECT_EQ(element(low.get(), "LB", 0), 1);
  EXPECT_EQ(element(low.get(), "RHS", 0), 5);
  EXPECT_NEAR(optimum(low.get()), 14, 1e-9);
  Owned dear = result("scenario1");
  EXPECT_NEAR(optimum(dear.get()), 30, 1e-9);
  int number = -1;
  TVKgetintparam(modelEnv(), "ScenarioNumber", &number);
  EXPECT_EQ(number, 2);
  Owned all = result("scenario");
  EXPECT_EQ(intOf(all.get(), "NumVars"), 6);
  EXPECT_EQ(textOf(all.get(), "VarName", 5), "y_S2");
  EXPECT_NEAR(optimum(all.get()), 20 + 30 + 14, 1e-9);
  EXPECT_NE(TVKresultmodel(model, "scenario7", &derived), 0);
  EXPECT_EQ(error(), "Specified scenario number does not exist");
}

TEST_F(DerivedTest, ProductsWithBinariesAreExactInTheirLinearForm) {
  addVar(1, 0, 1, 'B', "b");
  addVar(-2, 0, 1, 'B', "c");
  addVar(1, -2, 3, 'C', "x");
  const int row[] = {0, 0, 1, 1}, col[] = {1, 2, 1, 2};
  const double val[] = {5, -3, 2, 4};
  TVKaddqpterms(model, 4, row, col, val);
  const int x = 2;
  const double one = 1;
  TVKaddqconstr(model, 1, &x, &one, 4, row, col, val, '<', 6.5, "limit");
  update();
  for (const int sense : {1, -1}) {
    TVKsetintattr(model, "ModelSense", sense);
    update();
    Owned linear = derive(TVKlinearizemodel);
    EXPECT_EQ(intOf(linear.get(), "NumQNZs"), 0);
    EXPECT_EQ(intOf(linear.get(), "NumQConstrs"), 0);
    EXPECT_EQ(intOf(linear.get(), "NumNZs"), 32);  // none of them zero
    EXPECT_EQ(textOf(linear.get(), "VarName", 3).substr(0, 10), "Aux_qplin0");
    for (int mask = 0; mask < 4; ++mask) {
      const int b = mask & 1, c = mask >> 1;
      Owned fixed = nullptr;
      TVKmodel *relaxed = nullptr;
      ASSERT_EQ(TVKrelaxmodel(linear.get(), &relaxed), 0);
      fixed.reset(relaxed);
      for (const char *bound : {"LB", "UB"}) {
        set(relaxed, bound, 0, b);
        set(relaxed, bound, 1, c);
      }
      // What is left is linear in x: slope s of the objective over the x that the limit allows.
      const double slope = 1 - 3 * b + 4 * c, constant = b - 2 * c + 5 * b * c + 2 * c;
      const double limitSlope = 1 - 3 * b + 4 * c, limit = 6.5 - 5 * b * c - 2 * c;
      double lo = -2, hi = 3;
      (limitSlope > 0 ? hi : lo) =
          limitSlope > 0 ? std::min(hi, limit / limitSlope) : std::max(lo, limit / limitSlope);
      const double ends[] = {slope * lo, slope * hi};
      const double best = sense > 0 ? std::min(ends[0], ends[1]) : std::max(ends[0], ends[1]);
      EXPECT_NEAR(optimum(relaxed), constant + best, 1e-7) << sense << " " << mask;
    }
  }
}

TEST_F(DerivedTest, ProductsWithoutBoundStayQuadratic) {
  addVar(0, 0, 1, 'B');
  addVar(0, 0, TVK_INFINITY, 'C');
  const int row = 0, col = 1;
  const double one = 1;
  TVKaddqpterms(model, 1, &row, &col, &one);
  update();
  Owned linear = derive(TVKlinearizemodel);
  EXPECT_EQ(intOf(linear.get(), "NumQNZs"), 1);
  EXPECT_EQ(intOf(linear.get(), "NumVars"), 2);
}

TEST_F(DerivedTest, PiecewiseLinearObjectivesBecomeRowsOrSets) {
  addVar(0, -1, 4, 'C', "x");
  addVar(0, -1, 4, 'C', "y");
  const double px[] = {0, 1, 2}, convex[] = {0, -1, 2}, concave[] = {0, 2, 1};
  TVKsetpwlobj(model, 0, 3, px, convex);
  TVKsetpwlobj(model, 1, 3, px, concave);
  update();
  Owned linear = result("convertpw");
  EXPECT_EQ(intOf(linear.get(), "NumPWLObjVars"), 0);
  EXPECT_EQ(intOf(linear.get(), "NumSOS"), 1);
  // The concave one is the linear interpolation of its five points, the outer ones at the bounds.
  int numMembers = 0;
  EXPECT_EQ(TVKgetsos(linear.get(), &numMembers, nullptr, nullptr, nullptr, nullptr, 0, 1), 0);
  EXPECT_EQ(numMembers, 5);
  EXPECT_EQ(element(linear.get(), "Obj", indexOf(linear.get(), "Pwl_y_0")), -2);
  EXPECT_EQ(element(linear.get(), "Obj", indexOf(linear.get(), "Pwl_y_4")), -1);
  const double expected[] = {1, 0, -1, 2, 5, 8};
  for (int at = -1; at <= 4; ++at) {
    TVKmodel *relaxed = nullptr;
    ASSERT_EQ(TVKrelaxmodel(linear.get(), &relaxed), 0);
    const Owned owned(relaxed);
    for (int k = 0; k < 5; ++k)
      set(relaxed, "Obj", indexOf(relaxed, ("Pwl_y_" + std::to_string(k)).c_str()), 0);
    for (const char *bound : {"LB", "UB"}) set(relaxed, bound, 0, at);
    EXPECT_NEAR(optimum(relaxed), expected[at + 1], 1e-9) << at;
  }
}

TEST_F(DerivedTest, ResultTypesAreChecked) {
  addVar(1, 2, 5, 'C');
  update();
  for (const char *type :
       {"", "Copy", "copyx", "copy-1", "scenario1x", "relaxed", "copy99999999999"}) {
    TVKmodel *derived = model;
    log.clear();
    EXPECT_EQ(TVKresultmodel(model, type, &derived), TVK_ERROR_INVALID_ARGUMENT) << type;
    EXPECT_EQ(derived, nullptr);
    EXPECT_EQ(log, "Error in TVKresultmodel: type isn't correct\n");
  }
  EXPECT_EQ(TVKresultmodel(model, nullptr, nullptr), TVK_ERROR_INVALID_ARGUMENT);
  for (const char *type : {"copy", "relax", "feasibility", "linearize", "dual", "convertpw"})
    EXPECT_NE(result(type), nullptr) << type;
  EXPECT_EQ(result("fixed"), nullptr);
  TVKmodel *derived = nullptr;
  EXPECT_EQ(TVKresultmodel(model, "copy0", &derived), TVK_ERROR_DATA_NOT_AVAILABLE);
  ASSERT_EQ(TVKoptimize(model), 0);
  Owned started = result("copy0");
  EXPECT_EQ(element(started.get(), "Start", 0), 2);
}

class FeasRelaxTest : public DerivedTest {
 protected:
  // x + y >= 8 with x <= 3 and y in [1, 4], and x = 6 as a row: infeasible.
  void SetUp() override {
    DerivedTest::SetUp();
    addVar(1, 0, 3, 'C', "x");
    addVar(2, 1, 4, 'C', "y");
    constr({0, 1}, {1, 1}, '>', 8, "sum");
    constr({0}, {1}, '=', 6, "fix");
    update();
  }
  int relax(int type, int minrelax, double *result) {
    return TVKfeasrelax(model, type, minrelax, pen.data(), pen.data(), pen.data(), result);
  }
  std::vector<double> pen{1, 1};
  double price = 99;
};

TEST_F(FeasRelaxTest, PricesOfAllViolationsMakeTheObjective) {
  pen = {1, 10};
  ASSERT_EQ(TVKsetdblattrelement(model, "UB", 0, 2), 0);  // pending: applied first
  log.clear();
  ASSERT_EQ(relax(0, 0, &price), 0) << error();
  EXPECT_EQ(log,
            "Warning: model has pending changes.\n"
            "Performing update to include changes in feasrelax model.\n");
  EXPECT_EQ(price, -1);
  EXPECT_EQ(count("ModelSense"), 1);
  for (const char *name :
       {"ArtL_x", "ArtU_x", "ArtL_y", "ArtU_y", "ArtP_sum", "ArtP_fix", "ArtN_fix"})
    EXPECT_GE(indexOf(model, name), 2) << name;
  EXPECT_EQ(count("NumVars"), 9);
  // x = 6 costs 4 above its bound; the sum then needs y = 2.
  EXPECT_NEAR(optimum(model), 4, 1e-9);
  EXPECT_NEAR(element(model, "X", 0), 6, 1e-9);
}

TEST_F(FeasRelaxTest, PenaltiesDecideWhatIsRelaxed) {
  const double never = 1e30;
  pen = {never, never};
  const double some[] = {never, 5};
  ASSERT_EQ(TVKfeasrelax(model, 0, 0, nullptr, nullptr, some, nullptr), 0);
  EXPECT_EQ(count("NumVars"), 4);
  // The sum stays out of reach: x <= 3 and y <= 4.
  ASSERT_EQ(TVKoptimize(model), 0);
  EXPECT_NE(count("Status"), TVK_OPTIMAL);
  const double negative[] = {1, 1, 1, -1};
  EXPECT_EQ(TVKfeasrelax(model, 0, 0, negative, nullptr, nullptr, &price),
            TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(TVKfeasrelax(model, 3, 0, nullptr, nullptr, nullptr, &price),
            TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(count("NumVars"), 4);
}

TEST_F(FeasRelaxTest, TheObjectiveIsOptimizedAmongTheCheapestViolations) {
  ASSERT_EQ(TVKsetdblattrelement(model, "Obj", 0, -1), 0);
  const double rhs[] = {1e30, 1};
  ASSERT_EQ(TVKfeasrelax(model, 0, 1, nullptr, pen.data(), rhs, &price), 0) << error();
  // x = 3 + v and y = 4 + w cost v + w + (3 - v), so at least 3, for x + y >= 8: v + w >= 1.
  EXPECT_NEAR(price, 3, 1e-9);
  EXPECT_TRUE(logged("Solve phase I feasrelax model to determine minimal relaxation\n"));
  int row = -1;
  EXPECT_EQ(TVKgetconstrbyname(model, "feasobj", &row), 0);
  EXPECT_EQ(row, count("NumConstrs") - 1);
  // Among these -x + 2y is smallest at x = 6, y = 2.
  EXPECT_NEAR(optimum(model), -6 + 4, 1e-6);
}

TEST_F(FeasRelaxTest, AFailingFirstSolveChangesNothing) {
  const int fingerprint = count("Fingerprint");
  for (const int type : {1, 2}) {
    price = 99;
    if (relax(type, 1, &price) == 0) continue;
    EXPECT_EQ(price, -1);
    EXPECT_EQ(count("Fingerprint"), fingerprint);
  }
}

TEST_F(FeasRelaxTest, SquaresAndCountsAreBuilt) {
  Owned other(TVKcopymodel(model));
  ASSERT_EQ(relax(1, 0, &price), 0);
  EXPECT_EQ(count("NumQNZs"), 7);
  ASSERT_EQ(TVKfeasrelax(other.get(), 2, 0, pen.data(), nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(intOf(other.get(), "NumBinVars"), 2);
  EXPECT_EQ(intOf(other.get(), "NumGenConstrs"), 2);
  EXPECT_EQ(element(other.get(), "Obj", indexOf(other.get(), "ArtLB_y")), 1);
  EXPECT_EQ(element(other.get(), "Obj", indexOf(other.get(), "ArtL_y")), 0);
}

TEST_F(FeasRelaxTest, SomeModelsCannotBeRelaxed) {
  addVar(0, 2, 5, 'S');
  update();
  pen = {1, 1, 1};
  EXPECT_EQ(relax(0, 0, &price), TVK_ERROR_NOT_SUPPORTED);
  EXPECT_EQ(error(), "Relaxing lower bound of a semi variable for feasRelax");
  EXPECT_TRUE(
      logged("Relaxing positive lower bound of a semi variable for feasRelax isn't supported\n"));
  EXPECT_EQ(count("NumVars"), 3);
  TVKsetintattr(model, "NumObj", 2);
  update();
  pen = {1, 1, 1e30};
  EXPECT_EQ(relax(0, 1, &price), TVK_ERROR_NOT_SUPPORTED);
  EXPECT_EQ(error(), "Multi-objective problem and minrelax != 0");
  EXPECT_EQ(relax(0, 0, &price), 0) << error();
  EXPECT_EQ(count("NumObj"), 1);
}

}  // namespace
