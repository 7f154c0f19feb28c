// Which pricing rule an algorithm uses, and when it gives an expensive one up. Steepest edge pays
// for its norms with an extra solve an iteration; when the effort spent on norms outgrows the
// effort spent on pivot rows by a factor, devex takes over.
#pragma once

#include "simplex/simplex_options.h"

namespace tarvik {

enum class PricingRule {
  Partial = 0,        // primal: sections of columns; dual: the largest infeasibility
  SteepestExact = 1,  // steepest edge from exact initial norms
  Devex = 2,
  Steepest = 3,  // steepest edge from norms of 1
};

class PricingMode {
 public:
  enum class Change { None, ToSteepest, ToDevex };

  void start(PricingRule rule, int rows, int cols) {
    rule_ = rule;
    rows_ = rows;
    cols_ = cols;
    normEffort_ = rowEffort_ = pivotRows_ = 0;
  }
  PricingRule rule() const { return rule_; }
  bool steepest() const {
    return rule_ == PricingRule::Steepest || rule_ == PricingRule::SteepestExact;
  }
  // Work units spent on a pivot row and on the norms of one iteration.
  void chargeRow(double units) {
    rowEffort_ += units;
    ++pivotRows_;
  }
  void chargeNorms(double units) { normEffort_ += units; }

  // Asked now and then; the caller resets its weights after a change.
  Change check(double iterations);

 private:
  double devexThreshold(double iterations) const;

  PricingRule rule_ = PricingRule::Steepest;
  int rows_ = 0, cols_ = 0;
  double normEffort_ = 0, rowEffort_ = 0, pivotRows_ = 0;
};

}  // namespace tarvik
