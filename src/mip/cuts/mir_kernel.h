// Rounding of one row: bounds are substituted so that all variables are nonnegative, integral
// variables are complemented where that helps, the row is divided, and a rounding function is
// applied to it:
//  - mixed-integer rounding with complementing, several divisors tried (Marchand and Wolsey,
//    2001), of which a Gomory mixed-integer cut is the case of a tableau row and divisor 1;
//  - the strong Chvatal-Gomory function (Letchford and Lodi, 2002), for rows whose continuous
//    variables can be dropped.
// Both take rows with slacks; these are substituted out of the cut in the end.
#pragma once

#include "mip/cuts/cut_assembler.h"
#include "mip/cuts/variable_bounds.h"

namespace tarvik {

enum class Rounding { MixedInteger, StrongCg };

class MirKernel {
 public:
  // Without variable bounds only plain ones are substituted.
  MirKernel(const SeparationPoint &point, const RowSystem &rows, const VariableBounds *bounds);

  // Takes sign * row <= sign * rhs. False: variables without bounds are in the way.
  bool load(const BaseRow &row, double sign, Rounding rounding);
  // The best cut that the heuristic search over divisors and complements finds.
  bool bestCut(Cut &cut);
  // The cut with this divisor as the variables stand.
  bool cutWith(double divisor, Cut &cut);

  // The distance of a column to its nearest bound at the point, variable ones included.
  double boundDistance(int col) const;

 private:
  struct Integral {
    int var;
    double coef, lower, upper, x;
    bool atUpper;
    double distance() const { return atUpper ? upper - x : x - lower; }
  };
  // t = x - (coef * binary + constant) or, from above, the negated; slacks are their own.
  struct Continuous {
    int var;
    double coef;  // of t
    double value;
    bool fromAbove;
    int binary;  // -1: a plain bound
    double binaryCoef, constant;
  };
  struct Trial {
    double divisor = 0, efficacy = 0;
  };

  bool isSlack(int var) const { return var >= rows_->numCols(); }
  bool isIntegral(int var) const;
  double lowerOf(int var) const;
  double upperOf(int var) const;
  double valueOf(int var) const;
  void addIntegral(int var, double coef);
  bool addContinuous(int var, double coef);
  bool dropTiny(int var, double coef);
  bool substitute(int col, double coef);
  Continuous fromBelow(int col, const VariableBound *bound, double coef) const;
  Continuous fromAbove(int col, const VariableBound *bound, double coef) const;
  bool finishIntegrals();
  void complement(Integral &term);

  bool rhsFraction(double divisor, double &floorRhs, double &f0) const;
  double rounded(double coef, double f0) const;
  double efficacyWith(double divisor) const;
  void collectDivisors(Vec<double> &divisors) const;
  void improveByComplementing(Trial &best);
  bool build(double divisor, Cut &cut);
  void putIntegral(const Integral &term, double coef);
  void putContinuous(const Continuous &term, double coef);

  const SeparationPoint *point_;
  const RowSystem *rows_;
  const VariableBounds *bounds_;
  Rounding rounding_ = Rounding::MixedInteger;
  Vec<int> place_;  // by variable: among integrals_, -1: not there
  Vec<Integral> integrals_;
  Vec<Continuous> continuous_;  // with a negative coefficient; the others do no harm
  CompensatedSum rhs_;          // after all substitutions
  double magnitude_ = 0;        // of what was summed into it
  int rank_ = 0;
  CutAssembler out_;
};

}  // namespace tarvik
