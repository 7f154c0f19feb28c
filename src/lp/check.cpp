#include "lp/check.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "base/compensated_sum.h"

namespace tarvik {

namespace {

// A reduced coefficient below this fraction of the terms it is the sum of is rounding noise.
constexpr double kCancellation = 1e-12;
// Errors of sums below it do not matter: no tolerance is smaller than ten times of it.
constexpr double kNegligible = 1e-10;
// What the summation of a proof's terms may lose, relative to their sizes.
constexpr double kSumError = 4 * std::numeric_limits<double>::epsilon();

// Not-a-number counts as the worst violation there is.
void note(double violation, double &worst, double &sum) {
  if (violation <= 0) return;
  if (std::isnan(violation)) violation = std::numeric_limits<double>::infinity();
  worst = std::max(worst, violation);
  sum += violation;
}

double outside(double value, double lower, double upper) {
  if (value >= lower && value <= upper) return 0;
  if (std::isnan(value)) return value;
  if (lower > -kInfBound && value < lower) return lower - value;
  if (upper < kInfBound && value > upper) return value - upper;
  return 0;
}

void noteDual(double dual, double value, double lower, double upper, double tol,
              SolutionQuality &quality) {
  if (dual == 0) return;
  const bool holdsLower = dual > 0;
  const double bound = holdsLower ? lower : upper;
  const double distance = isInf(bound) ? kInf : holdsLower ? value - lower : upper - value;
  if (!(distance <= tol)) note(std::fabs(dual), quality.dualViolation, quality.dualViolationSum);
  if (!isInf(bound)) {
    note(std::fabs(dual) * std::fabs(distance), quality.complementarity,
         quality.complementaritySum);
  }
}

// y'A, column by column, with the sum of the terms' magnitudes.
struct ReducedCoef {
  double value = 0;
  double size = 0;
};

ReducedCoef combine(const SparseMatrix &a, int col, const Vec<double> &y) {
  CompensatedSum sum;
  ReducedCoef result;
  for (NzIndex k = a.start[col]; k < a.start[col + 1]; ++k) {
    const double multiplier = y[a.index[k]];
    if (multiplier == 0) continue;
    sum.addProduct(a.value[k], multiplier);
    result.size += std::fabs(a.value[k] * multiplier);
  }
  result.value = sum.value();
  return result;
}

// Plain sums of so many terms of this total size are off by less than kNegligible.
bool plainSumSuffices(double size, int terms) {
  return size * terms * std::numeric_limits<double>::epsilon() < kNegligible;
}

// Sets the activities of listed rows again, by compensated sums; place is the position of a row in
// the list, or -1.
void compensate(const LpModel &lp, const Vec<double> &x, const Vec<int> &rows,
                const Vec<int> &place, Vec<double> &activity) {
  Vec<CompensatedSum> sums(rows.size());
  for (int j = 0; j < lp.numCols; ++j) {
    if (x[j] == 0) continue;
    for (NzIndex k = lp.a.start[j]; k < lp.a.start[j + 1]; ++k)
      if (const int p = place[lp.a.index[k]]; p >= 0) sums[p].addProduct(lp.a.value[k], x[j]);
  }
  for (std::size_t p = 0; p < rows.size(); ++p) activity[rows[p]] = sums[p].value();
}

// A x, with compensated sums only where plain ones are not exact enough.
Vec<double> exactActivities(const LpModel &lp, const Vec<double> &x) {
  struct Sum {
    double value = 0, size = 0;
    int terms = 0;
  };
  Vec<Sum> plain(static_cast<std::size_t>(lp.numRows));
  for (int j = 0; j < lp.numCols; ++j) {
    if (x[j] == 0) continue;
    for (NzIndex k = lp.a.start[j]; k < lp.a.start[j + 1]; ++k) {
      Sum &sum = plain[lp.a.index[k]];
      const double term = lp.a.value[k] * x[j];
      sum.value += term;
      sum.size += std::fabs(term);
      ++sum.terms;
    }
  }
  Vec<double> activity(lp.numRows);
  Vec<int> inexact, place;
  for (int i = 0; i < lp.numRows; ++i) {
    activity[i] = plain[i].value;
    if (plainSumSuffices(plain[i].size, plain[i].terms)) continue;
    if (place.empty()) place.assign(lp.numRows, -1);
    place[i] = static_cast<int>(inexact.size());
    inexact.push_back(i);
  }
  if (!inexact.empty()) compensate(lp, x, inexact, place, activity);
  return activity;
}

// cost_j - y'a_j - d_j, likewise.
double dualResidual(const LpModel &lp, const LpSolution &solution, int col) {
  const NzIndex begin = lp.a.start[col], end = lp.a.start[col + 1];
  double residual = lp.cost[col] - solution.colDual[col];
  double size = std::fabs(lp.cost[col]) + std::fabs(solution.colDual[col]);
  for (NzIndex k = begin; k < end; ++k) {
    const double term = lp.a.value[k] * solution.rowDual[lp.a.index[k]];
    residual -= term;
    size += std::fabs(term);
  }
  if (plainSumSuffices(size, static_cast<int>(end - begin) + 2)) return residual;
  CompensatedSum sum(lp.cost[col]);
  for (NzIndex k = begin; k < end; ++k)
    sum.addProduct(-lp.a.value[k], solution.rowDual[lp.a.index[k]]);
  sum.add(-solution.colDual[col]);
  return sum.value();
}

void checkPrimal(const LpModel &lp, const LpSolution &solution, const Vec<double> &activity,
                 SolutionQuality &quality) {
  CompensatedSum objective(lp.offset);
  for (int j = 0; j < lp.numCols; ++j) {
    const double value = solution.colValue[j];
    if (lp.cost[j] != 0 && value != 0) objective.addProduct(lp.cost[j], value);
    note(outside(value, lp.colLower[j], lp.colUpper[j]), quality.boundViolation,
         quality.boundViolationSum);
  }
  quality.objective = objective.value();
  for (int i = 0; i < lp.numRows; ++i) {
    const double value = activity[i];
    note(outside(value, lp.rowLower[i], lp.rowUpper[i]), quality.rowViolation,
         quality.rowViolationSum);
    if (!solution.rowActivity.empty()) {
      note(std::fabs(value - solution.rowActivity[i]), quality.activityResidual,
           quality.activityResidualSum);
    }
  }
}

// The largest value of (A'y)'x - y'r over column and row bounds must be negative for a dual ray
// y: then y'(Ax) >= y'r, which all feasible points satisfy, has no solution within the columns'
// bounds. Returns the gap relative to the size of its terms, 0 when a term is infinite.
double dualRayGap(const LpModel &lp, const Vec<double> &y) {
  CompensatedSum gap;
  double size = 0;
  const auto take = [&](double coef, double bound) {
    if (isInf(bound)) return false;
    gap.addProduct(coef, bound);
    size += std::fabs(coef * bound);
    return true;
  };
  for (int i = 0; i < lp.numRows; ++i)
    if (y[i] != 0 && !take(y[i], y[i] > 0 ? lp.rowLower[i] : lp.rowUpper[i])) return 0;
  for (int j = 0; j < lp.numCols; ++j) {
    const ReducedCoef z = combine(lp.a, j, y);
    if (std::isnan(z.value)) return 0;
    if (z.value == 0) continue;
    if (take(-z.value, z.value > 0 ? lp.colUpper[j] : lp.colLower[j])) continue;
    if (std::fabs(z.value) > kCancellation * z.size) return 0;
  }
  if (!(size > 0) || !std::isfinite(size)) return 0;
  return gap.value() / size - kSumError;
}

}  // namespace

SolutionQuality checkSolution(const LpModel &lp, const LpSolution &solution, double primalTol) {
  SolutionQuality quality;
  const bool havePrimal = static_cast<int>(solution.colValue.size()) == lp.numCols;
  Vec<double> activity;
  if (havePrimal) {
    activity = exactActivities(lp, solution.colValue);
    checkPrimal(lp, solution, activity, quality);
  }
  const bool haveRowDual = static_cast<int>(solution.rowDual.size()) == lp.numRows;
  const bool haveColDual = static_cast<int>(solution.colDual.size()) == lp.numCols;
  if (haveRowDual && havePrimal) {
    for (int i = 0; i < lp.numRows; ++i) {
      noteDual(solution.rowDual[i], activity[i], lp.rowLower[i], lp.rowUpper[i], primalTol,
               quality);
    }
  }
  if (haveColDual && havePrimal) {
    for (int j = 0; j < lp.numCols; ++j) {
      noteDual(solution.colDual[j], solution.colValue[j], lp.colLower[j], lp.colUpper[j], primalTol,
               quality);
    }
  }
  if (haveRowDual && haveColDual) {
    for (int j = 0; j < lp.numCols; ++j) {
      note(std::fabs(dualResidual(lp, solution, j)), quality.dualResidual, quality.dualResidualSum);
    }
  }
  return quality;
}

double farkasViolation(const LpModel &lp, const Vec<double> &farkas, double dropTol) {
  if (static_cast<int>(farkas.size()) != lp.numRows) return 0;
  double largest = 0;
  for (const double y : farkas) {
    if (!std::isfinite(y)) return 0;
    largest = std::max(largest, std::fabs(y));
  }
  // As it is first: with badly scaled rows small multipliers may matter. Then without ever more
  // noise, and never with a multiplier whose bound does not exist: any y is a proof that passes.
  double best = 0;
  for (const double tol : {0.0, 1e-15, 1e-12, dropTol}) {
    for (const double sign : {1.0, -1.0}) {
      Vec<double> ray(farkas);
      for (int i = 0; i < lp.numRows; ++i) {
        double &y = ray[i];
        y *= sign;
        if (std::fabs(y) < tol * largest || isInf(y > 0 ? lp.rowLower[i] : lp.rowUpper[i])) y = 0;
      }
      best = std::max(best, dualRayGap(lp, ray));
      if (best > 0) return best;
    }
  }
  return best;
}

double rayImprovement(const LpModel &lp, const Vec<double> &ray, double tol) {
  if (static_cast<int>(ray.size()) != lp.numCols) return 0;
  double norm = 0;
  for (const double r : ray) {
    if (!std::isfinite(r)) return 0;
    norm = std::max(norm, std::fabs(r));
  }
  if (norm == 0) return 0;
  // Noise against a finite bound is dropped, anything larger breaks the ray.
  Vec<double> direction(ray);
  CompensatedSum improvement;
  double size = 0;
  for (int j = 0; j < lp.numCols; ++j) {
    if (!isInf(direction[j] > 0 ? lp.colUpper[j] : lp.colLower[j])) {
      if (std::fabs(direction[j]) > tol * norm) return 0;
      direction[j] = 0;
    }
    improvement.addProduct(lp.cost[j], direction[j]);
    size += std::fabs(lp.cost[j] * direction[j]);
  }
  if (!(improvement.value() < -tol * size)) return 0;
  Vec<int> allRows(lp.numRows);
  std::iota(allRows.begin(), allRows.end(), 0);
  Vec<double> activity(lp.numRows);
  compensate(lp, direction, allRows, allRows, activity);
  Vec<double> terms(static_cast<std::size_t>(lp.numRows), 0.0);
  for (int j = 0; j < lp.numCols; ++j)
    for (NzIndex k = lp.a.start[j]; k < lp.a.start[j + 1]; ++k)
      terms[lp.a.index[k]] += std::fabs(lp.a.value[k] * direction[j]);
  for (int i = 0; i < lp.numRows; ++i) {
    const double value = activity[i];
    if (std::fabs(value) <= tol * std::max(norm, terms[i])) continue;
    if (!isInf(value > 0 ? lp.rowUpper[i] : lp.rowLower[i])) return 0;
  }
  return improvement.value() / norm;
}

}  // namespace tarvik
