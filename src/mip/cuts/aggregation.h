// Rows worth a try as the base of a rounding cut: each row of the relaxation, then sums of it with
// other rows that eliminate continuous columns far from their bounds, as long as nothing comes of
// it (Marchand and Wolsey, 2001).
#pragma once

#include <functional>

#include "mip/cuts/mir_kernel.h"

namespace tarvik {

struct AggregationLimits {
  int rows = 1000;     // that are started from
  int failures = 200;  // in a row, after which to give up
  int sums = 6;        // rows in a sum
  int cuts = 500;
  double work = 5e7;
};

class Aggregation {
 public:
  // `kernel` says how far columns are from their bounds.
  Aggregation(const SeparationPoint &point, const RowSystem &rows, const MirKernel &kernel);

  // Calls `attempt` with base rows; it says whether it made a cut.
  void run(const AggregationLimits &limits, const std::function<bool(const BaseRow &)> &attempt);

 private:
  Vec<int> startRows() const;
  bool isTight(int row) const;
  bool extend();
  int bestRowFor(int col, double &coef) const;

  const SeparationPoint *point_;
  const RowSystem *rows_;
  const MirKernel *kernel_;
  RowCombiner sum_;
  Vec<int> used_;
};

AggregationLimits aggregationLimits(const SeparationPoint &point, int level);

}  // namespace tarvik
