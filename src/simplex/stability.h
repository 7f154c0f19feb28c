// Numerical safety of one solve: how stable the factors must be (the Markowitz threshold) and how
// many updates they may carry. Every sign of trouble makes both stricter, nothing is relaxed
// before the next solve, and when more stable factors no longer help the answer is extended
// precision or failure.
//
// The signs are: a singular basis, values that change when they are computed afresh, and an
// objective that does. Their statistics make the report of an LP solve.
#pragma once

#include "base/solve_control.h"
#include "simplex/simplex_options.h"

namespace tarvik {

// Count, extremes, sum and last value of a measure.
struct MeasureStats {
  int count = 0;
  double least = 0, largest = 0, last = 0, sum = 0;
  void add(double value);
};

struct LpStatistics {
  MeasureStats kappa, objectiveError, feasibilityLoss, primalResidual, dualResidual;
  MeasureStats repairs;  // variables replaced per singular basis
  void print(Log &log) const;
};

// What a fresh factorization showed about the values kept up to date since the last one.
struct Discrepancy {
  double change = 0;    // largest change of a value by recomputing it
  double scale = 0;     // rounding error that values of this size carry anyway
  double residual = 0;  // of the recomputed values, relative to their size
};

class Stability {
 public:
  enum class Repair { GoOn, RestartFromSlackBasis, Stop };
  enum class Check { Fine, Refactor, Extend, Fail };

  void startSolve(const SimplexOptions &options, int numRows);

  double markowitz() const { return markowitz_; }
  int updateLimit() const { return updateLimit_; }

  // Raises the threshold, never lowers it; a raise is announced.
  void tighten(double threshold, Log *log);
  void raise(double threshold);
  void shrinkInterval();

  // A factorization dropped so many variables; moved says whether the solve has iterated.
  Repair noteRepair(int dropped, bool moved, Log *log);
  void noteDiscrepancy(const Discrepancy &seen, Log *log);
  // The objective from new factors against the updated one.
  Check checkObjective(double recomputed, double updated, bool extended);
  // A factorization that was not asked for by trouble.
  void noteRegularFactorization() { forced_ = false; }

  bool extendRequested() const { return extendRequested_; }
  void clearExtendRequest() { extendRequested_ = false; }
  // Trouble that more care cannot mend.
  bool hopeless() const { return hopeless_; }

  LpStatistics statistics;

 private:
  double markowitz_ = 0.0078125;
  int updateLimit_ = 100;
  bool fixedInterval_ = false;
  int numRows_ = 0;
  int quad_ = -1;
  int endFactor_ = 1;
  bool quitOnSingular_ = false;
  int repairs_ = 0;
  int troubles_ = 0;  // refactorizations asked for by trouble
  bool forced_ = false;
  bool extendRequested_ = false;
  bool hopeless_ = false;
};

}  // namespace tarvik
