#include "lp/scaling.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>

#include "base/multiversion.h"

namespace tarvik {

namespace {

// A matrix whose entries all lie within this range is left as it is.
constexpr double kWellScaledMin = 0.2;
constexpr double kWellScaledMax = 5;
constexpr int kMaxPasses = 20;
// Passes end when the spread shrinks by less than this factor.
constexpr double kMinGain = 0.9;
// Factors beyond this would make tolerances meaningless in one of the two scales.
constexpr int kMaxExponent = 40;

// The exponent of a positive finite number as frexp() has it: the mantissa is in [1/2, 1).
int exponentOf(double x) { return static_cast<int>(std::bit_cast<std::uint64_t>(x) >> 52) - 1022; }

std::uint64_t mantissaBits(double x) { return std::bit_cast<std::uint64_t>(x) << 12; }

double twoToThe(int exponent) {
  exponent = std::clamp(exponent, -kMaxExponent, kMaxExponent);
  return std::bit_cast<double>(static_cast<std::uint64_t>(exponent + 1023) << 52);
}

double powerOfTwo(double factor) {
  if (!(factor > 0) || !std::isfinite(factor)) return 1;
  // The nearest in the logarithm: mantissas below sqrt(1/2) belong to the next lower power.
  const bool below = mantissaBits(factor) < mantissaBits(std::numbers::sqrt2);
  return twoToThe(exponentOf(factor) - (below ? 1 : 0));
}

// The factor that brings `largest` into (1/2, 1].
double equilibrating(double largest) {
  if (!(largest > 0) || !std::isfinite(largest)) return 1;
  return twoToThe(-exponentOf(largest) + (mantissaBits(largest) == 0 ? 1 : 0));
}

struct Range {
  double min = 1e300, max = 0;
  void add(double value) {
    min = std::min(min, value);
    max = std::max(max, value);
  }
  double geometricMean() const { return max > 0 ? std::sqrt(min) * std::sqrt(max) : 1; }
  double spread() const { return max > 0 ? std::sqrt(max / min) : 1; }
};

class Scaler {
 public:
  explicit Scaler(const LpModel &lp) : a_(lp.a) {
    scaling_.row.assign(static_cast<std::size_t>(lp.numRows), 1.0);
    scaling_.col.assign(static_cast<std::size_t>(lp.numCols), 1.0);
  }

  // A pass divides the rows by their means, then each column by its own.
  void geometric(double enough) {
    double spread = enough > 0 ? std::numeric_limits<double>::infinity() : worstSpread();
    for (int pass = 0; pass < kMaxPasses; ++pass) {
      const Vec<Range> rows = rowRanges();
      for (std::size_t i = 0; i < rows.size(); ++i) scaling_.row[i] /= rows[i].geometricMean();
      double now = 1;
      for (int j = 0; j < a_.numMajor; ++j) {
        const Range range = colRange(j);
        scaling_.col[j] /= range.geometricMean();
        now = std::max(now, range.spread());
      }
      if (now <= enough || now > kMinGain * spread) break;
      spread = now;
    }
    for (double &factor : scaling_.row) factor = powerOfTwo(factor);
    for (double &factor : scaling_.col) factor = powerOfTwo(factor);
  }

  void equilibrateRows() {
    const Vec<Range> rows = rowRanges();
    for (std::size_t i = 0; i < rows.size(); ++i) scaling_.row[i] *= equilibrating(rows[i].max);
  }

  void equilibrateCols() {
    for (int j = 0; j < a_.numMajor; ++j) scaling_.col[j] *= equilibrating(colRange(j).max);
  }

  Scaling take() { return std::move(scaling_); }

 private:
  double magnitude(NzIndex k, int j) const {
    return std::fabs(a_.value[k]) * scaling_.row[a_.index[k]] * scaling_.col[j];
  }

  Range colRange(int j) const {
    Range range;
    for (NzIndex k = a_.start[j]; k < a_.start[j + 1]; ++k)
      if (a_.value[k] != 0) range.add(magnitude(k, j));
    return range;
  }

