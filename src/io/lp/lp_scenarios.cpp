// Scenario blocks of LP files: what each scenario changes, in the order objective, constraints,
// bounds.
#include "base/number_format.h"
#include "io/lp/lp_parser.h"

namespace tarvik {

void LpParser::parseScenario() {
  const int number = static_cast<int>(model_.scenarios.size());
  ParsedScenario scenario;
  if (peek().empty()) fail("Unexpected section in scenario");
  int written = -1;
  if (!parseInteger(peek(), written) || written != number) scenario.name = peek();
  take();
  enum { None, Objective, Rows, Bounds } last = None;
  const auto enter = [&](auto part) {
    if (last >= part)
      fail(
          "Scenario section appears twice or in wrong order (Objective -> Constraints -> "
          "Bounds)\n");
    last = part;
    take();
  };
  for (;;) {
    const LpSection section = sectionAt();
    if (peek().empty() || section == LpSection::Scenario || section == LpSection::End) break;
    if (section == LpSection::None)
      fail(
          "Wrong line in scenario section, expected next scenario or objective, constraints, or "
          "bounds scenario section\n");
    if (section == LpSection::Minimize || section == LpSection::Maximize) {
      if ((section == LpSection::Maximize) != (model_.linear.objSense < 0))
        fail(
            "Objective sense of scenario needs to match with the objective sense of the original "
            "model\n");
      enter(Objective);
      parseScenarioObjective(scenario, number);
    } else if (section == LpSection::Constraints) {
      enter(Rows);
      parseScenarioRows(scenario, number);
    } else if (section == LpSection::Bounds) {
      enter(Bounds);
      parseScenarioBounds(scenario, number);
    } else {
      fail("Unexpected section in scenario");
    }
  }
  model_.scenarios.push_back(std::move(scenario));
}

void LpParser::parseScenarioObjective(ParsedScenario &scenario, int number) {
  scenarioMark_.assign(vars_.size(), 0);
  while (!atSectionOrEnd()) {
    const std::string name(peek());
    const int column = vars_.find(name);
    if (column < 0) fail("Unknown variable %s in scenario %d objective\n", name.c_str(), number);
    take();
    double value = 0;
    if (!takeNumber(value))
      fail("Missing objective coefficient for a variable in scenario %d\n", number);
    if (scenarioMark_[column])
      fail("Objective of variable %s appears twice in scenario %d\n", name.c_str(), number);
    scenarioMark_[column] = 1;
    scenario.obj.append(column, value);
  }
}

void LpParser::parseScenarioRows(ParsedScenario &scenario, int number) {
  scenarioMark_.assign(model_.linear.numConstrs, 0);
  while (!atSectionOrEnd()) {
    const std::string name = isLabel(peek()) ? takeLabel() : std::string(peek());
    const int known = rowNames_.find(name);
    if (known < 0) fail("Unknown row %s in scenario %d\n", name.c_str(), number);
    const int row = rowOfName_[known];
    if (model_.lazy[row] != 0)
      fail(model_.lazy[row] > 0 ? "Lazy row %s in scenario %d not allowed\n"
                                : "User cut %s in scenario %d not allowed\n",
           name.c_str(), number);
    if (scenarioMark_[row])
      fail("Right hand side of constraint %s appears twice in scenario %d\n", name.c_str(), number);
    scenarioMark_[row] = 1;
    if (!isSense(peek()))
      fail("Expected constraint sense in scen %d row %s\n", number, name.c_str());
    const char sense = peek().front();
    take();
    if (sense != model_.linear.sense[row])
      fail("Constraint sense %c does not match scenario constraint sense %c of row %s\n",
           model_.linear.sense[row], sense, name.c_str());
    double value = 0;
    if (!takeNumber(value)) fail("Unrecognized constraint RHS or sense");
    scenario.rhs.append(row, value);
  }
}

void LpParser::setScenarioBound(ParsedScenario &scenario, int number, std::string_view name,
                                char sense, double value) {
  const std::string text(name);
  const int column = vars_.find(name);
  if (column < 0) fail("Unknown column %s in scenario %d\n", text.c_str(), number);
  const int kinds = (sense != '<' ? 1 : 0) | (sense != '>' ? 2 : 0);
  const int given = scenarioMark_[column] & kinds;
  if (kinds == 3 && given) fail("Variable %s appears twice in scenario %d\n", text.c_str(), number);
  if (given)
    fail(kinds == 1 ? "Lower bound of variable %s appears twice in scenario %d\n"
                    : "Upper bound of variable %s appears twice in scenario %d\n",
         text.c_str(), number);
  scenarioMark_[column] = static_cast<char>(scenarioMark_[column] | kinds);
  if (kinds & 1) scenario.lb.append(column, value);
  if (kinds & 2) scenario.ub.append(column, value);
}

void LpParser::parseScenarioBounds(ParsedScenario &scenario, int number) {
  scenarioMark_.assign(vars_.size(), 0);
  const auto failFormat = [&] {
    fail("Wrong format in scenario bound section of scenario %d\n", number);
  };
  while (!atSectionOrEnd()) {
    double value = 0;
    if (takeNumber(value)) {
      if (!isSense(peek())) failFormat();
      const char sense = peek().front();
      take();
      if (!isName(peek())) failFormat();
      const std::string name(peek());
      take();
      setScenarioBound(scenario, number, name,
                       sense == '<'   ? '>'
                       : sense == '>' ? '<'
                                      : '=',
                       value);
      if (!isSense(peek())) continue;
      const char second = peek().front();
      take();
      if (second != sense || !takeNumber(value)) failFormat();
      setScenarioBound(scenario, number, name, second, value);
      continue;
    }
    if (!isName(peek())) failFormat();
    const std::string name(peek());
    take();
    if (nextIs("free")) {
      take();
      setScenarioBound(scenario, number, name, '>', -kUserInf);
      setScenarioBound(scenario, number, name, '<', kUserInf);
      continue;
    }
    if (!isSense(peek())) failFormat();
    const char sense = peek().front();
    take();
    if (!takeNumber(value)) failFormat();
    setScenarioBound(scenario, number, name, sense, value);
  }
}

}  // namespace tarvik
