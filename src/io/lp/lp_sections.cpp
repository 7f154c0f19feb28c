// Bounds, variable types, SOS and piecewise-linear objectives of LP files.
#include <cmath>

#include "base/number_format.h"
#include "io/lp/lp_parser.h"

namespace tarvik {

void LpParser::parseBounds() {
  while (!atSectionOrEnd()) parseBound();
}

void LpParser::setBound(int column, char sense, double value) {
  if (sense != '<') {
    model_.linear.lb[column] = value;
    lowerGiven_[column] = 1;
  }
  if (sense != '>') {
    model_.linear.ub[column] = value;
    upperGiven_[column] = 1;
  }
}

// name free | name sense number | number sense name [sense number]
void LpParser::parseBound() {
  ModelInput &linear = model_.linear;
  linear.lb.resize(vars_.size());
  linear.ub.resize(vars_.size(), kUserInf);
  lowerGiven_.resize(vars_.size());
  upperGiven_.resize(vars_.size());
  const int line = tokens_.line();
  const auto find = [&](std::string_view name) {
    const int column = vars_.find(name);
    if (column < 0)
      warn("Warning: unknown variable '%s' in bounds section (line %d)\n",
           std::string(name).c_str(), line);
    return column;
  };
  double value = 0;
  // A number before a relation and a name is a bound; before a relation and a number, or before
  // "free", a name.
  const bool numericName =
      vars_.find(peek()) >= 0 && (equalIgnoringCase(peek(1), "free") ||
                                  (isSense(peek(1)) && !isSense(peek(3)) &&
                                   (isNumber(peek(2)) || peek(2) == "-" || peek(2) == "+")));
  if (!numericName && takeNumber(value)) {
    if (!isSense(peek())) fail("Unrecognized variable bound");
    const char sense = peek().front();
    take();
    if (!isName(peek())) fail("Unrecognized variable bound");
    const int column = find(peek());
    take();
    const char turned = sense == '<' ? '>' : sense == '>' ? '<' : '=';
    if (column >= 0) setBound(column, turned, value);
    if (!isSense(peek())) return;
    const char second = peek().front();
    take();
    if (second != sense || !takeNumber(value)) fail("Unrecognized variable bound");
    if (column >= 0) setBound(column, second, value);
    return;
  }
  if (!isName(peek())) fail("Unrecognized variable bound");
  const int column = find(peek());
  take();
  if (nextIs("free")) {
    take();
    if (column < 0) return;
    setBound(column, '>', -kUserInf);
    setBound(column, '<', kUserInf);
    return;
  }
  if (!isSense(peek())) fail("Unrecognized variable bound");
  const char sense = peek().front();
  take();
  if (!takeNumber(value)) fail("Unrecognized variable bound");
  if (column >= 0) setBound(column, sense, value);
}

void LpParser::parseTypes(LpSection section) {
  const bool binary = section == LpSection::Binary, integer = section == LpSection::Integer;
  Vec<char> &marks = binary ? binary_ : integer ? integer_ : semi_;
  const char *word = binary ? "binary" : integer ? "integer" : "semi-continuous";
  marks.resize(vars_.size());
  while (!atSectionOrEnd()) {
    const int column = vars_.find(peek());
    if (column < 0)
      warn("Warning: unknown variable '%s' in %s section\n", std::string(peek()).c_str(), word);
    else
      marks[column] = 1;
    take();
  }
}

void LpParser::parseSos() {
  const auto isType = [&](int k) {
    return equalIgnoringCase(peek(k), "S1") || equalIgnoringCase(peek(k), "S2");
  };
  while (!atSectionOrEnd()) {
    takeLabel();
    if (!isType(0) || peek(1) != "::") fail("Missing type for SOS constraint");
    Sos set;
    set.type = peek().back() == '2' ? 2 : 1;
    take();
    take();
    while (!atSectionOrEnd() && !(isLabel(peek()) && isType(1) && peek(2) == "::") &&
           !(isType(0) && peek(1) == "::")) {
      double weight = 0;
      if (!isLabel(peek())) fail("Malformed SOS term");
      const std::string name = takeLabel();
      if (!takeNumber(weight) || !std::isfinite(weight)) fail("Malformed SOS term");
      set.ind.push_back(variable(name));
      set.weight.push_back(weight);
    }
    model_.sos.push_back(std::move(set));
  }
}

// Takes "(x, y)", whose pieces may stand apart; false when the next token begins no point.
bool LpParser::takePoint(double &x, double &y) {
  if (peek().empty() || peek().front() != '(') return false;
  std::string text;
  for (;;) {
    const std::string_view token = peek();
    if (token.empty() || text.size() > 200) return false;
    const std::size_t close = token.find(')');
    text += token.substr(0, close);
    if (close != std::string_view::npos) {
      if (close + 1 < token.size())
        tokens_.cut(close + 1);
      else
        take();
      break;
    }
    take();
  }
  const std::size_t comma = text.find(',');
  return comma != std::string::npos &&
         parseNumber(std::string_view(text).substr(1, comma - 1), x) &&
         parseNumber(std::string_view(text).substr(comma + 1), y);
}

void LpParser::parsePwlObj() {
  while (!atSectionOrEnd()) {
    if (!isLabel(peek())) fail("Malformed PWL term");
    PwlObjective pwl;
    pwl.var = variable(takeLabel());
    while (!peek().empty() && peek().front() == '(') {
      double x = 0, y = 0;
      if (!takePoint(x, y)) fail("Malformed PWL term");
      pwl.x.push_back(x);
      pwl.y.push_back(y);
    }
    if (pwl.x.empty()) fail("Malformed PWL term");
    model_.pwl.push_back(std::move(pwl));
  }
}

}  // namespace tarvik