  Vec<Range> rowRanges() const {
    Vec<Range> ranges(scaling_.row.size());
    for (int j = 0; j < a_.numMajor; ++j)
      for (NzIndex k = a_.start[j]; k < a_.start[j + 1]; ++k)
        if (a_.value[k] != 0) ranges[a_.index[k]].add(magnitude(k, j));
    return ranges;
  }

  // The largest ratio between two entries of one column, the measure that passes reduce.
  double worstSpread() const {
    double worst = 1;
    for (int j = 0; j < a_.numMajor; ++j) worst = std::max(worst, colRange(j).spread());
    return worst;
  }

  const SparseMatrix &a_;
  Scaling scaling_;
};

// Without an exit in the loop, which vector units can do then.
TARVIK_SIMD int countFarFromOne(const double *value, int count) {
  int far = 0;
  for (int k = 0; k < count; ++k) {
    const double size = std::fabs(value[k]);
    far += (size != 0) & ((size < kWellScaledMin) | !(size <= kWellScaledMax));
  }
  return far;
}

bool wellScaled(const SparseMatrix &a) {
  constexpr NzIndex kBlock = 1024;
  for (NzIndex k = 0; k < a.numNz(); k += kBlock) {
    const int count = static_cast<int>(std::min(kBlock, a.numNz() - k));
    if (countFarFromOne(a.value.data() + k, count) > 0) return false;
  }
  return true;
}

bool isTrivial(const Vec<double> &factors) {
  return std::all_of(factors.begin(), factors.end(), [](double f) { return f == 0 || f == 1; });
}

// The factors of the columns without one from the rows that have theirs, and then those of the
// other rows from the entries in the columns' scale. One pass over the matrix serves both.
void complete(const SparseMatrix &a, Scaling &scaling) {
  Vec<int> place(scaling.row.size(), -1);
  int missing = 0;
  for (std::size_t i = 0; i < place.size(); ++i)
    if (scaling.row[i] == 0) place[i] = missing++;
  Vec<Range> ranges(missing);
  for (int j = 0; j < a.numMajor; ++j) {
    const NzIndex begin = a.start[j], end = a.start[j + 1];
    double &factor = scaling.col[j];
    if (!(factor > 0)) {
      double largest = 0;
      for (NzIndex k = begin; k < end; ++k)
        largest = std::max(largest, std::fabs(a.value[k]) * scaling.row[a.index[k]]);
      factor = equilibrating(largest);
    }
    for (NzIndex k = begin; k < end && missing > 0; ++k)
      if (const int p = place[a.index[k]]; p >= 0 && a.value[k] != 0)
        ranges[p].add(std::fabs(a.value[k]) * factor);
  }
  for (std::size_t i = 0; i < place.size(); ++i)
    if (place[i] >= 0) scaling.row[i] = powerOfTwo(1 / ranges[place[i]].geometricMean());
}

}  // namespace

Scaling completeScaling(const LpModel &lp, int scaleFlag, Scaling known) {
  if (scaleFlag == 0) return {};
  // Where the known part was worth it the whole is.
  const bool mayBeWell = scaleFlag < 0 && isTrivial(known.row) && isTrivial(known.col);
  if (mayBeWell && wellScaled(lp.a)) return {};
  known.row.resize(static_cast<std::size_t>(lp.numRows), 0.0);
  known.col.resize(static_cast<std::size_t>(lp.numCols), 0.0);
  complete(lp.a, known);
  return known;
}

Scaling computeScaling(const LpModel &lp, int scaleFlag, double enough) {
  if (scaleFlag == 0 || lp.a.numNz() == 0) return {};
  if (scaleFlag < 0 && wellScaled(lp.a)) return {};
  Scaler scaler(lp);
  if (scaleFlag != 1) scaler.geometric(enough);
  if (scaleFlag == 1 || scaleFlag == 3) scaler.equilibrateRows();
  scaler.equilibrateCols();
  return scaler.take();
}

}  // namespace tarvik
