// What every reduction gets: the working model, the stack it records on, options, statistics and
// the verdict. A reduction first asks take() whether it may act (the reduction limit), pushes its
// record, then changes the model. Once a verdict is reached everybody returns.
#pragma once

#include <algorithm>
#include <cmath>

#include "presolve/postsolve_stack.h"
#include "presolve/tolerances.h"

namespace tarvik::presolve {

enum class Verdict { None, Infeasible, Unbounded, InfeasibleOrUnbounded, Stopped };

class DerivedBounds;

struct Workspace {
  WorkingModel model;
  PostsolveStack stack;
  PresolveOptions options;
  PresolveStats stats;
  SolveControl *control = nullptr;
  Verdict verdict = Verdict::None;
  // A dual argument was used that holds only if an optimum exists: an infeasible remainder may
  // then come from an unbounded model.
  bool assumedOptimum = false;
  // Multipliers of rows (as they are now) that prove infeasibility.
  Vec<int> proofRows;
  Vec<double> proofMultipliers;
  DerivedBounds *derived = nullptr;  // during a round: what several rows together imply
  int substitutionVisit = 0;         // clock of the last search for substitutions
  // Scratch: entry positions of one row by column, of one column by row, else -1.
  Vec<int> positionOf, positionOfRow;

  // The smallest pivot, relative to the largest entry around it, that a reduction may divide by.
  double relativePivot(double smallest) const {
    return std::max(smallest, 1 / options.multiplierLimit);
  }

  bool finished() const {
    return verdict != Verdict::None || stats.reductions >= options.reductionLimit;
  }
  // Asks for permission for one reduction.
  bool take() {
    if (finished()) return false;
    ++stats.reductions;
    return true;
  }
  void preparePositions() {
    positionOf.resize(static_cast<std::size_t>(model.numCols()), -1);
    positionOfRow.resize(static_cast<std::size_t>(model.numRows()), -1);
  }
  // Keeps what postsolve reads beside the reduced model.
  void releaseModel() {
    model = WorkingModel{};
    positionOf = {};
    positionOfRow = {};
    stack.shrink();
  }
  void charge(double units) { control->work.charge(units); }

  // A row that cannot reach its lower (sign 1) or upper bound (sign -1) proves infeasibility.
  void infeasibleRow(int row, int sign) {
    verdict = Verdict::Infeasible;
    proofRows.assign(1, row);
    proofMultipliers.assign(1, sign);
  }
  void infeasible() {
    verdict = Verdict::Infeasible;
    proofRows.clear();
  }
  void dualInfeasible() { verdict = Verdict::InfeasibleOrUnbounded; }

  double feasibilityTol(double bound) const {
    return options.primalTol * std::max(1.0, 1e-3 * std::fabs(bound));
  }
  // Bounds so close that they are one: a column that rests on one of them rests on both.
  static bool coincide(double lower, double upper) {
    return upper - lower <= kCoincidence * std::max(1.0, std::fabs(lower));
  }
  // Two values that only rounding separates.
  static double roundingTol(double value) { return kRounding * std::max(1.0, std::fabs(value)); }
};

}  // namespace tarvik::presolve
