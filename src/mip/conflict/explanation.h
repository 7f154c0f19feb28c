// Why a bound holds, or why nothing is left: earlier bound changes of the trail that imply it,
// together with what holds everywhere. An explanation by an inequality takes the fewest and the
// earliest bounds that suffice: going back in time along the trail, each bound is weakened as far
// as the slack of the implication allows. Sums are in doubled precision, and an implication is
// accepted under the conditions only under which propagation accepts it.
//
// Literature: Achterberg (2007), chapter 11.
#pragma once

#include "mip/conflict/conflict_store.h"

namespace tarvik {

// sign * value'x <= rhs
struct InequalityView {
  const int *index;
  const double *value;
  int count;
  double sign;
  double rhs;
};

class Explainer {
 public:
  Explainer(const Domain &domain, const ConflictStore &conflicts)
      : domain_(domain), conflicts_(conflicts) {}

  // Appends the trail positions of an explanation; those that hold everywhere are left out. False:
  // there is none.
  bool explainChange(int position, Vec<int> &why, WorkMeter &work);
  bool explainFailure(Vec<int> &why, WorkMeter &work);
  // Why the inequality leaves nothing by at least `margin`, under the current bounds.
  bool explainViolation(const InequalityView &row, double margin, Vec<int> &why, WorkMeter &work);

 private:
  struct Term {
    double coef;  // its size
    int position;
  };

  // Why there is no room for more than: column `col` has the bound `value` on `side`.
  bool explainBound(Reason reason, int col, BoundSide side, double value, int time, Vec<int> &why,
                    WorkMeter &work);
  // Why the least activity without column `skip` is above `need`, up to an error of `accuracy`, at
  // a time.
  bool explainActivity(const InequalityView &row, int time, int skip, double need, double accuracy,
                       Vec<int> &why, WorkMeter &work);
  bool explainDisjuncts(int conflict, int col, BoundSide implied, int time, Vec<int> &why);
  InequalityView view(Reason reason, bool above) const;
  double tolerance(double rhs) const;

  const Domain &domain_;
  const ConflictStore &conflicts_;
  Vec<Term> terms_;
};

}  // namespace tarvik
