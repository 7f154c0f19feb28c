// Quadratic parts, cones, SOS, general constraints and whole objectives.
#include <climits>
#include <cmath>
#include <limits>

#include "model/model.h"
#include "model/model_fixture.h"
#include "model/objectives.h"

namespace {

using Doubles = std::vector<double>;
using Ints = std::vector<int>;

class PartsTest : public ModelTest {
 protected:
  void SetUp() override {
    ModelTest::SetUp();
    addVars(5);
    update();
  }
  void expectFailure(int code, int expected, const char *text) const {
    EXPECT_EQ(code, expected);
    EXPECT_EQ(error(), text);
  }
  Doubles quadObjective() const {
    int n = 0, row[8], col[8];
    Doubles val(8);
    EXPECT_EQ(TVKgetq(model, &n, row, col, val.data()), 0);
    val.resize(n);
    return val;
  }
};

TEST_F(PartsTest, QuadraticObjective) {
  const int row[] = {0, 1, 0}, col[] = {1, 1, 1};
  const double val[] = {2, 3, 4};
  ASSERT_EQ(TVKsetintattr(model, "ModelSense", -1), 0);
  ASSERT_EQ(TVKaddqpterms(model, 2, row, col, val), 0);
  update();
  EXPECT_EQ(quadObjective(), (Doubles{2, 3}));
  EXPECT_EQ(model->data().q.val[0], -4);
  EXPECT_EQ(count("IsQP"), 1);
  // A repeated pair is added up, in either order; zero removes it.
  ASSERT_EQ(TVKaddqpterms(model, 1, col, row, val + 2), 0);
  update();
  EXPECT_EQ(quadObjective(), (Doubles{6, 3}));
  ASSERT_EQ(TVKaddqpterms(model, 1, row, col, val), 0);
  ASSERT_EQ(TVKdelq(model), 0);
  ASSERT_EQ(TVKaddqpterms(model, 1, row + 1, col + 1, val + 2), 0);
  update();
  EXPECT_EQ(quadObjective(), (Doubles{4}));
  const int outside[] = {5};
  const double infinite[] = {INFINITY};
  expectFailure(TVKaddqpterms(model, 1, outside, col, val), TVK_ERROR_INDEX_OUT_OF_RANGE,
                "Problem adding quadratic coefficients");
  expectFailure(TVKaddqpterms(model, 1, row, col, infinite), TVK_ERROR_INVALID_ARGUMENT,
                "Element 0 of a double array is Nan or Inf.");
  EXPECT_EQ(TVKaddqpterms(model, 1, nullptr, col, val), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(TVKaddqpterms(model, 0, nullptr, nullptr, nullptr), 0);
}

TEST_F(PartsTest, QuadraticConstraintsConesAndSets) {
  const int row[] = {2, 1, 0}, col[] = {1, 2, 0}, lind[] = {4};
  const double val[] = {2, 3, 1e-15}, lval[] = {7};
  ASSERT_EQ(TVKaddqconstr(model, 1, lind, lval, 3, row, col, val, 'g', 5, nullptr), 0);
  EXPECT_TRUE(logged("zero or small (< 1e-13) coefficients in quadratic constraints, ignored"));
  const int outside[] = {7}, cone[] = {0, 1, 1};
  expectFailure(TVKaddqconstr(model, 0, nullptr, nullptr, 1, outside, col, val, '<', 0, nullptr),
                TVK_ERROR_INDEX_OUT_OF_RANGE, "Variable index '7' out of range in cone");
  expectFailure(
      TVKaddqconstr(model, 0, nullptr, nullptr, 0, nullptr, nullptr, nullptr, '?', 0, nullptr),
      TVK_ERROR_INVALID_ARGUMENT, "Invalid constraint sense: '?'");
  expectFailure(
      TVKaddqconstr(model, 0, nullptr, nullptr, 0, nullptr, nullptr, nullptr, '<', NAN, nullptr),
      TVK_ERROR_INVALID_ARGUMENT, "Double value is Nan.");
  expectFailure(TVKaddcone(model, 3, cone), TVK_ERROR_DUPLICATES, "Problem adding cone");
  expectFailure(TVKaddcone(model, 1, outside), TVK_ERROR_INDEX_OUT_OF_RANGE,
                "Variable index '7' out of range in cone");
  ASSERT_EQ(TVKaddcone(model, 2, cone), 0);
  const int types[] = {1, 2}, badTypes[] = {3}, beg[] = {0, 3}, ind[] = {0, 1, 2, 3, 4};
  const double weight[] = {2, 1, 2, 1, 2};
  expectFailure(TVKaddsos(model, 1, 3, badTypes, beg, ind, weight), TVK_ERROR_INVALID_ARGUMENT,
                "Invalid SOS type 3");
  expectFailure(TVKaddsos(model, 1, 3, types, beg, cone, weight), TVK_ERROR_DUPLICATES,
                "Problem adding SOS constraints");
  ASSERT_EQ(TVKaddsos(model, 2, 5, types, beg, ind, weight), 0);
  update();
  EXPECT_TRUE(logged("model has duplicate SOS weights"));
  int numL, numQ, qrow[3], qcol[3];
  double qval[3];
  ASSERT_EQ(TVKgetqconstr(model, 0, &numL, nullptr, nullptr, &numQ, qrow, qcol, qval), 0);
  EXPECT_EQ((Ints{numL, numQ, qrow[0], qcol[0]}), (Ints{1, 1, 1, 2}));
  EXPECT_EQ(qval[0], 5);
  EXPECT_EQ(chars("QCSense", 1), ">");
  EXPECT_EQ(texts("QCName", 1)[0], "QC0");
  EXPECT_EQ(count("IsQCP"), 1);
  int members, sostype[2], sosbeg[2], sosind[5];
  double sosweight[5];
  ASSERT_EQ(TVKgetsos(model, &members, sostype, sosbeg, sosind, sosweight, 0, 2), 0);
  EXPECT_EQ(members, 5);
  EXPECT_EQ((Ints{sosind[0], sosind[1], sosind[2]}), (Ints{1, 0, 2}));
  expectFailure(TVKgetsos(model, &members, nullptr, nullptr, nullptr, nullptr, 1, 2),
                TVK_ERROR_INDEX_OUT_OF_RANGE, "Invalid index range for SOS query: [1, 3]");
  expectFailure(TVKgetqconstr(model, 1, &numL, nullptr, nullptr, &numQ, nullptr, nullptr, nullptr),
                TVK_ERROR_INDEX_OUT_OF_RANGE, "Invalid index (1) for quadratic constraint query");
  const int head[] = {0};
  ASSERT_EQ(TVKdelvars(model, 1, head), 0);
  update();
  EXPECT_TRUE(logged("1 cones removed"));
  EXPECT_EQ(TVKdelsos(model, 1, outside), TVK_ERROR_INDEX_OUT_OF_RANGE);
  EXPECT_EQ(error(), "Problem deleting sos");
}

TEST_F(PartsTest, EveryGeneralConstraintComesBackAsItWasAdded) {
  const int vars[] = {1, 2};
  const double coef[] = {3, -4}, x[] = {0, 1, 1, 4}, y[] = {0, 2, 3, 5}, p[] = {0, 0, 1, 2, 3};
  ASSERT_EQ(TVKaddgenconstrMax(model, "max", 0, 2, vars, 5), 0);
  ASSERT_EQ(TVKaddgenconstrMin(model, nullptr, 0, 2, vars, -1e200), 0);
  ASSERT_EQ(TVKaddgenconstrAbs(model, nullptr, 0, 3), 0);
  ASSERT_EQ(TVKaddgenconstrAnd(model, nullptr, 0, 2, vars), 0);
  ASSERT_EQ(TVKaddgenconstrOr(model, nullptr, 0, 2, vars), 0);
  ASSERT_EQ(TVKaddgenconstrNorm(model, nullptr, 0, 2, vars, 1e200), 0);
  ASSERT_EQ(TVKaddgenconstrIndicator(model, nullptr, 0, 1, 2, vars, coef, 'L', 8), 0);
  ASSERT_EQ(TVKaddgenconstrPWL(model, nullptr, 3, 4, 4, x, y), 0);
  ASSERT_EQ(TVKaddgenconstrPoly(model, nullptr, 3, 4, 5, p, nullptr), 0);
  EXPECT_TRUE(logged("zero or small (< 1e-13) coefficient for the highest term"));
  ASSERT_EQ(TVKaddgenconstrExp(model, nullptr, 3, 4, "FuncPieces=5  funcpieceratio=0.5"), 0);
  ASSERT_EQ(TVKaddgenconstrExpA(model, nullptr, 3, 4, 2.5, nullptr), 0);
  ASSERT_EQ(TVKaddgenconstrLog(model, nullptr, 3, 4, ""), 0);
  ASSERT_EQ(TVKaddgenconstrLogA(model, nullptr, 3, 4, 3.5, nullptr), 0);
  ASSERT_EQ(TVKaddgenconstrPow(model, nullptr, 3, 4, -1.5, nullptr), 0);
  ASSERT_EQ(TVKaddgenconstrSin(model, nullptr, 3, 4, nullptr), 0);
  ASSERT_EQ(TVKaddgenconstrCos(model, nullptr, 3, 4, nullptr), 0);
  ASSERT_EQ(TVKaddgenconstrTan(model, nullptr, 3, 4, nullptr), 0);
  ASSERT_EQ(TVKaddgenconstrLogistic(model, nullptr, 3, 4, "funcp=3"), 0);
  update();
  const Ints types = ints("GenConstrType", 18);
  for (int k = 0; k < 18; ++k) EXPECT_EQ(types[k], k);
  EXPECT_EQ(texts("GenConstrName", 2)[0], "max");
  EXPECT_EQ(texts("GenConstrName", 2)[1], "GC1");

  int a = -1, b = -1, n = -1, list[4];
  double c = -1, d[5], e[5];
  char sense = '?', *options = nullptr;
  ASSERT_EQ(TVKgetgenconstrMax(model, 0, &a, &n, list, &c), 0);
  EXPECT_EQ((Ints{a, n, list[0], list[1]}), (Ints{0, 2, 1, 2}));
  EXPECT_EQ(c, 5);
  ASSERT_EQ(TVKgetgenconstrMin(model, 1, nullptr, nullptr, nullptr, &c), 0);
  EXPECT_EQ(c, -1e100);
  ASSERT_EQ(TVKgetgenconstrAbs(model, 2, &a, &b), 0);
  EXPECT_EQ(b, 3);
  ASSERT_EQ(TVKgetgenconstrNorm(model, 5, &a, &n, list, &c), 0);
  EXPECT_EQ(c, 1e100);
  ASSERT_EQ(TVKgetgenconstrIndicator(model, 6, &a, &b, &n, list, d, &sense, &c), 0);
  EXPECT_EQ((Ints{a, b, n, sense}), (Ints{0, 1, 2, '<'}));
  EXPECT_EQ((Doubles{d[0], d[1], c}), (Doubles{3, -4, 8}));
  ASSERT_EQ(TVKgetgenconstrPWL(model, 7, &a, &b, &n, d, e), 0);
  EXPECT_EQ((Ints{a, b, n}), (Ints{3, 4, 4}));
  EXPECT_EQ((Doubles{d[3], e[2]}), (Doubles{4, 3}));
  ASSERT_EQ(TVKgetgenconstrPoly(model, 8, &a, &b, &n, d, &options), 0);
  EXPECT_EQ(n, 3);
  EXPECT_STREQ(options, "");
  ASSERT_EQ(TVKgetgenconstrExp(model, 9, &a, &b, &options), 0);
  EXPECT_STREQ(options, "FuncPieces=5 FuncPieceRatio=0.5");
  ASSERT_EQ(TVKgetgenconstrLogA(model, 12, &a, &b, &c, nullptr), 0);
  EXPECT_EQ(c, 3.5);
  expectFailure(TVKgetgenconstrMax(model, 1, &a, &n, list, &c), TVK_ERROR_INVALID_ARGUMENT,
                "General constraint has type 1, but called get method for type 0");
  expectFailure(TVKgetgenconstrMax(model, 18, &a, &n, list, &c), TVK_ERROR_INDEX_OUT_OF_RANGE,
                "Invalid index range for general constraint query: 18");
  ASSERT_EQ(TVKsetintattrelement(model, "FuncPieces", 9, 30000000), 0);
  EXPECT_TRUE(logged("Warning: FuncPieces too large, set to 20000000"));
  expectFailure(TVKsetintattrelement(model, "FuncPieces", 0, 3), TVK_ERROR_INVALID_ARGUMENT,
                "Not a general function constraint");
  // A lost operand is left out; a lost result makes the constraint invalid.
  const int lost[] = {1}, result[] = {4};
  ASSERT_EQ(TVKdelvars(model, 1, lost), 0);
  update();
  ASSERT_EQ(TVKgetgenconstrAnd(model, 3, &a, &n, list), 0);
  EXPECT_EQ((Ints{a, n, list[0]}), (Ints{0, 1, 1}));
  EXPECT_EQ(ints("FuncPieces", 18)[9], 20000000);
  ASSERT_EQ(TVKdelvars(model, 1, result), TVK_ERROR_INDEX_OUT_OF_RANGE);
  const int last[] = {3};
  ASSERT_EQ(TVKdelvars(model, 1, last), 0);
  expectFailure(TVKupdatemodel(model), TVK_ERROR_MODEL_MODIFICATION,
                "General constraint 7 became invalid after removal of variable");
  EXPECT_EQ(count("NumVars"), 4);
}

TEST_F(PartsTest, GeneralConstraintsAreChecked) {
  const int vars[] = {1, 2};
  const double points[] = {0, 1}, backwards[] = {1, 0}, zeros[] = {0, 0, 0};
  const auto exp = [&](const char *options) {
    return TVKaddgenconstrExp(model, nullptr, 0, 1, options);
  };
  const int bad = TVK_ERROR_INVALID_ARGUMENT;
  expectFailure(TVKaddgenconstrNorm(model, nullptr, 0, 2, vars, 3), TVK_ERROR_VALUE_OUT_OF_RANGE,
                "Only 0, 1, 2, and INF norms supported");
  expectFailure(exp("FuncPieces=2.5"), bad,
                "invalid options 'FuncPieces=2.5' for function constraint");
  expectFailure(exp("pieces=3"), bad, "invalid options 'pieces=3' for function constraint");
  expectFailure(exp("funcpieces 3"), bad, "invalid options 'funcpieces 3' for function constraint");
  expectFailure(exp("FuncPieces=-3"), bad, "FuncPieces < -2 for function constraint");
  expectFailure(exp("FuncPieces=1 FuncPieceLength=0"), bad,
                "non-positive FuncPieceLen for function constraint");
  expectFailure(exp("FuncPieces=-1 FuncPieceError=-1"), bad,
                "non-postive FuncPieceError for function constraint");
  expectFailure(exp("FuncPieceRatio=2"), bad, "FuncPieceRatio either = -2, -1 or in [0, 1]");
  expectFailure(exp("FuncNonlinear=2"), bad, "FuncNonlinear either = -1, 0 or 1");
  expectFailure(TVKaddgenconstrExpA(model, nullptr, 0, 1, 0, nullptr), bad,
                "non-positive base for exponential function not supported");
  expectFailure(TVKaddgenconstrLogA(model, nullptr, 0, 1, 0, nullptr), bad,
                "non-positive base for log function not supported");
  expectFailure(TVKaddgenconstrPoly(model, nullptr, 0, 1, 0, nullptr, nullptr), bad,
                "empty polynomial function");
  expectFailure(TVKaddgenconstrPWL(model, nullptr, 0, 1, 0, nullptr, nullptr), bad,
                "no points for PWL constraint");
  EXPECT_TRUE(logged("Error: no points for PWL constraint"));
  EXPECT_EQ(TVKaddgenconstrPWL(model, nullptr, 0, 1, 2, backwards, points), bad);
  expectFailure(TVKaddgenconstrAbs(model, nullptr, 0, 5), TVK_ERROR_INDEX_OUT_OF_RANGE,
                "Problem adding general constraint");
  EXPECT_EQ(TVKaddgenconstrMax(model, nullptr, 0, 2, nullptr, 0), TVK_ERROR_NULL_ARGUMENT);
  ASSERT_EQ(exp("FuncPieces=30000000"), 0);
  EXPECT_TRUE(logged("Warning: FuncPieces too large, set to 20000000"));
  ASSERT_EQ(TVKaddgenconstrPoly(model, nullptr, 0, 1, 3, zeros, nullptr), 0);
  EXPECT_TRUE(logged("Warning: no quadratic or higher terms for polynomial function."));
  update();
  EXPECT_EQ(count("NumGenConstrs"), 2);
}

TEST_F(PartsTest, WholeObjectives) {
  const int twice[] = {0, 0}, outside[] = {5};
  const double val[] = {1, 2};
  ASSERT_EQ(TVKsetdblattrelement(model, "Obj", 3, 9), 0);
  ASSERT_EQ(TVKsetobjective(model, -1, 6, 2, twice, val, 1, twice, twice, val), 0);
  expectFailure(TVKsetobjective(model, 2, 0, 0, nullptr, nullptr, 0, nullptr, nullptr, nullptr),
                TVK_ERROR_INVALID_ARGUMENT, "Invalid objective sense");
  expectFailure(TVKsetobjective(model, 1, 0, 1, outside, val, 0, nullptr, nullptr, nullptr),
                TVK_ERROR_INDEX_OUT_OF_RANGE, "Problem setting objective");
  update();
  EXPECT_EQ(doubles("Obj", 5), (Doubles{3, 0, 0, 0, 0}));
  EXPECT_EQ(scalar("ObjCon"), 6);
  EXPECT_EQ(count("ModelSense"), -1);
  EXPECT_EQ(quadObjective(), (Doubles{1}));
  ASSERT_EQ(TVKsetobjectiven(model, 4, 3, 0.5, 0.1, 0.2, "fifth", 8, 2, twice, val), 0);
  expectFailure(TVKsetobjectiven(model, -1, 0, 1, 0, 0, nullptr, 0, 0, nullptr, nullptr),
                TVK_ERROR_INVALID_ARGUMENT, "Objective index must be non-negative");
  ASSERT_EQ(TVKsetintparam(modelEnv(), "ObjNumber", 4), 0);
  update();
  expectFailure(TVKsetobjectiven(model, INT_MAX, 0, 1, 0, 0, nullptr, 0, 0, nullptr, nullptr),
                TVK_ERROR_INVALID_ARGUMENT, "Objective index 2147483647 is too large");
  EXPECT_EQ(count("NumObj"), 5);
  EXPECT_EQ(doubles("ObjN", 2), (Doubles{3, 0}));
  EXPECT_EQ((Doubles{scalar("ObjNCon"), scalar("ObjNWeight"), scalar("ObjNAbsTol"),
                     scalar("ObjNRelTol")}),
            (Doubles{8, 0.5, 0.1, 0.2}));
}

TEST_F(PartsTest, PiecewiseLinearObjectivesAreCheckedBeforeASolve) {
  const auto check = [&](const Doubles &x, const Doubles &y) -> std::string {
    EXPECT_EQ(TVKsetpwlobj(model, 0, static_cast<int>(x.size()), x.data(), y.data()), 0);
    EXPECT_EQ(TVKupdatemodel(model), 0);
    try {
      tarvik::checkPwlObjectives(*model);
    } catch (const tarvik::Error &e) {
      EXPECT_EQ(e.code(), TVK_ERROR_INVALID_PIECEWISE_OBJ);
      EXPECT_TRUE(logged("Error: " + e.message()));
      return e.message();
    }
    return "";
  };
  EXPECT_EQ(check({1, 0}, {0, 0}), "x values for PWL objective of variable C0 aren't sorted");
  EXPECT_EQ(TVKoptimize(model), TVK_ERROR_INVALID_PIECEWISE_OBJ);
  EXPECT_EQ(check({0, 1e-7}, {0, 0}),
            "all x values for PWL objective of variable C0 differ less than 1E-6");
  EXPECT_EQ(
      check({1, 1, 2}, {0, 1, 2}),
      "length of the first piece of PWL obj. of variable C0 < 1e-6, cannot be extended to lb");
  EXPECT_EQ(check({0, 2, 2}, {0, 1, 2}),
            "length of the last piece of PWL obj. of variable C0 < 1e-6, cannot be extended to ub");
  EXPECT_EQ(check({0, 1}, {0, -1e21}), "PWL obj. value < -1e+20 for variable C0");
  EXPECT_EQ(check({0, 0, 0, 0, 1}, {0, 1, 2, 3, 4}), "");
  EXPECT_TRUE(logged("Warning: more than three points for PWL objective"));
  EXPECT_EQ(ints("PWLObjCvx", 1), (Ints{0}));
  EXPECT_EQ(check({0, 1, 2}, {0, 1, 3}), "");
  EXPECT_EQ(ints("PWLObjCvx", 1), (Ints{1}));
  EXPECT_EQ(count("NumPWLObjVars"), 1);
  EXPECT_EQ(TVKsetpwlobj(model, 5, 0, nullptr, nullptr), TVK_ERROR_INDEX_OUT_OF_RANGE);
  const double infinite[] = {0, INFINITY};
  expectFailure(TVKsetpwlobj(model, 0, 2, infinite, infinite), TVK_ERROR_INVALID_ARGUMENT,
                "Element 1 of a double array is Nan or Inf.");
  EXPECT_EQ(TVKsetpwlobj(model, 0, 1, nullptr, nullptr), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(error(), "Setting piecewise objective");
  EXPECT_EQ(TVKsetpwlobj(model, 0, 0, nullptr, nullptr), 0);
  update();
  EXPECT_EQ(count("NumPWLObjVars"), 0);
}

}  // namespace
