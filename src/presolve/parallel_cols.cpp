// Two columns that are multiples of each other. With costs in the same proportion they act as
// one: the kept column stands for kept + factor x gone, over the sum of their ranges. With
// another cost one of them is the cheaper way to the same effect: when it can go on for ever,
// the dearer one stays at its bound. Integral columns take part where no value gets lost.
//
// Undoing a merge: a sum at its bound has both columns at bounds; a basic sum leaves one of
// them basic and puts the other at a bound.

#include <algorithm>

#include "presolve/parallel_groups.h"
#include "presolve/reductions.h"

namespace tarvik::presolve {

namespace {

// Larger multiples of an integral column are no exact integers any more.
constexpr double kLargestFactor = 1e6;

struct ParallelCols {
  int kept, gone;
  double factor;  // gone = factor x kept
  double keptLower, keptUpper, goneLower, goneUpper;
  bool goneInteger;
};

double factorBetween(Workspace &ws, int kept, int gone) {
  const WorkingModel &model = ws.model;
  if (model.col(kept).length != model.col(gone).length) return 0;
  double factor = 0;
  for (auto it = model.colEntries(kept).begin(); it.position() >= 0; ++it)
    ws.positionOfRow[(*it).row] = it.position();
  bool parallel = true;
  for (const Entry &entry : model.colEntries(gone)) {
    const int position = ws.positionOfRow[entry.row];
    if (position < 0) {
      parallel = false;
      break;
    }
    const double value = model.entry(position).value;
    if (factor == 0) factor = entry.value / value;
    parallel = std::fabs(entry.value - factor * value) <= kParallel * std::fabs(entry.value);
    if (!parallel) break;
  }
  for (const Entry &entry : model.colEntries(kept)) ws.positionOfRow[entry.row] = -1;
  return parallel ? factor : 0;
}

// A free sum may end nonbasic at zero: both columns must then have bounds that add up to it.
bool restsAtZero(const ParallelCols &p) {
  if (isInf(p.keptLower) && isInf(p.keptUpper) && isInf(p.goneLower) && isInf(p.goneUpper))
    return true;
  for (const double k : {p.keptLower, p.keptUpper})
    for (const double g : {p.goneLower, p.goneUpper})
      if (!isInf(k) && !isInf(g) && k + p.factor * g == 0) return true;
  return false;
}

bool isIntegralFactor(double factor) {
  return std::fabs(factor) >= 1 && std::fabs(factor) <= kLargestFactor &&
         factor == std::round(factor);
}

// Every value of the sum that its bounds and kind allow must come from values of both columns.
bool sumIsComplete(const Col &kept, const Col &gone, double factor) {
  if (!gone.integer) return !kept.integer;
  const double range = kept.upper - kept.lower;
  if (!kept.integer) return range >= std::fabs(factor);
  return isIntegralFactor(factor) && range >= std::fabs(factor) - 1;
}

bool merge(Workspace &ws, ParallelCols p) {
  WorkingModel &model = ws.model;
  const Col &kept = model.col(p.kept), &gone = model.col(p.gone);
  if (!sumIsComplete(kept, gone, p.factor)) return false;
  p.goneInteger = gone.integer;
  const bool rising = p.factor > 0;
  const double low = rising ? p.goneLower : p.goneUpper, up = rising ? p.goneUpper : p.goneLower;
  const double lower = isInf(low) || isInf(p.keptLower) ? -kInf : p.keptLower + p.factor * low;
  const double upper = isInf(up) || isInf(p.keptUpper) ? kInf : p.keptUpper + p.factor * up;
  if (isInf(lower) && isInf(upper) && !restsAtZero(p)) return false;
  if (!ws.take()) return false;
  ws.stack.begin(RecordKind::ParallelCols);
  ws.stack.put(p);
  model.removeCol(p.gone);
  if (lower != kept.lower) model.setColLower(p.kept, lower);
  if (upper != kept.upper) model.setColUpper(p.kept, upper);
  return true;
}

// The pair with the roles of its columns exchanged.
ParallelCols exchanged(const ParallelCols &p) {
  return {p.gone, p.kept, 1 / p.factor, p.goneLower, p.goneUpper, p.keptLower, p.keptUpper, false};
}

// Fixes `dear` at the bound that its reduced cost, of the given sign, sends it to.
bool fixDearer(Workspace &ws, int dear, bool positive) {
  const Col &col = ws.model.col(dear);
  const double bound = positive ? col.lower : col.upper;
  if (isInf(bound)) {
    if (!ws.options.dualReductions) return false;
    ws.dualInfeasible();
    return true;
  }
  if (std::fabs(bound) > kHugeValue || !ws.take()) return false;
  fixCol(ws, dear, bound, positive ? FixedAt::Lower : FixedAt::Upper);
  return true;
}

// Steps of an integral column, each times the factor, are steps that the other can make up for.
bool makesUpFor(const Col &col, const Col &other, double factor) {
  return !col.integer || (other.integer && isIntegralFactor(factor));
}

// A bound that is implied is only removed where duals must be restored; an integral column keeps
// the bounds that make it binary.
bool goesOn(Workspace &ws, int j, bool above) {
  if (ws.options.integer) return above ? canOpenAbove(ws, j) : canOpenBelow(ws, j);
  return above ? openAbove(ws, j) : openBelow(ws, j);
}

// With d(gone) = factor x d(kept) + excess: a column that is open in one direction has a reduced
// cost of known sign, which may give the other's a strict one: it takes over from the other as
// much as that has.
bool dominate(Workspace &ws, const ParallelCols &p, double excess) {
  const Col &kept = ws.model.col(p.kept), &gone = ws.model.col(p.gone);
  const bool positive = excess > 0;
  const bool rising = p.factor > 0;
  if (makesUpFor(kept, gone, p.factor) && goesOn(ws, p.kept, positive == rising))
    return fixDearer(ws, p.gone, positive);
  if (makesUpFor(gone, kept, 1 / p.factor) && goesOn(ws, p.gone, !positive))
    return fixDearer(ws, p.kept, positive != rising);
  return false;
}

bool treatPair(Workspace &ws, int keptIndex, int goneIndex) {
  const double factor = factorBetween(ws, keptIndex, goneIndex);
  if (factor == 0) return false;
  const Col &kept = ws.model.col(keptIndex), &gone = ws.model.col(goneIndex);
  const ParallelCols p{keptIndex,  goneIndex,  factor,     kept.lower,
                       kept.upper, gone.lower, gone.upper, false};
  const double excess = gone.cost - factor * kept.cost;
  const double size = std::max(std::fabs(gone.cost), std::fabs(factor * kept.cost));
  if (std::fabs(excess) <= kParallel * size)
    return !ws.options.affine && (merge(ws, p) || merge(ws, exchanged(p)));
  if (std::fabs(excess) <= kStrictDual * std::max(1.0, size)) return false;
  return dominate(ws, p, excess);
}

}  // namespace

bool mergeParallelCols(Workspace &ws) {
  if (ws.options.keepPoints) return false;
  const WorkingModel &model = ws.model;
  ws.preparePositions();
  Vec<ParallelKey> keys;
  for (int j = 0; j < model.numCols(); ++j) {
    const Col &col = model.col(j);
    if (!col.alive || col.length == 0 || col.restricted) continue;
    double scale = 0;
    keys.push_back(parallelKey(model.colEntries(j), &Entry::row, j, scale));
    keys.back().order = col.cost / std::fabs(scale);
  }
  std::sort(keys.begin(), keys.end());
  ws.charge(static_cast<double>(10 * model.entriesLeft()) +
            50.0 * static_cast<double>(keys.size()));
  bool found = false;
  std::size_t kept = 0;
  for (std::size_t k = 1; k < keys.size() && !ws.finished(); ++k) {
    const int first = keys[kept].index, second = keys[k].index;
    if (keys[k].sameGroup(keys[kept]) && treatPair(ws, first, second)) {
      found = true;
      if (!model.col(first).alive) kept = k;
    } else {
      kept = k;
    }
  }
  return found;
}

namespace {

VarStatus statusAt(double value, double lower, double upper) {
  if (value == lower) return VarStatus::AtLower;
  return value == upper ? VarStatus::AtUpper : VarStatus::Free;
}

bool within(double value, double lower, double upper) {
  const double tol = Workspace::roundingTol(value);
  return (isInf(lower) || value >= lower - tol) && (isInf(upper) || value <= upper + tol);
}

void place(const ParallelCols &p, double kept, double gone, bool keptBasic, bool goneBasic,
           PostsolveState &state) {
  state.x[p.kept] = kept;
  state.x[p.gone] = gone;
  state.setCol(p.kept, keptBasic ? VarStatus::Basic : statusAt(kept, p.keptLower, p.keptUpper));
  state.setCol(p.gone, goneBasic ? VarStatus::Basic : statusAt(gone, p.goneLower, p.goneUpper));
}

// The gone column takes as little from the kept one as an integer can.
void splitIntegral(const ParallelCols &p, PostsolveState &state) {
  const double sum = state.x[p.kept];
  // Where the kept column is at its lower and its upper bound.
  double low = (sum - (p.factor > 0 ? p.keptUpper : p.keptLower)) / p.factor;
  double up = (sum - (p.factor > 0 ? p.keptLower : p.keptUpper)) / p.factor;
  low = std::max(isInf(low) || std::fabs(low) > kHugeValue ? -kInf : low, p.goneLower);
  up = std::min(isInf(up) || std::fabs(up) > kHugeValue ? kInf : up, p.goneUpper);
  const double slack = Workspace::roundingTol(sum) / std::max(1.0, std::fabs(p.factor));
  const double nearest = std::min(std::max(0.0, std::ceil(low - slack)), std::floor(up + slack));
  place(p, sum - p.factor * nearest, nearest, true, false, state);
}

// One column at a bound, the other basic.
void split(const ParallelCols &p, PostsolveState &state) {
  const double sum = state.x[p.kept];
  for (const double gone : {p.goneLower, p.goneUpper}) {
    const double kept = sum - p.factor * gone;
    if (!isInf(gone) && within(kept, p.keptLower, p.keptUpper))
      return place(p, kept, gone, true, false, state);
  }
  for (const double kept : {p.keptLower, p.keptUpper}) {
    const double gone = (sum - kept) / p.factor;
    if (!isInf(kept) && within(gone, p.goneLower, p.goneUpper))
      return place(p, kept, gone, false, true, state);
  }
  place(p, sum, 0, true, false, state);
}

// Both columns at the bounds that make up a bound of the sum.
void splitAtBound(const ParallelCols &p, bool atLower, PostsolveState &state) {
  const double gone = atLower == (p.factor > 0) ? p.goneLower : p.goneUpper;
  place(p, atLower ? p.keptLower : p.keptUpper, gone, false, false, state);
}

void splitZero(const ParallelCols &p, PostsolveState &state) {
  for (const double k : {p.keptLower, p.keptUpper})
    for (const double g : {p.goneLower, p.goneUpper})
      if (!isInf(k) && !isInf(g) && k + p.factor * g == 0)
        return place(p, k, g, false, false, state);
  place(p, 0, 0, false, false, state);
}

}  // namespace

// The sum is known, its parts are not.
bool crushParallelCols(RecordReader record, RowImage &image) {
  const auto p = record.get<ParallelCols>();
  const double ofKept = image.value(p.kept), ofGone = image.take(p.gone);
  const double size = std::max(std::fabs(ofGone), std::fabs(p.factor * ofKept));
  return std::fabs(ofGone - p.factor * ofKept) <= kParallel * size;
}

void undoParallelCols(RecordReader record, PostsolveState &state) {
  const auto p = record.get<ParallelCols>();
  if (state.hasDual) state.d[p.gone] = p.factor * state.d[p.kept];
  if (!state.hasPrimal) return;
  if (p.goneInteger) return splitIntegral(p, state);
  const VarStatus status = state.hasBasis ? state.colStatus[p.kept] : VarStatus::Basic;
  if (status == VarStatus::AtLower || status == VarStatus::AtUpper)
    splitAtBound(p, status == VarStatus::AtLower, state);
  else if (status == VarStatus::Free)
    splitZero(p, state);
  else
    split(p, state);
}

}  // namespace tarvik::presolve
