// Variables, linear constraints, ranges, coefficients, deletions, names and the update.
#include <algorithm>
#include <cmath>
#include <limits>

#include "model/model_fixture.h"

namespace {

using Doubles = std::vector<double>;
using Texts = std::vector<std::string>;
const double kNan = std::numeric_limits<double>::quiet_NaN();

class LinearTest : public ModelTest {
 protected:
  double coef(int constr, int var) const {
    double value = -77;
    EXPECT_EQ(TVKgetcoeff(model, constr, var, &value), 0) << error();
    return value;
  }
};

TEST_F(LinearTest, LoadAppliesTheStorageRules) {
  const double obj[] = {1, -2, 0}, rhs[] = {4, 5, 6}, val[] = {1, 1e-14, 2, 3};
  const int vbeg[] = {0, 2, 3}, vlen[] = {2, 1, 1}, vind[] = {0, 1, 2, 1};
  const double lb[] = {-5e20, 0.3, -1e19}, ub[] = {1e20, 2.7, 3};
  const char *names[] = {"x", "", "z"};
  TVKmodel *loaded = nullptr;
  ASSERT_EQ(TVKloadmodel(env, &loaded, "m", 3, 3, -1, 7, obj, "gLe", rhs, vbeg, vlen, vind, val, lb,
                         ub, "Cic", names, nullptr),
            0);
  std::swap(model, loaded);
  EXPECT_EQ(doubles("Obj", 3), (Doubles{1, -2, 0}));
  EXPECT_EQ(scalar("ObjCon"), 7);
  EXPECT_EQ(count("ModelSense"), -1);
  EXPECT_EQ(doubles("LB", 3), (Doubles{-1e30, 1, -1e19}));
  EXPECT_EQ(doubles("UB", 3), (Doubles{1e30, 2, 3}));
  EXPECT_EQ(chars("VType", 3), "CIC");
  EXPECT_EQ(chars("Sense", 3), "><=");
  EXPECT_EQ(count("NumNZs"), 3);
  EXPECT_EQ(count("IsMIP"), 1);
  EXPECT_EQ(texts("VarName", 3), (Texts{"x", "C1", "z"}));
  EXPECT_EQ(texts("ConstrName", 3), (Texts{"R0", "R1", "R2"}));
  EXPECT_TRUE(logged("Warning: loading a model with small (< 1e-13) coefficients, ignored"));
  std::swap(model, loaded);
  EXPECT_EQ(TVKfreemodel(loaded), 0);
}

TEST_F(LinearTest, LoadRefusesBadArguments) {
  TVKmodel *loaded = model;
  const double rhs[] = {1}, val[] = {1, 1};
  const int vbeg[] = {0}, vlen[] = {2}, twice[] = {0, 0}, outside[] = {0, 1};
  const auto load = [&](int numVars, const char *sense, const int *vind, double objcon) {
    return TVKloadmodel(env, &loaded, nullptr, numVars, 1, 1, objcon, nullptr, sense, rhs, vbeg,
                        vlen, vind, val, nullptr, nullptr, nullptr, nullptr, nullptr);
  };
  EXPECT_EQ(load(1, "<", twice, 0), TVK_ERROR_DUPLICATES);
  EXPECT_EQ(loaded, nullptr);
  EXPECT_EQ(load(1, "<", outside, 0), TVK_ERROR_INDEX_OUT_OF_RANGE);
  EXPECT_EQ(load(-1, "<", outside, 0), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(load(0, nullptr, nullptr, 0), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(load(0, "!", nullptr, 0), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_STREQ(TVKgeterrormsg(env), "Invalid constraint sense: '!'");
  EXPECT_EQ(load(0, "<", nullptr, INFINITY), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_STREQ(TVKgeterrormsg(env), "Double value is Nan or Inf.");
  const double bad[] = {0, kNan};
  EXPECT_EQ(TVKnewmodel(env, &loaded, nullptr, 2, bad, nullptr, nullptr, nullptr, nullptr),
            TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_STREQ(TVKgeterrormsg(env), "Element 1 of a double array is Nan.");
  EXPECT_EQ(TVKnewmodel(env, &loaded, nullptr, 1, nullptr, nullptr, nullptr, "q", nullptr),
            TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_STREQ(TVKgeterrormsg(env), "Invalid variable type 'q'");
  EXPECT_EQ(TVKnewmodel(env, nullptr, nullptr, 1, nullptr, nullptr, nullptr, nullptr, nullptr),
            TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(TVKfreemodel(nullptr), 0);
}

TEST_F(LinearTest, AddedElementsAppearAtTheUpdate) {
  const double lb[] = {0.3, 2.5, -4}, ub[] = {2.7, 2.5, 9};
  ASSERT_EQ(TVKaddvars(model, 3, 0, nullptr, nullptr, nullptr, nullptr, lb, ub, "IIb", nullptr), 0);
  const int cind[] = {0, 2, 1}, cbeg[] = {0, 2};
  const double cval[] = {2, 5e-14, -1}, rhs[] = {1e200, 3};
  ASSERT_EQ(TVKaddconstrs(model, 2, 3, cbeg, cind, cval, "gE", rhs, nullptr), 0) << error();
  EXPECT_EQ(count("NumVars"), 0);
  update();
  EXPECT_EQ(count("NumVars"), 3);
  EXPECT_EQ(doubles("LB", 3), (Doubles{1, 2.5, 0}));
  EXPECT_EQ(doubles("UB", 3), (Doubles{2, 2.5, 1}));
  EXPECT_EQ(count("NumIntVars"), 3);
  EXPECT_EQ(count("NumBinVars"), 1);
  EXPECT_EQ(doubles("RHS", 2), (Doubles{1e100, 3}));
  EXPECT_EQ(chars("Sense", 2), ">=");
  EXPECT_EQ(count("NumNZs"), 2);
  EXPECT_EQ(coef(0, 0), 2);
  EXPECT_EQ(coef(1, 1), -1);
  EXPECT_EQ(coef(0, 2), 0);
  EXPECT_TRUE(logged("Warning for adding constraints: zero or small (< 1e-13) coefficients"));
  EXPECT_EQ(texts("VarName", 3), (Texts{"C0", "C1", "C2"}));
}

TEST_F(LinearTest, RangesGetAnAuxiliaryVariable) {
  addVars(2);
  const int ind[] = {0, 1, 0, 1, 0, 1}, beg[] = {0, 2, 4};
  const double val[] = {1, 2, 3, 4, 5, 6}, lower[] = {-1e30, 1, 1}, upper[] = {5, 1e30, 5};
  const char *names[] = {"a", "", "c"};
  ASSERT_EQ(TVKaddrangeconstrs(model, 3, 6, beg, ind, val, lower, upper, names), 0);
  update();
  EXPECT_EQ(count("NumVars"), 3);
  EXPECT_EQ(chars("Sense", 3), "<>=");
  EXPECT_EQ(doubles("RHS", 3), (Doubles{5, 1, 5}));
  EXPECT_EQ(doubles("LB", 3), (Doubles{0, 0, 0}));
  EXPECT_EQ(doubles("UB", 3)[2], 4);
  EXPECT_EQ(coef(2, 2), 1);
  EXPECT_EQ(texts("VarName", 3), (Texts{"C0", "C1", "Rgc"}));
  EXPECT_EQ(texts("ConstrName", 3), (Texts{"a", "R1", "c"}));
  EXPECT_EQ(TVKaddrangeconstrs(model, 1, 1, nullptr, ind, val, lower, upper, nullptr),
            TVK_ERROR_NULL_ARGUMENT);
}

TEST_F(LinearTest, CoefficientChangesOverwriteInsertAndRemove) {
  addVars(2);
  const int ind[] = {0, 1};
  const double val[] = {1, 2};
  ASSERT_EQ(TVKaddconstr(model, 2, ind, val, '<', 1, nullptr), 0);
  ASSERT_EQ(TVKaddconstr(model, 0, nullptr, nullptr, '<', 1, nullptr), 0);
  update();
  // Row 0 is changed twice, row 1 gains an entry twice, column 1 loses its entry.
  const int rows[] = {0, 1, 0, 0, 1}, cols[] = {0, 0, 1, 0, 0};
  const double values[] = {5, 7, 0, 6, 8};
  ASSERT_EQ(TVKchgcoeffs(model, 5, rows, cols, values), 0);
  // A pending row changes too, and a pending entry is removed.
  ASSERT_EQ(TVKaddconstr(model, 2, ind, val, '<', 1, nullptr), 0);
  const int pendingRows[] = {2, 2}, pendingCols[] = {0, 1};
  const double pendingValues[] = {0, 9};
  ASSERT_EQ(TVKchgcoeffs(model, 2, pendingRows, pendingCols, pendingValues), 0);
  update();
  EXPECT_EQ(coef(0, 0), 6);
  EXPECT_EQ(coef(1, 0), 8);
  EXPECT_EQ(coef(0, 1), 0);
  EXPECT_EQ(coef(2, 0), 0);
  EXPECT_EQ(coef(2, 1), 9);
  EXPECT_EQ(count("NumNZs"), 3);
  EXPECT_EQ(TVKchgcoeffs(model, 0, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(TVKXchgcoeffs(model, static_cast<size_t>(-1), rows, cols, values),
            TVK_ERROR_INDEX_OUT_OF_RANGE);
  EXPECT_EQ(TVKchgcoeffs(model, 1, rows, nullptr, values), TVK_ERROR_NULL_ARGUMENT);
  const double infinite[] = {INFINITY};
  EXPECT_EQ(TVKchgcoeffs(model, 1, rows, cols, infinite), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(error(), "Element 0 of a double array is Nan or Inf.");
}

TEST_F(LinearTest, DeletionsKeepOrderAndMayNamePendingElements) {
  addVars(4);
  const int ind[] = {0, 1, 2, 3};
  const double val[] = {1, 2, 3, 4};
  for (int i = 0; i < 3; ++i) ASSERT_EQ(TVKaddconstr(model, 4, ind, val, '<', 10 + i, nullptr), 0);
  update();
  addVar(5, 0, 1, 'C');
  addVar(6, 0, 1, 'C');
  const int vars[] = {1, 4, 1}, constrs[] = {0};
  ASSERT_EQ(TVKdelvars(model, 3, vars), 0);
  ASSERT_EQ(TVKdelconstrs(model, 1, constrs), 0);
  update();
  EXPECT_EQ(doubles("Obj", 4), (Doubles{0, 0, 0, 6}));
  EXPECT_EQ(doubles("RHS", 2), (Doubles{11, 12}));
  EXPECT_EQ(coef(1, 1), 3);
  EXPECT_EQ(count("NumNZs"), 6);
  const int outside[] = {4};
  EXPECT_EQ(TVKdelvars(model, 1, outside), TVK_ERROR_INDEX_OUT_OF_RANGE);
  EXPECT_EQ(error(), "Problem deleting variable");
  EXPECT_EQ(TVKdelconstrs(model, 1, nullptr), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(error(), "Problem deleting constraint");
}

TEST_F(LinearTest, UpdateModesDecideWhatIsAddressable) {
  addVars(1);
  const int one[] = {0}, two[] = {1};
  const double val[] = {1};
  EXPECT_EQ(TVKaddconstr(model, 1, one, val, '<', 1, nullptr), 0);
  ASSERT_EQ(TVKsetintparam(modelEnv(), "UpdateMode", 0), 0);
  EXPECT_EQ(TVKaddvar(model, 0, nullptr, nullptr, 0, 0, 1, 'C', nullptr),
            TVK_ERROR_UPDATEMODE_CHANGE);
  EXPECT_EQ(error(), "Model update mode change between the update calls");
  update();
  EXPECT_EQ(count("NumVars"), 1);
  addVars(1);
  EXPECT_EQ(TVKaddconstr(model, 1, two, val, '<', 1, nullptr), TVK_ERROR_INDEX_OUT_OF_RANGE);
  EXPECT_EQ(TVKsetdblattrelement(model, "UB", 1, 3), 0) << error();
  update();
  EXPECT_EQ(doubles("UB", 2)[1], 3);
}

TEST_F(LinearTest, FailingCallsLeaveNothingBehind) {
  addVars(2);
  const int twice[] = {1, 1}, outside[] = {0, 2};
  const double val[] = {1, 1}, bad[] = {1, kNan};
  const auto addRow = [&](int n, const int *ind, const double *values, char sense) {
    return TVKaddconstr(model, n, ind, values, sense, 1, nullptr);
  };
  EXPECT_EQ(addRow(2, twice, val, '<'), TVK_ERROR_DUPLICATES);
  EXPECT_EQ(error(), "Problem adding constraints");
  EXPECT_EQ(addRow(2, outside, val, '<'), TVK_ERROR_INDEX_OUT_OF_RANGE);
  EXPECT_EQ(addRow(2, outside, bad, '<'), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(addRow(0, nullptr, nullptr, '!'), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(error(), "Invalid constraint sense: '!'");
  EXPECT_EQ(addRow(2, nullptr, val, '<'), TVK_ERROR_NULL_ARGUMENT);
  const auto add = [&](double obj, char type, const char *name) {
    return TVKaddvar(model, 0, nullptr, nullptr, obj, 0, 1, type, name);
  };
  EXPECT_EQ(add(kNan, 'C', nullptr), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(error(), "Element 0 of a double array is Nan.");
  const int row = 0;
  const double infinite = INFINITY;
  EXPECT_EQ(TVKaddvar(model, 1, &row, &infinite, kNan, 0, 1, 'X', nullptr),
            TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(error(), "Element 0 of a double array is Nan.");  // the first of three faults
  EXPECT_EQ(TVKaddvar(model, 1, &row, &infinite, 0, 0, 1, 'X', nullptr),
            TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(error(), "Element 0 of a double array is Nan or Inf.");
  EXPECT_EQ(add(0, 'X', nullptr), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(error(), "Invalid variable type 'X'");
  EXPECT_EQ(add(0, 'C', std::string(256, 'n').c_str()), TVK_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(error(), "Name too long (maximum name length is 255 characters)");
  EXPECT_EQ(TVKXaddvars(model, 1, static_cast<size_t>(-5), nullptr, nullptr, nullptr, nullptr,
                        nullptr, nullptr, nullptr, nullptr),
            TVK_ERROR_OUT_OF_MEMORY);
  EXPECT_EQ(error(), "Out of memory");
  EXPECT_EQ(add(0, 'C', std::string(255, 'n').c_str()), 0);
  EXPECT_EQ(error(), "");
  update();
  EXPECT_EQ(count("NumVars"), 3);
  EXPECT_EQ(count("NumConstrs"), 0);
  EXPECT_EQ(TVKaddvars(nullptr, 0, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                       nullptr),
            0);
}

TEST_F(LinearTest, NamesAreLookedUpAndMoveWithTheirOwners) {
  int index = 5;
  addVars(1);
  update();
  EXPECT_EQ(TVKgetvarbyname(model, "C0", &index), TVK_ERROR_DATA_NOT_AVAILABLE);
  EXPECT_EQ(error(), "No variable names available to index");
  addVar(0, 0, 1, 'C', "x");
  addVar(0, 0, 1, 'C', "x");
  addVar(0, 0, 1, 'C');
  ASSERT_EQ(TVKaddconstr(model, 0, nullptr, nullptr, '<', 0, nullptr), 0);
  update();
  EXPECT_EQ(texts("VarName", 4), (Texts{"C0", "x", "x", "C3"}));
  EXPECT_EQ(TVKgetvarbyname(model, "x", &index), 0);
  EXPECT_EQ(index, 1);
  EXPECT_EQ(TVKgetvarbyname(model, "X", &index), 0);
  EXPECT_EQ(index, -1);
  EXPECT_EQ(TVKgetconstrbyname(model, "R0", &index), 0);
  EXPECT_EQ(index, 0);
  EXPECT_EQ(TVKgetvarbyname(model, "x", nullptr), TVK_ERROR_NULL_ARGUMENT);
  // Default numbers do not repeat after a deletion.
  const int del[] = {0, 1};
  ASSERT_EQ(TVKdelvars(model, 2, del), 0);
  ASSERT_EQ(TVKsetstrattrelement(model, "VarName", 2, "renamed"), 0);
  update();
  addVars(1);
  update();
  EXPECT_EQ(texts("VarName", 3), (Texts{"renamed", "C3", "C4"}));
  EXPECT_EQ(TVKgetvarbyname(model, "x", &index), 0);
  EXPECT_EQ(index, -1);
  // Names are dropped when the environment says so.
  ASSERT_EQ(TVKsetintparam(modelEnv(), "IgnoreNames", 1), 0);
  addVar(0, 0, 1, 'C', "dropped");
  update();
  EXPECT_EQ(texts("VarName", 4)[3], "C5");
}

TEST_F(LinearTest, MatrixQueriesFollowTheTwoCallProtocol) {
  addVars(3);
  const int ind[] = {2, 0, 1}, beg[] = {0, 2};
  const double val[] = {3, 1, 5}, rhs[] = {0, 0};
  ASSERT_EQ(TVKaddconstrs(model, 2, 3, beg, ind, val, ">=", rhs, nullptr), 0);
  update();
  int nz = -1, cbeg[2], cind[3];
  double cval[3];
  ASSERT_EQ(TVKgetconstrs(model, &nz, nullptr, nullptr, nullptr, 0, 2), 0);
  EXPECT_EQ(nz, 3);
  ASSERT_EQ(TVKgetconstrs(model, &nz, cbeg, cind, cval, 0, 2), 0);
  EXPECT_EQ((std::vector<int>{cind[0], cind[1], cind[2]}), (std::vector<int>{0, 2, 1}));
  EXPECT_EQ((Doubles{cval[0], cval[1], cval[2]}), (Doubles{1, 3, 5}));
  EXPECT_EQ(cbeg[1], 2);
  size_t wide = 0, vbeg[2];
  ASSERT_EQ(TVKXgetvars(model, &wide, vbeg, cind, cval, 1, 2), 0);
  EXPECT_EQ(wide, 2u);
  EXPECT_EQ(vbeg[1], 1u);
  EXPECT_EQ(TVKgetvars(model, &nz, nullptr, nullptr, nullptr, 0, 0), 0);
  EXPECT_EQ(nz, 0);
  EXPECT_EQ(TVKXgetvars(model, &wide, nullptr, nullptr, nullptr, 0, 0),
            TVK_ERROR_INDEX_OUT_OF_RANGE);
  EXPECT_EQ(error(), "Invalid index range for variable query: [0, 0]");
  EXPECT_EQ(TVKgetconstrs(model, &nz, nullptr, nullptr, nullptr, 1, 2),
            TVK_ERROR_INDEX_OUT_OF_RANGE);
  EXPECT_EQ(error(), "Invalid index range for constraint query: [1, 3]");
  double value;
  EXPECT_EQ(TVKgetcoeff(model, 2, 9, &value), TVK_ERROR_INDEX_OUT_OF_RANGE);
  EXPECT_EQ(error(), "Row index 2 out of range in coefficient query");
}

// In list order, in random order, with repeated names and after changes: always the first of the
// variables that have the name now.
TEST_F(LinearTest, NamesAreFoundInAnyOrder) {
  constexpr int kNumVars = 3000;
  std::vector<std::string> names;
  for (int j = 0; j < kNumVars; ++j) {
    names.push_back(j % 97 == 0 ? "again" : "name" + std::to_string(j * j));
    addVar(0, 0, 1, 'C', names.back().c_str());
  }
  update();
  const auto find = [&](const std::string &name) {
    int index = -77;
    EXPECT_EQ(TVKgetvarbyname(model, name.c_str(), &index), 0);
    return index;
  };
  const auto first = [&](const std::string &name) {
    const auto it = std::find(names.begin(), names.end(), name);
    return it == names.end() ? -1 : static_cast<int>(it - names.begin());
  };
  for (const std::string &name : names) EXPECT_EQ(find(name), first(name));
  for (int k = 0; k < kNumVars; ++k) {
    const std::string &name = names[static_cast<std::size_t>(k) * 1009 % kNumVars];
    EXPECT_EQ(find(name), first(name));
    EXPECT_EQ(find(name + "x"), -1);
  }
  EXPECT_EQ(find(""), -1);
  TVKsetstrattrelement(model, "VarName", 5, "again");
  TVKsetstrattrelement(model, "VarName", 0, "fresh");
  const int dropped = 2;
  TVKdelvars(model, 1, &dropped);
  update();
  EXPECT_EQ(find("again"), 4);
  EXPECT_EQ(find("fresh"), 0);
  EXPECT_EQ(find(names[2]), -1);
  EXPECT_EQ(find(names[3]), 2);
}

TEST_F(LinearTest, UniqueNamesAreFoundInOrderAndOutOfIt) {
  for (const char *name : {"a", "b", "c", "d", "e"}) addVar(0, 0, 1, 'C', name);
  update();
  for (const char *order : {"abcde", "abzcd", "abacad", "edcba", "deab"}) {
    for (const char *at = order; *at; ++at) {
      int index = -77;
      EXPECT_EQ(TVKgetvarbyname(model, std::string(1, *at).c_str(), &index), 0);
      EXPECT_EQ(index, *at == 'z' ? -1 : *at - 'a') << order;
    }
  }
}

TEST_F(LinearTest, RowsReadOneByOneAreThoseOfTheLastUpdate) {
  addVars(3);
  const int ind[] = {2, 0}, row = 0, var = 1;
  const double val[] = {4, 5}, changed = 7;
  TVKaddconstr(model, 2, ind, val, '<', 1, nullptr);
  TVKaddconstr(model, 1, ind, val, '<', 1, nullptr);
  update();
  const auto read = [&](int start, int len) {
    int numNz = 0, beg[2], cind[6];
    double cval[6];
    EXPECT_EQ(TVKgetconstrs(model, &numNz, beg, cind, cval, start, len), 0);
    std::string text;
    for (int k = 0; k < numNz; ++k)
      text += std::to_string(cind[k]) + ":" + std::to_string(static_cast<int>(cval[k])) + " ";
    return text;
  };
  EXPECT_EQ(read(0, 1), "0:5 2:4 ");
  EXPECT_EQ(read(1, 1), "2:4 ");
  EXPECT_EQ(read(0, 2), "0:5 2:4 2:4 ");
  TVKchgcoeffs(model, 1, &row, &var, &changed);
  EXPECT_EQ(read(0, 1), "0:5 2:4 ");
  update();
  EXPECT_EQ(read(0, 1), "0:5 1:7 2:4 ");
}

}  // namespace
