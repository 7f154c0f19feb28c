// Bounds on the row duals that every dual feasible point satisfies, with a record of how each
// was found. They start from the rows' sides (a row without an upper bound has a dual >= 0) and
// are tightened by columns that are open above or below: such a column is an inequality on the
// duals, y'a <= cost or y'a >= cost. A column bound that the rows imply counts as open, since it
// could be removed. Integral and restricted columns say nothing: the duals are those of the LP that
// remains when they are fixed.
//
// A conclusion from these bounds changes the model; the conditions that it rests on must still
// hold in the changed model, or its duals could break them and restored duals would have wrong
// signs. The secure... functions see to this for one conclusion: the columns of its derivation
// must still be there, the rows whose signs it uses must still be inequalities (both other than
// those that the conclusion is about), and column bounds that it takes as open are removed.
#pragma once

#include "presolve/workspace.h"

namespace tarvik::presolve {

class DualBounds {
 public:
  explicit DualBounds(Workspace &ws);

  // One round of tightening by all open columns; false when nothing changed.
  bool propagate();

  struct Range {
    double min = 0, max = 0;
    int minInf = 0, maxInf = 0;
  };
  // The range of y'a over the dual bounds.
  Range combination(int col) const;
  double lower(int row) const { return bound(row, false); }
  double upper(int row) const { return bound(row, true); }

  // Secures what the upper (or lower) end of combination(col) rests on without the column.
  bool secureCombination(int col, bool upperEnd);
  // Secures what a row's dual bound rests on without the row's own sign.
  bool secureBound(int row, bool isUpper);

 private:
  // One tightening: a bound of a row's dual, the column it came from, and the one before.
  struct Derivation {
    int row, col;
    bool isUpper;
    bool fromAbove;  // the column was taken as open above (y'a <= cost), else as open below
    int previous;
    double value;
  };

  double bound(int row, bool isUpper) const {
    const int last = last_[2 * row + (isUpper ? 1 : 0)];
    return last >= 0 ? log_[last].value : initial_[2 * row + (isUpper ? 1 : 0)];
  }
  bool tightenBy(int col);
  bool tighten(const Entry &entry, bool fromAbove, const Range &range, double cost);
  void require(int row, bool isUpper, int before);
  void requireInputs(int col, bool upperEnd, int before, int exceptRow);
  void startQuery(int targetRow, int targetCol);
  bool secure();

  Workspace &ws_;
  Vec<double> initial_;  // by row: lower, upper
  Vec<int> last_;        // the latest derivation of each, -1: none
  Vec<char> openAbove_, openBelow_;
  Vec<Derivation> log_;
  // The derivations that a conclusion needs, and whether one of its conditions is gone.
  Vec<int> needed_;
  Vec<int> seen_;  // by derivation: the query that has collected it
  int query_ = 0;
  int targetRow_ = -1, targetCol_ = -1;  // what the conclusion is about
  bool broken_ = false;
};

}  // namespace tarvik::presolve
