#include "mip/probing.h"

#include <algorithm>
#include <cmath>

namespace tarvik {

namespace {

// Probes without any success after which the rest is left.
constexpr int kPatience = 2000;
// Implied bounds are worth recording when they gain this share of the range.
constexpr double kLeastGain = 1e-3;
constexpr double kLargestRange = 1e6;

class Prober {
 public:
  Prober(Domain &domain, SolveControl &control, ImplicationTable *implications)
      : domain_(domain), control_(control), implications_(implications) {}

  ProbingResult run(double workLimit) {
    int useless = 0;
    for (const int j : order()) {
      if (control_.work.counted() > workLimit || useless > kPatience) break;
      if (control_.limits.poll(control_.work, 0) != StopReason::None) break;
      if (!domain_.isBinary(j)) continue;
      const int before = result_.fixed + result_.tightened;
      if (!probe(j)) {
        result_.infeasible = true;
        break;
      }
      useless = result_.fixed + result_.tightened > before ? 0 : useless + 1;
    }
    return result_;
  }

 private:
  // Columns in many rows first: most follows from them.
  Vec<int> order() const {
    const Problem &problem = domain_.problem();
    Vec<int> cols;
    for (const int j : problem.integers())
      if (domain_.isBinary(j)) cols.push_back(j);
    std::stable_sort(cols.begin(), cols.end(), [&](int a, int b) {
      return problem.cols().length(a) > problem.cols().length(b);
    });
    return cols;
  }

  struct Implied {
    int col;
    double lower, upper;
  };

  // Bounds after fixing the column to a value; false: the value is impossible.
  bool tryValue(int col, double value, Vec<Implied> &implied) {
    implied.clear();
    const int start = static_cast<int>(domain_.trail().size());
    const BoundSide side = value > 0.5 ? BoundSide::Lower : BoundSide::Upper;
    Vec<BoundChange> change;
    change.push_back({col, side, value});
    const bool possible = domain_.decide(change) && domain_.propagate(control_.work);
    if (possible) {
      for (int k = start; k < static_cast<int>(domain_.trail().size()); ++k) {
        const int j = domain_.trail()[k].col;
        implied.push_back({j, domain_.lower(j), domain_.upper(j)});
      }
    }
    domain_.backtrackTo(0);
    return possible;
  }

  bool fix(int col, double value) {
    ++result_.fixed;
    return domain_.tighten(col, BoundSide::Lower, value, {}) &&
           domain_.tighten(col, BoundSide::Upper, value, {}) && domain_.propagate(control_.work);
  }

  bool probe(int col) {
    const bool zero = tryValue(col, 0, ofZero_), one = tryValue(col, 1, ofOne_);
    if (!zero && !one) return false;
    if (!zero || !one) return fix(col, one ? 1 : 0);
    if (!takeCommon()) return false;
    if (implications_ && !implications_->isFull() && domain_.isBinary(col)) {
      record(col, false, ofZero_);
      record(col, true, ofOne_);
    }
    return true;
  }

  // What is not true without the probe. Sorted by column.
  void record(int binary, bool one, const Vec<Implied> &implied) {
    for (std::size_t k = 0; k < implied.size(); ++k) {
      const Implied &is = implied[k];
      const double lower = domain_.lower(is.col), upper = domain_.upper(is.col);
      if (is.col == binary || (k > 0 && implied[k - 1].col == is.col)) continue;
      const double least = kLeastGain * std::max(1.0, std::min(upper - lower, kLargestRange));
      if (is.upper < upper - least)
        implications_->add({binary, one, is.col, BoundSide::Upper, is.upper});
      if (is.lower > lower + least)
        implications_->add({binary, one, is.col, BoundSide::Lower, is.lower});
    }
  }

  // The hull of what both values imply.
  bool takeCommon() {
    const auto byCol = [](const Implied &a, const Implied &b) { return a.col < b.col; };
    std::sort(ofZero_.begin(), ofZero_.end(), byCol);
    std::sort(ofOne_.begin(), ofOne_.end(), byCol);
    std::size_t i = 0, k = 0;
    while (i < ofZero_.size() && k < ofOne_.size()) {
      if (ofZero_[i].col != ofOne_[k].col) {
        ofZero_[i].col < ofOne_[k].col ? ++i : ++k;
        continue;
      }
      const int j = ofZero_[i].col;
      if (!takeBound(j, BoundSide::Lower, std::min(ofZero_[i].lower, ofOne_[k].lower)) ||
          !takeBound(j, BoundSide::Upper, std::max(ofZero_[i].upper, ofOne_[k].upper)))
        return false;
      ++i;
      ++k;
    }
    return domain_.propagate(control_.work);
  }

  bool takeBound(int col, BoundSide side, double value) {
    if (!domain_.problem().isIntegral(col)) return true;
    const double old = side == BoundSide::Lower ? domain_.lower(col) : domain_.upper(col);
    if (side == BoundSide::Lower ? value <= old : value >= old) return true;
    ++result_.tightened;
    return domain_.tighten(col, side, value, {});
  }

  Domain &domain_;
  SolveControl &control_;
  ProbingResult result_;
  ImplicationTable *implications_;
  Vec<Implied> ofZero_, ofOne_;
};

}  // namespace

ProbingResult probeBinaries(Domain &domain, SolveControl &control, double workLimit,
                            ImplicationTable *implications) {
  return Prober(domain, control, implications).run(workLimit);
}

}  // namespace tarvik
