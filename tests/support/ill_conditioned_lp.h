// Generators of LPs that are hard for finite precision but whose answer is known by construction:
// a feasible point and a complementary dual are chosen first, bounds and costs follow from them.
#pragma once

#include <cmath>

#include "base/random.h"
#include "lp/lp_model.h"

namespace tarvik::test {

inline LpModel emptyLp(int rows, int cols) {
  LpModel lp;
  lp.numRows = rows;
  lp.numCols = cols;
  lp.a.clear(rows);
  lp.cost.assign(cols, 0.0);
  lp.colLower.assign(cols, 0.0);
  lp.colUpper.assign(cols, kInf);
  lp.rowLower.assign(rows, -kInf);
  lp.rowUpper.assign(rows, kInf);
  return lp;
}

inline void appendDense(LpModel &lp, const Vec<double> &column) {
  Vec<int> index;
  Vec<double> value;
  for (int i = 0; i < lp.numRows; ++i) {
    if (column[i] == 0) continue;
    index.push_back(i);
    value.push_back(column[i]);
  }
  lp.a.append(static_cast<int>(index.size()), index.data(), value.data());
}

// Rows are equalities or inequalities through A x0, costs A'y0 + d0 with d0 complementary to x0
// and y0 to the rows: x0 and y0 are optimal. Half of the columns are at their lower bound.
inline void makeOptimal(LpModel &lp, Random &random, double &objective) {
  const int m = lp.numRows, n = lp.numCols;
  Vec<long double> activity(m, 0.0L);
  Vec<double> x(n, 0.0), y(m);
  for (double &yi : y) yi = random.below(5);
  objective = 0;
  for (int j = 0; j < n; ++j) {
    const bool atBound = random.below(2) == 0;
    x[j] = atBound ? 0 : 1 + random.below(4);
    long double cost = atBound ? 1 + random.below(3) : 0;
    for (NzIndex k = lp.a.start[j]; k < lp.a.start[j + 1]; ++k) {
      activity[lp.a.index[k]] += static_cast<long double>(lp.a.value[k]) * x[j];
      cost += static_cast<long double>(lp.a.value[k]) * y[lp.a.index[k]];
    }
    lp.cost[j] = static_cast<double>(cost);
    objective += lp.cost[j] * x[j];
  }
  for (int i = 0; i < m; ++i) {
    lp.rowLower[i] = static_cast<double>(activity[i]);
    if (y[i] == 0) lp.rowLower[i] -= 1;
    if (random.below(3) == 0) lp.rowUpper[i] = lp.rowLower[i] + (y[i] == 0 ? 2 : 0);
  }
}

// a_ij = 1 / (i + j + 1): bases of k of its columns have condition numbers about e^(3.5 k).
inline LpModel hilbertLp(int size, std::uint64_t seed, double &objective) {
  LpModel lp = emptyLp(size, 2 * size);
  Random random(seed);
  for (int j = 0; j < 2 * size; ++j) {
    Vec<double> column(size);
    for (int i = 0; i < size; ++i) column[i] = 1.0 / (i + j + 1);
    appendDense(lp, column);
  }
  makeOptimal(lp, random, objective);
  return lp;
}

// Entries log-uniform over 10^-range .. 10^range.
inline LpModel wideRangeLp(int rows, int cols, double range, std::uint64_t seed,
                           double &objective) {
  LpModel lp = emptyLp(rows, cols);
  Random random(seed);
  for (int j = 0; j < cols; ++j) {
    Vec<double> column(rows, 0.0);
    for (double &a : column)
      if (random.below(3) == 0)
        a = (random.below(2) ? 1 : -1) * std::pow(10.0, random.uniform(-range, range));
    appendDense(lp, column);
  }
  makeOptimal(lp, random, objective);
  return lp;
}

// Every row has a twin that differs by noise of the given size: most bases are nearly singular.
inline LpModel nearlyParallelLp(int pairs, double noise, std::uint64_t seed, double &objective) {
  const int rows = 2 * pairs, cols = 3 * pairs;
  LpModel lp = emptyLp(rows, cols);
  Random random(seed);
  for (int j = 0; j < cols; ++j) {
    Vec<double> column(rows, 0.0);
    for (int i = 0; i < pairs; ++i) {
      if (random.below(2) == 0) continue;
      column[2 * i] = random.below(9) - 4;
      column[2 * i + 1] = column[2 * i] * (1 + noise * random.uniform(-1, 1));
    }
    appendDense(lp, column);
  }
  makeOptimal(lp, random, objective);
  return lp;
}

// A chain x_{k+1} = factor x_k: values and basis inverses grow geometrically.
inline LpModel growingChainLp(int length, double factor, std::uint64_t seed, double &objective) {
  LpModel lp = emptyLp(length, length + 1);
  Random random(seed);
  for (int j = 0; j <= length; ++j) {
    Vec<double> column(length, 0.0);
    if (j < length) column[j] = factor;
    if (j > 0) column[j - 1] = -1;
    appendDense(lp, column);
  }
  for (int i = 0; i < length; ++i) lp.rowLower[i] = lp.rowUpper[i] = 0;
  lp.colLower[0] = 1;
  for (int j = 0; j <= length; ++j) lp.cost[j] = 1 + random.below(3);
  objective = 0;
  for (int j = 0; j <= length; ++j) objective += lp.cost[j] * std::pow(factor, j);
  return lp;
}

}  // namespace tarvik::test
