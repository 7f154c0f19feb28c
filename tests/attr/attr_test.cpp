// The attribute layer: lookup, checks, shapes, messages, settings, selectors, results.
#include <cmath>
#include <limits>

#include "attr/attr_access.h"
#include "attr/solution_check.h"
#include "attr/statistics.h"
#include "model/model_fixture.h"

namespace {

using Doubles = std::vector<double>;
using Ints = std::vector<int>;
using Texts = std::vector<std::string>;
const double kNan = std::numeric_limits<double>::quiet_NaN();

class AttrTest : public ModelTest {
 protected:
  int getDouble(const char *name) const {
    double value;
    return TVKgetdblattr(model, name, &value);
  }
  int getElement(const char *name) const {
    double value;
    return TVKgetdblattrelement(model, name, 0, &value);
  }
  tarvik::SolutionStore &store() const { return model->solution(); }
};

TEST_F(AttrTest, TableAndLookup) {
  EXPECT_EQ(TVKgetnumattributes(model), tarvik::kNumAttrs);
  EXPECT_EQ(TVKgetnumattributes(nullptr), -1);
  char *name = nullptr;
  EXPECT_EQ(TVKgetattrname(model, 0, &name), 0);
  EXPECT_STREQ(name, "NumConstrs");
  EXPECT_EQ(TVKgetattrname(model, tarvik::kNumAttrs, &name), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(TVKgetattrname(model, 0, nullptr), TVK_ERROR_NULL_ARGUMENT);
  // Every attribute has handlers: no row is forgotten.
  for (int r = 0; r < tarvik::kNumAttrs; ++r) {
    const tarvik::AttrRow &row = tarvik::attrTable().row(r);
    std::visit(
        [&](const auto &h) {
          EXPECT_TRUE(h.storage || h.get) << row.name;
          EXPECT_EQ(row.settable, h.set != nullptr) << row.name;
        },
        row.handlers);
  }
  int type, scope, settable;
  EXPECT_EQ(TVKgetattrinfo(model, "var_name", &type, &scope, &settable), 0);
  EXPECT_EQ((Ints{type, scope, settable}), (Ints{3, 1, 1}));
  EXPECT_EQ(TVKgetattrinfo(model, "nothing", &type, nullptr, nullptr), TVK_ERROR_UNKNOWN_ATTRIBUTE);
  EXPECT_EQ(type, -1);
  EXPECT_EQ(error(), "Unknown attribute 'nothing'");
  EXPECT_EQ(count("numvars"), 0);
  EXPECT_EQ(TVKisattravailable(model, "X"), 1);  // a model without variables
  EXPECT_EQ(TVKisattravailable(model, "ObjVal"), 0);
  EXPECT_EQ(TVKisattravailable(model, "NumVars"), 1);
  EXPECT_EQ(TVKisattravailable(model, "nothing"), 0);
}

TEST_F(AttrTest, EveryMisuseHasItsMessage) {
  addVars(2);
  update();
  double d[2];
  int i = 0, bad[] = {1, 2};
  const auto expect = [&](int code, int expected, const char *text) {
    EXPECT_EQ(code, expected);
    EXPECT_EQ(error(), text);
  };
  expect(TVKgetdblattr(model, "NumVars", d), TVK_ERROR_UNKNOWN_ATTRIBUTE,
         "Requested double attribute 'NumVars' is of type int");
  expect(TVKgetdblattr(model, "LB", d), TVK_ERROR_UNKNOWN_ATTRIBUTE,
         "You tried to access array attribute 'LB' as a scalar");
  expect(TVKgetintattrelement(model, "NumVars", 0, &i), TVK_ERROR_UNKNOWN_ATTRIBUTE,
         "You tried to access scalar attribute 'NumVars' as an array");
  expect(TVKsetintattr(model, "NumVars", 3), TVK_ERROR_UNKNOWN_ATTRIBUTE,
         "Attribute 'NumVars' may not be set");
  expect(TVKgetdblattrlist(model, "LB", 2, bad, d), TVK_ERROR_INDEX_OUT_OF_RANGE,
         "Index 2 out of range for attribute 'LB'");
  expect(TVKgetdblattrarray(model, "LB", 1, 2, d), TVK_ERROR_INDEX_OUT_OF_RANGE,
         "Index out of range for attribute 'LB'");
  expect(TVKgetdblattrarray(model, "LB", -1, 1, d), TVK_ERROR_INDEX_OUT_OF_RANGE,
         "Index out of range for attribute 'LB'");
  expect(TVKgetdblattrelement(model, "X", 0, d), TVK_ERROR_DATA_NOT_AVAILABLE,
         "Unable to retrieve attribute 'X'");
  expect(TVKgetdblattr(model, "ObjVal", d), TVK_ERROR_DATA_NOT_AVAILABLE,
         "Unable to retrieve attribute 'ObjVal'");
  expect(TVKgetdblattr(model, nullptr, d), TVK_ERROR_NULL_ARGUMENT,
         "NULL 'attrname' argument supplied");
  expect(TVKgetdblattr(model, "ObjVal", nullptr), TVK_ERROR_NULL_ARGUMENT,
         "NULL 'value' argument supplied");
  expect(TVKsetdblattrarray(model, "LB", 0, 1, nullptr), TVK_ERROR_NULL_ARGUMENT,
         "NULL 'value' argument supplied");
  expect(TVKsetdblattrelement(model, "LB", 0, kNan), TVK_ERROR_INVALID_ARGUMENT,
         "Element 0 of a double array is Nan.");
  expect(TVKsetcharattrelement(model, "VType", 0, 'z'), TVK_ERROR_INVALID_ARGUMENT,
         "Invalid variable type 'z'");
  expect(TVKsetintattr(model, "ModelSense", 3), TVK_ERROR_INVALID_ARGUMENT,
         "Invalid objective sense");
  expect(TVKsetdblattrlist(model, "LB", -3, bad, d), TVK_ERROR_INDEX_OUT_OF_RANGE,
         "Index out of range for attribute 'LB'");
  expect(TVKgetdblattrlist(model, "LB", -3, bad, d), TVK_ERROR_INDEX_OUT_OF_RANGE,
         "Index out of range for attribute 'LB'");
  expect(TVKsetdblattrlist(model, "LB", 1, nullptr, d), TVK_ERROR_NULL_ARGUMENT,
         "NULL 'ind' argument supplied");
  EXPECT_EQ(TVKgetdblattrarray(model, "X", 0, 0, nullptr), 0);
}

// Every attribute through every function, with lengths of all kinds: an answer or an error, and
// what is read through one form is what another form and TVKisattravailable say.
TEST_F(AttrTest, EveryAttributeAnswersEveryFunction) {
  addVars(3);
  addVar(1, 0, 4, 'I', "named");
  const int ind[] = {0, 1}, type = 1, beg = 0;
  const double val[] = {1, 2};
  TVKaddconstr(model, 2, ind, val, '<', 3, nullptr);
  TVKaddsos(model, 1, 2, &type, &beg, ind, val);
  TVKaddqconstr(model, 1, ind, val, 1, ind, ind, val, '<', 3, nullptr);
  TVKaddgenconstrExp(model, nullptr, 0, 1, nullptr);
  TVKsetintattr(model, "NumObj", 2);
  TVKsetintattr(model, "NumScenarios", 2);
  update();
  addVars(2);  // pending elements may be set, not read
  constexpr int kRoom = 8;
  for (int a = 0; a < TVKgetnumattributes(model); ++a) {
    char *name = nullptr;
    ASSERT_EQ(TVKgetattrname(model, a, &name), 0);
    int dataType = -1, scope = -1, settable = -1;
    ASSERT_EQ(TVKgetattrinfo(model, name, &dataType, &scope, &settable), 0);
    int ints[kRoom] = {}, list[kRoom] = {0, 0};
    double doubles[kRoom] = {};
    char chars[kRoom + 1] = "CCCCCCCC", *texts[kRoom] = {};
    const char *given[kRoom] = {};
    int scalar = 0, element = 0;
    if (dataType == 1) {
      scalar = TVKgetintattr(model, name, ints);
      element = TVKgetintattrelement(model, name, 0, ints);
    } else if (dataType == 2) {
      scalar = TVKgetdblattr(model, name, doubles);
      element = TVKgetdblattrelement(model, name, 0, doubles);
    } else if (dataType == 3) {
      scalar = TVKgetstrattr(model, name, texts);
      element = TVKgetstrattrelement(model, name, 0, texts);
    } else {
      scalar = TVK_ERROR_UNKNOWN_ATTRIBUTE;
      element = TVKgetcharattrelement(model, name, 0, chars);
    }
    EXPECT_EQ(scope == 0 ? element : scalar, TVK_ERROR_UNKNOWN_ATTRIBUTE) << name;
    EXPECT_EQ(TVKisattravailable(model, name), (scope == 0 ? scalar : element) == 0) << name;
    for (const int len : {-5, -1, 0, 1, 2, 4, 7, 2000000001}) {
      if (len < 3) {  // lists are as long as they say
        TVKgetintattrlist(model, name, len, list, ints);
        TVKgetdblattrlist(model, name, len, list, doubles);
        TVKgetcharattrlist(model, name, len, list, chars);
        TVKgetstrattrlist(model, name, len, list, texts);
        TVKsetintattrlist(model, name, len, list, ints);
        TVKsetdblattrlist(model, name, len, list, doubles);
        TVKsetcharattrlist(model, name, len, list, "CC");
        TVKsetstrattrlist(model, name, len, list, given);
      }
      for (const int first : {-1, 0, 3, 5, 6, 2147483647}) {
        TVKgetintattrarray(model, name, first, len, ints);
        TVKgetdblattrarray(model, name, first, len, doubles);
        TVKgetcharattrarray(model, name, first, len, chars);
        TVKgetstrattrarray(model, name, first, len, texts);
        TVKsetintattrarray(model, name, first, len, ints);
        TVKsetdblattrarray(model, name, first, len, doubles);
        TVKsetcharattrarray(model, name, first, len, "CCCCCCCC");
        TVKsetstrattrarray(model, name, first, len, given);
      }
    }
    const bool mayBeSet = TVKsetintattr(model, name, 1) == 0 ||
                          TVKsetdblattr(model, name, 1) == 0 ||
                          TVKsetstrattr(model, name, "text") == 0;
    EXPECT_EQ(mayBeSet, scope == 0 && settable == 1) << name;
    EXPECT_EQ(TVKupdatemodel(model), 0) << name << error();
  }
  EXPECT_EQ(count("NumVars"), 6);
}

TEST_F(AttrTest, DataIsSetInEveryShapeAndSeenAfterTheUpdate) {
  addVars(3);
  const double bounds[] = {5, 1e25, -1e25};
  const int list[] = {2, 0};
  const double objective[] = {7, 8};
  ASSERT_EQ(TVKsetdblattrarray(model, "UB", 0, 2, bounds), 0);
  ASSERT_EQ(TVKsetdblattrelement(model, "LB", 2, bounds[2]), 0);
  ASSERT_EQ(TVKsetdblattrlist(model, "Obj", 2, list, objective), 0);
  ASSERT_EQ(TVKsetcharattrarray(model, "VType", 0, 2, "bI"), 0);
  ASSERT_EQ(TVKsetintattr(model, "ModelSense", -1), 0);
  ASSERT_EQ(TVKsetdblattr(model, "ObjCon", 4), 0);
  ASSERT_EQ(TVKsetstrattr(model, "ModelName", "renamed"), 0);
  update();
  EXPECT_EQ(doubles("UB", 3), (Doubles{1, 1e30, 1e30}));  // a binary is clipped
  EXPECT_EQ(doubles("LB", 3), (Doubles{0, 0, -1e30}));
  EXPECT_EQ(doubles("Obj", 3), (Doubles{8, 0, 7}));
  EXPECT_EQ(chars("VType", 3), "BIC");
  EXPECT_EQ(scalar("ObjCon"), 4);
  EXPECT_EQ(model->data().obj[0], -8);
  ASSERT_EQ(TVKsetintattr(model, "ModelSense", 1), 0);
  update();
  EXPECT_EQ(doubles("Obj", 3), (Doubles{8, 0, 7}));
  EXPECT_EQ(model->data().obj[0], 8);
  char *name;
  ASSERT_EQ(TVKgetstrattr(model, "ModelName", &name), 0);
  EXPECT_STREQ(name, "renamed");
  // Setting again and again keeps the last value.
  for (int k = 0; k < 1000; ++k) ASSERT_EQ(TVKsetdblattrelement(model, "UB", k % 3, k), 0);
  update();
  EXPECT_EQ(doubles("UB", 3), (Doubles{1, 997, 998}));
}

TEST_F(AttrTest, SettingsFollowTheirElements) {
  addVars(3);
  for (int i = 0; i < 2; ++i)
    ASSERT_EQ(TVKaddconstr(model, 0, nullptr, nullptr, '<', 1, nullptr), 0);
  update();
  EXPECT_EQ(TVKisattravailable(model, "BranchPriority"), 0);
  ASSERT_EQ(TVKsetintattrelement(model, "BranchPriority", 2, 7), 0);
  ASSERT_EQ(TVKsetdblattrelement(model, "VarHintVal", 1, 0.5), 0);
  ASSERT_EQ(TVKsetintattrelement(model, "Lazy", 1, 3), 0);
  ASSERT_EQ(TVKsetstrattrelement(model, "VTag", 2, "t2"), 0);
  ASSERT_EQ(TVKsetstrattrelement(model, "CTag", 1, "c1"), 0);
  update();
  EXPECT_EQ(ints("BranchPriority", 3), (Ints{0, 0, 7}));
  EXPECT_EQ(doubles("VarHintVal", 3), (Doubles{1e101, 0.5, 1e101}));
  EXPECT_EQ(ints("VarHintPri", 3), (Ints{0, 0, 0}));  // comes with the value
  EXPECT_EQ(texts("VTag", 3), (Texts{"", "", "t2"}));
  EXPECT_EQ(count("NumTagged"), 2);
  ASSERT_EQ(TVKsetstrattrelement(model, "VTag", 0, "t2"), 0);
  EXPECT_EQ(TVKupdatemodel(model), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(error(), "Variable tags need to be unique.");
  ASSERT_EQ(TVKsetstrattrelement(model, "VTag", 0, ""), 0);
  const int first[] = {0};
  ASSERT_EQ(TVKdelvars(model, 1, first), 0);
  ASSERT_EQ(TVKdelconstrs(model, 1, first), 0);
  addVars(1);
  update();
  EXPECT_EQ(ints("BranchPriority", 3), (Ints{0, 7, 0}));
  EXPECT_EQ(texts("VTag", 3), (Texts{"", "t2", ""}));
  EXPECT_EQ(ints("Lazy", 1), (Ints{3}));
  EXPECT_EQ(texts("CTag", 1), (Texts{"c1"}));
}

TEST_F(AttrTest, MipStarts) {
  addVars(2);
  update();
  ASSERT_EQ(TVKsetdblattrelement(model, "Start", 1, 1e200), 0);
  update();
  EXPECT_EQ(count("NumStart"), 1);
  EXPECT_EQ(doubles("Start", 2), (Doubles{1e101, 1e100}));
  ASSERT_EQ(TVKsetintparam(modelEnv(), "StartNumber", -1), 0);
  ASSERT_EQ(TVKsetdblattrelement(model, "Start", 0, 4), 0);
  int number = -5;
  ASSERT_EQ(TVKgetintparam(modelEnv(), "StartNumber", &number), 0);
  EXPECT_EQ(number, 1);
  update();
  EXPECT_EQ(count("NumStart"), 2);
  EXPECT_EQ(doubles("Start", 2), (Doubles{4, 1e101}));
  ASSERT_EQ(TVKsetintparam(modelEnv(), "StartNumber", 5), 0);
  EXPECT_EQ(TVKsetdblattrelement(model, "Start", 0, 4), TVK_ERROR_DATA_NOT_AVAILABLE);
  EXPECT_EQ(error(), "StartNumber is larger than NumStart");
  ASSERT_EQ(TVKsetintattr(model, "NumStart", -1), 0);
  EXPECT_TRUE(logged("Setting attribute NumStart to a negative number, ignored"));
  ASSERT_EQ(TVKsetintattr(model, "NumStart", 1), 0);
  update();
  EXPECT_EQ(count("NumStart"), 1);
  ASSERT_EQ(TVKreset(model, 1), 0);
  EXPECT_EQ(count("NumStart"), 0);
}

TEST_F(AttrTest, WarmStartsAreValidated) {
  addVars(2);
  ASSERT_EQ(TVKaddconstr(model, 0, nullptr, nullptr, '<', 1, nullptr), 0);
  ASSERT_EQ(TVKsetintattrelement(model, "VBasis", 0, 0), 0);
  EXPECT_TRUE(logged("Setting LP warm start basis or start ignored"));
  update();
  ASSERT_EQ(TVKsetintattrelement(model, "VBasis", 0, 0), 0);
  update();
  EXPECT_TRUE(logged("Warning, invalid warm-start basis discarded"));
  EXPECT_EQ(TVKisattravailable(model, "VBasis"), 0);
  const int statuses[] = {0, -1}, slack[] = {-1};
  ASSERT_EQ(TVKsetintattrarray(model, "VBasis", 0, 2, statuses), 0);
  ASSERT_EQ(TVKsetintattrarray(model, "CBasis", 0, 1, slack), 0);
  update();
  EXPECT_EQ(ints("VBasis", 2), (Ints{0, -1}));
  EXPECT_EQ(TVKsetintattrelement(model, "VBasis", 0, -4), TVK_ERROR_INVALID_ARGUMENT);
  // The basis grows with the model and keeps as many basic entries as rows.
  ASSERT_EQ(TVKaddconstr(model, 0, nullptr, nullptr, '<', 1, nullptr), 0);
  addVar(0, -1e30, 3, 'C');
  const int basic[] = {0};
  ASSERT_EQ(TVKdelvars(model, 1, basic), 0);
  update();
  EXPECT_EQ(ints("VBasis", 2), (Ints{-1, -2}));
  EXPECT_EQ(ints("CBasis", 2), (Ints{0, 0}));

  ASSERT_EQ(TVKsetdblattrelement(model, "PStart", 0, 1), 0);
  update();
  EXPECT_TRUE(logged("Warning, invalid warm-start solution discarded"));
  const double primal[] = {1, 2}, dual[] = {3, 4};
  ASSERT_EQ(TVKsetdblattrarray(model, "PStart", 0, 2, primal), 0);
  ASSERT_EQ(TVKsetintattr(model, "ModelSense", -1), 0);
  update();
  EXPECT_EQ(doubles("PStart", 2), (Doubles{1, 2}));
  EXPECT_EQ(TVKisattravailable(model, "DStart"), 0);
  ASSERT_EQ(TVKsetdblattrarray(model, "DStart", 0, 2, dual), 0);
  update();
  EXPECT_EQ(doubles("DStart", 2), (Doubles{3, 4}));
  EXPECT_EQ(store().dstart[0], -3);
}

TEST_F(AttrTest, ResultsAreTurnedBackAndDroppedByChanges) {
  addVars(2);
  ASSERT_EQ(TVKaddconstr(model, 0, nullptr, nullptr, '<', 1, nullptr), 0);
  ASSERT_EQ(TVKsetintattr(model, "ModelSense", -1), 0);
  update();
  tarvik::SolutionStore &s = store();
  s.status = TVK_OPTIMAL;
  s.hasObjective = true;
  s.objVal = -10;
  s.objBound = -11;
  s.x = {1, 2};
  s.pi = {-3};
  s.rc = {4, 0};
  s.slack = {1};
  s.vbasis = {-1, -1};
  s.cbasis = {0};
  s.solCount = 1;
  EXPECT_EQ(count("Status"), TVK_OPTIMAL);
  EXPECT_EQ(scalar("ObjVal"), 10);
  EXPECT_EQ(scalar("ObjBound"), 11);
  EXPECT_EQ(doubles("Pi", 1), (Doubles{3}));
  EXPECT_EQ(doubles("RC", 2), (Doubles{-4, 0}));
  EXPECT_EQ(doubles("X", 2), (Doubles{1, 2}));
  EXPECT_EQ(doubles("Xn", 2), (Doubles{1, 2}));
  EXPECT_EQ(scalar("PoolObjVal"), 10);
  EXPECT_EQ(getDouble("MIPGap"), TVK_ERROR_DATA_NOT_AVAILABLE);
  // Settings leave the solution alone, data does not.
  ASSERT_EQ(TVKsetintattrelement(model, "BranchPriority", 0, 1), 0);
  update();
  EXPECT_EQ(count("Status"), TVK_OPTIMAL);
  addVars(1);
  update();
  EXPECT_EQ(count("Status"), TVK_LOADED);
  EXPECT_EQ(getElement("X"), TVK_ERROR_DATA_NOT_AVAILABLE);
  EXPECT_EQ(TVKisattravailable(model, "VBasis"), 0);
  EXPECT_EQ(s.vbasis.size(), 3u);
  EXPECT_EQ(s.previousX.size(), 3u);
  ASSERT_EQ(TVKresetmodel(model), 0);
  EXPECT_TRUE(s.vbasis.empty());
}

TEST_F(AttrTest, ObjectivesAndScenariosNeedTheirSelectors) {
  addVars(2);
  ASSERT_EQ(TVKaddconstr(model, 0, nullptr, nullptr, '<', 1, nullptr), 0);
  update();
  EXPECT_EQ(getElement("ObjN"), TVK_ERROR_VALUE_OUT_OF_RANGE);
  EXPECT_EQ(error(), "It isn't a multi-objective model");
  EXPECT_EQ(getElement("ScenNLB"), TVK_ERROR_VALUE_OUT_OF_RANGE);
  EXPECT_EQ(error(), "It isn't a multi-scenario model");
  EXPECT_EQ(TVKsetdblattr(model, "ObjNCon", 1), TVK_ERROR_VALUE_OUT_OF_RANGE);
  EXPECT_EQ(error(), "Out of range for parameter value of ObjNumber");
  const int old = count("NumObj");
  ASSERT_EQ(TVKsetintattr(model, "NumObj", -1), 0);
  EXPECT_TRUE(logged("Setting attribute NumObj to a negative number, ignored"));
  EXPECT_EQ(count("NumObj"), old);
  ASSERT_EQ(TVKsetintattr(model, "NumObj", 2), 0);
  ASSERT_EQ(TVKsetintattr(model, "ModelSense", -1), 0);
  ASSERT_EQ(TVKsetintparam(modelEnv(), "ObjNumber", 1), 0);
  ASSERT_EQ(TVKsetdblattrelement(model, "ObjN", 1, 5), 0);
  ASSERT_EQ(TVKsetintattr(model, "ObjNPriority", 4), 0);
  ASSERT_EQ(TVKsetstrattr(model, "ObjNName", "second"), 0);
  ASSERT_EQ(TVKsetintattr(model, "NumScenarios", 2), 0);
  ASSERT_EQ(TVKsetintparam(modelEnv(), "ScenarioNumber", 1), 0);
  ASSERT_EQ(TVKsetdblattrelement(model, "ScenNUB", 1, 9), 0);
  ASSERT_EQ(TVKsetdblattrelement(model, "ScenNObj", 0, 3), 0);
  EXPECT_EQ(TVKsetdblattrelement(model, "ScenNLB", 0, 1e30), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(error(), "Cannot set lower bound to +infinity in scenario 1");
  EXPECT_EQ(TVKsetdblattrelement(model, "ScenNRHS", 0, -1e30), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(error(), "Cannot set rhs of <= constraint to -infinity in scenario 1");
  EXPECT_EQ(TVKsetdblattrelement(model, "LB", 0, 1e30), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(error(), "Cannot set lower bound to +infinity in master model");
  update();
  EXPECT_EQ(count("NumObj"), 2);
  EXPECT_EQ(count("IsMultiObj"), 1);
  EXPECT_EQ(doubles("ObjN", 2), (Doubles{0, 5}));
  EXPECT_EQ(model->data().objectives[1].coef[1], -5);
  EXPECT_EQ(count("ObjNPriority"), 4);
  EXPECT_EQ(doubles("ScenNUB", 2), (Doubles{1e30, 9}));
  EXPECT_EQ(doubles("ScenNObj", 2), (Doubles{3, 0}));
  const int first[] = {0};
  ASSERT_EQ(TVKdelvars(model, 1, first), 0);
  addVars(1);
  update();
  EXPECT_EQ(doubles("ObjN", 2), (Doubles{5, 0}));
  EXPECT_EQ(doubles("ScenNUB", 2), (Doubles{9, 1e30}));
  ASSERT_EQ(TVKsetintattr(model, "NumObj", 1), 0);
  ASSERT_EQ(TVKsetintattr(model, "NumScenarios", 1), 0);
  update();
  EXPECT_EQ(getElement("ObjN"), TVK_ERROR_VALUE_OUT_OF_RANGE);
  EXPECT_EQ(error(), "Value of parameter ObjNumber is larger than the number of objectives");
  EXPECT_EQ(getElement("ScenNUB"), TVK_ERROR_VALUE_OUT_OF_RANGE);
  EXPECT_EQ(error(), "Value of parameter ScenarioNumber is larger than the number of scenarios");
}

TEST_F(AttrTest, StatisticsAndTheirWarnings) {
  addVars(2);
  const int ind[] = {0, 1};
  const double val[] = {1e-6, 1e7};
  ASSERT_EQ(TVKaddconstr(model, 2, ind, val, '<', 5, nullptr), 0);
  ASSERT_EQ(TVKsetdblattrelement(model, "UB", 0, 8), 0);
  update();
  EXPECT_EQ(scalar("MaxCoeff"), 1e7);
  EXPECT_EQ(scalar("MinCoeff"), 1e-6);
  EXPECT_EQ(scalar("MaxBound"), 8);
  EXPECT_EQ(scalar("MaxObjCoeff"), 0);
  EXPECT_EQ(scalar("MinObjCoeff"), 1e100);
  tarvik::printStatistics(*model);
  EXPECT_TRUE(
      logged("Coefficient statistics:\n  Matrix range     [1e-06, 1e+07]\n"
             "  Objective range  [0e+00, 0e+00]\n  Bounds range     [8e+00, 8e+00]\n"
             "  RHS range        [5e+00, 5e+00]\n"
             "Warning: Model contains large matrix coefficient range\n"
             "         Consider reformulating model or setting NumericFocus parameter\n"))
      << log;
  log.clear();
  ASSERT_EQ(TVKsetintparam(modelEnv(), "NumericFocus", 1), 0);
  tarvik::printStatistics(*model);
  EXPECT_FALSE(logged("Consider reformulating"));
}

TEST_F(AttrTest, QualityOfAStoredSolution) {
  // min x + y, x + 2y >= 4, x <= 3 integral, y free: multipliers and slacks by hand.
  addVar(1, 0, 3, 'C');
  addVar(1, -1e30, 1e30, 'C');
  const int ind[] = {0, 1};
  const double val[] = {1, 2};
  ASSERT_EQ(TVKaddconstr(model, 2, ind, val, '>', 4, nullptr), 0);
  update();
  tarvik::SolutionStore &s = store();
  s.status = TVK_OPTIMAL;
  s.hasObjective = true;
  s.x = {3.5, 0};
  s.slack = {0.25};
  s.pi = {0.5};
  s.rc = {0.5, 0.25};
  EXPECT_EQ(scalar("BoundVio"), 0.5);
  EXPECT_EQ(count("BoundVioIndex"), 0);
  EXPECT_EQ(scalar("ConstrVio"), 0.5);
  EXPECT_EQ(scalar("ConstrSVio"), 0.25);
  EXPECT_EQ(scalar("ConstrResidual"), 0.25);
  EXPECT_EQ(scalar("DualVio"), 0.25);
  EXPECT_EQ(count("DualVioIndex"), 1);
  EXPECT_EQ(scalar("DualResidual"), 0.25);
  EXPECT_EQ(scalar("ComplVio"), 1.75);
  EXPECT_EQ(scalar("ComplVioSum"), 2.0);
  EXPECT_EQ(scalar("MaxVio"), 0.5);
  EXPECT_EQ(scalar("IntVio"), 0);
  tarvik::checkFinalSolution(*model, s.x);
  EXPECT_TRUE(logged("Warning: max bound violation (5.0000e-01) exceeds tolerance"));
  EXPECT_TRUE(
      logged("Warning: max constraint violation (5.0000e-01) exceeds tolerance\n"
             "         (model may be infeasible or unbounded - try turning presolve off)\n"));
  EXPECT_TRUE(logged("Violations: const 5.0000e-01, bound 5.0000e-01, int 0.0000e+00\n"));
  ASSERT_EQ(TVKsetcharattrelement(model, "VType", 0, 'I'), 0);
  update();
  EXPECT_EQ(getDouble("BoundVio"), TVK_ERROR_DATA_NOT_AVAILABLE);
  s.status = TVK_OPTIMAL;
  s.hasObjective = true;
  s.x = {2.75, 1};
  EXPECT_EQ(scalar("IntVio"), 0.25);
  EXPECT_EQ(getDouble("DualVio"), TVK_ERROR_DATA_NOT_AVAILABLE);
}

TEST_F(AttrTest, FingerprintTellsModelsApart) {
  addVars(2);
  update();
  const int before = count("Fingerprint");
  ASSERT_EQ(TVKsetstrattrelement(model, "VarName", 0, "x"), 0);
  update();
  EXPECT_EQ(count("Fingerprint"), before);
  ASSERT_EQ(TVKsetdblattrelement(model, "UB", 0, 4), 0);
  update();
  EXPECT_NE(count("Fingerprint"), before);
  ASSERT_EQ(TVKsetdblattrelement(model, "UB", 0, 1e100), 0);
  update();
  EXPECT_EQ(count("Fingerprint"), before);
}

TEST_F(AttrTest, NothingIsSetWhileAnOptimizationRuns) {
  addVars(1);
  update();
  model->optimizing = true;
  EXPECT_EQ(TVKsetdblattrelement(model, "UB", 0, 1), TVK_ERROR_OPTIMIZATION_IN_PROGRESS);
  EXPECT_EQ(error(), "Unable to set attribute 'UB'");
  model->insideCallback = true;
  EXPECT_EQ(TVKsetdblattrelement(model, "UB", 0, 1), TVK_ERROR_OPTIMIZATION_IN_PROGRESS);
  EXPECT_EQ(TVKaddvar(model, 0, nullptr, nullptr, 0, 0, 1, 'C', nullptr),
            TVK_ERROR_OPTIMIZATION_IN_PROGRESS);
  EXPECT_EQ(error(), "Problem adding variables");
  EXPECT_EQ(count("NumVars"), 1);
  model->optimizing = model->insideCallback = false;
}

}  // namespace
