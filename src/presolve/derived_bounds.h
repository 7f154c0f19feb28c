// Column bounds that follow from the rows in several steps: the activity bounds of a row limit a
// column, that bound limits columns of other rows (Savelsbergh, 1994; Andersen and Andersen, 1995;
// Gondzio, 1997). They never become bounds of the model, where columns would come to rest on them
// and lose their reduced costs; they only show that a side of a row or a bound of a column is
// superfluous, or that no point is feasible.
//
// What removes a part of the model may not rest on that part, nor on anything that went before.
// Hence the tightenings are kept as a log that merely proposes: for a conclusion, the steps that it
// needs are done again on the model as it stands then, without the part in question. Only what
// that shows is concluded, so that neither circular arguments nor later changes of the model can
// lead astray. Every bound carries the error that it inherits when each row is off by one unit;
// what inherits too much is not used.
#pragma once

#include "presolve/workspace.h"

namespace tarvik::presolve {

class DerivedBounds {
 public:
  explicit DerivedBounds(Workspace &ws);

  // Tightens in rounds until little moves. Proves infeasibility where bounds clearly cross. False
  // when there is nothing to conclude from.
  bool propagate();

  // Whether the rest of the model implies a row's side without that row, a column's bound without
  // the column's bounds.
  bool impliesSide(int row, bool isUpper);
  bool impliesBound(int col, bool isUpper);
  int conclusions() const { return conclusions_; }

 private:
  // The largest or smallest value of a row, maybe without one column, and its inherited error.
  struct Extent {
    double sum = 0, error = 0;
    int infinite = 0;
  };
  struct Bound {
    double value;
    double error;  // 0 for bounds of the model
  };
  // One tightening by a side of a row, and the one of the same bound before.
  struct Step {
    int row, col;
    bool isUpper, bySideUpper;
    int previous;
  };

  static std::size_t slot(int col, bool isUpper) {
    return 2 * static_cast<std::size_t>(col) + (isUpper ? 1 : 0);
  }
  // A bound as the model and the current conclusion show it.
  Bound shown(int col, bool isUpper) const;
  template <class Sum, class BoundOf>
  Extent extent(int row, bool largest, int withoutCol, const BoundOf &boundOf) const;
  Extent shownExtent(int row, bool largest, int withoutCol) const;
  // By the bounds of the log: of a row as it was when it was last looked at, and without an entry.
  Extent proposedExtent(int row, bool largest) const;
  Extent without(const Extent &all, const Entry &entry, bool largest) const;
  // What a side of the entry's row and the extent of its other columns say about the column.
  Bound limit(const Entry &entry, bool bySideUpper, const Extent &rest) const;

  bool tightenBy(int row, bool bySideUpper);
  bool tighten(const Entry &entry, bool bySideUpper, const Extent &rest);
  bool crossed(const Bound &lower, const Bound &upper) const;
  void proveInfeasible(int col);
  void assembleProof(int col);

  // A conclusion: collects the steps it needs, does them again, forgets them.
  void start(int targetRow, int targetCol);
  void require(int col, bool isUpper, int before);
  void requireRest(int row, bool largest, int withoutCol, int before);
  bool replay();
  void replayStep(int at);
  void finish();
  bool showsBound(const Entry &entry, bool isUpper);

  Workspace &ws_;
  Vec<Bound> bounds_;  // by column: lower, upper
  Vec<int> last_;      // the latest step of each, -1: none
  Vec<Step> log_;
  Vec<char> pending_;    // rows to look at in the next round
  Vec<char> affected_;   // rows that have a column with a step
  Vec<Extent> extents_;  // of these, by row: smallest, largest
  double effort_ = 0;    // entries that may still be looked at
  double effortAtStart_ = 0;
  // What the current conclusion has shown, where it is more than the model says.
  Vec<Bound> shown_;
  Vec<char> isShown_;
  Vec<int> needed_;
  Vec<int> taken_;  // steps that moved a shown bound
  Vec<int> seen_;   // by step: the conclusion that has collected it
  int query_ = 0;
  int conclusions_ = 0;
  int targetRow_ = -1, targetCol_ = -1;
};

}  // namespace tarvik::presolve
