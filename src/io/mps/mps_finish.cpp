// What remains after ENDATA: default bounds, ranges, columns that were given in pieces, and the
// rows that become quadratic or indicator constraints.
#include <algorithm>
#include <cmath>

#include "io/mps/mps_parser.h"

namespace tarvik {

void MpsParser::finish() {
  atEnd_ = true;
  ModelInput &linear = model_.linear;
  if (!sawRows_) failWith("MPS reader: no row section", "Error: no row section.\n");
  if (!sawColumns_) failWith("MPS reader: no column section", "Error: no column section.\n");
  if (numObjectives_ == 0) warn("Warning: no linear objective.\n");
  checkCounts();
  linear.numVars = columns_.size();
  linear.rhs.resize(linear.numConstrs);
  finishBounds();
  linear.a.start.back() = static_cast<NzIndex>(linear.a.index.size());
  if (!ordered_) regroupColumns();
  linear.a.numMajor = linear.numVars;
  linear.a.numMinor = linear.numConstrs;
  linear.varNames = columns_.take();
  addRangeColumns();
  dropSmallQuadratics();
  extractRows();
  if (smallEntries_)
    warn("Warning: mps file contains small (< %g) coefficients, ignored\n", zeroTol_);
}

void MpsParser::checkCounts() {
  const auto check = [&](double count, const char *what) {
    if (count <= kMaxInt) return;
    const std::string text = std::string("number of ") + what + " exceeds two billion";
    failWith("MPS reader: " + text, "Warning: %s\n", text.c_str());
  };
  check(model_.linear.numConstrs, "constraints");
  check(columns_.size(), "variables");
  check(static_cast<double>(model_.linear.a.index.size()), "nonzeros");
  double terms = model_.qobj.count(), pieces = 0;
  for (const QConstr &c : model_.qconstrs) terms += c.quad.count();
  for (const PwlObjective &pwl : model_.pwl) pieces += static_cast<double>(pwl.x.size());
  check(terms, "q terms");
  check(pieces, "objective pieces");
}

// Some column came back behind others: its entries move together, in the order of the file.
void MpsParser::regroupColumns() {
  SparseMatrix &a = model_.linear.a;
  const int numRuns = static_cast<int>(runColumn_.size());
  const int numVars = columns_.size();
  Vec<int> firstRun(static_cast<std::size_t>(numVars) + 1), runs(numRuns);
  for (const int column : runColumn_) ++firstRun[column + 1];
  for (int j = 0; j < numVars; ++j) firstRun[j + 1] += firstRun[j];
  Vec<int> next(firstRun.begin(), firstRun.end() - 1);
  for (int r = 0; r < numRuns; ++r) runs[next[runColumn_[r]]++] = r;

  SparseMatrix grouped;
  grouped.clear(a.numMinor);
  grouped.index.reserve(a.index.size());
  grouped.value.reserve(a.value.size());
  Vec<int> seenBy(model_.linear.numConstrs, -1);
  for (int j = 0; j < numVars; ++j) {
    for (int k = firstRun[j]; k < firstRun[j + 1]; ++k) {
      for (NzIndex e = a.start[runs[k]]; e < a.start[runs[k] + 1]; ++e) {
        const int row = a.index[e];
        if (seenBy[row] == j) {
          warn("Warning: duplicate nonzeros for column %s and row %s.\n", columns_.get(j),
               rows_.get(rowName_[row]));
          continue;
        }
        seenBy[row] = j;
        grouped.index.push_back(row);
        grouped.value.push_back(a.value[e]);
      }
    }
    grouped.start.push_back(static_cast<NzIndex>(grouped.index.size()));
  }
  a = std::move(grouped);
}

void MpsParser::addRangeColumns() {
  ModelInput &linear = model_.linear;
  for (std::size_t k = 0; k < ranges_.size(); ++k) {
    const int row = rangeRows_[k];
    const double range = ranges_[k];
    double coefficient = 1;
    if (linear.sense[row] == '>')
      coefficient = -1;
    else if (linear.sense[row] == '=' && range > 0)
      linear.rhs[row] = range > kUserInf ? kUserInf : linear.rhs[row] + range;
    linear.sense[row] = '=';
    linear.a.append(1, &row, &coefficient);
    linear.obj.push_back(0);
    linear.lb.push_back(0);
    linear.ub.push_back(std::fabs(range));
    if (!linear.vtype.empty()) linear.vtype.push_back('C');
    linear.varNames.append("MPS_Rg" + std::string(rows_.get(rowName_[row])));
    ++linear.numVars;
  }
}

void MpsParser::dropSmallQuadratics() {
  QuadTerms &terms = model_.qobj;
  QuadTerms kept;
  for (int k = 0; k < terms.count(); ++k)
    if (std::fabs(terms.val[k]) > zeroTol_) kept.append(terms.row[k], terms.col[k], terms.val[k]);
  if (kept.count() == terms.count()) return;
  warn("Warning: mps file contains small (< %g) quadratic objective coefficients, ignored\n",
       zeroTol_);
  terms = std::move(kept);
}

// Moves the linear parts of quadratic and indicator rows out of the matrix and renumbers.
void MpsParser::extractRows() {
  ModelInput &linear = model_.linear;
  const int numRows = linear.numConstrs;
  role_.resize(numRows, Role::Linear);
  roleIndex_.resize(numRows, -1);
  if (!lazy_.empty()) lazy_.resize(numRows);
  Vec<int> newIndex(numRows, -1);
  NameList names;
  names.reserve(numRows, 0);
  int kept = 0;
  for (int i = 0; i < numRows; ++i) {
    if (role_[i] == Role::Quadratic) {
      QConstr &c = model_.qconstrs[roleIndex_[i]];
      c.sense = linear.sense[i];
      c.rhs = linear.rhs[i];
    } else if (role_[i] == Role::Indicator) {
      GenConstr &g = model_.genConstrs[roleIndex_[i]];
      g.sense = linear.sense[i];
      g.constant = linear.rhs[i];
    } else {
      names.append(rows_.get(rowName_[i]));
      newIndex[i] = kept;
      linear.sense[kept] = linear.sense[i];
      linear.rhs[kept] = linear.rhs[i];
      if (!lazy_.empty()) lazy_[kept] = lazy_[i];
      ++kept;
    }
  }
  linear.constrNames = std::move(names);
  for (ParsedScenario &scenario : model_.scenarios)
    for (int &row : scenario.rhs.index) {
      if (newIndex[row] < 0)
        fail("Error: row %s of a scenario isn't a linear constraint\n", rows_.get(rowName_[row]));
      row = newIndex[row];
    }
  if (!lazy_.empty()) lazy_.resize(kept);
  model_.lazy = std::move(lazy_);
  if (kept == numRows) return;
  linear.sense.resize(kept);
  linear.rhs.resize(kept);
  linear.numConstrs = linear.a.numMinor = kept;
  NzIndex out = 0, begin = 0;
  for (int j = 0; j < linear.a.numMajor; ++j) {
    const NzIndex end = linear.a.start[j + 1];
    for (NzIndex e = begin; e < end; ++e) {
      const int row = linear.a.index[e];
      const double value = linear.a.value[e];
      if (role_[row] == Role::Linear) {
        linear.a.index[out] = newIndex[row];
        linear.a.value[out++] = value;
      } else if (role_[row] == Role::Quadratic) {
        model_.qconstrs[roleIndex_[row]].lind.push_back(j);
        model_.qconstrs[roleIndex_[row]].lval.push_back(value);
      } else {
        model_.genConstrs[roleIndex_[row]].vars.push_back(j);
        model_.genConstrs[roleIndex_[row]].coef.push_back(value);
      }
    }
    begin = end;
    linear.a.start[j + 1] = out;
  }
  linear.a.index.resize(out);
  linear.a.value.resize(out);
}

}  // namespace tarvik
