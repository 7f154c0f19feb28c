#include <cmath>

#include "file_fixture.h"

namespace tarvik {
namespace {

class Mps : public FileTest {
 protected:
  // A file with the rows OBJ (free), l, g, e and two columns, and further sections.
  static std::string file(const std::string &sections, const std::string &columns = "") {
    return "NAME t\nROWS\n N  OBJ\n L  l\n G  g\n E  e\nCOLUMNS\n" +
           (columns.empty() ? "    x  OBJ  1  l  1\n    x  g  1  e  2\n    y  OBJ  2  l  3\n"
                            : columns) +
           sections + "ENDATA\n";
  }
};

TEST_F(Mps, LinearModel) {
  TVKmodel *model = read("m.mps", file("RHS\n    RHS1  l  10  g  -1\n    RHS1  OBJ  -7\n"));
  const ModelData &data = model->data();
  EXPECT_EQ(data.numVars(), 2);
  EXPECT_EQ(data.numConstrs(), 3);
  EXPECT_EQ(data.objCon, 7);
  EXPECT_EQ(std::string(data.sense.begin(), data.sense.end()), "<>=");
  EXPECT_EQ(data.rhs, (Vec<double>{10, -1, 0}));
  EXPECT_EQ(data.obj, (Vec<double>{1, 2}));
  EXPECT_EQ(data.a.index, (Vec<int>{0, 1, 2, 0}));
  EXPECT_STREQ(model->varName(1), "y");
  EXPECT_STREQ(model->constrName(2), "e");
}

TEST_F(Mps, RangesBecomeAuxiliaryColumns) {
  TVKmodel *model = read("m.mps", file("RHS\n    RHS1  l  10  g  1\n    RHS1  e  5\n"
                                       "RANGES\n    R  l  4  g  -2\n    R  e  -3\n"));
  const ModelData &data = model->data();
  ASSERT_EQ(data.numVars(), 5);
  EXPECT_STREQ(model->varName(4), "MPS_Rge");
  // e lies in [2, 5]: e + r = 5 with r in [0, 3].
  EXPECT_EQ(data.rhs, (Vec<double>{10, 1, 5}));
  EXPECT_EQ(std::string(data.sense.begin(), data.sense.end()), "===");
  EXPECT_EQ(data.ub[2], 4);
  EXPECT_EQ(data.ub[3], 2);
  EXPECT_EQ(data.ub[4], 3);
  EXPECT_EQ(data.a.value[data.a.start[3]], -1);
  EXPECT_EQ(data.a.value[data.a.start[4]], 1);
  model = read("n.mps", file("RHS\n    RHS1  e  5\nRANGES\n    R  e  3\n"));
  EXPECT_EQ(model->data().rhs[2], 8);
}

TEST_F(Mps, BoundTypes) {
  const std::string columns =
      "    a  OBJ 1\n    b  OBJ 1\n    c  OBJ 1\n    d  OBJ 1\n    e1 OBJ 1\n"
      "    M 'MARKER' 'INTORG'\n    i  OBJ 1\n    j  OBJ 1\n    k  OBJ 1\n    M 'MARKER' 'INTEND'\n"
      "    s  OBJ 1\n    t  OBJ 1\n    u  OBJ 1\n";
  TVKmodel *model = read("m.mps", file("BOUNDS\n UP B a -2\n FR B b\n MI B c\n UP B c 5\n"
                                       " FX B d 3\n BV B e1\n LO B j 2\n LI B k 0\n"
                                       " SC B s 9\n LO B s 1\n SI B t 4\n UP u INF\n",
                                       columns));
  const ModelData &data = model->data();
  const auto has = [&](int j, char type, double lower, double upper) {
    EXPECT_EQ(data.vtype[j], type) << j;
    EXPECT_EQ(data.lb[j], lower) << j;
    EXPECT_EQ(data.ub[j], upper) << j;
  };
  has(0, 'C', -kInf, -2);  // a negative upper bound alone
  has(1, 'C', -kInf, kInf);
  has(2, 'C', -kInf, 5);
  has(3, 'C', 3, 3);
  has(4, 'B', 0, 1);
  has(5, 'I', 0, 1);  // between markers without a bound
  has(6, 'I', 2, kInf);
  has(7, 'I', 0, kInf);
  has(8, 'S', 1, 9);
  has(9, 'N', 0, 4);
  has(10, 'C', 0, kInf);
  for (int j = 0; j < 11; ++j)
    EXPECT_FALSE(data.lb[j] == 0 && std::signbit(data.lb[j])) << j << " begins at -0";
  EXPECT_EQ(tryRead("n.mps", file("BOUNDS\n UP B x 5\n BV B x\n")), 10012);
  EXPECT_EQ(message(), "MPS reader: invalid bounds [0, 5] for binary variable x");
}

TEST_F(Mps, WarningsDoNotStopTheReading) {
  const std::string text =
      "NAME\nROWS\n N  OBJ\n N  free\n L  r\nCOLUMNS\n    x  OBJ 1 r 1\n    x r 5 q 2\n"
      "    y free 3 r 1e-20\n    M 'MARKER' 'INTEND'\n    x OBJ 8\nRHS\n    R r 1 r 2\n    R z 1\n"
      "RANGES\n    R OBJ 1 z 2\nBOUNDS\n UP A x 4\n UP B x 5\n UP B w 1\nENDATA\n";
  TVKmodel *model = read("m.mps", text);
  for (const char *warning :
       {"Warning: more than one unconstrained row,\n", "using the first one as the objective.\n",
        "Warning: row name q in column section at line 8 not defined.\n",
        "Warning: duplicate nonzeros for column x and row r.\n",
        "Warning: marker at line 10 is wrong.\n", "Warning: duplicate row r in rhs section.\n",
        "Warning: row name z in rhs section not defined.\n",
        "Warning: range row OBJ for objective isn't supported.\n",
        "Warning: range row z isn't defined in row section.\n",
        "Warning: found different names for bound vectors (A and B), names are ignored\n",
        "Warning: duplicate bounds for column x.\n",
        "Warning: column name w in bound section not defined\n",
        "Warning: mps file contains small (< 1e-13) coefficients, ignored\n"})
    EXPECT_TRUE(logged(warning)) << warning;
  EXPECT_EQ(model->data().ub[0], 5);
  EXPECT_EQ(model->data().rhs[0], 1);
}

TEST_F(Mps, BrokenFilesFail) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "MPS reader: line 0 not right or no ENDATA"},
      {"NAME\nENDATA\n", "MPS reader: no row section"},
      {"ROWS\n N OBJ\nENDATA\n", "MPS reader: no column section"},
      {"ROWS\n N OBJ\nCOLUMNS\n x OBJ 1\n", "MPS reader: line 4 not right or no ENDATA"},
      {"ROWS\n N OBJ\nFOO\n", "MPS reader: line 3 not right or no ENDATA"},
      {"ROWS\n N OBJ\nCOLUMNS\n x\nENDATA\n", "MPS reader: not free format"},
      {"ROWS\n N OBJ\nCOLUMNS\n x OBJ abc\nENDATA\n", "MPS read error at line 4:\n x OBJ abc"},
      {file("RHS\n    R  OBJ  inf\n"), "MPS read error at line 12:\n    R  OBJ  inf"},
      {"ROWS\n N OBJ\n L r\n G r\n", "MPS read error at line 4:\n G r"},
      {file("QMATRIX\n    x y 1\n"), "Qmatrix isn't symmetric"},
      {file("QUADOBJ\n    x y 1\n    y x 1\n"), "Duplicate quadratic elements"},
      {file("PWLOBJ\n    x 0 0\n    y 0 0\n    x 1 1\n"),
       "MPS reader: objective pieces are separated for a variable"},
      {file("SCENARIOS\n"), "MPS reader: failed to read number of scenarios"}};
  for (const auto &[text, expected] : cases) {
    EXPECT_EQ(tryRead("m.mps", text), 10012) << text;
    EXPECT_EQ(message(), expected) << text;
  }
  EXPECT_EQ(tryRead("m.mps", file("QCMATRIX zz\n    x x 1\n")), 10012);
  EXPECT_TRUE(logged("Error: a quadratic constraint isn't defined in row section.\n"));
}

