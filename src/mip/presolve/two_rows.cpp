#include "mip/presolve/two_rows.h"

#include <algorithm>
#include <cmath>

#include "base/compensated_sum.h"
#include "mip/presolve/model_editor.h"
#include "mip/presolve/restrictions.h"

namespace tarvik {

namespace {

// Work in all, and for each entry of the matrix.
constexpr double kWork = 1e6;
constexpr double kWorkShare = 30;
constexpr int kPartners = 3;
constexpr int kLeastShared = 2;
// Longer columns say little about which rows belong together, longer rows cost much.
constexpr int kLongestCol = 100;
constexpr int kLongestRow = 1000;
// Multipliers and bounds beyond these lose digits.
constexpr double kLargestMultiplier = 1e4;
constexpr double kLargestBound = 1e6;
constexpr double kCancelled = 1e-11;
constexpr double kRounding = 1e-9;
// A violation of the row that stays, within the tolerance, comes back in the one that went times
// the multiplier.
constexpr double kLargestOfRedundant = 1;
// Rows may be violated by this share of the tolerance without what is dropped.
constexpr double kSafeShare = 0.1;

class TwoRows {
 public:
  TwoRows(MipModel &model, const MipTolerances &tolerances, WorkMeter &work)
      : model_(model),
        lp_(model.lp),
        tolerances_(tolerances),
        work_(work),
        rows_(transpose(model.lp.a)),
        restricted_(restrictedColumns(model)),
        shared_(lp_.numRows, 0),
        gone_(lp_.numRows, 0) {}

  TwoRowResult run() {
    const double limit = work_.counted() + kWork + kWorkShare * static_cast<double>(lp_.a.numNz());
    for (int i = 0; i < lp_.numRows && !result_.infeasible; ++i) {
      if (work_.counted() > limit) break;
      if (rows_.length(i) < kLeastShared || rows_.length(i) > kLongestRow) continue;
      findPartners(i);
      for (const int partner : partners_)
        if (!gone_[i] && !result_.infeasible) treat(i, partner);
    }
    removeGone();
    return result_;
  }

 private:
  // A column of either row.
  struct Term {
    int col;
    double a, c;
    double lower, upper;
  };
  // The inequality with the least slack; no multiplier: there is none that is worth anything.
  struct Combination {
    double multiplier = 0, slack = kInf, rounding = 0;
  };

  void findPartners(int row);
  void treat(int first, int second);
  void merge(int first, int second);
  void treatSides(int first, double signOfFirst, int second, double signOfSecond);
  bool multiplierRange(double signOfA, double &low, double &high) const;
  Combination leastSlack(double signOfA, double b, double d);
  Combination combine(double multiplier, double signOfA, double b, double d) const;
  void tighten(const Combination &both);
  // -a in the place of a, with the negated side: the row ax <= b is redundant.
  bool provesRedundant(const Combination &most) const {
    return most.multiplier > 0 && most.multiplier <= kLargestOfRedundant &&
           most.slack <= std::min(most.rounding, kSafeShare * tolerances_.primal);
  }
  void relax(int row, double sign);
  void removeGone();
  // The side of sign x row <= side; infinite where there is none.
  double side(int row, double sign) const {
    return sign > 0 ? lp_.rowUpper[row] : -lp_.rowLower[row];
  }
  bool isEquation(int row) const { return lp_.rowLower[row] == lp_.rowUpper[row]; }

