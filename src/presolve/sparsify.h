// Cancels entries of dense models by adding multiples of equations to other rows (Chang and
// McCormick, 1992, A hierarchical algorithm for making sparse matrices sparser; Gondzio, 1997;
// nonzero cancellation in Achterberg, Bixby, Gu, Rothberg and Weninger, 2020, Presolve reductions
// in mixed integer programming).
//
// For an equation e and a row i that share columns, the multiple that cancels most is the most
// frequent ratio of their entries; it counts what it cancels less the entries that only e has. A
// row that can win must have more than half of e's columns, hence one of the shorter half: only
// there candidates are looked for. Equations are taken shortest first.
//
// Multiples are used only where they are harmless: of moderate size, entries of a row keep their
// range, entries and sides their digits (what nearly cancels without being rounding noise forbids
// the multiple), and rows of integral columns with integral coefficients stay such rows.
//
// Columns, points and costs stay as they are, so that neither translated rows nor lost solutions
// are a concern. Undoing, where row i has become i + multiple x e: e's dual gets the multiple of
// i's. The basis serves both models, since the basis matrices differ by the same row operation,
// unless the logical of e is basic and that of i is not. Then e, at its side by chance, has a dual
// all the same (if i has one), and no exchange with i mends that: the full model's basis needs
// another column, which takes a ratio test to find. Records before this one see e nonbasic, as its
// dual demands; at the end its logical is made basic again, and who asked for the solution is told
// that the basis is but a start.
#pragma once

#include "presolve/workspace.h"

namespace tarvik::presolve {

class Sparsifier {
 public:
  explicit Sparsifier(Workspace &ws) : ws_(ws), model_(ws.model) {}
  // True when entries have gone.
  bool run();

 private:
  // What a row must keep: the range of its entries, integrality, digits.
  struct RowNature {
    double smallest = kInf, largest = 0;
    bool integral = true;
    double loss = 1;  // bounds the growth of relative rounding errors by cancellation
  };
  struct Ratio {
    double value;
    int count;
  };

  bool denseEnough() const;
  void studyRows();
  Vec<int> equations() const;
  void useEquation(int e);
  void findCandidates();
  void tryRow(int e, int i);
  void countRatios();
  bool tryMultiple(int e, int i, double multiple);
  bool keepsNature(const RowNature &nature, int col, double sum) const;
  double movedSide(double side, int e, double multiple) const;
  bool keepsSides(int e, int i, double multiple) const;
  void add(int e, int i, double multiple);

  Workspace &ws_;
  WorkingModel &model_;
  Vec<RowNature> natures_;
  Vec<Entry> equation_;  // the entries of the equation in work, those of short columns first
  Vec<double> coef_;     // the same by column
  Vec<int> candidates_;  // rows that may win by it
  Vec<int> seen_;        // by row: the last use of an equation that made it a candidate
  int uses_ = 0;
  Vec<double> sums_;       // entries of the changed row, in the equation's order
  Vec<double> quotients_;  // multiples that cancel an entry
  Vec<Ratio> ratios_;      // the same, counted
  double worthwhile_ = 0;  // the share of an equation's length that is to be won by it
  double effort_ = 0;      // entries touched
};

}  // namespace tarvik::presolve
