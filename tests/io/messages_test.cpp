// What the readers say about broken and odd files, text by text. Errors end the reading with no
// model; warnings do not.
#include <utility>
#include <vector>

#include "file_fixture.h"

namespace tarvik {
namespace {

class Messages : public FileTest {
 protected:
  using Cases = std::vector<std::pair<std::string, std::string>>;  // text, expected

  void expectLpErrors(const std::string &before, const Cases &cases) {
    for (const auto &[text, expected] : cases) {
      EXPECT_EQ(tryRead("m.lp", before + text + "\nend\n"), 10012) << text;
      EXPECT_EQ(message(), expected) << text;
      EXPECT_TRUE(logged(expected + "\nNeighboring tokens: \" ")) << text << log_;
    }
  }
  // The expected piece of the log; LINE stands for the last line of the text.
  void expectMps(int code, const std::string &before, const Cases &cases) {
    for (const auto &[text, expected] : cases) {
      EXPECT_EQ(tryRead("m.mps", before + text + "\nENDATA\n"), code) << text << log_;
      std::string piece = expected;
      const std::size_t at = piece.find("LINE");
      if (at != std::string::npos) piece.replace(at, 4, text.substr(text.rfind('\n') + 1));
      EXPECT_TRUE(logged(piece)) << piece << "\nfor\n" << text << "\nin\n" << log_;
      EXPECT_EQ(code != 0, !message().empty());
    }
  }
  // The next line of the file is line 11.
  static constexpr const char *kMps =
      "NAME t\nROWS\n N  OBJ\n L  l\n G  g\n E  e\nCOLUMNS\n    x  OBJ  1  l  1\n"
      "    x  g  1  e  2\n    y  OBJ  2  l  3\n";
  static constexpr const char *kLp = "min\n obj: x + y\nst\n c: x + y >= 1\n";
};

TEST_F(Messages, LpExpressions) {
  expectLpErrors(
      "min\n x ",
      {{"+ [ 2 < x ] / 2", "Unrecognized token in quadratic expression"},
       {"+ [ x * ] / 2", "Malformed quadratic term in expression"},
       {"+ [ x ^2 ]", "Malformed quadratic term in expression"},
       {"+ [ - ] / 2", "Malformed quadratic term in expression"},
       {"+ __pwl(x", "\"__pwl(\" has no closing parenthesis or is missing a variable name"},
       {"\nst\n b = 2 -> x >= 1",
        "Invalid binary value in indicator expression (expected '1' or '0')"},
       {"\nst\n b >= 1 -> x >= 1", "Invalid sense in indicator expression (expected '=')"},
       {"\nst\n b = 1 -> [ x ^2 ] >= 1", "Indicator constraint has to be linear"},
       {"\nst\n 1 <= x >= 0", "Unrecognized constraint RHS or sense"},
       {"\nsos\n s: S1 :: x", "Malformed SOS term"},
       {"\npwlobj\n x: (1, 2", "Malformed PWL term"},
       {"\npwlobj\n x", "Malformed PWL term"}});
  for (const char *text : {"min\n x +\n", "min\n x + inf\nst\n c: x <= 1\nend\n",
                           "min\n x\nst\n c: x + inf >= inf\nend\n"}) {
    EXPECT_EQ(tryRead("m.lp", text), 10012) << text;
    EXPECT_EQ(message(), "Malformed term in expression");
  }
}

TEST_F(Messages, LpObjectives) {
  const std::string linear =
      "Multi-objective supports only linear objectives not quadratic (or piecewise-linear)";
  const std::string settings = " o: priority=1 weight=1 abstol=0 reltol=0\n ";
  expectLpErrors(
      "min multi-objectives\n",
      {{" o priority=1", "Missing ':' after objective name"},
       {" o: priority=1 abstol=1", "Missing 'weight' keyword"},
       {" o: priority 1", "Missing '=' after 'priority' keyword"},
       {" o: priority=1 weight=", "Missing weight value after 'weight' keyword"},
       {" o: priority=1.5", "Invalid priority value after 'priority' keyword"},
       {" o: priority=" + std::string(100, '1'), "Invalid priority value after 'priority' keyword"},
       {" o: priority=1 weight=1 abstol=0 reltol=x", "Invalid reltol value after 'reltol' keyword"},
       {settings + "[ x ^2 ] / 2", linear},
       {settings + "__pwl(x)", linear},
       {settings + "x <= 2", "Objective function contains sense '<'"}});
}

TEST_F(Messages, LpGeneralConstraints) {
  const std::string broken = "Last line broken, invalid value or missing base, read \"";
  expectLpErrors(
      std::string(kLp) + "gencons\n",
      {{" g:", "Error, read empty general constraint or wrongly placed '::'"},
       {" g: r MAX ( x )",
        "Last line broken or missing '=', a space or a resultant variable, read MAX"},
       {" g: r = ROOT ( x )", "Missing general function type specifier, read ROOT"},
       {" g: r = INDICATOR ( x )", "Parsing of this general constraint type not implemented"},
       {" g: r = MAX x", "Missing ' ( ' in general constraint, read 'x'"},
       {" g: r = MAX ( x y )",
        "Missing separator ' , ' or end ' ) ' in general constraint, read 'y'"},
       {" g: r = PWL ( x y", "Missing closing character ' ) ' in general constraint, read 'y'"},
       {" g: r = PWL ( x ) (0, 0) (1, 1)",
        "Missing separator ' : ' in general constraint, read '(0,'"},
       {" g: r = ABS ( )", "Error, read general ABS constraint with no operands"},
       {" g: r = NORM 2 ( x )", "Norm missing opening bracket"},
       {" g: r = NORM ( 2 ( x )", "Norm missing closing bracket"},
       {" g: r = EXP x", "Missing '(', read x"},
       {" g: r = EXP ( x", "General function broken, missing closing bracket"},
       {" g: r = POW ( x 2 )", broken + "2\""},
       {" g: r = LOGA ( x )", broken + "LOGA\""},
       {" g: r = LOG_b ( x )", broken + "LOG_b\""},
       {" g: r = POW ( x ^ y )",
        "Cannot parse general function constraint, found \"y\" expected a (valid) number"},
       {" g: r = POLY ( 2 x ^ -1 )", "Expected positive integer exponent, read \"-1\""},
       {" g: r = POLY ( 2 x ^ 2 + y )", "Expected variable 0, found token \"y\" = 1"},
       {" g: r = POLY ( )", "General function broken, too few tokens"},
       {" g: r = EXP ( x ) ( Pieces=3 )",
        "Invalid general function options or missing closing bracket, read Pieces=3"},
       {" g: r = EXP ( x ) ( FuncPieces 3 )",
        "Missing '=' after general function option keyword, read 3"},
       {" g: r = EXP ( x ) ( FuncPieces= )",
        "Missing value after '=' in general function options, read \")\""},
       {" g: r = EXP ( x ) ( FuncPieces=3 ) ( FuncPieces=4 )",
        "General function options appears multiple times, read ("}});
  EXPECT_EQ(tryRead("m.lp", std::string(kLp) + "gencons\n g: r ="), 10012);
  EXPECT_EQ(message(), "General function broken, too few tokens");
}

TEST_F(Messages, LpScenarios) {
  expectLpErrors(
      "min\n obj: x + y\nst\n c: x + y >= 1\n d: x <= 4\nlazy constraints\n l: x <= 9\nuser cuts\n"
      " u: x <= 8\nscenario s\n",
      {{"bounds\n x <= 1\nst\n c: >= 2",
        "Scenario section appears twice or in wrong order (Objective -> Constraints -> Bounds)"},
       {"max\n x 1",
        "Objective sense of scenario needs to match with the objective sense of the original "
        "model"},
       {"generals\n x", "Unexpected section in scenario"},
       {"x 1",
        "Wrong line in scenario section, expected next scenario or objective, constraints, or "
        "bounds scenario section"},
       {"min\n x", "Missing objective coefficient for a variable in scenario 0"},
       {"min\n x 1\n x 2", "Objective of variable x appears twice in scenario 0"},
       {"min\n z 1", "Unknown variable z in scenario 0 objective"},
       {"st\n z: >= 1", "Unknown row z in scenario 0"},
       {"st\n c: >= 1\n c: >= 2", "Right hand side of constraint c appears twice in scenario 0"},
       {"st\n c: 1", "Expected constraint sense in scen 0 row c"},
       {"st\n c: <= 1", "Constraint sense > does not match scenario constraint sense < of row c"},
       {"st\n l: <= 1", "Lazy row l in scenario 0 not allowed"},
       {"st\n u: <= 1", "User cut u in scenario 0 not allowed"},
       {"bounds\n x 1", "Wrong format in scenario bound section of scenario 0"},
       {"bounds\n z <= 1", "Unknown column z in scenario 0"},
       {"bounds\n x <= 3\n x = 1", "Variable x appears twice in scenario 0"},
       {"bounds\n x >= 0\n x >= 1", "Lower bound of variable x appears twice in scenario 0"},
       {"bounds\n x <= 3\n x <= 1", "Upper bound of variable x appears twice in scenario 0"}});
}

TEST_F(Messages, LpWarnings) {
  read("m.lp",
       "min\n x + y + 2 b + 1e-20 x\n + [ 1e-20 x ^2 ] / 2\nst\n c: x + x - y >= 1\n"
       " d: x + y - y == 1\n e: 1e-20 x + y <= 5\n i: b = 1 -> x + x + 1e-20 y >= 1\n"
       " 4 = 1 -> x >= 1\n 5 y <= 4\n 3x <= 1\nlazy constraints\n l: [ x ^2 ] <= 4\n"
       "cones\n k: [ - x ^2 + w ^2 ] <= 0\nbounds\n q <= 1\nbinary\n q b\n 4\ngenerals\n q\n"
       "semi-continuous\n q\ngencons\n 7 = MAX ( 8 , x )\n x = POLY ( 0 y ^ 2 + y ^ 1 )\nend\n");
  for (const char *warning :
       {"Warning: row 0 (name \"c\") contains 1 repeated variable(s) in constraints, grouped them, "
        "0 cancellation\n",
        "Warning: row 1 (name \"d\") contains 1 repeated variable(s) in constraints, grouped them, "
        "1 cancellation\n",
        "Warning: lp file contains 2 repeated variable(s) in constraints, grouped them, 1 "
        "cancellation\n",
        "Warning: row 2 (name \"e\") contains 1 small (<= 1e-13) coefficient(s), ignored\n",
        "Warning: lp file contains 1 small (<= 1e-13) coefficient(s), ignored\n",
        "Warning: lp file contains small (< 1e-13) quadratic objective coefficients, ignored\n",
        "Warning: At least one constraint uses '==' instead of '=' as sense.\n",
        "Warning: indicator constraint i contains 1 repeated variable(s), grouped them, 0 "
        "cancellation\n",
        "Warning: indicator constraint i contains 1 small (<= 1e-13) coefficient(s), ignored\n",
        "Warning: read number '4' as indicator variable name\n",
        "Warning: read number '7' as resultant variable\n",
        "Lazy constraints and user cuts must be linear - ignoring lazy designation\n",
        "Warning: unknown variable 'w' in cone section\n",
        "Warning: unknown variable 'q' in bounds section (line 17)\n",
        "Warning: unknown variable 'q' in binary section\n",
        "Warning: unknown variable 'q' in integer section\n",
        "Warning: unknown variable 'q' in semi-continuous section\n",
        "Read zero coefficient in general function polynomial\n",
        "Warning: variable name <3x> starts with a number\n",
        "Warning: Numeric variable name in LP file ('4') - often the result\n",
        "         of a constant term in the left-hand side of a constraint.\n"})
    EXPECT_TRUE(logged(warning)) << warning << "in\n" << log_;
  // Rows without names are told of by the names that they get; only the first rows are told of.
  std::string rows;
  for (int k = 0; k < 12; ++k) rows += " x + x >= 1\n";
  read("n.lp", "min\n x\nst\n" + rows + "end\n");
  EXPECT_TRUE(logged("Warning: row 9 (name \"R9\") contains 1 repeated")) << log_;
  EXPECT_FALSE(logged("Warning: row 10 ")) << log_;
  EXPECT_TRUE(logged("skipping further warning of this kind\n"));
}

TEST_F(Messages, MpsRowsAndQuadratics) {
  expectMps(
      10012, "NAME\nROWS\n N OBJ\n",
      {{" N o 1 1 0",
        "Missing priority, weight, absolute or relative tolerance in multi-objective line\n"},
       {" N o 1 1 0 0",
        "Missing priority, weight, absolute or relative tolerance in multi-objective line\n"},
       {"LAZYCONS 1\n L a\nLAZYCONS\n",
        "Error at line 6 (second LAZYCONS section with same lazyness):\n LAZYCONS\n"},
       {"USERCUTS\n L a\nUSERCUTS\n", "Error at line 6 (second USERCUTS section):\n USERCUTS\n"},
       {"", "Error: no column section.\n"}});
  const std::string term = "\n    x  x  1", product = "\n    x  y  1";
  expectMps(
      10012, kMps,
      {{"QUADOBJ" + term + "\nQUADOBJ" + term, "Error: two or more quadratic objective sections\n"},
       {"QCMATRIX l" + term + "\nQUADOBJ" + term,
        "Error: quadratic objective must be the first quadrartic part in the MPS format\n"},
       {"QUADOBJ" + term + "\nQCMATRIX l" + term + "\nQCMATRIX g" + term + "\nQCMATRIX e" + term +
            "\nQCMATRIX e" + term,
        "Error: too many quadratic sections\n"},
       {"QCMATRIX l" + term + "\nQCMATRIX l" + term,
        "Error, Q terms of a constraint appear in more than one section.\n"},
       {"QCMATRIX l\n    x  z  1", "  variable name in the quadratic section not found\n"},
       {"QCMATRIX l" + product, "Error: qmatrix isn't symmetric\n"},
       {"QMATRIX" + term + term, "Error: duplicate quadratic elements\n"},
       {"BILINEAR z" + product, "Error: a bilinear constraint isn't defined in row section.\n"},
       {"BILINEAR l" + product + term,
        "  must specify exactly one quadratic term in the bilinear section\n"},
       {"BILINEAR l\n    x  z  1", "  variable name in the bilinear section not found\n"},
       {"BILINEAR l" + product + "\nBILINEAR l" + product,
        "Error, Q terms of a bilinear constraint appear in more than one section.\n"},
       {"PWLOBJ\n    x  1", "Error in the piecewise-linear objective section at line 12\n"}});
}

TEST_F(Messages, MpsIndicators) {
  expectMps(10012, std::string(kMps) + "INDICATORS\n",
            {{" IF l x", "Error at line 12, expected indicator constraint:\nLINE\n"},
             {" FI l x 1", "Error at line 12, expected indicator keyword 'IF'\nLINE\n"},
             {" IF l z 1", "Error at line 12, unknown indicator variable name:\nLINE\n"},
             {" IF l x 2", "Error at line 12, indicator variable value incorrect:\nLINE\n"}});
  expectMps(
      0, kMps,
      {{"BOUNDS\n BV B x\nINDICATORS\n IF z x 1",
        "Warning: indicator row z isn't defined in row section and will be skipped.\n"},
       {"BOUNDS\n BV B x\nINDICATORS\n IF OBJ x 1",
        "Warning: indicator row OBJ for objective isn't supported and will be skipped\n"},
       {"RANGES\n    R  l  1\nBOUNDS\n BV B x\nINDICATORS\n IF l x 1",
        "Warning: range row as indicator row l not supported and will be skipped\n"},
       {"INDICATORS", "Warning: empty indicator section skipped\n"},
       {"QCMATRIX l", "Warning: Empty quadratic constraint section at line 11 after l\n"},
       {"RANGES\n    R  l  1\n    R  l  1", "Warning: duplicate range row l.\n"},
       {"QUADOBJ\n    x  x  1e-20",
        "Warning: mps file contains small (< 1e-13) quadratic objective coefficients, ignored\n"},
       {"GENCONS\n MAX m\n    x\n    3",
        "Warning: resultant variable of general constraint <m> depends only on constants\n"}});
  EXPECT_EQ(tryRead("m.mps",
                    "NAME\nROWS\n N OBJ\nLAZYCONS\n L l\nCOLUMNS\n    x l 1\n    b l 1\nBOUNDS\n"
                    " BV B b\nINDICATORS\n IF l b 1\nENDATA\n"),
            0);
  EXPECT_TRUE(logged("Warning: indicator constraint l cannot be lazy (lazyness removed)\n"));
  EXPECT_EQ(tryRead("m.mps", "NAME\nROWS\n L l\nCOLUMNS\n    x l 1\nENDATA\n"), 0);
  EXPECT_TRUE(logged("Warning: no linear objective.\n"));
}

TEST_F(Messages, MpsGeneralConstraints) {
  const auto line = [](int number, const std::string &text) {
    return "Error at line " + std::to_string(number) + ", " + text + "\nLINE\n";
  };
  const std::string section = " in general function constraint section";
  const std::string options = "    Options  0  0.01  0.001  -1  -1\n";
  expectMps(
      10012, std::string(kMps) + "GENCONS\n",
      {{"    x", line(12, "expected general constraint:")},
       {" INDICATOR i", line(12, "parsing general constraint type not implemented:")},
       {" MAX m", "Error at line 13, no variables nor constants read:\n"},
       {" ABS a\n    x", "Error at line 14, ABS constraint without argument variable:\n"},
       {" ABS a\n    x\n    y\n    y",
        "Error at line 16, ABS constraint with multiple argument variables:\n"},
       {" MAX m\n    x",
        "Error, read general MIN or MAX constraint with no operands and no finite constant\n"},
       {" MAX m\n    3",
        line(13,
             "general constraint has to start with known resultant variable, not with a "
             "constant:")},
       {" AND a\n    x\n    3",
        line(14, "general constraint of type AND does not support constants:")},
       {" AND a\n    z", line(13, "unknown variable name:")},
       {" PWL p\n    x", line(13, "expecting two variable:")},
       {" PWL p\n    x  y\n    1", line(14, "expecting a pair of values:")},
       {" PWL p\n    x  y\n    1  1",
        "Error around line 15, less than 2 points in PWL constraint or missing white space\n"},
       {" EXP f\n    x  y", line(13, "expecting general function options:")},
       {" EXP f\n" + options + "    x", line(14, "expecting two variable" + section + ":")},
       {" EXP f\n" + options + "    x  z", line(14, "unknown variable names" + section + ":")},
       {" POW f\n" + options + "    x  y\n    a", line(15, "expecting function base a:")},
       {" POLY f\n" + options + "    x  y\n    a  1",
        line(15, "expecting a pair of integer and float for polynom" + section + ":")},
       {" POLY f\n" + options + "    x  y\n    1  1\n    2  1",
        line(16, "wrong term order for polynomial function:")},
       {" POLY f\n" + options + "    x  y\n2  1",
        "Error at line 15, space at beginning of line" + section + " missing.\nLINE\n"}});
}

TEST_F(Messages, MpsScenarios) {
  const auto line = [](int number, const std::string &text) {
    return "Error at line " + std::to_string(number) + ", " + text + "\nLINE\n";
  };
  expectMps(
      10012, std::string(kMps) + "SCENARIOS 1\n",
      {{"", "Error at line 13, missing scenarios, expected 1 found 0:\n"},
       {" NAME s\nx", line(13, "space at beginning of line in scenario section missing:")},
       {" NAME s\n NAME t", line(13, "scenario section should have finished:")},
       {" NAME s\n COLUMNS\n COLUMNS",
        line(14, "scenario has multiple COLUMNS sections or missing NAME section:")},
       {" RHS", line(12, "scenario has multiple RHS sections or missing NAME section:")},
       {" BOUNDS", line(12, "scenario has multiple BOUNDS sections or missing NAME section:")},
       {" NAME s\n COLUMNS\n    x  1",
        line(14, "expected line with VarName OBJNAME Value in scenario section:")},
       {" NAME s\n COLUMNS\n    z  OBJ  1", line(14, "unknown column in scenario section:")},
       {" NAME s\n COLUMNS\n    x  l  1", line(14, "unexpected row in column scenario section:")},
       {" NAME s\n RHS\n    RHS1  l",
        line(14, "expected line with RHS1 VarName Value (VarName Value) in scenario section:")},
       {" NAME s\n RHS\n    RHS1  z  1", line(14, "unknown row in scenario section:")},
       {" NAME s\n BOUNDS\n    UP", line(14, "expected BOUND keyword in scenario section:")},
       {" NAME s\n BOUNDS\n    BV BND1  x", line(14, "invalid BOUND keyword in scenario section:")},
       {" NAME s\n BOUNDS\n    UP BND1  x  1\n    UP BND1  x  2",
        line(15, "column appears multiple times in scenario BOUNDS section:")}});
  // What is found out behind the last line belongs to none.
  expectMps(10012, std::string(kMps) + "QCMATRIX l\n    x  x  1\nSCENARIOS 1\n",
            {{" NAME s\n RHS\n    RHS1  l  1",
              "Error: row l of a scenario isn't a linear constraint\n"}});
  EXPECT_EQ(message(), "Error in MPS file");
  EXPECT_EQ(tryRead("m.mps",
                    "NAME\nROWS\n N o1 1 1 0 0\n N o2 1 1 0 0\nCOLUMNS\n    x o1 1\nSCENARIOS 1\n"),
            10012);
  EXPECT_TRUE(logged("Error scenario feature is incompatible with multi-objective feature\n"));
}

// A field that is too long is cut, which is told on standard output; names end earlier.
TEST_F(Messages, MpsLongFields) {
  const std::string set(600, 'a');
  const std::string text = "NAME\nROWS\n N  OBJ\nCOLUMNS\n    x  OBJ  1\n";
  testing::internal::CaptureStdout();
  TVKmodel *model = read("m.mps", text + "RHS\n    " + set + "  OBJ  1\nENDATA\n");
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "WARNING: MPS data field too long, cut field \"    " + set + "  OBJ  1\"\n");
  ASSERT_NE(model, nullptr);
  EXPECT_EQ(model->data().objCon, -1);
  const std::string name(256, 'b');
  EXPECT_EQ(tryRead("m.mps", text + "    " + name + "  OBJ  1\nENDATA\n"), 10003);
  EXPECT_EQ(message(), "Name too long (maximum name length is 255 characters)");
}

// Lazy levels are sections of their own.
TEST_F(Messages, LpLazySections) {
  const std::string rows = " a: x >= 1\nlazy constraints 2\n b: x >= 1\n";
  read("m.lp", "min\n x\nlazy constraints\n" + rows + "lazy constraints 3\n c: x >= 1\nend\n");
  EXPECT_FALSE(logged("Duplicate section")) << log_;
  EXPECT_EQ(models_.back()->data().lazy, (Vec<int>{1, 2, 3}));
  read("m.lp", "min\n x\nlazy constraints 2\n" + rows + "end\n");
  EXPECT_TRUE(logged("Warning: Duplicate section found (read 'lazy constraints')")) << log_;
}

}  // namespace
}  // namespace tarvik
