// An equation in two columns: one is an affine function of the other and goes; its bounds become
// bounds of the other. Undoing: when the other rests on a bound that the gone one gave it, the
// gone one rests there and the other becomes basic; otherwise the gone one is basic.

#include "presolve/reductions.h"

namespace tarvik::presolve {

namespace {

struct Doubleton {
  int row, gone, kept;
  double goneCoef, keptCoef, side, cost;
  double goneLower, goneUpper;
  bool lowerFromGone, upperFromGone;  // the kept column's bounds
  bool fixed;
};

bool integral(double value) {
  return std::fabs(value - std::round(value)) <= 1e-9 * std::max(1.0, std::fabs(value));
}

bool mayGo(const Workspace &ws, const Row &row, const Entry &gone, const Entry &kept) {
  const WorkingModel &model = ws.model;
  const double ratio = std::fabs(kept.value / gone.value);
  if (ratio > std::min(kDoubletonRatio, ws.options.multiplierLimit) || ratio < 1 / kDoubletonRatio)
    return false;
  if (model.col(gone.col).restricted) return false;
  if (!model.col(gone.col).integer) return true;
  return model.col(kept.col).integer && integral(kept.value / gone.value) &&
         integral(row.lower / gone.value);
}

// The bounds that the gone column's bounds mean for the kept one.
void transferredBounds(const Doubleton &d, double &lower, double &upper) {
  const auto map = [&](double bound) {
    if (!isInf(bound)) return (d.side - d.goneCoef * bound) / d.keptCoef;
    return (bound > 0) == (d.goneCoef / d.keptCoef > 0) ? -kInf : kInf;
  };
  lower = map(d.goneLower);
  upper = map(d.goneUpper);
  if (d.goneCoef / d.keptCoef > 0) std::swap(lower, upper);
}

}  // namespace

bool tryDoubletonEquation(Workspace &ws, int i) {
  WorkingModel &model = ws.model;
  const Row &row = model.row(i);
  if (row.length != 2 || !row.isEquation() || ws.options.aggregate == 0) return false;
  int position = row.first;
  Entry gone = model.entry(position), kept = model.entry(gone.nextInRow);
  const bool firstLonger = model.col(gone.col).length > model.col(kept.col).length;
  if (!mayGo(ws, row, gone, kept) || (firstLonger && mayGo(ws, row, kept, gone))) {
    position = gone.nextInRow;
    std::swap(gone, kept);
    if (!mayGo(ws, row, gone, kept)) return false;
  }
  const Col &goneCol = model.col(gone.col);
  const Col &keptCol = model.col(kept.col);
  Doubleton d{i,         gone.col,     kept.col,      gone.value,    kept.value,
              row.lower, goneCol.cost, goneCol.lower, goneCol.upper, false,
              false,     false};
  double lower = 0, upper = 0;
  transferredBounds(d, lower, upper);
  if (keptCol.integer) {
    lower = integerLower(lower);
    upper = integerUpper(upper);
  }
  d.lowerFromGone = !isInf(lower) && lower > keptCol.lower + ws.roundingTol(lower);
  d.upperFromGone = !isInf(upper) && upper < keptCol.upper - ws.roundingTol(upper);
  double newLower = d.lowerFromGone ? lower : keptCol.lower;
  double newUpper = d.upperFromGone ? upper : keptCol.upper;
  if (newLower > newUpper) {
    if (newLower - newUpper > ws.feasibilityTol(newLower)) return false;  // the activity tells
  }
  d.fixed = ws.coincide(newLower, newUpper);
  if (d.fixed) (d.lowerFromGone ? newLower : newUpper) = d.lowerFromGone ? newUpper : newLower;
  if (!ws.take()) return false;
  ws.stack.begin(RecordKind::Doubleton);
  ws.stack.put(d);
  ws.stack.putCol(model, d.gone, i);
  eliminate(ws, position);
  if (newLower != keptCol.lower) model.setColLower(d.kept, newLower), ++ws.stats.boundsChanged;
  if (newUpper != keptCol.upper) model.setColUpper(d.kept, newUpper), ++ws.stats.boundsChanged;
  return true;
}

bool crushDoubleton(RecordReader record, RowImage &image) {
  const auto d = record.get<Doubleton>();
  const double factor = image.take(d.gone) / d.goneCoef;
  if (factor == 0) return true;
  image.addConstant(factor * d.side);
  image.add(d.kept, -factor * d.keptCoef);
  return true;
}

void undoDoubleton(RecordReader record, PostsolveState &state) {
  const auto d = record.get<Doubleton>();
  const StoredEntries entries = record.entries();
  if (state.hasPrimal) {
    state.x[d.gone] = (d.side - d.keptCoef * state.x[d.kept]) / d.goneCoef;
    state.addToActivity(entries, d.side / d.goneCoef);
    state.activity[d.row] = d.side;
  }
  if (!state.hasDual) return;
  const double partial = state.reducedCost(d.cost, entries);
  const int side = state.holdingSide(d.kept, d.fixed);
  state.setRow(d.row, VarStatus::AtLower);
  if ((side < 0 && d.lowerFromGone) || (side > 0 && d.upperFromGone)) {
    const bool goneAtLower = (side < 0) == (d.goneCoef / d.keptCoef < 0);
    state.d[d.gone] = -(d.goneCoef / d.keptCoef) * state.d[d.kept];
    state.d[d.kept] = 0;
    state.y[d.row] = (partial - state.d[d.gone]) / d.goneCoef;
    state.setCol(d.kept, VarStatus::Basic);
    state.setCol(d.gone, goneAtLower ? VarStatus::AtLower : VarStatus::AtUpper);
    if (state.hasBasis) state.x[d.gone] = goneAtLower ? d.goneLower : d.goneUpper;
    return;
  }
  state.d[d.gone] = 0;
  state.y[d.row] = partial / d.goneCoef;
  state.setCol(d.gone, VarStatus::Basic);
  if (d.fixed && side != 0)
    state.setCol(d.kept, side < 0 ? VarStatus::AtLower : VarStatus::AtUpper);
}

}  // namespace tarvik::presolve
