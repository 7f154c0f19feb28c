#include <algorithm>
#include <tuple>

#include "file_fixture.h"

namespace tarvik {
namespace {

class Lp : public FileTest {};

TEST_F(Lp, EverySectionIsRead) {
  TVKmodel *model =
      read("m.lp",
           "\\ comment\nMINIMIZE\n obj: 2 x - y + 0.5 z + [ x ^2 + 2 x * y ] / 2 + 3\nst\n"
           " c1: x + y == 2\n -x + 3 y >= - 4 \\ rest\n"
           " r: 1 <= x + z <= 5\n q: x + [ y ^2 - x * z ] <= 7\n"
           " i: b = 1 -> x + y <= 1\nLazy Constraints 2\n z1: x <= 9\n"
           "Bounds\n x <= 4\n -inf <= y <= 3\n z free\n w >= 1\n -2 <= s <= 8\n"
           "Binaries\n b\nGenerals\n y\nSemi-continuous\n s\nSOS\n s1: S2 :: x:1 y:2 z:3\n"
           "General Constraints\n m: z = MAX ( x , y , 3 )\n"
           " e: y = EXPA ( 2 ^ x ) ( FuncPieces=5 )\n p: z = POLY ( 2 x ^ 3 - x + 1 )\n"
           " n: z = NORM ( Inf ) ( x , y )\n l: z = PWL ( x ) : (0, 0) (1, 2) (3,1)\nEnd\n");
  const ModelData &data = model->data();
  EXPECT_TRUE(logged("Warning: At least one constraint uses '==' instead of '=' as sense.\n"));
  EXPECT_TRUE(logged("Warning: unknown variable 'w' in bounds section (line 16)\n"));
  EXPECT_EQ(data.objCon, 3);
  EXPECT_EQ(data.q.val, (Vec<double>{1, 2}));  // stored doubled
  EXPECT_EQ(data.numConstrs(), 4);
  EXPECT_EQ(data.rhs, (Vec<double>{2, -4, 5, 9}));
  EXPECT_EQ(std::string(data.sense.begin(), data.sense.end()), "=>=<");
  EXPECT_EQ(data.ub.back(), 4);  // of the range's auxiliary variable
  EXPECT_EQ(data.lazy, (Vec<int>{0, 0, 0, 2}));
  ASSERT_EQ(data.numQConstrs(), 1);
  EXPECT_EQ(data.numSos(), 1);
  ASSERT_EQ(data.numGenConstrs(), 6);
  EXPECT_EQ(data.genConstrs[0].type, TVK_GENCONSTR_INDICATOR);
  EXPECT_EQ(data.genConstrs[1].constant, 3);
  EXPECT_EQ(data.genConstrs[2].options.pieces, 5);
  EXPECT_EQ(data.genConstrs[3].coef, (Vec<double>{2, 0, -1, 1}));
  EXPECT_GE(data.genConstrs[4].constant, 1e100);
  EXPECT_EQ(data.genConstrs[5].pwlY, (Vec<double>{0, 2, 1}));
  // x, y, z, b in order of mention; s is unknown and skipped.
  EXPECT_STREQ(model->varName(3), "b");
  EXPECT_EQ(data.vtype[3], 'B');
  EXPECT_EQ(data.vtype[1], 'I');
}

TEST_F(Lp, ProductsNeedNoBlanks) {
  const auto terms = [&](const std::string &bracket) {
    TVKmodel *model = read("m.lp", "min\n x + y\nst\n c: x + " + bracket + "<= 1\nend\n");
    std::string text;
    const QuadTerms &quad = model->data().qconstrs.at(0).quad;
    for (int k = 0; k < quad.count(); ++k)
      text += std::to_string(static_cast<int>(quad.val[k])) + model->varName(quad.row[k]) + ',' +
              model->varName(quad.col[k]) + ' ';
    return text;
  };
  for (const char *bracket :
       {"[ x * y ] ", "[x*y]", "[x *y] ", "[ x* y ]", "[+ x * y ]", "[1 x*y]"})
    EXPECT_EQ(terms(bracket), "1x,y ") << bracket;
  EXPECT_EQ(terms("[x^2 + 3 x*y]"), "1x,x 3x,y ");
  EXPECT_EQ(terms("[-x^2 - 3 x*y]"), "-1x,x -3x,y ");
  // Names with brackets in pairs and with stars stay whole where they can only be names.
  EXPECT_EQ(terms("[v[1]*v[2] + v[1]^2]"), "1v[1],v[1] 1v[1],v[2] ");
  EXPECT_EQ(terms("[ a*b ^2 + x * a*b ]"), "1x,a*b 1a*b,a*b ");
}

TEST_F(Lp, ErrorsNameTheLineAndTheTokens) {
  const std::pair<std::string, std::string> cases[] = {
      {"x + y\n", "LP format file must begin with a keyword"},
      {"min\n x\nst\n c: x + y\n", "Incomplete constraint"},
      {"min\n x\nst\n c: x =< 3\nend\n", "Unrecognized constraint RHS or sense"},
      {"min\n x\nst\n c: x => 3\nend\n", "Unrecognized constraint RHS or sense"},
      {"min\n x\nst\n c: x <= y\nend\n", "Unrecognized constraint RHS or sense"},
      {"min\n x <= 2\nend\n", "Objective function contains sense '<'"},
      {"min\n [*x ^2 ] / 2\nend\n", "Missing space after opening bracket in quadratic expression"},
      {"min\n [ x ^3 ] / 2\nend\n", "Malformed quadratic term in expression"},
      {"min\n [ x ^2\nst\n", "Quadratic expression terminated too early"},
      {"min\n x\nst\n c: __pwl(x) <= 1\nend\n",
       "Invalid variable name \"__pwl(\" found outside of objective section"},
      {"min\n x\nbounds\n x y\nend\n", "Unrecognized variable bound"},
      {"min\n x\nsos\n s: x:1\nend\n", "Missing type for SOS constraint"},
      {"min\n x\ngencons\n y = ABS ( x , y )\nend\n",
       "General ABS constraint can only have one operand variable, read 'y'"},
      {"min\n x\ngencons\n y = MAX ( )\nend\n",
       "Error, read general MIN or MAX constraint with no operands and no finite constant"},
      {"min\n x\ngencons\n y = NORM ( 3 ) ( x )\nend\n", "Unrecognized norm"},
      {"min\n x\ngencons\n y = PWL ( x ) : (0, 0)\nend\n",
       "Error, less than 2 points for PWL constraint"},
      {"min\n x\ngencons\n y = POLY ( x ^ 1 + x ^ 2 )\nend\n",
       "Exponents need to be ordered decreasingly, read \"2\" as exponent but last one was 1"},
      {"min\n " + std::string(256, 'a') + "\nend\n", "Token contains more than 255 characters"}};
  for (const auto &[text, expected] : cases) {
    EXPECT_EQ(tryRead("m.lp", text), 10012) << text;
    EXPECT_EQ(message(), expected) << text;
    EXPECT_TRUE(logged("Error reading LP format file " + path("m.lp") + " at line ")) << text;
    EXPECT_TRUE(logged("Neighboring tokens: \" ")) << text;
  }
  read("m.lp", "min\n " + std::string(255, 'a') + "\nend\n");
}

TEST_F(Lp, KeywordsAsNamesAreWarnedOf) {
  TVKmodel *model =
      read("m.lp", "min\n x + bounds\nst\n c: x + bounds >= 1\nbounds\n x <= 2\nend\n");
  EXPECT_TRUE(logged("Warning: Duplicate section found (read 'bounds')"));
  ASSERT_NE(model, nullptr);
  EXPECT_EQ(model->data().numVars(), 2);
  EXPECT_EQ(model->data().ub[0], 2);
}

TEST_F(Lp, TextOfSmallModels) {
  TVKmodel *empty = nullptr;
  ASSERT_EQ(TVKnewmodel(env_, &empty, "none", 0, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
  models_.push_back(empty);
  EXPECT_EQ(
      written(empty, "e.lp"),
      "\\ Model none\n\\ LP format - for model browsing. Use MPS format to capture full model "
      "detail.\nMinimize\n \nSubject To\nBounds\nEnd\n");
  const std::string text =
      "\\ Model \n\\ LP format - for model browsing. Use MPS format to capture full model detail.\n"
      "Maximize\n  x - 2.5 y - z + 3 Constant\nSubject To\n c1: - x + 0.3333333333333333 y >= -2\n"
      "Bounds\n -infinity <= y <= 4\n z = 7\n Constant = 1\nGenerals\n x\nEnd\n";
  EXPECT_EQ(written(read("s.lp", text), "t.lp"), text);
}

TEST_F(Lp, LongExpressionsAreWrapped) {
  std::string terms;
  for (int k = 0; k < 200; ++k)
    terms += " + " + std::to_string(k + 2) + " variable" + std::to_string(k);
  TVKmodel *model = read("w.lp", "min\n" + terms + "\nbinaries\n variable1 variable2\nend\n");
  std::stringstream lines(written(model, "v.lp"));
  for (std::string line; std::getline(lines, line);)
    EXPECT_TRUE(line[0] == '\\' || line.size() < 76) << line;
}

TEST_F(Lp, NamesThatCannotBeReadBackAreReplaced) {
  TVKmodel *model = nullptr;
  const char *names[] = {"a b", "a b"};
  ASSERT_EQ(TVKnewmodel(env_, &model, "", 2, nullptr, nullptr, nullptr, nullptr, names), 0);
  models_.push_back(model);
  log_.clear();
  const std::string text = written(model, "n.lp");
  EXPECT_TRUE(logged("Warning: variable name \"a b\" has a space\n"));
  EXPECT_TRUE(logged("Warning: to let Tarvik read it back, use rlp format\n"));
  EXPECT_NE(text.find("C0(0)"), std::string::npos);
}

// Every model that is written is read back whole, whatever its names are.
TEST_F(Lp, OddNamesLoseNothing) {
  const char *odd[] = {"5",        "1.5e3",     "inf",      "nan",        "st",
                       "End",      "free",      "a^b",      "a\\b",       "\\a",
                       "+x",       "-x",        "[x",       "]",          "^",
                       "(",        ")",         "x)",       ",",          "x,",
                       "*",        "/",         "/2",       "->",         "<",
                       "<=x",      "=",         "3x",       "a*b",        "a<b",
                       "S1",       "x(1)",      "user",     "lazy",       "such",
                       "subject",  "__pwl(x",   "__pwl(x)", "priority=1", "multi-objectives",
                       "Constant", "Constant0", "semi",     "0x10",       "infinity"};
  for (const char *name : odd)
    for (const bool special : {false, true})
      for (const char *suffix : {".lp", ".opb", ".mps"}) {
        const bool binary = suffix == std::string(".opb");
        if (binary && special) continue;
        TVKmodel *model = nullptr;
        const char *names[] = {name, "cuts", "7", "to"};
        const char *rows[] = {name, "that"};
        double obj[] = {1, 1, 3, 1}, lb[] = {0, 0, -1e100, 0}, ub[] = {1, 4, 1e100, 1e100};
        char types[] = {'B', 'I', 'C', 'C'};
        if (binary) {
          std::fill(types, types + 4, 'B');
          std::fill(lb, lb + 4, 0);
          std::fill(ub, ub + 4, 1);
        }
        ASSERT_EQ(TVKnewmodel(env_, &model, "odd", 4, obj, lb, ub, types, names), 0);
        models_.push_back(model);
        int ind[] = {0, 1, 2, 3};
        double val[] = {1, -1, 1, 1};
        ASSERT_EQ(TVKaddconstr(model, 4, ind, val, '<', 5, rows[0]), 0);
        ASSERT_EQ(TVKaddconstr(model, 2, ind + 1, val, '>', -2, rows[1]), 0);
        if (special) {
          ASSERT_EQ(TVKaddqpterms(model, 1, ind, ind + 2, val), 0);
          ASSERT_EQ(TVKaddgenconstrMax(model, nullptr, 3, 2, ind, 2.0), 0);
        }
        ASSERT_EQ(TVKupdatemodel(model), 0);
        const std::string file = std::string("o") + suffix;
        const std::string text = written(model, file);
        TVKmodel *again = readFile(path(file));
        ASSERT_NE(again, nullptr) << text;
        const ModelData &a = model->data(), &b = again->data();
        ASSERT_EQ(b.numVars(), 4) << text << log_;
        ASSERT_EQ(b.numConstrs(), 2) << text;
        // The order of columns may differ, what each of them holds may not.
        Vec<std::tuple<double, double, double, char, int>> before, after;
        for (int j = 0; j < 4; ++j) {
          before.emplace_back(a.obj[j], a.lb[j], a.ub[j], a.vtype[j], a.a.length(j));
          after.emplace_back(b.obj[j], b.lb[j], b.ub[j], b.vtype[j], b.a.length(j));
        }
        std::sort(before.begin(), before.end());
        std::sort(after.begin(), after.end());
        EXPECT_EQ(after, before) << text;
        EXPECT_EQ(b.objCon, 0) << text;
        EXPECT_EQ(b.q.count(), a.q.count()) << text;
        EXPECT_EQ(b.numGenConstrs(), a.numGenConstrs()) << text;
      }
}

TEST_F(Lp, NumbersAsNamesAreKept) {
  const std::string text =
      "\\ Model \n\\ LP format - for model browsing. Use MPS format to capture full model detail.\n"
      "Minimize\n  1 1 - 1 2 + 3 x\nSubject To\n 7: 2 1 - 1 2 + x <= 4\n 8: 1 2 >= 1\nBounds\n"
      " 1 free\n 2 <= 5\nGenerals\n 1 x\nEnd\n";
  TVKmodel *model = read("n.lp", text);
  EXPECT_EQ(model->data().numVars(), 3);
  EXPECT_TRUE(logged("Warning: Numeric variable name in LP file ('1') - often the result\n"));
  EXPECT_EQ(written(model, "m.lp"), text);
}

TEST_F(Lp, ScenariosAndObjectives) {
  const std::string multi =
      "\\ Model \n\\ LP format - for model browsing. Use MPS format to capture full model detail.\n"
      "Minimize multi-objectives\n  first: Priority=2 Weight=1 AbsTol=1e-06 RelTol=0\n"
      "   x + 2 y + 4 Constant0\n  OBJ1: Priority=0 Weight=0.5 AbsTol=0 RelTol=0.1\n   - y\n"
      "Subject To\n c:  x + y <= 5\nBounds\n Constant0 = 1\nEnd\n";
  TVKmodel *model = read("o.lp", multi);
  ASSERT_EQ(model->data().objectives.size(), 2u);
  EXPECT_EQ(model->data().objectives[0].con, 4);
  EXPECT_EQ(written(model, "p.lp"), written(read("p2.lp", written(model, "p.lp")), "q.lp"));
  model =
      read("s.lp",
           "min\n x + y\nst\n c: x + y <= 5\nScenario low\nMinimize\n y 7\nSubject To\n c: <= 3\n"
           "Bounds\n x >= 1\n y <= 9\nScenario 1\nEnd\n");
  ASSERT_EQ(model->data().scenarios.size(), 2u);
  EXPECT_EQ(model->data().scenarios[0].name, "low");
  EXPECT_EQ(*model->data().scenarios[0].rhs.find(0), 3);
  EXPECT_EQ(tryRead("t.lp", "min\n x\nst\n c: x <= 5\nScenario a\nSubject To\n d: <= 3\nEnd\n"),
            10012);
  EXPECT_EQ(message(), "Unknown row d in scenario 0");
}

TEST_F(Lp, OpbStatements) {
  TVKmodel *model = read("m.opb",
                         "* #variable= 3 #constraint= 2\n* more\nmin: +1 x1 -2 x2 +3;\n"
                         "+1 x1 +1 ~x2 >= 1;\n2 x1 x3 + 1 x2 = 1 ;\n;\n");
  EXPECT_TRUE(logged("Warning: skipping empty constraint in inputfile\n"));
  const ModelData &data = model->data();
  EXPECT_EQ(data.objCon, 3);
  EXPECT_EQ(data.rhs, (Vec<double>{0}));  // x1 - x2 >= 0
  EXPECT_EQ(data.numQConstrs(), 1);
  EXPECT_EQ(std::string(data.vtype.begin(), data.vtype.end()), "BBB");
  const std::pair<std::string, std::string> cases[] = {
      {"min: 1 x", "missing end character ';' of objective"},
      {"1 x >= 1", "missing end character ';' of constraint"},
      {"1 x ;", "Unrecognized constraint RHS"},
      {"1 x >= y ;", "Unrecognized constraint RHS"},
      {"1 x", "Incomplete constraint"},
      {"3 >= 1 ;", "found empty expression or single constant where a weighted sum was expected"},
      {"min: + ;", "Malformed term in expression in the objective"},
      {"1 x + >= 1 ;", "Malformed term in expression in one constraint"},
      {std::string(300, 'x') + " >= 1 ;", "Token contains more than 255 characters"},
      {std::string(2000, 'x') + " >= 1 ;", "unreadable line (line to long without any space)"}};
  for (const auto &[text, expected] : cases) {
    EXPECT_EQ(tryRead("b.opb", text), 10012) << text;
    EXPECT_EQ(message(), expected) << text;
  }
  // Variables that stand for products and complements meet no names of the file.
  model = read("p.opb",
               "min: 1 not_0 + 1 prod_n1_2_3 ;\n1 ~not_0 a b ~prod_n1_2_3 >= 1 ;\n"
               "1 prod_n0_n1_2_3 >= 0 ;\n");
  EXPECT_EQ(model->data().numVars(), 8);
  EXPECT_EQ(model->data().numConstrs(), 4);
  EXPECT_STREQ(model->varName(4), "prod_n0_n1_2_3_");
  EXPECT_STREQ(model->varName(5), "not_0_");
  model = read("w.opb", "* nothing\nmin: 1 x + 2 y + 5 ;\n1 x + 1 y <= 1 ;\n");
  EXPECT_TRUE(logged("Warning: skipping invalid initial commit line\n"));
  TVKmodel *again = read("v.opb", written(model, "o.opb"));
  EXPECT_EQ(again->data().objCon, 5);
  EXPECT_EQ(again->data().numVars(), 2);
  EXPECT_EQ(again->data().rhs, (Vec<double>{-1}));
}

}  // namespace
}  // namespace tarvik
