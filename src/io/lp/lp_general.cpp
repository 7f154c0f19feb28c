// General constraints of LP files: resultant = KEYWORD ( ... ), or an indicator constraint.
#include <algorithm>
#include <cmath>

#include "io/general_keywords.h"
#include "io/lp/lp_parser.h"

namespace tarvik {

namespace {

constexpr int kMaxPower = 10000;

std::string text(std::string_view token) { return std::string(token); }

}  // namespace

void LpParser::parseGeneral() {
  while (!atSectionOrEnd()) parseGeneralConstraint();
}

int LpParser::takeVariable(const char *role) {
  if (!isName(peek()) || peek() == ",")
    fail("Error, read empty general constraint or wrongly placed '::'");
  if (isNumber(peek()))
    warn("Warning: read number '%s' as %s variable\n", text(peek()).c_str(), role);
  const int column = variable(peek());
  take();
  return column;
}

void LpParser::takeOpening() {
  if (peek() != "(") fail("Missing ' ( ' in general constraint, read '%s'", text(peek()).c_str());
  take();
}

void LpParser::takeClosing() {
  if (peek() != ")")
    fail("Missing closing character ' ) ' in general constraint, read '%s'", text(peek()).c_str());
  take();
}

void LpParser::parseGeneralConstraint() {
  const std::string name = takeLabel();
  if (atIndicator()) {
    parseIndicator(name);
    return;
  }
  GenConstr g;
  if (atSectionOrEnd()) fail("Error, read empty general constraint or wrongly placed '::'");
  g.resVar = takeVariable("resultant");
  if (peek() != "=")
    fail("Last line broken or missing '=', a space or a resultant variable, read %s",
         text(peek()).c_str());
  take();
  const std::string_view keyword = peek();
  if (keyword.empty()) fail("General function broken, too few tokens");
  const bool logarithm = keyword.size() > 4 && equalIgnoringCase(keyword.substr(0, 4), "LOG_");
  g.type = logarithm ? TVK_GENCONSTR_LOGA : generalConstraintType(keyword);
  if (g.type < 0) fail("Missing general function type specifier, read %s", text(keyword).c_str());
  if (g.type == TVK_GENCONSTR_INDICATOR)
    fail("Parsing of this general constraint type not implemented");
  if (logarithm && !parseNumber(keyword.substr(4), g.constant))
    fail("Last line broken, invalid value or missing base, read \"%s\"", text(keyword).c_str());
  if (g.type == TVK_GENCONSTR_LOGA && !logarithm)
    fail("Last line broken, invalid value or missing base, read \"%s\"", text(keyword).c_str());
  take();
  if (g.isFunction())
    parseFunction(g);
  else if (g.type == TVK_GENCONSTR_NORM)
    parseNorm(g);
  else if (g.type == TVK_GENCONSTR_PWL)
    parsePwl(g);
  else
    parseOperands(g);
  model_.genConstrs.push_back(std::move(g));
  model_.genConstrNames.append(name);
}

// ( x1 , x2 , ... ); MAX and MIN may have constants among the operands.
void LpParser::parseOperands(GenConstr &g) {
  const bool isMax = g.type == TVK_GENCONSTR_MAX;
  const bool extremum = isMax || g.type == TVK_GENCONSTR_MIN;
  bool hasConstant = false;
  if (extremum) g.constant = isMax ? -kUserInf : kUserInf;
  takeOpening();
  while (peek() != ")") {
    double value = 0;
    if (extremum && (isNumber(peek()) || peek() == "-" || peek() == "+") &&
        vars_.find(peek()) < 0) {
      if (!takeNumber(value))
        fail("Missing separator ' , ' or end ' ) ' in general constraint, read '%s'",
             text(peek()).c_str());
      g.constant = isMax ? std::max(g.constant, value) : std::min(g.constant, value);
      hasConstant = hasConstant || std::fabs(value) < kInf;
    } else {
      if (g.type == TVK_GENCONSTR_ABS && !g.vars.empty())
        fail("General ABS constraint can only have one operand variable, read '%s'",
             text(peek()).c_str());
      g.vars.push_back(takeVariable("operand"));
    }
    if (peek() == ")") break;
    if (peek() != ",")
      fail("Missing separator ' , ' or end ' ) ' in general constraint, read '%s'",
           text(peek()).c_str());
    take();
  }
  takeClosing();
  if (extremum && g.vars.empty() && !hasConstant)
    fail("Error, read general MIN or MAX constraint with no operands and no finite constant");
  if (g.type == TVK_GENCONSTR_ABS && g.vars.empty())
    fail("Error, read general ABS constraint with no operands");
}

void LpParser::parseNorm(GenConstr &g) {
  if (peek() != "(") fail("Norm missing opening bracket");
  take();
  double order = -1;
  if (!parseNumber(peek(), order) || (order != 0 && order != 1 && order != 2 && order < kUserInf))
    fail("Unrecognized norm");
  g.constant = order >= kUserInf ? kUserInf : order;
  take();
  if (peek() != ")") fail("Norm missing closing bracket");
  take();
  parseOperands(g);
}

void LpParser::parsePwl(GenConstr &g) {
  takeOpening();
  g.vars.push_back(takeVariable("operand"));
  takeClosing();
  if (peek() != ":")
    fail("Missing separator ' : ' in general constraint, read '%s'", text(peek()).c_str());
  take();
  while (!peek().empty() && peek().front() == '(') {
    double x = 0, y = 0;
    if (!takePoint(x, y)) fail("Malformed PWL term");
    g.coef.push_back(x);
    g.pwlY.push_back(y);
  }
  if (g.coef.size() < 2) fail("Error, less than 2 points for PWL constraint");
}

double LpParser::takeFunctionNumber() {
  double value = 0;
  if (!takeNumber(value))
    fail("Cannot parse general function constraint, found \"%s\" expected a (valid) number",
         text(peek()).c_str());
  return value;
}

void LpParser::parseFunction(GenConstr &g) {
  if (peek().empty()) fail("General function broken, too few tokens");
  if (peek() != "(") fail("Missing '(', read %s", text(peek()).c_str());
  take();
  if (g.type == TVK_GENCONSTR_POLY)
    parsePolynomial(g);
  else if (g.type == TVK_GENCONSTR_POW || g.type == TVK_GENCONSTR_EXPA)
    parsePowerArguments(g);
  else
    g.vars.push_back(takeVariable("operand"));
  if (peek() != ")") fail("General function broken, missing closing bracket");
  take();
  if (peek() != "(") return;
  parseFunctionOptions(g.options);
  if (peek() == "(")
    fail("General function options appears multiple times, read %s", text(peek()).c_str());
}

// POW ( x ^ a ), EXPA ( a ^ x ); the base may also stand behind the variable.
void LpParser::parsePowerArguments(GenConstr &g) {
  const bool numberFirst =
      g.type == TVK_GENCONSTR_EXPA && (isNumber(peek()) || peek() == "-") && vars_.find(peek()) < 0;
  if (numberFirst)
    g.constant = takeFunctionNumber();
  else
    g.vars.push_back(takeVariable("operand"));
  if (peek() != "^")
    fail("Last line broken, invalid value or missing base, read \"%s\"", text(peek()).c_str());
  take();
  if (numberFirst)
    g.vars.push_back(takeVariable("operand"));
  else
    g.constant = takeFunctionNumber();
}

// c1 x ^ d1 + c2 x ^ d2 ... with decreasing powers; a power of 1 or 0 may be left out.
void LpParser::parsePolynomial(GenConstr &g) {
  int lastPower = -1;
  while (peek() != ")") {
    double factor = 1;
    bool hasNumber = false;
    for (; peek() == "+" || peek() == "-"; take())
      if (peek() == "-") factor = -factor;
    if (atSectionOrEnd()) fail("General function broken, missing closing bracket");
    if (isNumber(peek()) && (vars_.find(peek()) < 0 || peek(1) != "^")) {
      factor *= takeFunctionNumber();
      hasNumber = true;
    }
    int power = 0;
    if (isName(peek()) && peek() != ")" && !(hasNumber && isNumber(peek()))) {
      const std::string name = text(peek());
      const int column = variable(peek());
      if (!g.vars.empty() && column != g.vars[0])
        fail("Expected variable %d, found token \"%s\" = %d", g.vars[0], name.c_str(), column);
      if (g.vars.empty()) g.vars.push_back(column);
      take();
      power = 1;
      if (peek() == "^") {
        take();
        if (!parseInteger(peek(), power) || power < 0 || power > kMaxPower)
          fail("Expected positive integer exponent, read \"%s\"", text(peek()).c_str());
        take();
      }
    } else if (!hasNumber) {
      fail("Cannot parse general function constraint, found \"%s\" expected a (valid) number",
           text(peek()).c_str());
    }
    if (lastPower >= 0 && power >= lastPower)
      fail("Exponents need to be ordered decreasingly, read \"%d\" as exponent but last one was %d",
           power, lastPower);
    if (factor == 0 && power > 0) warn("Read zero coefficient in general function polynomial\n");
    if (g.coef.empty()) g.coef.assign(static_cast<std::size_t>(power) + 1, 0.0);
    g.coef[g.coef.size() - 1 - power] = factor;
    lastPower = power;
  }
  if (g.vars.empty()) {
    warn("Warning: Missing variable in general polynomial function\n");
    fail("General function broken, too few tokens");
  }
}

// ( keyword=value ... ) in any order.
void LpParser::parseFunctionOptions(FuncOptions &options) {
  static constexpr const char *kKeywords[] = {"FuncPieces", "FuncPieceLength", "FuncPieceError",
                                              "FuncPieceRatio", "FuncNonlinear"};
  double values[] = {static_cast<double>(options.pieces), options.length, options.error,
                     options.ratio, static_cast<double>(options.nonlinear)};
  take();
  while (peek() != ")") {
    const std::string_view token = peek();
    const std::size_t sign = token.find('=');
    const std::string_view word = token.substr(0, sign);
    int which = -1;
    for (int k = 0; k < 5; ++k)
      if (equalIgnoringCase(word, kKeywords[k])) which = k;
    if (which < 0)
      fail("Invalid general function options or missing closing bracket, read %s",
           text(token).c_str());
    if (sign == std::string_view::npos) {
      take();
      if (peek() != "=")
        fail("Missing '=' after general function option keyword, read %s", text(peek()).c_str());
      take();
    } else if (sign + 1 < token.size()) {
      tokens_.cut(sign + 1);
    } else {
      take();
    }
    const bool integral = which == 0 || which == 4;
    double value = 0;
    if (!takeNumber(value) ||
        (integral && (value != std::trunc(value) || std::fabs(value) > kMaxInt)))
      fail("Missing value after '=' in general function options, read \"%s\"",
           text(peek()).c_str());
    values[which] = value;
  }
  take();
  options.pieces = static_cast<int>(values[0]);
  options.length = values[1];
  options.error = values[2];
  options.ratio = values[3];
  options.nonlinear = static_cast<int>(values[4]);
}

}  // namespace tarvik
