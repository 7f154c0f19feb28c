// SOS, quadratic and piecewise-linear sections of MPS files.
//
// QUADOBJ, QMATRIX and QSECTION describe the Q of one half of x'Qx, QCMATRIX that of x'Qx. QMATRIX
// holds the full matrix, QUADOBJ one of its triangles; under QSECTION both are in use, so a section
// without any mirrored pair is taken for a triangle.
#include <algorithm>
#include <cmath>

#include "io/mps/mps_parser.h"

namespace tarvik {

void MpsParser::parseSos() {
  bool inSet = false;
  while (nextDataLine()) {
    const int count = splitFree();
    double weight = 0;
    const bool typed = fields_[0] == "S1" || fields_[0] == "S2";
    // A set begins in the second column of its line; a member may have a name like a type.
    const bool header = typed && (line_.size() > 1 && !isBlank(line_[1])
                                      ? true
                                      : count < 2 || !parseNumber(fields_[1], weight));
    if (header) {
      model_.sos.emplace_back();
      model_.sos.back().type = fields_[0] == "S2" ? 2 : 1;
      inSet = true;
      continue;
    }
    if (!inSet || count < 2 || count > 3) failLine();
    // The set's name may stand before the member's.
    const int column = findColumn(fields_[count - 2]);
    if (column < 0 || !parseNumber(fields_[count - 1], weight) || !std::isfinite(weight))
      failLine();
    model_.sos.back().ind.push_back(column);
    model_.sos.back().weight.push_back(weight);
  }
}

void MpsParser::splitQuadLine(int &i, int &j, double &value, const char *unknownName) {
  if (splitFree() != 3) {
    Field six[6];
    if (!cutFixed(six) || six[3].empty()) failLine();
    for (int k = 0; k < 3; ++k) fields_[k] = six[k + 1];
  }
  value = number(fields_[2]);
  if (!std::isfinite(value)) failLine();
  i = columns_.find(fields_[0], lastColumn_);
  if (i >= 0) lastColumn_ = i;
  j = columns_.find(fields_[1], lastColumn_);
  if (i < 0 || j < 0) fail("%s", unknownName);
}

void MpsParser::sortPairs(QuadTerms &terms) {
  const int n = terms.count();
  Vec<int> order(n);
  for (int k = 0; k < n; ++k) order[k] = k;
  const auto key = [&](int k) {
    const int i = terms.row[k], j = terms.col[k];
    const auto low = static_cast<std::uint64_t>(std::min(i, j));
    return std::pair(low << 32 | static_cast<unsigned>(std::max(i, j)), i > j);
  };
  std::sort(order.begin(), order.end(), [&](int a, int b) { return key(a) < key(b); });
  QuadTerms sorted;
  for (const int k : order) sorted.append(terms.row[k], terms.col[k], terms.val[k]);
  terms = std::move(sorted);
}

void MpsParser::symmetrize(QuadTerms &terms) {
  sortPairs(terms);
  QuadTerms half;
  const int n = terms.count();
  const auto sameEntry = [&](int a, int b) {
    return terms.row[a] == terms.row[b] && terms.col[a] == terms.col[b];
  };
  for (int k = 0; k < n; ++k) {
    if (k + 1 < n && sameEntry(k, k + 1))
      failWith("Duplicate quadratic elements", "Error: duplicate quadratic elements\n");
    const int i = terms.row[k], j = terms.col[k];
    if (i != j) {
      const bool mirrored = k + 1 < n && terms.row[k + 1] == j && terms.col[k + 1] == i &&
                            terms.val[k + 1] == terms.val[k];
      if (!mirrored) failWith("Qmatrix isn't symmetric", "Error: qmatrix isn't symmetric\n");
    }
    half.append(i, j, terms.val[k]);
    if (i != j) ++k;
    if (k + 1 < n && sameEntry(k, k + 1))
      failWith("Duplicate quadratic elements", "Error: duplicate quadratic elements\n");
  }
  terms = std::move(half);
}

bool MpsParser::hasMirroredPair(QuadTerms terms) {
  sortPairs(terms);
  for (int k = 1; k < terms.count(); ++k)
    if (terms.row[k] != terms.col[k] && terms.row[k] == terms.col[k - 1] &&
        terms.col[k] == terms.row[k - 1])
      return true;
  return false;
}

void MpsParser::parseQuadObj(QuadForm form) {
  if (sawQuadObj_) fail("Error: two or more quadratic objective sections\n");
  if (!model_.qconstrs.empty())
    fail("Error: quadratic objective must be the first quadrartic part in the MPS format\n");
  sawQuadObj_ = true;
  if (++numQuadSections_ > model_.linear.numConstrs + 1)
    fail("Error: too many quadratic sections\n");
  QuadTerms &terms = model_.qobj;
  int i = 0, j = 0;
  double value = 0;
  while (nextDataLine()) {
    splitQuadLine(i, j, value, "  variable name in the quadratic section not found\n");
    terms.append(i, j, value);
  }
  if (form == QuadForm::Full || (form == QuadForm::Either && hasMirroredPair(terms))) {
    symmetrize(terms);
  } else {
    for (int k = 0; k < terms.count(); ++k)
      if (terms.row[k] > terms.col[k]) std::swap(terms.row[k], terms.col[k]);
    QuadTerms sorted = terms;
    sortPairs(sorted);
    for (int k = 1; k < sorted.count(); ++k)
      if (sorted.row[k] == sorted.row[k - 1] && sorted.col[k] == sorted.col[k - 1])
        failWith("Duplicate quadratic elements", "Error: duplicate quadratic elements\n");
  }
  for (int k = 0; k < terms.count(); ++k)
    if (terms.row[k] == terms.col[k]) terms.val[k] /= 2;
}

QConstr &MpsParser::beginQuadraticRow(Field name, bool bilinear) {
  if (++numQuadSections_ > model_.linear.numConstrs + 1)
    fail("Error: too many quadratic sections\n");
  const int row = rows_.find(name);
  if (row < 0 || rowTarget_[row] < 0)
    fail(bilinear ? "Error: a bilinear constraint isn't defined in row section.\n"
                  : "Error: a quadratic constraint isn't defined in row section.\n");
  const int constr = rowTarget_[row];
  role_.resize(model_.linear.numConstrs, Role::Linear);
  roleIndex_.resize(model_.linear.numConstrs, -1);
  if (role_[constr] != Role::Linear)
    fail(bilinear ? "Error, Q terms of a bilinear constraint appear in more than one section.\n"
                  : "Error, Q terms of a constraint appear in more than one section.\n");
  role_[constr] = Role::Quadratic;
  roleIndex_[constr] = static_cast<int>(model_.qconstrs.size());
  model_.qconstrs.emplace_back();
  model_.qconstrNames.append(rows_.get(row));
  return model_.qconstrs.back();
}

void MpsParser::parseQcMatrix(std::string_view rest) {
  const int headerLine = reader_.lineNumber();
  const std::string name(rest);
  QConstr &constr = beginQuadraticRow(name, false);
  int i = 0, j = 0;
  double value = 0;
  while (nextDataLine()) {
    splitQuadLine(i, j, value, "  variable name in the quadratic section not found\n");
    constr.quad.append(i, j, value);
  }
  if (constr.quad.count() == 0)
    warn("Warning: Empty quadratic constraint section at line %d after %s\n", headerLine,
         name.c_str());
  symmetrize(constr.quad);
  for (int k = 0; k < constr.quad.count(); ++k)
    if (constr.quad.row[k] != constr.quad.col[k]) constr.quad.val[k] *= 2;
}

void MpsParser::parseBilinear(std::string_view rest) {
  QConstr &constr = beginQuadraticRow(rest, true);
  int i = 0, j = 0;
  double value = 0;
  while (nextDataLine()) {
    splitQuadLine(i, j, value, "  variable name in the bilinear section not found\n");
    constr.quad.append(std::min(i, j), std::max(i, j), value);
  }
  if (constr.quad.count() != 1)
    fail("  must specify exactly one quadratic term in the bilinear section\n");
}

void MpsParser::parsePwlObj() {
  const auto failFormat = [&] {
    failWith("MPS reader: in the piecewise-linear objective section",
             "Error in the piecewise-linear objective section at line %d\n", reader_.lineNumber());
  };
  pwlSeen_.resize(columns_.size());
  while (nextDataLine()) {
    double x = 0, y = 0;
    if (splitFree() != 3 || !parseNumber(fields_[1], x) || !parseNumber(fields_[2], y))
      failFormat();
    const int column = findColumn(fields_[0]);
    if (column < 0) failFormat();
    const bool continues = !model_.pwl.empty() && model_.pwl.back().var == column;
    if (!continues) {
      if (pwlSeen_[column])
        failWith("MPS reader: objective pieces are separated for a variable",
                 "Error: objective pieces are separated for a variable\n");
      pwlSeen_[column] = 1;
      model_.pwl.emplace_back();
      model_.pwl.back().var = column;
    }
    model_.pwl.back().x.push_back(x);
    model_.pwl.back().y.push_back(y);
  }
}

}  // namespace tarvik
