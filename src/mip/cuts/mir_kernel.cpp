#include "mip/cuts/mir_kernel.h"

#include <algorithm>
#include <cmath>

namespace tarvik {

namespace {
// Coefficients below this share of the largest one are taken out by a bound.
constexpr double kTinyShare = 1e-10;
// Bounds beyond this are too inaccurate, or too weak, to be substituted.
constexpr double kLargestBound = 1e7;
// The fraction of the right-hand side keeps away from integers.
constexpr double kLeastFraction = 0.01;
constexpr double kLargestFraction = 0.995;
constexpr double kLeastEfficacy = 1e-4;
constexpr int kMostDivisors = 12;
constexpr int kMostComplements = 30;
// Share of the summed magnitudes by which right-hand sides are relaxed for rounding errors.
constexpr double kSafety = 1e-14;
// A strong rounding function has jumps; arguments are moved by this much to the safe side.
constexpr double kJumpSafety = 1e-9;
constexpr double kWhole = 1e-12;  // what counts as an integer there

bool usable(double bound) { return std::fabs(bound) <= kLargestBound; }
}  // namespace

MirKernel::MirKernel(const SeparationPoint &point, const RowSystem &rows,
                     const VariableBounds *bounds)
    : point_(&point),
      rows_(&rows),
      bounds_(bounds),
      place_(rows.numCols() + rows.numRows(), -1),
      out_(point, rows) {}

bool MirKernel::isIntegral(int var) const {
  return isSlack(var) ? rows_->slack(var - rows_->numCols()).step > 0
                      : rows_->problem().isIntegral(var);
}
double MirKernel::lowerOf(int var) const { return isSlack(var) ? 0 : point_->global->lower(var); }
double MirKernel::upperOf(int var) const {
  if (!isSlack(var)) return point_->global->upper(var);
  const SlackInfo &slack = rows_->slack(var - rows_->numCols());
  if (isInf(slack.upper)) return kInf;
  return slack.step > 0 ? std::floor(slack.upper / slack.step + 1e-9) : slack.upper;
}
double MirKernel::valueOf(int var) const {
  if (!isSlack(var)) return rows_->x()[var];
  const SlackInfo &slack = rows_->slack(var - rows_->numCols());
  return slack.step > 0 ? slack.value / slack.step : slack.value;
}

// --- taking a row ---

bool MirKernel::load(const BaseRow &row, double sign, Rounding rounding) {
  for (const Integral &term : integrals_) place_[term.var] = -1;
  integrals_.clear();
  continuous_.clear();
  rounding_ = rounding;
  rank_ = row.rank;
  rhs_ = CompensatedSum(sign * row.rhs);
  magnitude_ = std::fabs(row.rhs);
  double largest = 0;
  for (const double c : row.coef) largest = std::max(largest, std::fabs(c));
  point_->work->charge(10.0 * static_cast<double>(row.var.size()));
  for (std::size_t k = 0; k < row.var.size(); ++k) {
    const int var = row.var[k];
    const double coef = sign * row.coef[k];
    if (std::fabs(coef) <= kTinyShare * largest) {
      if (!dropTiny(var, coef)) return false;
    } else if (isIntegral(var)) {
      addIntegral(var, coef);
    } else if (!addContinuous(var, coef)) {
      return false;
    }
  }
  return finishIntegrals();
}

bool MirKernel::dropTiny(int var, double coef) {
  const double bound = coef > 0 ? lowerOf(var) : upperOf(var);
  if (isInf(bound)) return false;
  rhs_.addProduct(-coef, bound);
  return true;
}

void MirKernel::addIntegral(int var, double coef) {
  if (place_[var] < 0) {
    place_[var] = static_cast<int>(integrals_.size());
    integrals_.push_back({var, 0, lowerOf(var), upperOf(var), valueOf(var), false});
  }
  integrals_[place_[var]].coef += coef;
}

bool MirKernel::addContinuous(int var, double coef) {
  if (!isSlack(var)) return substitute(var, coef);
  if (coef < 0) {
    if (rounding_ == Rounding::StrongCg) return false;
    continuous_.push_back({var, coef, valueOf(var), false, -1, 0, 0});
  }
  return true;
}

MirKernel::Continuous MirKernel::fromBelow(int col, const VariableBound *bound, double coef) const {
  const double x = rows_->x()[col];
  if (bound)
    return {col,         coef,           x - bound->at(rows_->x()), false, bound->binary,
            bound->coef, bound->constant};
  return {col, coef, x - lowerOf(col), false, -1, 0, lowerOf(col)};
}
MirKernel::Continuous MirKernel::fromAbove(int col, const VariableBound *bound, double coef) const {
  const double x = rows_->x()[col];
  if (bound)
    return {col,         -coef,          bound->at(rows_->x()) - x, true, bound->binary,
            bound->coef, bound->constant};
  return {col, -coef, upperOf(col) - x, true, -1, 0, upperOf(col)};
}

bool MirKernel::substitute(int col, double coef) {
  const Vec<double> &x = rows_->x();
  const double lower = lowerOf(col), upper = upperOf(col);
  const VariableBound *below = bounds_ ? bounds_->greatestLower(col, x) : nullptr;
  const VariableBound *above = bounds_ ? bounds_->leastUpper(col, x) : nullptr;
  const double slack = point_->problem->tolerances().primal;
  if (below && usable(lower) && below->at(x) < lower - slack) below = nullptr;
  if (above && usable(upper) && above->at(x) > upper + slack) above = nullptr;
  const bool hasLower = below || usable(lower), hasUpper = above || usable(upper);
  if (!hasLower && !hasUpper) return false;
  const Continuous low = fromBelow(col, below, coef), up = fromAbove(col, above, coef);
  bool useLower = hasLower && (!hasUpper || low.value <= up.value);
  if (rounding_ == Rounding::StrongCg) {
    // What remains must have a positive coefficient.
    useLower = coef > 0;
    if (useLower ? !hasLower : !hasUpper) return false;
  }
  Continuous term = useLower ? low : up;
  term.value = std::max(0.0, term.value);
  rhs_.addProduct(-coef, term.constant);
  magnitude_ += std::fabs(coef * term.constant);
  if (term.binary >= 0) addIntegral(term.binary, coef * term.binaryCoef);
  if (term.coef < 0) continuous_.push_back(term);
  return true;
}

bool MirKernel::finishIntegrals() {
  std::size_t kept = 0;
  for (Integral &term : integrals_) {
    place_[term.var] = -1;
    if (term.coef == 0) continue;
    const bool hasLower = usable(term.lower), hasUpper = usable(term.upper);
    if (!hasLower && !hasUpper) return false;
    magnitude_ += std::fabs(term.coef) * std::max(1.0, std::fabs(hasLower ? term.lower : 0));
    if (term.lower == term.upper) {
      rhs_.addProduct(-term.coef, term.lower);
      continue;
    }
    term.atUpper = !hasLower || (hasUpper && term.upper - term.x < term.x - term.lower);
    rhs_.addProduct(-term.coef, term.atUpper ? term.upper : term.lower);
    integrals_[kept++] = term;
  }
  integrals_.resize(kept);
  return kept > 0;
}

void MirKernel::complement(Integral &term) {
  rhs_.addProduct(term.coef, term.atUpper ? term.upper : term.lower);
  term.atUpper = !term.atUpper;
  rhs_.addProduct(-term.coef, term.atUpper ? term.upper : term.lower);
}

// --- rounding ---

bool MirKernel::rhsFraction(double divisor, double &floorRhs, double &f0) const {
  double rhs = (rhs_.value() + kSafety * magnitude_) / divisor;
  if (rounding_ == Rounding::StrongCg) rhs += kJumpSafety;
  floorRhs = std::floor(rhs);
  f0 = rhs - floorRhs;
  return f0 >= kLeastFraction && f0 <= kLargestFraction && std::fabs(rhs) < 1e6;
}

double MirKernel::rounded(double coef, double f0) const {
  if (rounding_ == Rounding::MixedInteger) {
    const double floorCoef = std::floor(coef);
    return floorCoef + std::max(0.0, coef - floorCoef - f0) / (1 - f0);
  }
  const double whole = std::round(coef);
  if (std::fabs(coef - whole) <= kWhole) return whole;
  const double safe = coef - kJumpSafety;
  const double floorCoef = std::floor(safe), f = safe - floorCoef;
  const double k = std::ceil(1 / f0) - 1;
  return f <= f0 ? floorCoef : floorCoef + std::ceil(k * (f - f0) / (1 - f0)) / (k + 1);
}

double MirKernel::efficacyWith(double divisor) const {
  double floorRhs = 0, f0 = 0;
  if (!rhsFraction(divisor, floorRhs, f0)) return 0;
  double activity = 0, square = 0;
  for (const Integral &term : integrals_) {
    const double g = rounded((term.atUpper ? -term.coef : term.coef) / divisor, f0);
    activity += g * term.distance();
    square += g * g;
  }
  const double scale = 1 / (divisor * (1 - f0));
  for (const Continuous &term : continuous_) {
    const double g = term.coef * scale;
    activity += g * term.value;
    square += g * g;
  }
  return square > 0 ? (activity - floorRhs) / std::sqrt(square) : 0;
}

void MirKernel::collectDivisors(Vec<double> &divisors) const {
  const double slack = point_->problem->tolerances().primal;
  const auto collect = [&](bool strictlyInside) {
    for (const Integral &term : integrals_) {
      if (static_cast<int>(divisors.size()) >= kMostDivisors) return;
      const bool inside = term.x > term.lower + slack && term.x < term.upper - slack;
      const double divisor = std::fabs(term.coef);
      if (inside != strictlyInside) continue;
      const bool known = std::any_of(divisors.begin(), divisors.end(),
                                     [&](double d) { return std::fabs(d - divisor) <= 1e-6 * d; });
      if (!known && divisor > 1e-6 && divisor < 1e6) divisors.push_back(divisor);
    }
  };
  collect(true);
  if (divisors.empty()) collect(false);
}

// Complements, one at a time, those variables that are in the middle of their range.
void MirKernel::improveByComplementing(Trial &best) {
  Vec<std::pair<double, int>> order;
  const double slack = point_->problem->tolerances().primal;
  for (std::size_t k = 0; k < integrals_.size(); ++k) {
    const Integral &term = integrals_[k];
    if (!usable(term.lower) || !usable(term.upper)) continue;
    if (term.x <= term.lower + slack || term.x >= term.upper - slack) continue;
    order.push_back({std::fabs(term.x - 0.5 * (term.lower + term.upper)), static_cast<int>(k)});
  }
  std::sort(order.begin(), order.end());
  if (static_cast<int>(order.size()) > kMostComplements) order.resize(kMostComplements);
  for (const auto &[distance, k] : order) {
    complement(integrals_[k]);
    const double efficacy = efficacyWith(best.divisor);
    if (efficacy > best.efficacy)
      best.efficacy = efficacy;
    else
      complement(integrals_[k]);
  }
  point_->work->charge(4.0 * static_cast<double>(integrals_.size() * order.size()));
}

bool MirKernel::bestCut(Cut &cut) {
  Vec<double> divisors;
  collectDivisors(divisors);
  point_->work->charge(5.0 * static_cast<double>(integrals_.size() * (divisors.size() + 4)));
  Trial best;
  for (const double divisor : divisors) {
    const double efficacy = efficacyWith(divisor);
    if (efficacy > best.efficacy) best = {divisor, efficacy};
  }
  if (best.efficacy <= 0) return false;
  const double first = best.divisor;
  for (const double part : {2.0, 4.0, 8.0}) {
    const double efficacy = efficacyWith(first / part);
    if (efficacy > best.efficacy) best = {first / part, efficacy};
  }
  improveByComplementing(best);
  return best.efficacy >= kLeastEfficacy && build(best.divisor, cut);
}

bool MirKernel::cutWith(double divisor, Cut &cut) {
  point_->work->charge(4.0 * static_cast<double>(integrals_.size() + continuous_.size()));
  return efficacyWith(divisor) >= kLeastEfficacy && build(divisor, cut);
}

// --- back to columns ---

void MirKernel::putIntegral(const Integral &term, double coef) {
  const double signedCoef = term.atUpper ? -coef : coef;
  out_.addRhsProduct(signedCoef, term.atUpper ? term.upper : term.lower);
  if (isSlack(term.var)) {
    const int row = term.var - rows_->numCols();
    out_.addSlack(row, signedCoef / rows_->slack(row).step);
  } else {
    out_.addColumn(term.var, signedCoef);
  }
}

void MirKernel::putContinuous(const Continuous &term, double coef) {
  if (isSlack(term.var)) return out_.addSlack(term.var - rows_->numCols(), coef);
  const double signedCoef = term.fromAbove ? -coef : coef;
  out_.addColumn(term.var, signedCoef);
  if (term.binary >= 0) out_.addColumn(term.binary, -signedCoef * term.binaryCoef);
  out_.addRhsProduct(signedCoef, term.constant);
}

bool MirKernel::build(double divisor, Cut &cut) {
  double floorRhs = 0, f0 = 0;
  if (!rhsFraction(divisor, floorRhs, f0)) return false;
  out_.addRhs(floorRhs);
  for (const Integral &term : integrals_) {
    const double g = rounded((term.atUpper ? -term.coef : term.coef) / divisor, f0);
    if (g != 0) putIntegral(term, g);
  }
  for (const Continuous &term : continuous_) putContinuous(term, term.coef / (divisor * (1 - f0)));
  cut.rank = rank_ + 1;
  return out_.finish(cut);
}

double MirKernel::boundDistance(int col) const {
  const Vec<double> &x = rows_->x();
  double distance = std::min(x[col] - lowerOf(col), upperOf(col) - x[col]);
  if (!bounds_) return distance;
  if (const VariableBound *bound = bounds_->leastUpper(col, x))
    distance = std::min(distance, bound->at(x) - x[col]);
  if (const VariableBound *bound = bounds_->greatestLower(col, x))
    distance = std::min(distance, x[col] - bound->at(x));
  return distance;
}

}  // namespace tarvik
