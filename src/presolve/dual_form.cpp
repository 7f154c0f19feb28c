#include "presolve/dual_form.h"

#include "base/compensated_sum.h"

namespace tarvik {

namespace {

VarStatus restingPlace(double lower, double upper) {
  if (!isInf(lower)) return VarStatus::AtLower;
  return isInf(upper) ? VarStatus::Free : VarStatus::AtUpper;
}

}  // namespace

DualForm::DualForm(const LpModel &lp) {
  CompensatedSum offset(lp.offset);
  for (int j = 0; j < lp.numCols; ++j) {
    offset.addProduct(lp.cost[j], shift(lp, j));
    rest_.push_back(restingPlace(lp.colLower[j], lp.colUpper[j]));
    if (lp.colLower[j] == lp.colUpper[j]) {
      rowOfCol_.push_back(-1);
      continue;
    }
    rowOfCol_.push_back(dual_.numRows++);
    const bool above = rest_[j] == VarStatus::AtUpper;
    dual_.rowLower.push_back(rest_[j] == VarStatus::AtLower ? -kInf : lp.cost[j]);
    dual_.rowUpper.push_back(above ? kInf : lp.cost[j]);
  }
  dual_.offset = -offset.value();
  dual_.a.clear(dual_.numRows);
  addRows(lp);
  addUpperBounds(lp);
}

double DualForm::shift(const LpModel &lp, int col) const {
  if (!isInf(lp.colLower[col])) return lp.colLower[col];
  return isInf(lp.colUpper[col]) ? 0 : lp.colUpper[col];
}

int DualForm::addColumn(int count, const int *index, const double *value, double cost, double lower,
                        double upper) {
  dual_.a.append(count, index, value);
  dual_.cost.push_back(cost);
  dual_.colLower.push_back(lower);
  dual_.colUpper.push_back(upper);
  return dual_.numCols++;
}

void DualForm::addRows(const LpModel &lp) {
  const SparseMatrix rows = transpose(lp.a);
  colsOfRow_.resize(static_cast<std::size_t>(lp.numRows));
  Vec<int> index;
  Vec<double> value;
  for (int i = 0; i < lp.numRows; ++i) {
    const double lower = lp.rowLower[i], upper = lp.rowUpper[i];
    index.clear();
    value.clear();
    CompensatedSum shifted;
    for (NzIndex k = rows.start[i]; k < rows.start[i + 1]; ++k) {
      const int j = rows.index[k];
      shifted.addProduct(rows.value[k], shift(lp, j));
      if (rowOfCol_[j] < 0) continue;
      index.push_back(rowOfCol_[j]);
      value.push_back(rows.value[k]);
    }
    const auto add = [&](double bound, double low, double up) {
      return addColumn(static_cast<int>(index.size()), index.data(), value.data(),
                       shifted.value() - bound, low, up);
    };
    DualCols &cols = colsOfRow_[i];
    if (lower == upper) {
      cols.first = add(lower, -kInf, kInf);
      continue;
    }
    if (!isInf(lower)) cols.first = add(lower, 0, kInf);
    if (!isInf(upper)) cols.second = add(upper, -kInf, 0);
  }
}

void DualForm::addUpperBounds(const LpModel &lp) {
  for (int j = 0; j < lp.numCols; ++j) {
    upperCol_.push_back(-1);
    if (rowOfCol_[j] < 0 || isInf(lp.colLower[j]) || isInf(lp.colUpper[j])) continue;
    const double minusOne = -1;
    upperCol_[j] = addColumn(1, &rowOfCol_[j], &minusOne, lp.colUpper[j] - lp.colLower[j], 0, kInf);
  }
}

// A multiplier that is basic holds its row or bound tight; a row of the dual form that is tight
// leaves its column free to be basic.
Basis DualForm::primalBasis(const Basis &dual) const {
  const auto isBasic = [&](int col) { return col >= 0 && dual.col[col] == VarStatus::Basic; };
  Basis basis;
  for (const DualCols &cols : colsOfRow_)
    basis.row.push_back(isBasic(cols.first)    ? VarStatus::AtLower
                        : isBasic(cols.second) ? VarStatus::AtUpper
                                               : VarStatus::Basic);
  for (std::size_t j = 0; j < rowOfCol_.size(); ++j) {
    const bool slack = rowOfCol_[j] < 0 || dual.row[rowOfCol_[j]] == VarStatus::Basic;
    basis.col.push_back(isBasic(upperCol_[j]) ? VarStatus::AtUpper
                        : slack               ? rest_[j]
                                              : VarStatus::Basic);
  }
  return basis;
}

}  // namespace tarvik
