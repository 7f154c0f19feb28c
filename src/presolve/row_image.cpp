// Rows of the full model in terms of the reduced one, for what users add while a search runs.

#include "presolve/row_image.h"

#include <algorithm>
#include <cmath>

#include "presolve/presolve_run.h"

namespace tarvik {

namespace presolve {

namespace {

// What is left of two terms below this share of them is their rounding.
constexpr double kCancelled = 1e-14;

bool crush(RecordKind kind, RecordReader record, RowImage &image) {
  switch (kind) {
    case RecordKind::FixedCol:
      return crushFixedCol(record, image);
    case RecordKind::UnconstrainedCol:
      return crushUnconstrainedCol(record, image);
    case RecordKind::FreeSingletonCol:
      return crushFreeSingletonCol(record, image);
    case RecordKind::SlackCol:
      return crushSlackCol(record, image);
    case RecordKind::Doubleton:
      return crushDoubleton(record, image);
    case RecordKind::Substitution:
      return crushSubstitution(record, image);
    case RecordKind::ParallelCols:
      return crushParallelCols(record, image);
    case RecordKind::RedundantRow:
    case RecordKind::SingletonRow:
    case RecordKind::ForcingRow:
    case RecordKind::EquationSide:
    case RecordKind::ParallelRows:
    case RecordKind::AddedEquation:
      break;
  }
  return true;
}

}  // namespace

void RowImage::add(int col, double value) {
  const double sum = values_[col] + value;
  values_[col] = std::fabs(sum) <= kCancelled * std::fabs(value) ? 0 : sum;
}

double RowImage::take(int col) {
  const double value = values_[col];
  values_[col] = 0;
  return value;
}

void RowImage::substitute(int col, double coef, double side, const StoredEntries &entries) {
  const double factor = take(col) / coef;
  if (factor == 0) return;
  addConstant(factor * side);
  for (int k = 0; k < entries.count(); ++k) add(entries.index(k), -factor * entries.value(k));
}

}  // namespace presolve

bool PresolveRun::crushRow(LinearRow &row) const {
  presolve::RowImage image(lp_->numCols);
  for (std::size_t k = 0; k < row.cols.size(); ++k) image.add(row.cols[k], row.values[k]);
  for (int record = 0; record < ws.stack.size(); ++record)
    if (!presolve::crush(ws.stack.kind(record), ws.stack.read(record), image)) return false;
  row.cols.clear();
  row.values.clear();
  for (std::size_t k = 0; k < cols.size(); ++k) {
    const double value = image.value(cols[k]);
    if (value == 0) continue;
    row.cols.push_back(static_cast<int>(k));
    row.values.push_back(value);
  }
  if (!isInf(row.lower)) row.lower -= image.constant();
  if (!isInf(row.upper)) row.upper -= image.constant();
  return true;
}

}  // namespace tarvik
