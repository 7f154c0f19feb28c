// The end of an LP file: types and bounds come together, constants are folded, and the rows
// become columns.
#include <algorithm>
#include <cmath>

#include "base/number_format.h"
#include "io/lp/lp_parser.h"

namespace tarvik {

void LpParser::finish() {
  ModelInput &linear = model_.linear;
  linear.name = tokens_.title();
  const int n = linear.numVars = vars_.size();
  linear.lb.resize(n);
  linear.ub.resize(n, kUserInf);
  lowerGiven_.resize(n);
  upperGiven_.resize(n);
  binary_.resize(n);
  integer_.resize(n);
  semi_.resize(n);
  linear.vtype.assign(n, 'C');
  for (int j = 0; j < n; ++j) {
    if (binary_[j] || (integer_[j] && !semi_[j])) linear.vtype[j] = binary_[j] ? 'B' : 'I';
    if (semi_[j]) linear.vtype[j] = binary_[j] || integer_[j] ? 'N' : 'S';
    if (!binary_[j]) continue;
    if (!lowerGiven_[j]) linear.lb[j] = 0;
    if (!upperGiven_[j]) linear.ub[j] = 1;
  }
  clean(objective_.terms);
  linear.obj.assign(n, 0.0);
  for (int k = 0; k < objective_.terms.count(); ++k)
    linear.obj[objective_.terms.index[k]] = objective_.terms.value[k];
  linear.objCon = objective_.constant;
  finishQuadratics();
  rows_.numMinor = n;
  linear.a = transpose(rows_);
  warnNames();
  linear.varNames = vars_.take();
  foldConstants();
  if (!anyLazy_) model_.lazy.clear();
  if (!anyRange_) linear.rangeLower.clear();
  if (total_.repeated > 0)
    warn(
        "Warning: lp file contains %d repeated variable(s) in constraints, grouped them, %d "
        "cancellation\n",
        total_.repeated, total_.cancelled);
  if (total_.small > 0)
    warn("Warning: lp file contains %d small (<= %g) coefficient(s), ignored\n", total_.small,
         zeroTol_);
}

void LpParser::finishQuadratics() {
  QuadTerms kept;
  const QuadTerms &quad = objective_.quad;
  for (int k = 0; k < quad.count(); ++k)
    if (std::fabs(quad.val[k]) > zeroTol_) kept.append(quad.row[k], quad.col[k], quad.val[k]);
  if (kept.count() < quad.count())
    warn("Warning: lp file contains small (< %g) quadratic objective coefficients, ignored\n",
         zeroTol_);
  model_.qobj = std::move(kept);
}

// A variable "Constant" (or "Constant" and a number with several objectives) that is fixed at 1
// and occurs in the objective only stands for the constant of that objective.
void LpParser::foldConstants() {
  ModelInput &linear = model_.linear;
  const int n = linear.numVars;
  Vec<char> used(n);
  const auto mark = [&](const Vec<int> &vars) {
    for (const int j : vars) used[j] = 1;
  };
  Vec<int> objectiveOf(n, -1);  // the only objective that a variable occurs in, -2 for several
  for (int k = 0; k < static_cast<int>(model_.objectives.size()); ++k)
    for (const int j : model_.objectives[k].terms.index)
      objectiveOf[j] = objectiveOf[j] == -1 ? k : -2;
  mark(model_.qobj.row);
  mark(model_.qobj.col);
  for (const QConstr &c : model_.qconstrs) {
    mark(c.lind);
    mark(c.quad.row);
    mark(c.quad.col);
  }
  for (const Sos &set : model_.sos) mark(set.ind);
  for (const GenConstr &g : model_.genConstrs) {
    mark(g.vars);
    used[g.resVar] = 1;
  }
  for (const PwlObjective &pwl : model_.pwl) used[pwl.var] = 1;
  for (const ParsedScenario &s : model_.scenarios) {
    mark(s.obj.index);
    mark(s.lb.index);
    mark(s.ub.index);
  }
  Vec<int> newIndex(n);
  int kept = 0;
  for (int j = 0; j < n; ++j) {
    const std::string_view name = linear.varNames.get(j);
    int number = -1;
    const bool foldable = name.substr(0, 8) == "Constant" && linear.lb[j] == 1 &&
                          linear.ub[j] == 1 && linear.vtype[j] == 'C' && !used[j] &&
                          linear.a.length(j) == 0;
    if (foldable && model_.objectives.empty() && name.size() == 8) {
      linear.objCon += linear.obj[j];
      newIndex[j] = -1;
    } else if (foldable && !model_.objectives.empty() && parseInteger(name.substr(8), number) &&
               number >= 0 && number == objectiveOf[j]) {
      SparseValues &terms = model_.objectives[number].terms;
      const auto at = std::find(terms.index.begin(), terms.index.end(), j) - terms.index.begin();
      model_.objectives[number].constant += terms.value[at];
      terms.index.erase(terms.index.begin() + at);
      terms.value.erase(terms.value.begin() + at);
      newIndex[j] = -1;
    } else {
      newIndex[j] = kept++;
    }
  }
  if (kept < n) removeVariables(newIndex, kept);
}

void LpParser::removeVariables(const Vec<int> &newIndex, int kept) {
  ModelInput &linear = model_.linear;
  NameList names;
  SparseMatrix a;
  a.clear(linear.a.numMinor);
  for (int j = 0; j < linear.numVars; ++j) {
    const int to = newIndex[j];
    if (to < 0) continue;
    names.append(linear.varNames.get(j));
    const NzIndex begin = linear.a.start[j];
    a.append(linear.a.length(j), linear.a.index.data() + begin, linear.a.value.data() + begin);
    linear.obj[to] = linear.obj[j];
    linear.lb[to] = linear.lb[j];
    linear.ub[to] = linear.ub[j];
    linear.vtype[to] = linear.vtype[j];
  }
  linear.a = std::move(a);
  linear.varNames = std::move(names);
  linear.obj.resize(kept);
  linear.lb.resize(kept);
  linear.ub.resize(kept);
  linear.vtype.resize(kept);
  linear.numVars = kept;
  const auto renumber = [&](Vec<int> &vars) {
    for (int &j : vars) j = newIndex[j];
  };
  renumber(model_.qobj.row);
  renumber(model_.qobj.col);
  for (QConstr &c : model_.qconstrs) {
    renumber(c.lind);
    renumber(c.quad.row);
    renumber(c.quad.col);
  }
  for (Sos &set : model_.sos) renumber(set.ind);
  for (GenConstr &g : model_.genConstrs) {
    renumber(g.vars);
    g.resVar = newIndex[g.resVar];
  }
  for (PwlObjective &pwl : model_.pwl) pwl.var = newIndex[pwl.var];
  for (ParsedObjective &o : model_.objectives) renumber(o.terms.index);
  for (ParsedScenario &s : model_.scenarios) {
    renumber(s.obj.index);
    renumber(s.lb.index);
    renumber(s.ub.index);
  }
}

void LpParser::warnNames() {
  bool numeric = false, digit = false;
  for (int j = 0; j < vars_.size() && !(numeric && digit); ++j) {
    const char *name = vars_.get(j);
    if (!numeric && isNumber(name)) {
      warn("Warning: Numeric variable name in LP file ('%s') - often the result\n", name);
      warn("         of a constant term in the left-hand side of a constraint.\n");
      numeric = true;
    } else if (!digit && *name >= '0' && *name <= '9' && !isNumber(name)) {
      warn("Warning: variable name <%s> starts with a number\n", name);
      digit = true;
    }
  }
}

}  // namespace tarvik
