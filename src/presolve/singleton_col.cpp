// Columns with one entry.
//
// Free (or with bounds that their row implies, which are then dropped): whatever the others do,
// the column satisfies the row, at the row's side that its cost prefers. Row and column go; the
// row's dual is cost / entry, which moves into the costs of the other columns (Andersen and
// Andersen, 1995).
//
// Bounded and without cost: the column is the row's slack. It goes, and its range widens the
// row's. Undoing: where the row stands in its range tells where the slack stands. A slack with a
// cost stays: moving the cost to the others would start the simplex far from the optimum of models
// that penalise what they leave undone. The slack of an equation is an affine function of the other
// columns; that of an inequality is not, and stays where that is asked for.

#include "presolve/reductions.h"

namespace tarvik::presolve {

namespace {

double largestInRow(const WorkingModel &model, int row) {
  double largest = 0;
  for (const Entry &entry : model.rowEntries(row))
    largest = std::max(largest, std::fabs(entry.value));
  return largest;
}

// Moves dual x row into the costs: the row holds at this value with this dual.
void chargeDual(WorkingModel &model, int row, int withoutCol, double dual, double side,
                double zeroTol) {
  if (dual == 0) return;
  for (const Entry &entry : model.rowEntries(row)) {
    if (entry.col == withoutCol) continue;
    const double cost = model.col(entry.col).cost;
    const double moved = cost - dual * entry.value;
    const bool vanishes = std::fabs(moved) <= 10 * zeroTol * std::fabs(cost);
    model.setCost(entry.col, vanishes ? 0 : moved);
  }
  model.addOffset(dual * side);
}

}  // namespace

bool tryFreeSingletonCol(Workspace &ws, int j) {
  WorkingModel &model = ws.model;
  const Col &col = model.col(j);
  if (col.length != 1 || col.integer || col.restricted) return false;
  const Entry entry = model.entry(col.first);
  const Row &row = model.row(entry.row);
  const bool free = !col.hasLower() && !col.hasUpper();
  if (!free && (!lowerImplied(ws, j) || !upperImplied(ws, j))) return false;
  const double pivot = ws.relativePivot(free ? kFreeSingletonPivot : kImpliedFreePivot);
  if (std::fabs(entry.value) < pivot * largestInRow(model, entry.row)) return false;

  const double dual = col.cost / entry.value;
  if (ws.options.keepPoints && !row.isEquation()) return false;
  const bool atLower = row.isEquation() || dual > 0 || (dual == 0 && !isInf(row.lower));
  const double side = atLower ? row.lower : row.upper;
  if (isInf(side)) {
    if (dual == 0 || std::fabs(col.cost) <= ws.options.dualTol || !ws.options.dualReductions)
      return false;
    ws.dualInfeasible();
    return true;
  }
  if (!ws.take()) return false;
  ws.stack.begin(RecordKind::FreeSingletonCol);
  ws.stack.put(j);
  ws.stack.put(entry.row);
  ws.stack.put(atLower);
  ws.stack.put(side);
  ws.stack.put(entry.value);
  ws.stack.put(col.cost);
  ws.stack.putRow(model, entry.row, j);
  chargeDual(model, entry.row, j, dual, side, ws.options.zeroTol);
  model.removeRow(entry.row);
  model.removeCol(j);
  return true;
}

void undoFreeSingletonCol(RecordReader record, PostsolveState &state) {
  const int col = record.get<int>();
  const int row = record.get<int>();
  const bool atLower = record.get<bool>();
  const double side = record.get<double>();
  const double coef = record.get<double>();
  const double cost = record.get<double>();
  const StoredEntries entries = record.entries();
  if (state.hasPrimal) {
    state.x[col] = (side - state.rowValue(entries)) / coef;
    state.activity[row] = side;
  }
  if (state.hasDual) {
    state.y[row] = state.cost(cost) / coef;
    state.d[col] = 0;
  }
  state.setCol(col, VarStatus::Basic);
  state.setRow(row, atLower ? VarStatus::AtLower : VarStatus::AtUpper);
}

bool crushFreeSingletonCol(RecordReader record, RowImage &image) {
  const int col = record.get<int>();
  record.get<int>();   // the row
  record.get<bool>();  // its side
  const double side = record.get<double>();
  const double coef = record.get<double>();
  record.get<double>();  // the cost
  image.substitute(col, coef, side, record.entries());
  return true;
}

namespace {

struct Slack {
  int col, row;
  double coef;
  double lower, upper;        // of the column
  double rowLower, rowUpper;  // before it became part of the row
  bool equation;              // the row is one afterwards
};

// The rest of an equation, for the translation of rows; nothing where none is wanted.
void putEquation(Workspace &ws, const Row &row, int i, int j) {
  if (ws.options.affine && row.isEquation())
    ws.stack.putRow(ws.model, i, j);
  else
    ws.stack.put(0);
}

}  // namespace

bool trySlackCol(Workspace &ws, int j) {
  WorkingModel &model = ws.model;
  const Col &col = model.col(j);
  if (col.length != 1 || col.integer || col.restricted) return false;
  const Entry entry = model.entry(col.first);
  const int i = entry.row;
  const Row &row = model.row(i);
  if (col.cost != 0 || (ws.options.affine && !row.isEquation())) return false;
  if (std::fabs(entry.value) < kSlackCoef || row.length < 2) return false;
  if (!ws.take()) return false;

  const auto without = [&](double side, double bound) {
    if (isInf(side)) return side;
    return isInf(bound) ? -bound * (entry.value > 0 ? 1 : -1) : side - entry.value * bound;
  };
  const bool rising = entry.value > 0;
  const double lower = without(row.lower, rising ? col.upper : col.lower);
  const double upper = without(row.upper, rising ? col.lower : col.upper);
  ws.stack.begin(RecordKind::SlackCol);
  ws.stack.put(Slack{j, i, entry.value, col.lower, col.upper, row.lower, row.upper,
                     ws.coincide(lower, upper)});
  putEquation(ws, row, i, j);
  model.removeCol(j);
  model.setRowBounds(i, lower, ws.coincide(lower, upper) ? lower : upper);
  return true;
}

namespace {

// Where the slack stands when the row's logical is basic, so that neither side holds the row.
void placeFreely(const Slack &slack, PostsolveState &state) {
  const double rest = state.activity[slack.row];
  double x = !isInf(slack.lower) ? slack.lower : !isInf(slack.upper) ? slack.upper : 0;
  VarStatus status = !isInf(slack.lower)   ? VarStatus::AtLower
                     : !isInf(slack.upper) ? VarStatus::AtUpper
                                           : VarStatus::Free;
  VarStatus rowStatus = VarStatus::Basic;
  const double activity = rest + slack.coef * x;
  const bool below = activity<slack.rowLower, above = activity> slack.rowUpper;
  if (below || above || slack.rowLower == slack.rowUpper) {
    x = ((above ? slack.rowUpper : slack.rowLower) - rest) / slack.coef;
    status = VarStatus::Basic;
    rowStatus = above ? VarStatus::AtUpper : VarStatus::AtLower;
  }
  state.x[slack.col] = x;
  state.setCol(slack.col, status);
  state.setRow(slack.row, rowStatus);
}

// Which side of its widened range holds the row: -1 lower, 1 upper, 0 none.
int rangeSide(const Slack &slack, const PostsolveState &state) {
  if (state.hasBasis) {
    const VarStatus status = state.rowStatus[slack.row];
    if (slack.equation && status != VarStatus::Basic) return state.y[slack.row] < 0 ? 1 : -1;
    return status == VarStatus::AtLower ? -1 : status == VarStatus::AtUpper ? 1 : 0;
  }
  if (!state.hasDual || state.y[slack.row] == 0) return 0;
  return state.y[slack.row] > 0 ? -1 : 1;
}

}  // namespace

bool crushSlackCol(RecordReader record, RowImage &image) {
  const Slack slack = record.get<Slack>();
  if (image.value(slack.col) == 0) return true;
  const StoredEntries equation = record.entries();
  if (equation.count() == 0) return false;
  image.substitute(slack.col, slack.coef, slack.rowLower, equation);
  return true;
}

void undoSlackCol(RecordReader record, PostsolveState &state) {
  const Slack slack = record.get<Slack>();
  const int side = rangeSide(slack, state);
  if (state.hasPrimal) {
    const bool atUpper = (side < 0) == (slack.coef > 0);
    const double bound = atUpper ? slack.upper : slack.lower;
    if (side != 0 && state.hasBasis) {
      state.x[slack.col] = bound;
      state.setCol(slack.col, atUpper ? VarStatus::AtUpper : VarStatus::AtLower);
    } else {
      placeFreely(slack, state);
    }
    state.activity[slack.row] += slack.coef * state.x[slack.col];
  }
  if (!state.hasDual) return;
  state.d[slack.col] = -slack.coef * state.y[slack.row];
}

}  // namespace tarvik::presolve
