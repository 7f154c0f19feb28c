#include "mip/cuts/cut_assembler.h"

#include <algorithm>
#include <cmath>

namespace tarvik {

namespace {
constexpr double kLeastEfficacy = 1e-4;
constexpr double kSafety = 1e-11;  // relative relaxation of the right-hand side
}  // namespace

CutAssembler::CutAssembler(const SeparationPoint &point, const RowSystem &rows)
    : point_(&point), rows_(&rows), sum_(rows.numCols()), isUsed_(rows.numCols(), 0) {}

void CutAssembler::addColumn(int col, double coef) {
  if (!isUsed_[col]) {
    isUsed_[col] = 1;
    cols_.push_back(col);
  }
  sum_[col].add(coef);
}

void CutAssembler::addSlack(int row, double coef) {
  const int *index = nullptr;
  const double *value = nullptr;
  int count = 0;
  point_->lp->row(row, index, value, count);
  const SlackInfo &slack = rows_->slack(row);
  const double weight = -slack.side * coef;
  for (int k = 0; k < count; ++k) {
    addColumn(index[k], 0);
    sum_[index[k]].addProduct(weight, value[k]);
  }
  rhs_.addProduct(weight, slack.rhs);
  point_->work->charge(3.0 * count);
}

bool CutAssembler::finish(Cut &cut) {
  cut.index.clear();
  cut.value.clear();
  for (const int j : cols_) {
    const double c = sum_[j].value();
    if (c != 0) {
      cut.index.push_back(j);
      cut.value.push_back(c);
    }
    sum_[j] = CompensatedSum();
    isUsed_[j] = 0;
  }
  point_->work->charge(6.0 * static_cast<double>(cols_.size()));
  cols_.clear();
  cut.rhs = rhs_.value() + kSafety * std::max(1.0, std::fabs(rhs_.value()));
  rhs_ = CompensatedSum();
  return cleanCut(*point_->global, cut) && efficacy(cut, rows_->x()) >= kLeastEfficacy;
}

}  // namespace tarvik
