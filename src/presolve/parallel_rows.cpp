// Two rows that are multiples of each other: one goes, its sides become sides of the other.
// Undoing: when the kept row rests on a side that came from the gone one, the gone one takes
// over the dual and the kept one becomes basic.

#include <algorithm>

#include "presolve/parallel_groups.h"
#include "presolve/reductions.h"

namespace tarvik::presolve {

namespace {

struct ParallelRows {
  int kept, gone;
  double factor;  // gone = factor x kept
  bool lowerFromGone, upperFromGone;
  bool equation;  // after the merge
};

// The factor between two rows, 0 when they are not parallel.
double factorBetween(Workspace &ws, int kept, int gone) {
  const WorkingModel &model = ws.model;
  if (model.row(kept).length != model.row(gone).length) return 0;
  double factor = 0;
  for (auto it = model.rowEntries(kept).begin(); it.position() >= 0; ++it)
    ws.positionOf[(*it).col] = it.position();
  bool parallel = true;
  for (const Entry &entry : model.rowEntries(gone)) {
    const int position = ws.positionOf[entry.col];
    if (position < 0) {
      parallel = false;
      break;
    }
    const double value = model.entry(position).value;
    if (factor == 0) factor = entry.value / value;
    parallel = std::fabs(entry.value - factor * value) <= kParallel * std::fabs(entry.value);
    if (!parallel) break;
  }
  for (const Entry &entry : model.rowEntries(kept)) ws.positionOf[entry.col] = -1;
  return parallel ? factor : 0;
}

bool merge(Workspace &ws, int kept, int gone) {
  WorkingModel &model = ws.model;
  const double factor = factorBetween(ws, kept, gone);
  if (factor == 0) return false;
  const Row &k = model.row(kept), &g = model.row(gone);
  double lower = isInf(g.lower) ? -kInf : g.lower / factor;
  double upper = isInf(g.upper) ? kInf : g.upper / factor;
  if (factor < 0) {
    lower = isInf(g.upper) ? -kInf : g.upper / factor;
    upper = isInf(g.lower) ? kInf : g.lower / factor;
  }
  ParallelRows record{kept, gone, factor, false, false, false};
  record.lowerFromGone = lower > k.lower + ws.roundingTol(lower);
  record.upperFromGone = upper < k.upper - ws.roundingTol(upper);
  double newLower = record.lowerFromGone ? lower : k.lower;
  double newUpper = record.upperFromGone ? upper : k.upper;
  if (newLower - newUpper > ws.feasibilityTol(newLower)) {
    ws.verdict = Verdict::Infeasible;
    const double sign = record.lowerFromGone ? -1 : 1;
    ws.proofRows = {kept, gone};
    ws.proofMultipliers = {sign, -sign / factor};
    return true;
  }
  if (!ws.take()) return false;
  record.equation = ws.coincide(newLower, newUpper);
  if (record.equation)
    (record.lowerFromGone ? newLower : newUpper) = record.lowerFromGone ? newUpper : newLower;
  ws.stack.begin(RecordKind::ParallelRows);
  ws.stack.put(record);
  model.removeRow(gone);
  if (newLower != k.lower || newUpper != k.upper) model.setRowBounds(kept, newLower, newUpper);
  return true;
}

}  // namespace

bool mergeParallelRows(Workspace &ws) {
  const WorkingModel &model = ws.model;
  ws.preparePositions();
  Vec<ParallelKey> keys;
  for (int i = 0; i < model.numRows(); ++i) {
    if (!model.row(i).alive || model.row(i).length < 2) continue;
    double scale = 0;
    keys.push_back(parallelKey(model.rowEntries(i), &Entry::col, i, scale));
    keys.back().order = model.row(i).isEquation() ? 0 : 1;
  }
  std::sort(keys.begin(), keys.end());
  ws.charge(static_cast<double>(10 * model.entriesLeft()) +
            50.0 * static_cast<double>(keys.size()));
  bool found = false;
  std::size_t kept = 0;
  for (std::size_t k = 1; k < keys.size() && !ws.finished(); ++k) {
    if (keys[k].sameGroup(keys[kept]) && merge(ws, keys[kept].index, keys[k].index))
      found = true;
    else
      kept = k;
  }
  return found;
}

void undoParallelRows(RecordReader record, PostsolveState &state) {
  const auto r = record.get<ParallelRows>();
  if (state.hasPrimal) state.activity[r.gone] = r.factor * state.activity[r.kept];
  if (!state.hasDual) return;
  int side = state.y[r.kept] > 0 ? -1 : state.y[r.kept] < 0 ? 1 : 0;
  if (state.hasBasis) {
    const VarStatus status = state.rowStatus[r.kept];
    if (status == VarStatus::Basic)
      side = 0;
    else if (!r.equation)
      side = status == VarStatus::AtLower ? -1 : 1;
    else if (side == 0)
      side = -1;
  }
  if ((side < 0 && r.lowerFromGone) || (side > 0 && r.upperFromGone)) {
    state.y[r.gone] = state.y[r.kept] / r.factor;
    state.y[r.kept] = 0;
    state.setRow(r.kept, VarStatus::Basic);
    state.setRow(r.gone, (side < 0) == (r.factor > 0) ? VarStatus::AtLower : VarStatus::AtUpper);
    return;
  }
  state.y[r.gone] = 0;
  state.setRow(r.gone, VarStatus::Basic);
  if (r.equation && side != 0)
    state.setRow(r.kept, side < 0 ? VarStatus::AtLower : VarStatus::AtUpper);
}

}  // namespace tarvik::presolve
