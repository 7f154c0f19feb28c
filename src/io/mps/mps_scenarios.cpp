// The SCENARIOS section of MPS files: per scenario a name and what it changes.
#include <cmath>

#include "io/mps/mps_parser.h"
#include "io/numbered.h"

namespace tarvik {

namespace {

// Bound values of a scenario that stand for "infinite".
constexpr double kInfinite = kUserInf;

}  // namespace

void MpsParser::parseScenarios(std::string_view rest) {
  int expected = 0;
  if (!parseInteger(rest, expected) || expected < 0)
    failWith("MPS reader: failed to read number of scenarios",
             "Error reading number of scenarios at line %d\n", reader_.lineNumber());
  if (model_.objectives.size() > 1)
    fail("Error scenario feature is incompatible with multi-objective feature\n");
  scenarioBounds_.assign(columns_.size(), 0);
  while (nextDataLine()) {
    const int count = splitFree();
    if (fields_[0] == "NAME" && count <= 2)
      beginScenario(count, expected);
    else if (count == 1 && fields_[0] == "COLUMNS")
      beginScenarioPart(ScenarioPart::Obj, "COLUMNS");
    else if (count == 1 && fields_[0] == "RHS")
      beginScenarioPart(ScenarioPart::Rhs, "RHS");
    else if (count == 1 && fields_[0] == "BOUNDS")
      beginScenarioPart(ScenarioPart::Bounds, "BOUNDS");
    else if (scenarioPart_ == ScenarioPart::Obj)
      readScenarioObj(count);
    else if (scenarioPart_ == ScenarioPart::Rhs)
      readScenarioRhs(count);
    else if (scenarioPart_ == ScenarioPart::Bounds)
      readScenarioBound(count);
    else
      failLine();
  }
  if (pendingHeader_ && !isSectionKeyword())
    failAtLine("space at beginning of line in scenario section missing");
  const int found = static_cast<int>(model_.scenarios.size());
  if (found < expected)
    fail("Error at line %d, missing scenarios, expected %d found %d:\n%s\n", reader_.lineNumber(),
         expected, found, lineText().c_str());
}

void MpsParser::beginScenario(int count, int expected) {
  const int index = static_cast<int>(model_.scenarios.size());
  if (index >= expected) failAtLine("scenario section should have finished");
  ParsedScenario scenario;
  int number = -1;
  if (count < 2)
    scenario.name = numbered("scenario", index);
  else if (!parseInteger(fields_[1], number) || number != index)
    scenario.name = fields_[1];
  model_.scenarios.push_back(std::move(scenario));
  for (const int column : scenarioTouched_) scenarioBounds_[column] = 0;
  scenarioTouched_.clear();
  scenarioParts_ = 0;
  scenarioPart_ = ScenarioPart::Name;
}

void MpsParser::beginScenarioPart(ScenarioPart part, const char *name) {
  const unsigned bit = 1u << static_cast<unsigned>(part);
  if (scenarioPart_ == ScenarioPart::None || (scenarioParts_ & bit))
    fail("Error at line %d, scenario has multiple %s sections or missing NAME section:\n%s\n",
         reader_.lineNumber(), name, lineText().c_str());
  scenarioParts_ |= bit;
  scenarioPart_ = part;
}

void MpsParser::readScenarioObj(int count) {
  double value = 0;
  if (count != 3 || !parseNumber(fields_[2], value) || !std::isfinite(value))
    failAtLine("expected line with VarName OBJNAME Value in scenario section");
  const int column = findColumn(fields_[0]);
  if (column < 0) failAtLine("unknown column in scenario section");
  const int row = rows_.find(fields_[1]);
  if (row < 0 || !isObjective(rowTarget_[row]))
    failAtLine("unexpected row in column scenario section");
  model_.scenarios.back().obj.append(column, value);
}

void MpsParser::readScenarioRhs(int count) {
  if (!numbersFit(count))
    failAtLine("expected line with RHS1 VarName Value (VarName Value) in scenario section");
  for (int k = 1; k < count; k += 2) {
    const int row = findRow(fields_[k]);
    if (row < 0 || rowTarget_[row] < 0) failAtLine("unknown row in scenario section");
    model_.scenarios.back().rhs.append(rowTarget_[row], number(fields_[k + 1]));
  }
}

void MpsParser::readScenarioBound(int count) {
  if (count < 2) failAtLine("expected BOUND keyword in scenario section");
  const int code = boundCode(fields_[0]);
  if (code != FR && code != LO && code != FX && code != UP && code != MI && code != PL)
    failAtLine("invalid BOUND keyword in scenario section");
  const bool valued = boundNeedsValue(code);
  // The name of the bound set may be missing.
  const int nameAt = count - 1 - (valued ? 1 : 0);
  double value = 0;
  if (nameAt < 1 || nameAt > 2 || (valued && !parseNumber(fields_[count - 1], value)))
    failAtLine("expected BOUND keyword in scenario section");
  const int column = findColumn(fields_[nameAt]);
  if (column < 0) failAtLine("unknown column in scenario section");
  const unsigned kinds = (code != UP && code != PL ? unsigned{kLowerSet} : 0u) |
                         (code != LO && code != MI ? unsigned{kUpperSet} : 0u);
  if (scenarioBounds_[column] & kinds)
    failAtLine("column appears multiple times in scenario BOUNDS section");
  if (scenarioBounds_[column] == 0) scenarioTouched_.push_back(column);
  scenarioBounds_[column] |= kinds;
  ParsedScenario &scenario = model_.scenarios.back();
  if (kinds & kLowerSet) scenario.lb.append(column, valued ? value : -kInfinite);
  if (kinds & kUpperSet) scenario.ub.append(column, valued ? value : kInfinite);
}

}  // namespace tarvik
