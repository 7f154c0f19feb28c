// The state of one reading of an LP file: sections are parsed one after the other into plain
// data; variables are numbered in the order in which they are first mentioned.
#pragma once

#include <string>
#include <string_view>

#include "base/number_format.h"
#include "io/lp/lp_keywords.h"
#include "io/lp/lp_tokens.h"
#include "io/name_table.h"
#include "io/parsed_model.h"

namespace tarvik {

class LpParser {
 public:
  LpParser(Env &env, TextReader &reader, std::string fileName);
  ParsedModel parse();

 private:
  struct Expression {
    SparseValues terms;  // as they come, a variable may repeat
    double constant = 0;
    QuadTerms quad;  // likewise
    bool hasBracket = false;
  };

  enum class Place { Objective, FurtherObjective, Constraint };

  // --- tokens and failures (lp_parser.cpp) ---
  std::string_view peek(int k = 0) {
    const std::string_view token = tokens_.peek(k);
    if (tokens_.overlong()) failOverlong();
    return token;
  }
  void take() { tokens_.take(); }
  bool nextIs(std::string_view text) { return equalIgnoringCase(peek(), text); }
  LpSection sectionAt(int k = 0);
  bool atSectionOrEnd() { return peek().empty() || sectionAt() != LpSection::None; }
  static bool isLabel(std::string_view token) { return token.size() > 1 && token.back() == ':'; }
  static bool isSense(std::string_view token) { return isLpSense(token); }
  static bool isName(std::string_view token) { return isLpToken(token); }
  static bool isNumber(std::string_view token) {
    double value = 0;
    return parseNumber(token, value);
  }
  // Reads a number with an optional separate sign; false leaves the tokens as they are.
  bool takeNumber(double &value);
  // Takes a label, or nothing, and returns its name.
  std::string takeLabel();
  int variable(std::string_view name);
  [[noreturn]] void fail(const char *format, ...) __attribute__((format(printf, 2, 3)));
  [[noreturn]] void failOverlong();
  void warn(const char *format, ...) __attribute__((format(printf, 2, 3)));

  void parseSection(LpSection section);
  void noteSection(LpSection section, bool &seen);
  void parseLazyRows();

  // --- objective and constraints (lp_rows.cpp) ---
  void parseObjective(bool maximize);
  void parseObjectives();
  void parseObjectiveSettings(ParsedObjective &objective);
  double readSetting(const char *keyword);
  bool takePwlMark();
  void parseExpression(Expression &expression, Place place);
  void parseQuadratic(Expression &expression, double sign, Place place);
  void parseQuadraticTerm(Expression &expression, double factor);
  void parseRows(int lazy);
  void parseRow(int lazy);
  char takeSense();
  void storeRow(const std::string &name, Expression &expression, char sense, double rhs,
                double lower, int lazy);
  bool atIndicator();
  void parseIndicator(const std::string &name);
  // Adds up repeated variables and drops small coefficients; returns what was done.
  struct Cleaned {
    int repeated = 0, cancelled = 0, small = 0;
  };
  Cleaned clean(SparseValues &terms);
  void reportRow(int row, const std::string &name, const Cleaned &cleaned);
  void parseCones();

  // --- bounds, types, SOS, piecewise-linear objectives (lp_sections.cpp) ---
  void parseBounds();
  void parseBound();
  void setBound(int column, char sense, double value);
  void parseTypes(LpSection section);
  void parseSos();
  void parsePwlObj();
  bool takePoint(double &x, double &y);

  // --- general constraints (lp_general.cpp) ---
  void parseGeneral();
  void parseGeneralConstraint();
  // Takes a variable, warning when its name is a number; role is the word of that warning.
  int takeVariable(const char *role);
  void takeOpening();
  void takeClosing();
  void parseOperands(GenConstr &g);
  void parseNorm(GenConstr &g);
  void parsePwl(GenConstr &g);
  void parseFunction(GenConstr &g);
  double takeFunctionNumber();
  void parsePowerArguments(GenConstr &g);
  void parsePolynomial(GenConstr &g);
  void parseFunctionOptions(FuncOptions &options);

  // --- scenarios (lp_scenarios.cpp) ---
  void parseScenario();
  void parseScenarioObjective(ParsedScenario &scenario, int number);
  void parseScenarioRows(ParsedScenario &scenario, int number);
  void parseScenarioBounds(ParsedScenario &scenario, int number);
  void setScenarioBound(ParsedScenario &scenario, int number, std::string_view name, char sense,
                        double value);

  // --- the end (lp_finish.cpp) ---
  void finish();
  void foldConstants();
  void removeVariables(const Vec<int> &newIndex, int kept);
  void finishQuadratics();
  void warnNames();

  Env &env_;
  LpTokens tokens_;
  const std::string fileName_;
  const double zeroTol_;
  ParsedModel model_;
  NameTable vars_;
  bool seen_[static_cast<int>(LpSection::Count)] = {};
  static constexpr int kLazyLevels = 4;  // 1 to 3, and none
  bool seenLazy_[kLazyLevels] = {};
  bool warnedDuplicate_ = false, warnedEqual_ = false;

  Expression objective_;
  SparseMatrix rows_;  // by rows
  NameTable rowNames_;
  Vec<int> rowOfName_;  // per name in rowNames_, the first row with it
  Vec<int> lazy_;
  bool anyLazy_ = false, anyRange_ = false;
  int repeatedRows_ = 0, smallRows_ = 0;
  Cleaned total_;
  Vec<int> mark_;  // per variable, scratch of clean()

  Vec<char> binary_, integer_, semi_;  // per variable
  Vec<char> lowerGiven_, upperGiven_;  // per variable
  Vec<char> scenarioMark_;             // scratch: what a scenario already gave
};

}  // namespace tarvik
