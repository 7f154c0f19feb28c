// The JSON report and the solution file after optimizations of every outcome: the report must be
// JSON, hold the keys in their order, and agree with the attributes.
#include <cctype>
#include <cstring>
#include <string_view>

#include "file_fixture.h"

namespace tarvik {
namespace {

// Checks the grammar of JSON; at() is where it ends or breaks.
class JsonGrammar {
 public:
  explicit JsonGrammar(std::string_view text) : text_(text) {}
  bool accepts() { return value() && skip() == text_.size(); }
  std::string_view rest() const { return text_.substr(at_, 40); }

 private:
  std::size_t skip() {
    while (at_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[at_]))) ++at_;
    return at_;
  }
  bool next(char c) {
    if (skip() == text_.size() || text_[at_] != c) return false;
    ++at_;
    return true;
  }
  bool string() {
    if (!next('"')) return false;
    for (; at_ < text_.size() && text_[at_] != '"'; ++at_) {
      if (static_cast<unsigned char>(text_[at_]) < ' ') return false;
      if (text_[at_] == '\\') ++at_;
    }
    return next('"');
  }
  bool number() {
    const std::size_t size = std::strspn(text_.data() + skip(), "+-.eE0123456789");
    at_ += size;
    return size > 0;
  }
  template <class Item>
  bool list(char open, char close, Item &&item) {
    if (!next(open)) return false;
    if (next(close)) return true;
    do
      if (!item()) return false;
    while (next(','));
    return next(close);
  }
  bool value() {
    if (skip() == text_.size()) return false;
    if (text_[at_] == '{') return list('{', '}', [&] { return string() && next(':') && value(); });
    if (text_[at_] == '[') return list('[', ']', [&] { return value(); });
    return text_[at_] == '"' ? string() : number();
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

class Report : public FileTest {
 protected:
  TVKmodel *solved(const std::string &lp, const char *parameter = nullptr, int value = 0) {
    TVKmodel *model = read("m.lp", lp);
    if (parameter) {
      EXPECT_EQ(TVKsetintparam(TVKgetenv(model), parameter, value), 0);
    }
    EXPECT_EQ(TVKoptimize(model), 0) << TVKgeterrormsg(TVKgetenv(model));
    return model;
  }
  std::string json(TVKmodel *model) {
    char *text = nullptr;
    EXPECT_EQ(TVKgetjsonsolution(model, &text), 0) << TVKgeterrormsg(TVKgetenv(model));
    const std::string report = text ? text : "";
    TVKfree(text);
    JsonGrammar grammar(report);
    EXPECT_TRUE(grammar.accepts()) << grammar.rest() << "\nin\n" << report;
    EXPECT_EQ(written(model, "r.json").substr(0, 20), report.substr(0, 20));
    return report;
  }
  static void expectInOrder(const std::string &text, const std::vector<const char *> &pieces) {
    std::size_t at = 0;
    for (const char *piece : pieces) {
      const std::size_t found = text.find(piece, at);
      EXPECT_NE(found, std::string::npos) << piece << " is not (or too early) in\n" << text;
      if (found != std::string::npos) at = found + std::strlen(piece);
    }
  }
  static bool holds(const std::string &text, const char *piece) {
    return text.find(piece) != std::string::npos;
  }
};

TEST_F(Report, LinearOptimum) {
  TVKmodel *model =
      solved("max\n 3 x + y + 0 z\nst\n c: x + y <= 4\n d: x - z <= 2.5\nbounds\n z <= 0\nend\n");
  std::string report = json(model);
  expectInOrder(report, {"\"SolutionInfo\": {", "\"Status\": 2", "\"Runtime\": ", "\"Work\": ",
                         "\"ObjVal\": 9", "\"BoundVio\": 0", "\"ConstrVio\": 0",
                         "\"IterCount\": ", "\"BarIterCount\": ", "\"SolCount\": 1", "\"Vars\": [",
                         "{ \"VarName\": \"x\", \"X\": 2.5", "{ \"VarName\": \"y\", \"X\": 1.5",
                         "\"VBasis\": 0", "\"Constrs\": [ ]", "\"QConstrs\": [ ] }"});
  for (const char *key : {"\"z\"", "IntVio", "MIPGap", "NodeCount", "Pool", "Xn", "Farkas"})
    EXPECT_FALSE(holds(report, key)) << key;
  ASSERT_EQ(TVKsetintparam(TVKgetenv(model), "JSONSolDetail", 1), 0);
  EXPECT_TRUE(holds(json(model), "{ \"VarName\": \"z\", \"X\": 0"));
  EXPECT_EQ(written(model, "a.sol"),
            "# Solution for model \n# Objective value = 9\nx 2.5\ny 1.5\nz 0\n");
  // A model with tags shows what is tagged, and the constraints' values.
  ASSERT_EQ(TVKsetstrattrelement(model, "VTag", 1, "the \"second\" \\ one\t"), 0);
  ASSERT_EQ(TVKsetstrattrelement(model, "CTag", 0, "row"), 0);
  ASSERT_EQ(TVKoptimize(model), 0);
  report = json(model);
  EXPECT_FALSE(holds(report, "VarName"));
  expectInOrder(
      report, {"{ \"VTag\": [\"the \\\"second\\\" \\\\ one\\u0009\"], \"X\": 1.5", "\"Constrs\": [",
               "{ \"CTag\": [\"row\"], \"Slack\": 0, \"Pi\": 1, \"CBasis\": -1 }", "\"QConstrs\""});
}

TEST_F(Report, MixedIntegerOptimumAndPool) {
  TVKmodel *model =
      solved("max\n 5 a + 4 b + 3 c\nst\n k: 2 a + 3 b + c <= 4\nbinaries\n a b c\nend\n");
  const std::string report = json(model);
  expectInOrder(report, {"\"Status\": 2", "\"ObjVal\": 8", "\"ObjBound\": ", "\"ObjBoundC\": ",
                         "\"MIPGap\": ", "\"IntVio\": 0", "\"BoundVio\": 0", "\"ConstrVio\": 0",
                         "\"IterCount\": ", "\"NodeCount\": ", "\"SolCount\": ", "\"Vars\": ["});
  EXPECT_FALSE(holds(report, "VBasis"));
  int solutions = 0;
  ASSERT_EQ(TVKgetintattr(model, "SolCount", &solutions), 0);
  EXPECT_EQ(holds(report, "PoolObjVal"), solutions > 1);
  EXPECT_EQ(holds(report, "Xn"), solutions > 1);
  const std::string best = written(model, "a.sol");
  expectInOrder(best, {"# Solution for model ", "# Objective value = 8\n", "a 1\n", "c 1\n"});
  // The file of a solution is read back as a start.
  TVKmodel *again = read("m.lp", contents(path("m.lp")));
  ASSERT_EQ(TVKread(again, path("a.sol").c_str()), 0);
  EXPECT_EQ(again->data().starts.at(0), (Vec<double>{1, 0, 1}));
  // Further solutions of the pool are chosen by number.
  for (int k = 1; k < solutions; ++k) {
    ASSERT_EQ(TVKsetintparam(TVKgetenv(model), "SolutionNumber", k), 0);
    double value = 0;
    ASSERT_EQ(TVKgetdblattr(model, "PoolObjVal", &value), 0);
    char line[60];
    std::snprintf(line, sizeof line, "# Objective value = %g\n", value + 0.0);
    EXPECT_TRUE(holds(written(model, "b.sol"), line)) << k;
  }
}

TEST_F(Report, NoSolution) {
  TVKmodel *model = solved("min\n x\nst\n c: x >= 3\nbounds\n x <= 1\nend\n", "InfUnbdInfo", 1);
  std::string report = json(model);
  expectInOrder(report, {"\"Status\": 3", "\"SolCount\": 0", "\"Vars\": ["});
  EXPECT_FALSE(holds(report, "ObjVal"));
  EXPECT_NE(TVKwrite(model, path("a.sol").c_str()), 0);
  EXPECT_FALSE(std::filesystem::exists(path("a.sol")));
  model = solved("max\n x - y\nst\n c: x - y >= 0\nend\n", "InfUnbdInfo", 1);
  report = json(model);
  EXPECT_TRUE(holds(report, "\"Status\": 5") || holds(report, "\"Status\": 4")) << report;
}

}  // namespace
}  // namespace tarvik
