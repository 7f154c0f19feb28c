// Rounding that repairs as it goes: while rows are violated, a column of one of them is shifted so
// that the row comes nearer to its side, at the least expense of other rows; while columns are
// fractional, one of them is rounded towards fewer locks.
//
// Literature: Achterberg (2007), section 9.1.4.
#pragma once

#include "mip/heuristics/heuristic.h"
#include "mip/heuristics/moving_point.h"

namespace tarvik {

class Shifting : public Heuristic {
 public:
  const char *name() const override { return "Shifting"; }
  bool run(HeuristicContext &context) override;

 private:
  struct Shift {
    int col = -1;
    double value = 0, score = 0;
  };
  bool isFractional(const HeuristicContext &context, const MovingPoint &point, int col) const;
  void consider(const HeuristicContext &context, const MovingPoint &point, int col, double value,
                Shift &best) const;
  Shift shiftInRow(const HeuristicContext &context, const MovingPoint &point, int row) const;
  Shift rounding(const HeuristicContext &context, const MovingPoint &point) const;

  Vec<int> fractional_;
  Vec<double> ups_, downs_;  // by column: recent shifts, fading
};

}  // namespace tarvik
