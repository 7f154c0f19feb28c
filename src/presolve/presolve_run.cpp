#include "presolve/presolve_run.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "presolve/derived_bounds.h"

namespace tarvik {

using namespace presolve;

namespace {

// Reductions between two looks at limits and callbacks.
constexpr int kPollInterval = 512;
// A round of expensive reductions must remove this part of what is left for another to follow.
constexpr double kPayingPart = 1e-3;
constexpr int kMaxRounds = 20;
constexpr int kConservativeRounds = 2;
constexpr int kAutoFill = 10;
// Entries are linked by 32-bit positions; fill needs room.
constexpr NzIndex kMaxEntries = kMaxInt / 2;

}  // namespace

PresolveStatus PresolveRun::run(const LpModel &lp, const PresolveOptions &options,
                                SolveControl &control) {
  lp_ = &lp;
  startSeconds_ = wallSeconds();
  printedSecond_ = 0;
  ws = Workspace{};
  ws.options = options;
  ws.control = &control;
  resolveOptions();
  if (options.level == 0 || lp.a.numNz() > kMaxEntries) ws.options.reductionLimit = 0;
  ws.model.load(lp, ws.options);
  control.work.charge(static_cast<double>(10 * lp.a.numNz()));
  checkBounds(lp);
  if (!interrupted()) reduceInRounds();
  return finish();
}

void PresolveRun::resolveOptions() {
  PresolveOptions &o = ws.options;
  if (o.aggFill < 0) o.aggFill = o.level == 1 ? 0 : kAutoFill;
  if (o.keepPoints) {
    o.affine = true;
    o.dualReductions = false;
  }
  if (o.passes < 0) o.passes = o.level == 1 ? kConservativeRounds : kMaxRounds;
}

// Bounds that contradict each other prove infeasibility by themselves; no multipliers show it.
void PresolveRun::checkBounds(const LpModel &lp) {
  const auto crossed = [&](double lower, double upper) {
    return lower - upper > ws.feasibilityTol(lower) || lower >= kInfBound || upper <= -kInfBound;
  };
  for (int i = 0; i < lp.numRows; ++i)
    if (crossed(lp.rowLower[i], lp.rowUpper[i])) ws.infeasible();
  for (int j = 0; j < lp.numCols; ++j)
    if (crossed(lp.colLower[j], lp.colUpper[j]) ||
        (ws.model.col(j).integer && ws.model.col(j).lower > ws.model.col(j).upper))
      ws.infeasible();
  for (int i = 0; i < lp.numRows; ++i) ws.model.touchRow(i);
  for (int j = 0; j < lp.numCols; ++j) ws.model.touchCol(j);
}

void PresolveRun::reduceRow(int i) {
  const Row &row = ws.model.row(i);
  if (!row.alive) return;
  if (row.length == 1) {
    trySingletonRow(ws, i);
    return;
  }
  if (tryForcingRow(ws, i) || tryRedundantRow(ws, i)) {
    if (!row.alive || ws.finished()) return;
  }
  if (tryDoubletonEquation(ws, i)) return;
  if (row.singletons == 0 || !ws.options.singletonCols) return;
  for (const Entry &entry : ws.model.rowEntries(i))
    if (ws.model.col(entry.col).length == 1) ws.model.changedCols().push(entry.col);
}

void PresolveRun::reduceCol(int j) {
  const Col &col = ws.model.col(j);
  if (!col.alive) return;
  if (tryFixedOrEmptyCol(ws, j) || tryDualFixing(ws, j)) return;
  if (!ws.options.singletonCols || col.length != 1) return;
  if (!tryFreeSingletonCol(ws, j)) trySlackCol(ws, j);
}

void PresolveRun::reduceCheaply() {
  Vec<int> items;
  int seen = 0;
  ChangeQueue &rowQueue = ws.model.changedRows();
  ChangeQueue &colQueue = ws.model.changedCols();
  while (!ws.finished() && (!rowQueue.empty() || !colQueue.empty())) {
    rowQueue.takeAll(items);
    ws.charge(static_cast<double>(20 * items.size()));
    for (const int i : items) {
      if (ws.finished() || (++seen % kPollInterval == 0 && interrupted())) return;
      reduceRow(i);
    }
    colQueue.takeAll(items);
    ws.charge(static_cast<double>(20 * items.size()));
    for (const int j : items) {
      if (ws.finished() || (++seen % kPollInterval == 0 && interrupted())) return;
      reduceCol(j);
    }
  }
}

bool PresolveRun::runRound(int round) {
  const double before = ws.model.rowsLeft() + ws.model.colsLeft();
  const auto step = [&](bool (*reduction)(Workspace &)) {
    if (ws.finished() || interrupted()) return;
    if (reduction(ws)) reduceCheaply();
  };
  if (ws.options.parallel) step(mergeParallelRows);
  if (ws.options.parallel) step(mergeParallelCols);
  std::optional<DerivedBounds> derived;
  if (deriveBounds_ && !ws.finished() && derived.emplace(ws).propagate()) {
    ws.derived = &*derived;
    step(dropImpliedRows);
  }
  if (ws.options.dominated) step(fixDominatedCols);
  if (ws.options.aggregate > 0) step(substituteImpliedFree);
  if (derived) deriveBounds_ = derived->conclusions() > 0;
  ws.derived = nullptr;
  const double removed = before - ws.model.rowsLeft() - ws.model.colsLeft();
  return !ws.finished() && removed > kPayingPart * before;
}

void PresolveRun::reduceInRounds() {
  deriveBounds_ = ws.options.derivedBounds > 0 && !ws.options.integer;
  reduceCheaply();
  // Tried once each when the rounds have ended, which then begin anew.
  bool (*const finals[])(Workspace &) = {removeDependentRows, sparsifyRows};
  std::size_t next = 0;
  for (int round = 0; round < ws.options.passes && !ws.finished(); ++round) {
    if (runRound(round)) continue;
    bool found = false;
    while (!found && next < std::size(finals) && !interrupted()) found = finals[next++](ws);
    if (!found) break;
    reduceCheaply();
  }
}

bool PresolveRun::interrupted() {
  SolveControl &control = *ws.control;
  const double seconds = wallSeconds() - startSeconds_;
  const int rowsRemoved = ws.model.numRows() - ws.model.rowsLeft();
  const int colsRemoved = ws.model.numCols() - ws.model.colsLeft();
  if (std::floor(seconds) > printedSecond_) {
    printedSecond_ = std::floor(seconds);
    if (ws.options.logging && control.log) {
      control.log->print("%s removed %d rows and %d columns (presolve time = %.0fs) ...\n\n",
                         ws.options.name, rowsRemoved, colsRemoved, seconds);
    }
  }
  PresolveProgress progress;
  progress.rowsRemoved = rowsRemoved;
  progress.colsRemoved = colsRemoved;
  progress.sensesChanged = ws.stats.sensesChanged;
  progress.boundsChanged = ws.stats.boundsChanged;
  progress.coefsChanged = ws.stats.coefsChanged;
  if ((control.progress && !control.progress->onPresolve(progress)) ||
      control.limits.poll(control.work, 0) != StopReason::None)
    ws.verdict = Verdict::Stopped;
  return ws.finished();
}

PresolveStatus PresolveRun::finish() {
  const WorkingModel &model = ws.model;
  ws.stats.rowsRemoved = model.numRows() - model.rowsLeft();
  ws.stats.colsRemoved = model.numCols() - model.colsLeft();
  ws.stats.nonzerosRemoved = lp_->a.numNz() - model.entriesLeft();
  model.extract(reduced, rows, cols);
  ws.control->work.charge(static_cast<double>(10 * reduced.a.numNz()));
  ws.stats.seconds = wallSeconds() - startSeconds_;
  switch (ws.verdict) {
    case Verdict::Infeasible:
      return PresolveStatus::Infeasible;
    case Verdict::Unbounded:
      return PresolveStatus::Unbounded;
    case Verdict::InfeasibleOrUnbounded:
      return PresolveStatus::InfeasibleOrUnbounded;
    case Verdict::Stopped:
      return PresolveStatus::Stopped;
    case Verdict::None:
      break;
  }
  ws.releaseModel();
  if (reduced.numRows == 0 && reduced.numCols == 0) return PresolveStatus::Solved;
  return ws.stats.reductions == 0 ? PresolveStatus::Unchanged : PresolveStatus::Reduced;
}

Vec<double> PresolveRun::farkas() const {
  Vec<double> full;
  if (ws.verdict != Verdict::Infeasible || ws.proofRows.empty()) return full;
  PostsolveState state;
  state.hasDual = state.ignoreCosts = true;
  state.y.assign(static_cast<std::size_t>(lp_->numRows), 0.0);
  state.d.assign(static_cast<std::size_t>(lp_->numCols), 0.0);
  for (std::size_t k = 0; k < ws.proofRows.size(); ++k) {
    state.y[ws.proofRows[k]] = ws.proofMultipliers[k];
    for (const Entry &entry : ws.model.rowEntries(ws.proofRows[k]))
      state.d[entry.col] -= entry.value * ws.proofMultipliers[k];
  }
  undoAll(state);
  return state.y;
}

}  // namespace tarvik