TEST_F(Mps, NamesWithBlanksInFixedColumns) {
  TVKmodel *model = read("m.mps",
                         "NAME          FIXED\nROWS\n N  COST\n E  A  20\n L  B R\nCOLUMNS\n"
                         "    X 1       COST                1.   A  20               2.\n"
                         "    X 1       B R                 3.\n"
                         "RHS\n              A  20               4.   B R                 5.\n"
                         "BOUNDS\n UP BND 1     X 1              6.\nENDATA\n");
  const ModelData &data = model->data();
  ASSERT_EQ(data.numVars(), 1);
  EXPECT_STREQ(model->varName(0), "X 1");
  EXPECT_STREQ(model->constrName(0), "A  20");
  EXPECT_EQ(data.a.value, (Vec<double>{2, 3}));
  EXPECT_EQ(data.rhs, (Vec<double>{4, 5}));
  EXPECT_EQ(data.ub[0], 6);
}

TEST_F(Mps, OddButKnownLayouts) {
  TVKmodel *model =
      read("m.mps",
           "* comment\nNAME  a name with blanks\nOBJSENSE\n    MAX\nROWS\n N  OBJ\n L  r\n"
           "COLUMNS\n    RHS  OBJ 1.0D1 r 1\n    y  r 1\n    RHS OBJ 3\n"
           "RHS\n    r  5\nBOUNDS\n FR y\n UP RHS 4\nENDATA\n");
  const ModelData &data = model->data();
  EXPECT_EQ(data.name, "a name with blanks");
  EXPECT_EQ(data.objSense, -1);
  EXPECT_EQ(data.obj[0], -10);
  EXPECT_EQ(data.rhs[0], 5);
  EXPECT_EQ(data.lb[1], -kInf);
  EXPECT_EQ(data.ub[0], 4);
}

TEST_F(Mps, QuadraticsFollowTheHalfConvention) {
  TVKmodel *full = read("m.mps", file("QMATRIX\n    x x 4\n    x y 3\n    y x 3\n"));
  TVKmodel *half = read("n.mps", file("QUADOBJ\n    x x 4\n    x y 3\n"));
  for (TVKmodel *model : {full, half}) {
    int count = 0, row[2], col[2];
    double value[2];
    ASSERT_EQ(TVKgetq(model, &count, row, col, value), 0);
    ASSERT_EQ(count, 2);
    EXPECT_EQ(value[0], 2);  // one half of 4 x^2
    EXPECT_EQ(value[1], 3);
  }
  TVKmodel *constr = read("q.mps", file("QCMATRIX   l\n    x x 4\n    x y 3\n    y x 3\n"));
  ASSERT_EQ(constr->data().numQConstrs(), 1);
  EXPECT_EQ(constr->data().numConstrs(), 2);
  const QConstr &c = constr->data().qconstrs[0];
  EXPECT_EQ(c.quad.val, (Vec<double>{4, 6}));
  EXPECT_EQ(c.lval, (Vec<double>{1, 3}));
}

}  // namespace
}  // namespace tarvik
