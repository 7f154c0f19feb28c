// Puts a cut together, term by term, in doubled precision: columns, slacks (for which their rows
// are substituted) and the right-hand side, which is relaxed a little for rounding errors.
#pragma once

#include "mip/cuts/row_system.h"

namespace tarvik {

class CutAssembler {
 public:
  CutAssembler(const SeparationPoint &point, const RowSystem &rows);

  void addColumn(int col, double coef);
  void addSlack(int row, double coef);  // the plain slack, not in steps
  void addRhs(double value) { rhs_.add(value); }
  void addRhsProduct(double a, double b) { rhs_.addProduct(a, b); }
  // The cut, cleaned; empty again afterwards. False: it is unfit, or not violated by the point.
  bool finish(Cut &cut);

 private:
  const SeparationPoint *point_;
  const RowSystem *rows_;
  Vec<CompensatedSum> sum_;
  Vec<char> isUsed_;
  Vec<int> cols_;
  CompensatedSum rhs_;
};

}  // namespace tarvik