  MipModel &model_;
  LpModel &lp_;
  const MipTolerances &tolerances_;
  WorkMeter &work_;
  SparseMatrix rows_;
  Vec<char> restricted_;
  Vec<int> shared_;  // by row: scratch
  Vec<char> gone_;   // by row
  Vec<int> partners_, touched_;
  Vec<Term> terms_;
  Vec<std::pair<double, double>> steps_;  // multipliers, and how much the slope rises there
  TwoRowResult result_;
};

// Rows behind this one that share most columns with it.
void TwoRows::findPartners(int row) {
  touched_.clear();
  for (NzIndex k = rows_.start[row]; k < rows_.start[row + 1]; ++k) {
    const int j = rows_.index[k];
    if (lp_.a.length(j) > kLongestCol) continue;
    work_.charge(lp_.a.length(j));
    for (NzIndex e = lp_.a.start[j]; e < lp_.a.start[j + 1]; ++e) {
      const int other = lp_.a.index[e];
      if (other <= row || gone_[other] || rows_.length(other) > kLongestRow) continue;
      if (shared_[other]++ == 0) touched_.push_back(other);
    }
  }
  partners_.clear();
  for (const int other : touched_)
    if (shared_[other] >= kLeastShared) partners_.push_back(other);
  const std::size_t count = std::min<std::size_t>(kPartners, partners_.size());
  std::partial_sort(
      partners_.begin(), partners_.begin() + static_cast<std::ptrdiff_t>(count), partners_.end(),
      [this](int x, int y) { return shared_[x] != shared_[y] ? shared_[x] > shared_[y] : x < y; });
  partners_.resize(count);
  for (const int other : touched_) shared_[other] = 0;
}

void TwoRows::merge(int first, int second) {
  terms_.clear();
  NzIndex f = rows_.start[first], s = rows_.start[second];
  const NzIndex endF = rows_.start[first + 1], endS = rows_.start[second + 1];
  while (f < endF || s < endS) {
    const int ofFirst = f < endF ? rows_.index[f] : kMaxInt;
    const int ofSecond = s < endS ? rows_.index[s] : kMaxInt;
    const int j = std::min(ofFirst, ofSecond);
    const double a = ofFirst == j ? rows_.value[f++] : 0, c = ofSecond == j ? rows_.value[s++] : 0;
    terms_.push_back({j, a, c, lp_.colLower[j], lp_.colUpper[j]});
  }
  work_.charge(20.0 * static_cast<double>(terms_.size()));
}

void TwoRows::treat(int first, int second) {
  merge(first, second);
  for (const double signOfFirst : {1.0, -1.0})
    for (const double signOfSecond : {1.0, -1.0})
      if (!result_.infeasible) treatSides(first, signOfFirst, second, signOfSecond);
}

void TwoRows::treatSides(int first, double signOfFirst, int second, double signOfSecond) {
  const double b = side(first, signOfFirst), d = side(second, signOfSecond);
  if (isInf(b) || isInf(d)) return;
  for (Term &term : terms_) {
    term.a *= signOfFirst;
    term.c *= signOfSecond;
    term.lower = lp_.colLower[term.col];
    term.upper = lp_.colUpper[term.col];
  }
  const Combination both = leastSlack(1, b, d);
  if (both.multiplier > 0) tighten(both);
  // Is one of them redundant?
  if (!result_.infeasible && !isEquation(first)) {
    const Combination most = leastSlack(-1, -b, d);
    if (provesRedundant(most)) relax(first, signOfFirst);
  }
  const bool stillThere = !isInf(side(first, signOfFirst));
  for (Term &term : terms_) std::swap(term.a, term.c);
  if (!result_.infeasible && stillThere && !isEquation(second)) {
    const Combination most = leastSlack(-1, -d, b);
    if (provesRedundant(most)) relax(second, signOfSecond);
  }
  for (Term &term : terms_) {
    std::swap(term.a, term.c);
    term.a *= signOfFirst;
    term.c *= signOfSecond;
  }
}

// Multipliers with which no column of the combination stands at an infinite bound.
bool TwoRows::multiplierRange(double signOfA, double &low, double &high) const {
  for (const Term &term : terms_) {
    const double a = signOfA * term.a, c = term.c;
    for (const bool below : {true, false}) {
      if (!isInf(below ? term.lower : term.upper)) continue;
      // The coefficient must not be positive (negative).
      const double ofA = below ? a : -a, ofC = below ? c : -c;
      if (ofA <= 0 && ofC <= 0) continue;
      if (ofA >= 0 && ofC >= 0) return false;
      if (ofA > 0)
        low = std::max(low, -a / c);
      else
        high = std::min(high, -a / c);
    }
  }
  return low <= high;
}

// b + md less the least activity of a + mc.
TwoRows::Combination TwoRows::combine(double multiplier, double signOfA, double b, double d) const {
  CompensatedSum slack(b);
  slack.addProduct(multiplier, d);
  double size = std::max(std::fabs(b), std::fabs(multiplier * d));
  for (const Term &term : terms_) {
    const double a = signOfA * term.a, mc = multiplier * term.c, sum = a + mc;
    if (std::fabs(sum) <= kCancelled * std::fabs(a)) continue;
    const double bound = sum > 0 ? term.lower : term.upper;
    if (std::fabs(bound) > kLargestBound) return {};
    slack.addProduct(-sum, bound);
    size = std::max({size, std::fabs(a * bound), std::fabs(mc * bound)});
  }
  return {multiplier, slack.value(), kRounding * size};
}

TwoRows::Combination TwoRows::leastSlack(double signOfA, double b, double d) {
  double low = 0, high = kInf;
  if (!multiplierRange(signOfA, low, high)) return {};
  steps_.clear();
  CompensatedSum slope(d);  // of the slack, just above `low`
  for (const Term &term : terms_) {
    if (term.c == 0) continue;
    const double a = signOfA * term.a, at = -a / term.c;
    const bool turns = a * term.c < 0 && at > low;
    const bool positive = turns ? a > 0 : term.c > 0;
    const double bound = positive ? term.lower : term.upper;
    if (isInf(bound)) return {};  // the range ends where it begins
    slope.addProduct(-term.c, bound);
    if (turns && at <= high)
      steps_.push_back({at, isInf(term.lower) || isInf(term.upper)
                                ? kInf
                                : std::fabs(term.c) * (term.upper - term.lower)});
  }
  std::sort(steps_.begin(), steps_.end());
  double multiplier = low, rise = slope.value();
  for (const auto &[at, step] : steps_) {
    if (rise >= 0) break;
    multiplier = at;
    rise = isInf(step) ? kInf : rise + step;
  }
  // Without an end the second row is infeasible by itself; that is for others to say.
  if (rise < 0 || multiplier > kLargestMultiplier || multiplier < 1 / kLargestMultiplier) return {};
  return combine(multiplier, signOfA, b, d);
}

void TwoRows::tighten(const Combination &both) {
  const double multiplier = both.multiplier;
  double size = 1;
  for (const Term &term : terms_)
    size = std::max({size, std::fabs(term.a), std::fabs(multiplier * term.c)});
  if (both.slack <
      -both.rounding - tolerances_.primal * size * static_cast<double>(terms_.size())) {
    result_.infeasible = true;
    return;
  }
  const double slack = std::max(both.slack + both.rounding, 0.0);
  for (Term &term : terms_) {
    if (model_.kind[term.col] != VarKind::Integer || restricted_[term.col]) continue;
    const double sum = term.a + multiplier * term.c;
    if (std::fabs(sum) <= kRounding * size || slack >= std::fabs(sum) * (term.upper - term.lower))
      continue;
    double &bound = sum > 0 ? lp_.colUpper[term.col] : lp_.colLower[term.col];
    const double implied = sum > 0 ? std::floor(term.lower + slack / sum + tolerances_.primal)
                                   : std::ceil(term.upper + slack / sum - tolerances_.primal);
    if (sum > 0 ? implied >= bound : implied <= bound) continue;
    bound = implied;
    ++result_.bounds;
  }
  for (Term &term : terms_) {
    term.lower = lp_.colLower[term.col];
    term.upper = lp_.colUpper[term.col];
  }
}

void TwoRows::relax(int row, double sign) {
  (sign > 0 ? lp_.rowUpper[row] : lp_.rowLower[row]) = sign * kInf;
  ++result_.sides;
  gone_[row] = isInf(lp_.rowLower[row]) && isInf(lp_.rowUpper[row]);
}

void TwoRows::removeGone() {
  ModelEditor editor(model_);
  bool any = false;
  for (int i = 0; i < lp_.numRows; ++i) {
    if (!gone_[i]) continue;
    editor.removeRow(i);
    any = true;
  }
  if (any) editor.apply();
}

}  // namespace

TwoRowResult reduceTwoRows(MipModel &model, const MipTolerances &tolerances, WorkMeter &work) {
  return TwoRows(model, tolerances, work).run();
}

}  // namespace tarvik
