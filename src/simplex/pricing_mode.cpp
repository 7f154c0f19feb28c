#include "simplex/pricing_mode.h"

namespace tarvik {

namespace {
constexpr double kNever = 1e100;
// Below so many rows steepest edge always pays.
constexpr int kSmallModel = 15000;
}  // namespace

PricingMode::Change PricingMode::check(double iterations) {
  if (!steepest()) return Change::None;
  const double m = rows_;
  if (pivotRows_ >= m / 10 + 10 && iterations <= 3 * m && cols_ <= 3 * m &&
      normEffort_ > devexThreshold(iterations) * rowEffort_) {
    rule_ = PricingRule::Devex;
    return Change::ToDevex;
  }
  if (rule_ == PricingRule::SteepestExact && iterations > m + 1000 && 100 * m > cols_) {
    rule_ = PricingRule::Steepest;
    return Change::ToSteepest;
  }
  return Change::None;
}

// How many times the effort of the pivot rows the norms may take.
double PricingMode::devexThreshold(double iterations) const {
  if (rows_ < kSmallModel) return kNever;
  if (rule_ == PricingRule::Steepest) return 4.0;
  if (iterations < rows_ / 4) return kNever;
  return iterations < rows_ / 3 ? 4.0 : 3.0;
}

}  // namespace tarvik
