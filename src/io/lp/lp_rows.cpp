// Expressions, objectives and constraints of LP files.
#include <algorithm>
#include <cmath>

#include "base/number_format.h"
#include "io/lp/lp_parser.h"
#include "io/numbered.h"

namespace tarvik {

namespace {

constexpr int kRowWarnings = 10;  // rows whose repeated or small entries are told one by one

}  // namespace

void LpParser::parseObjective(bool maximize) {
  model_.linear.objSense = maximize ? -1 : 1;
  if (nextIs("multi-objectives")) {
    take();
    parseObjectives();
    return;
  }
  takeLabel();
  parseExpression(objective_, Place::Objective);
  const std::string_view token = peek();
  if (!token.empty() && (token.front() == '<' || token.front() == '>' || token.front() == '='))
    fail("Objective function contains sense '%c'\n", token.front());
  if (!atSectionOrEnd() || !std::isfinite(objective_.constant))
    fail("Malformed term in expression");
}

void LpParser::parseObjectives() {
  while (!atSectionOrEnd()) {
    ParsedObjective objective;
    if (isLabel(peek()))
      objective.name = takeLabel();
    else if (!nextIs("priority") && peek().substr(0, 9).find('=') == std::string_view::npos)
      fail("Missing ':' after objective name");
    parseObjectiveSettings(objective);
    Expression expression;
    parseExpression(expression, Place::FurtherObjective);
    const std::string_view token = peek();
    if (isSense(token)) fail("Objective function contains sense '%c'\n", token.front());
    if ((!atSectionOrEnd() && !isLabel(token)) || !std::isfinite(expression.constant))
      fail("Malformed term in expression");
    clean(expression.terms);
    objective.terms = std::move(expression.terms);
    objective.constant = expression.constant;
    model_.objectives.push_back(std::move(objective));
  }
}

void LpParser::parseObjectiveSettings(ParsedObjective &objective) {
  const double priority = readSetting("priority");
  if (priority != std::trunc(priority) || std::fabs(priority) > kMaxInt)
    fail("Invalid %s value after '%s' keyword", "priority", "priority");
  objective.priority = static_cast<int>(priority);
  objective.weight = readSetting("weight");
  objective.absTol = readSetting("abstol");
  objective.relTol = readSetting("reltol");
}

// keyword = value, with or without blanks around the sign of equality.
double LpParser::readSetting(const char *keyword) {
  const std::size_t length = std::string_view(keyword).size();
  std::string_view token = peek();
  const bool glued = token.size() > length && token[length] == '=';
  if (!equalIgnoringCase(token.substr(0, length), keyword) || (token.size() > length && !glued))
    fail("Missing '%s' keyword", keyword);
  if (glued) {
    if (token.size() > length + 1)
      tokens_.cut(length + 1);
    else
      take();
  } else {
    take();
    if (peek() != "=") fail("Missing '=' after '%s' keyword", keyword);
    take();
  }
  if (atSectionOrEnd() || isLabel(peek()))
    fail("Missing %s value after '%s' keyword", keyword, keyword);
  double value = 0;
  if (peek().size() >= 100 || !takeNumber(value))
    fail("Invalid %s value after '%s' keyword", keyword, keyword);
  return value;
}

// __pwl(name): the variable's piecewise-linear objective belongs to this objective.
bool LpParser::takePwlMark() {
  const std::string_view token = peek();
  if (token.substr(0, 6) != "__pwl(") return false;
  if (token.size() < 8 || token.back() != ')')
    fail("\"__pwl(\" has no closing parenthesis or is missing a variable name");
  const std::string name(token.substr(6, token.size() - 7));
  take();
  variable(name);
  return true;
}

void LpParser::parseExpression(Expression &expression, Place place) {
  for (;;) {
    double factor = 1;
    bool signedTerm = false;
    while (peek() == "+" || peek() == "-") {
      if (peek() == "-") factor = -factor;
      signedTerm = true;
      take();
    }
    const std::string_view token = peek();
    // No section begins behind a sign: there a keyword is a (badly chosen) name.
    const LpSection section = sectionAt();
    const bool isNamed = signedTerm && section != LpSection::None;
    if (isNamed) seen_[static_cast<int>(section)] = true;
    const bool ends = token.empty() || (section != LpSection::None && !isNamed);
    if (ends) {
      if (signedTerm) fail("Malformed term in expression");
      return;
    }
    double value = 0;
    if (token.front() == '[') {
      parseQuadratic(expression, factor, place);
    } else if (parseNumber(token, value)) {
      take();
      const std::string_view next = peek();
      // Numbers with a sign begin the next term; others are (odd) names of variables.
      const bool named = isName(next) && sectionAt() == LpSection::None &&
                         !((next.front() == '+' || next.front() == '-') && isNumber(next));
      if (named) {
        if (!std::isfinite(value)) fail("Malformed term in expression");
        expression.terms.append(variable(next), factor * value);
        take();
      } else {
        expression.constant += factor * value;
        if (std::isnan(expression.constant)) fail("Malformed term in expression");
      }
    } else if (isName(token)) {
      if (place == Place::FurtherObjective && token.substr(0, 6) == "__pwl(")
        fail("Multi-objective supports only linear objectives not quadratic (or piecewise-linear)");
      if (place == Place::Objective && takePwlMark()) continue;
      expression.terms.append(variable(token), factor);
      take();
    } else {
      if (signedTerm) fail("Malformed term in expression");
      return;
    }
  }
}

void LpParser::parseQuadratic(Expression &expression, double sign, Place place) {
  if (place == Place::FurtherObjective)
    fail("Multi-objective supports only linear objectives not quadratic (or piecewise-linear)");
  if (peek() != "[") fail("Missing space after opening bracket in quadratic expression");
  take();
  expression.hasBracket = true;
  const int first = expression.quad.count();
  while (peek() != "]") {
    double factor = sign;
    bool signedTerm = false;
    while (peek() == "+" || peek() == "-") {
      if (peek() == "-") factor = -factor;
      signedTerm = true;
      take();
    }
    if (atSectionOrEnd() || isLabel(peek())) fail("Quadratic expression terminated too early");
    if (signedTerm && peek() == "]") fail("Malformed quadratic term in expression");
    double value = 0;
    if (parseNumber(peek(), value)) {
      if (!std::isfinite(value)) fail("Malformed quadratic term in expression");
      factor *= value;
      take();
      if (atSectionOrEnd()) fail("Quadratic expression terminated too early");
    }
    parseQuadraticTerm(expression, factor);
  }
  take();
  const bool halved = peek() == "/";
  if (halved) {
    take();
    double two = 0;
    if (!takeNumber(two) || two != 2) fail("Malformed quadratic term in expression");
  } else if (place == Place::Objective) {
    fail("Malformed quadratic term in expression");
  }
  if (halved)
    for (int k = first; k < expression.quad.count(); ++k) expression.quad.val[k] /= 2;
}

void LpParser::parseQuadraticTerm(Expression &expression, double factor) {
  if (!isName(peek())) fail("Unrecognized token in quadratic expression");
  const int i = variable(peek());
  take();
  double value = 0;
  if (peek() == "^") {
    take();
    if (!parseNumber(peek(), value) || value != 2) fail("Malformed quadratic term in expression");
    take();
    expression.quad.append(i, i, factor);
    return;
  }
  if (peek() == "*") take();
  if (atSectionOrEnd()) fail("Quadratic expression terminated too early");
  if (!isName(peek()) || isNumber(peek())) fail("Malformed quadratic term in expression");
  const int j = variable(peek());
  take();
  expression.quad.append(std::min(i, j), std::max(i, j), factor);
}

LpParser::Cleaned LpParser::clean(SparseValues &terms) {
  Cleaned result;
  mark_.resize(vars_.size(), -1);
  std::size_t kept = 0;
  for (std::size_t k = 0; k < terms.index.size(); ++k) {
    const int j = terms.index[k];
    if (mark_[j] >= 0) {
      terms.value[mark_[j]] += terms.value[k];
      ++result.repeated;
      continue;
    }
    mark_[j] = static_cast<int>(kept);
    terms.index[kept] = j;
    terms.value[kept++] = terms.value[k];
  }
  std::size_t out = 0;
  for (std::size_t k = 0; k < kept; ++k) {
    mark_[terms.index[k]] = -1;
    if (std::fabs(terms.value[k]) <= zeroTol_) {
      ++(result.repeated > 0 && terms.value[k] == 0 ? result.cancelled : result.small);
      continue;
    }
    terms.index[out] = terms.index[k];
    terms.value[out++] = terms.value[k];
  }
  terms.index.resize(out);
  terms.value.resize(out);
  return result;
}

void LpParser::reportRow(int row, const std::string &name, const Cleaned &cleaned) {
  if (cleaned.repeated > 0) {
    if (++repeatedRows_ <= kRowWarnings)
      warn(
          "Warning: row %d (name \"%s\") contains %d repeated variable(s) in constraints, grouped "
          "them, %d cancellation\n",
          row, name.c_str(), cleaned.repeated, cleaned.cancelled);
    else if (repeatedRows_ == kRowWarnings + 1)
      warn("skipping further warning of this kind\n");
  }
  if (cleaned.small > 0) {
    if (++smallRows_ <= kRowWarnings)
      warn("Warning: row %d (name \"%s\") contains %d small (<= %g) coefficient(s), ignored\n", row,
           name.c_str(), cleaned.small, zeroTol_);
    else if (smallRows_ == kRowWarnings + 1)
      warn("skipping further warning of this kind\n");
  }
  total_.repeated += cleaned.repeated;
  total_.cancelled += cleaned.cancelled;
  total_.small += cleaned.small;
}

void LpParser::parseRows(int lazy) {
  while (!atSectionOrEnd()) parseRow(lazy);
}

char LpParser::takeSense() {
  if (!isSense(peek())) {
    if (peek().empty()) fail("Incomplete constraint");
    fail("Unrecognized constraint RHS or sense");
  }
  if (peek() == "==" && !warnedEqual_) {
    warn("Warning: At least one constraint uses '==' instead of '=' as sense.\n");
    warnedEqual_ = true;
  }
  const char sense = peek().front();
  take();
  return sense;
}

// expression sense number, or with the number first, or a range: number sense expression sense
// number.
void LpParser::parseRow(int lazy) {
  const std::string name = takeLabel();
  if (atSectionOrEnd()) fail("Incomplete constraint");
  if (atIndicator()) {
    parseIndicator(name);
    return;
  }
  Expression left;
  parseExpression(left, Place::Constraint);
  char sense = takeSense();
  double rhs = 0;
  const bool constantFirst = left.terms.count() == 0 && !left.hasBracket;
  if (!constantFirst) {
    if (peek().empty()) fail("Incomplete constraint");
    if (!takeNumber(rhs)) fail("Unrecognized constraint RHS or sense");
    storeRow(name, left, sense, rhs - left.constant, -kUserInf, lazy);
    return;
  }
  Expression middle;
  parseExpression(middle, Place::Constraint);
  const double low = left.constant - middle.constant;
  // low sense expression: the relation turns round when the expression comes first.
  const char turned = sense == '<' ? '>' : sense == '>' ? '<' : '=';
  if (!isSense(peek()) && middle.terms.count() == 0 && !middle.hasBracket) {
    storeRow(name, middle, sense, -low, -kUserInf, lazy);
    return;
  }
  if (!isSense(peek())) {
    storeRow(name, middle, turned, low, -kUserInf, lazy);
    return;
  }
  const char second = takeSense();
  if (!takeNumber(rhs) || second != sense || sense == '=')
    fail("Unrecognized constraint RHS or sense");
  const double high = rhs - middle.constant;
  if (middle.hasBracket) fail("Unrecognized constraint RHS or sense");
  const double lower = sense == '<' ? low : high, upper = sense == '<' ? high : low;
  if (lower <= -kInfBound)
    storeRow(name, middle, '<', upper, -kUserInf, lazy);
  else if (upper >= kInfBound)
    storeRow(name, middle, '>', lower, -kUserInf, lazy);
  else
    storeRow(name, middle, '=', upper, lower, lazy);
}

void LpParser::storeRow(const std::string &name, Expression &expression, char sense, double rhs,
                        double lower, int lazy) {
  if (std::isnan(rhs) || std::isnan(lower)) fail("Malformed term in expression");
  const Cleaned cleaned = clean(expression.terms);
  if (expression.hasBracket) {
    if (lazy != 0)
      warn("Lazy constraints and user cuts must be linear - ignoring lazy designation\n");
    QConstr constr;
    constr.lind = std::move(expression.terms.index);
    constr.lval = std::move(expression.terms.value);
    constr.quad = std::move(expression.quad);
    constr.sense = sense;
    constr.rhs = rhs;
    const int row = static_cast<int>(model_.qconstrs.size());
    reportRow(row, name.empty() ? numbered("qc", row) : name, cleaned);
    model_.qconstrs.push_back(std::move(constr));
    model_.qconstrNames.append(name);
    return;
  }
  ModelInput &linear = model_.linear;
  const int row = linear.numConstrs++;
  const std::string fullName = name.empty() ? numbered("R", row) : name;
  reportRow(row, fullName, cleaned);
  rows_.append(expression.terms.count(), expression.terms.index.data(),
               expression.terms.value.data());
  linear.sense.push_back(sense);
  linear.rhs.push_back(rhs);
  linear.constrNames.append(name);
  linear.rangeLower.push_back(lower);
  anyRange_ = anyRange_ || lower > -kUserInf;
  model_.lazy.push_back(lazy);
  anyLazy_ = anyLazy_ || lazy != 0;
  if (rowNames_.findOrAdd(fullName) == static_cast<int>(rowOfName_.size()))
    rowOfName_.push_back(row);
}

bool LpParser::atIndicator() {
  return isName(peek(0)) && isSense(peek(1)) && !peek(2).empty() && peek(3) == "->";
}

void LpParser::parseIndicator(const std::string &name) {
  if (isNumber(peek()))
    warn("Warning: read number '%s' as indicator variable name\n", std::string(peek()).c_str());
  GenConstr g;
  g.type = TVK_GENCONSTR_INDICATOR;
  g.resVar = variable(peek());
  take();
  if (takeSense() != '=') fail("Invalid sense in indicator expression (expected '=')");
  double value = 0;
  if (!parseNumber(peek(), value) || (value != 0 && value != 1))
    fail("Invalid binary value in indicator expression (expected '1' or '0')");
  g.binVal = value == 1;
  take();
  if (peek() != "->") fail("Incomplete constraint");
  take();
  Expression expression;
  parseExpression(expression, Place::Constraint);
  if (expression.hasBracket) fail("Indicator constraint has to be linear");
  g.sense = takeSense();
  if (peek().empty()) fail("Incomplete constraint");
  if (!takeNumber(g.constant)) fail("Unrecognized constraint RHS or sense");
  g.constant -= expression.constant;
  const Cleaned cleaned = clean(expression.terms);
  if (cleaned.repeated > 0)
    warn(
        "Warning: indicator constraint %s contains %d repeated variable(s), grouped them, %d "
        "cancellation\n",
        name.c_str(), cleaned.repeated, cleaned.cancelled);
  if (cleaned.small > 0)
    warn("Warning: indicator constraint %s contains %d small (<= %g) coefficient(s), ignored\n",
         name.c_str(), cleaned.small, zeroTol_);
  g.vars = std::move(expression.terms.index);
  g.coef = std::move(expression.terms.value);
  model_.genConstrs.push_back(std::move(g));
  model_.genConstrNames.append(name);
}

// Cones are quadratic constraints in the same syntax; their variables must be known.
void LpParser::parseCones() {
  while (!atSectionOrEnd()) {
    const int known = vars_.size();
    parseRow(0);
    for (int j = known; j < vars_.size(); ++j)
      warn("Warning: unknown variable '%s' in cone section\n", vars_.get(j));
  }
}

}  // namespace tarvik
