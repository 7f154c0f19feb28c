#include "mip/presolve/model_editor.h"

namespace tarvik {

int ModelEditor::addBinary() { return model_.lp.numCols + newCols_++; }

void ModelEditor::addRow(const Vec<int> &cols, const Vec<double> &values, double lower,
                         double upper) {
  cols_.insert(cols_.end(), cols.begin(), cols.end());
  values_.insert(values_.end(), values.begin(), values.end());
  start_.push_back(static_cast<NzIndex>(cols_.size()));
  lower_.push_back(lower);
  upper_.push_back(upper);
}

void ModelEditor::removeRow(int row) {
  removed_.resize(model_.lp.numRows, 0);
  removed_[row] = 1;
}

void ModelEditor::apply() {
  LpModel &lp = model_.lp;
  const SparseMatrix old = transpose(lp.a);
  const int oldRows = lp.numRows;
  removed_.resize(oldRows, 0);
  lp.numCols += newCols_;
  lp.cost.resize(lp.numCols, 0);
  lp.colLower.resize(lp.numCols, 0);
  lp.colUpper.resize(lp.numCols, 1);
  model_.kind.resize(lp.numCols, VarKind::Integer);
  if (!model_.holeLower.empty()) {
    model_.holeLower.resize(lp.numCols, 0);
    model_.holeUpper.resize(lp.numCols, 0);
  }
  if (!model_.branchPriority.empty()) model_.branchPriority.resize(lp.numCols, 0);
  if (!model_.partition.empty()) model_.partition.resize(lp.numCols, 0);

  SparseMatrix rows;
  rows.clear(lp.numCols);
  Vec<double> lower, upper;
  for (int i = 0; i < oldRows; ++i) {
    if (removed_[i]) continue;
    rows.append(old.length(i), old.index.data() + old.start[i], old.value.data() + old.start[i]);
    lower.push_back(lp.rowLower[i]);
    upper.push_back(lp.rowUpper[i]);
  }
  for (std::size_t k = 0; k < lower_.size(); ++k) {
    const NzIndex start = start_[k];
    rows.append(static_cast<int>(start_[k + 1] - start), cols_.data() + start,
                values_.data() + start);
    lower.push_back(lower_[k]);
    upper.push_back(upper_[k]);
  }
  lp.numRows = rows.numMajor;
  lp.rowLower.swap(lower);
  lp.rowUpper.swap(upper);
  lp.a = transpose(rows);
}

}  // namespace tarvik
