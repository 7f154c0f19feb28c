// Random LPs for differential tests: small models whose mix of equalities, ranges, free
// variables, ties and redundancies reaches the corners of a kernel, deterministic in the seed.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <utility>

#include "base/random.h"
#include "lp/lp_model.h"

namespace tarvik::test {

// How many models a test tries: its own number, or TARVIK_RANDOM_LPS for longer runs.
inline int randomLpCount(int usual) {
  const char *text = std::getenv("TARVIK_RANDOM_LPS");
  return text ? std::atoi(text) : usual;
}

struct RandomLpOptions {
  int maxRows = 6;
  int maxCols = 8;
  double density = 0.45;
  // Integral data in a small range makes ties and degeneracy; fractional data makes rounding.
  double fractional = 0.3;     // probability that a model has fractional data
  double plantFeasible = 0.6;  // probability that row bounds are placed around a known point
};

// Builds a model from rows given as dense coefficients.
inline LpModel denseLp(std::initializer_list<double> cost,
                       std::initializer_list<std::pair<double, double>> colBounds,
                       std::initializer_list<std::initializer_list<double>> rows,
                       std::initializer_list<std::pair<double, double>> rowBounds) {
  LpModel lp;
  lp.numCols = static_cast<int>(cost.size());
  lp.numRows = static_cast<int>(rows.size());
  lp.cost.assign(cost.begin(), cost.end());
  for (const auto &[low, up] : colBounds) lp.colLower.push_back(low), lp.colUpper.push_back(up);
  for (const auto &[low, up] : rowBounds) lp.rowLower.push_back(low), lp.rowUpper.push_back(up);
  lp.a.clear(lp.numRows);
  for (int j = 0; j < lp.numCols; ++j) {
    Vec<int> index;
    Vec<double> value;
    int i = 0;
    for (const auto &row : rows) {
      if (row.begin()[j] != 0) index.push_back(i), value.push_back(row.begin()[j]);
      ++i;
    }
    lp.a.append(static_cast<int>(index.size()), index.data(), value.data());
  }
  return lp;
}

class RandomLp {
 public:
  RandomLp(std::uint64_t seed, const RandomLpOptions &options)
      : random_(seed), options_(options), fractional_(random_.uniform() < options.fractional) {}

  LpModel generate() {
    LpModel lp;
    lp.numRows = random_.below(options_.maxRows + 1);
    lp.numCols = 1 + random_.below(options_.maxCols);
    const bool planted = random_.uniform() < options_.plantFeasible;
    const double density = options_.density * (0.4 + 1.2 * random_.uniform());
    Vec<double> point, activity(static_cast<std::size_t>(lp.numRows), 0.0);
    lp.a.clear(lp.numRows);
    for (int j = 0; j < lp.numCols; ++j) {
      columnBounds(lp);
      lp.cost.push_back(random_.uniform() < 0.3 ? 0 : number(6));
      point.push_back(pointWithin(lp.colLower[j], lp.colUpper[j]));
      randomColumn(lp, j, density);
      for (NzIndex k = lp.a.start[j]; k < lp.a.start[j + 1]; ++k)
        activity[lp.a.index[k]] += lp.a.value[k] * point[j];
    }
    if (lp.numRows > 1 && random_.uniform() < 0.25) repeatRow(lp, activity);
    for (int i = 0; i < lp.numRows; ++i) rowBounds(lp, planted ? activity[i] : number(8));
    if (random_.uniform() < 0.2) lp.offset = number(5);
    return lp;
  }

 private:
  double number(int range) {
    if (fractional_) return random_.uniform(-range, range);
    return random_.below(2 * range + 1) - range;
  }
  double width() { return fractional_ ? random_.uniform(0, 6) : random_.below(6); }

  void columnBounds(LpModel &lp) {
    double low = random_.uniform() < 0.5 ? 0 : number(4);
    double up = low + width();
    const double kind = random_.uniform();
    if (kind < 0.35)
      up = kInf;
    else if (kind < 0.45)
      low = -kInf;
    else if (kind < 0.6)
      low = -kInf, up = kInf;
    lp.colLower.push_back(low);
    lp.colUpper.push_back(up);
  }

  double pointWithin(double low, double up) {
    if (isInf(low) && isInf(up)) return number(3);
    if (isInf(low)) return up - width();
    if (isInf(up)) return low + width();
    const double kind = random_.uniform();
    return kind < 0.4 ? low : kind < 0.7 ? up : 0.5 * (low + up);
  }

  // A fresh column, or a multiple of an earlier one.
  void randomColumn(LpModel &lp, int j, double density) {
    Vec<int> index;
    Vec<double> value;
    if (j > 0 && random_.uniform() < 0.12) {
      const int like = random_.below(j);
      const double factor = random_.uniform() < 0.5 ? 1 : -2;
      for (NzIndex k = lp.a.start[like]; k < lp.a.start[like + 1]; ++k)
        index.push_back(lp.a.index[k]), value.push_back(factor * lp.a.value[k]);
      if (random_.uniform() < 0.6) lp.cost[j] = factor * lp.cost[like];
    } else {
      for (int i = 0; i < lp.numRows; ++i) {
        if (random_.uniform() >= density) continue;
        const double entry = number(3);
        if (entry != 0) index.push_back(i), value.push_back(entry);
      }
    }
    lp.a.append(static_cast<int>(index.size()), index.data(), value.data());
  }

  // Makes a row a multiple of another one.
  void repeatRow(LpModel &lp, Vec<double> &activity) {
    const int from = random_.below(lp.numRows);
    const int to = (from + 1 + random_.below(lp.numRows - 1)) % lp.numRows;
    const double factor = random_.uniform() < 0.5 ? 1 : -2;
    SparseMatrix rows = transpose(lp.a), repeated;
    repeated.clear(lp.numCols);
    for (int i = 0; i < lp.numRows; ++i) {
      const int source = i == to ? from : i;
      Vec<double> values(rows.value.begin() + rows.start[source],
                         rows.value.begin() + rows.start[source + 1]);
      if (i == to)
        for (double &value : values) value *= factor;
      repeated.append(rows.length(source), rows.index.data() + rows.start[source], values.data());
    }
    activity[to] = factor * activity[from];
    lp.a = transpose(repeated);
  }

  void rowBounds(LpModel &lp, double around) {
    const double kind = random_.uniform();
    const double gap = random_.uniform() < 0.5 ? 0 : width();
    double low = -kInf, up = kInf;
    if (kind < 0.35)
      low = up = around;
    else if (kind < 0.6)
      low = around - gap;
    else if (kind < 0.85)
      up = around + gap;
    else if (kind < 0.97)
      low = around - gap, up = around + width();
    lp.rowLower.push_back(low);
    lp.rowUpper.push_back(up);
  }

  Random random_;
  RandomLpOptions options_;
  bool fractional_;
};

inline LpModel randomLp(std::uint64_t seed, const RandomLpOptions &options = {}) {
  return RandomLp(seed, options).generate();
}

// Makes equations of more rows and appends rows that are combinations of equations and perhaps one
// other row: dependent equations, consistent, nearly so or not at all, and rows from which
// an equation can be taken away again. Some differ in one entry.
inline LpModel withCombinedRows(const LpModel &lp, std::uint64_t seed) {
  Random random(seed * 2 + 1);
  LpModel result = lp;
  SparseMatrix rows = transpose(lp.a);
  Vec<int> equations;
  for (int i = 0; i < lp.numRows; ++i) {
    double &low = result.rowLower[i], &up = result.rowUpper[i];
    if (isInf(low) && isInf(up)) continue;
    if (random.uniform() < 0.6) (isInf(low) ? low : up) = isInf(low) ? up : low;
    if (low == up) equations.push_back(i);
  }
  const int added = equations.empty() || lp.numCols == 0 ? 0 : random.below(4);
  for (int k = 0; k < added; ++k) {
    Vec<double> dense(static_cast<std::size_t>(lp.numCols), 0.0);
    double low = 0, up = 0;
    const auto add = [&](int row, double factor) {
      for (NzIndex at = rows.start[row]; at < rows.start[row + 1]; ++at)
        dense[rows.index[at]] += factor * rows.value[at];
      low += factor * (factor > 0 ? result.rowLower[row] : result.rowUpper[row]);
      up += factor * (factor > 0 ? result.rowUpper[row] : result.rowLower[row]);
    };
    const double factors[] = {1, -1, 2, -0.5, 1 / 3.0, 37};
    for (int terms = 1 + random.below(3); terms > 0; --terms)
      add(equations[random.below(static_cast<int>(equations.size()))], factors[random.below(6)]);
    if (random.uniform() < 0.3) add(random.below(lp.numRows), 1);
    if (random.uniform() < 0.3) dense[random.below(lp.numCols)] += random.below(3) - 1.5;
    const double slips[] = {0, 0, 0, 0, 1e-14, 1, -2};
    const double slip = slips[random.below(7)];
    result.rowLower.push_back(low <= -kInfBound ? -kInf : low + slip);
    result.rowUpper.push_back(up >= kInfBound ? kInf : up + slip);
    Vec<int> index;
    Vec<double> value;
    for (int j = 0; j < lp.numCols; ++j)
      if (std::fabs(dense[j]) > 1e-9) index.push_back(j), value.push_back(dense[j]);
    rows.append(static_cast<int>(index.size()), index.data(), value.data());
    ++result.numRows;
  }
  result.a = transpose(rows);
  return result;
}

// Adds columns that hang on the others by chains of short rows, some of them closed to cycles,
// rows that such chains make superfluous, or nearly, or contradict, and rows that follow from each
// other but not from the rest.
inline LpModel withChains(const LpModel &lp, std::uint64_t seed) {
  Random random(seed * 2 + 1);
  LpModel result = lp;
  SparseMatrix rows = transpose(lp.a);
  const auto addRow = [&](std::initializer_list<std::pair<int, double>> terms, double low,
                          double up) {
    Vec<double> dense(static_cast<std::size_t>(result.numCols), 0.0);
    for (const auto &[col, value] : terms) dense[col] += value;
    Vec<int> index;
    Vec<double> value;
    for (int j = 0; j < result.numCols; ++j)
      if (dense[j] != 0) index.push_back(j), value.push_back(dense[j]);
    const int at = random.below(2);  // either side
    if (at)
      for (double &v : value) v = -v;
    rows.append(static_cast<int>(index.size()), index.data(), value.data());
    result.rowLower.push_back(at ? -up : low);
    result.rowUpper.push_back(at ? -low : up);
    ++result.numRows;
  };
  const auto addCol = [&] {
    const double kind = random.uniform();
    result.cost.push_back(random.uniform() < 0.4 ? 0 : random.below(9) - 4);
    result.colLower.push_back(kind < 0.4 ? 0 : -kInf);
    result.colUpper.push_back(kind > 0.2 && kind < 0.5 ? 1 + random.below(8) : kInf);
    return result.numCols++;
  };
  const double factors[] = {1, 1, 1, 2, -1, 0.5, 1 / 3.0};
  for (int j = 0; j < lp.numCols; ++j) {  // bounds to begin with
    if (isInf(result.colUpper[j]) && random.uniform() < 0.4)
      result.colUpper[j] = isInf(result.colLower[j]) ? 3 : result.colLower[j] + 3;
  }
  for (int chains = 1 + random.below(3); chains > 0; --chains) {
    const int first = random.below(result.numCols);
    int last = first;
    for (int length = 1 + random.below(4); length > 0; --length) {
      const int next = addCol();
      const double shift = random.below(7) - 3;
      // next <= factor last + shift, or the same from below, or both.
      const double kind = random.uniform();
      const int beside = random.below(next);
      const double second = random.uniform() < 0.6 ? -factors[random.below(7)] : 0;
      addRow({{next, 1}, {last, -factors[random.below(7)]}, {beside, second}},
             kind < 0.4 ? -kInf : shift, kind < 0.75 ? shift + (kind < 0.4 ? 0 : kInf) : shift);
      last = next;
    }
    const double kind = random.uniform();
    const double side = random.below(9) - 3;
    if (kind < 0.3) addRow({{first, 1}, {last, -1}}, -kInf, side);
    if (kind < 0.15) addRow({{last, 1}, {first, -1}}, -kInf, random.below(3));
    if (kind > 0.25 && kind < 0.6)
      addRow({{last, 1}, {random.below(result.numCols), 1}}, -kInf, 3 * side);
    if (kind > 0.5 && kind < 0.8) addRow({{first, 1}, {last, 2}}, side - 6, kInf);
    if (kind > 0.75) {  // each follows from the other
      addRow({{first, 1}, {last, 1}}, -kInf, side);
      addRow({{first, 2}, {last, 2}}, -kInf, 2 * side + random.below(2));
    }
  }
  rows.numMinor = result.numCols;
  result.a = transpose(rows);
  return result;
}

// A readable dump for failure messages.
inline std::string describe(const LpModel &lp) {
  std::string text = "min";
  char buffer[64];
  const auto put = [&](const char *format, double a, double b) {
    std::snprintf(buffer, sizeof buffer, format, a, b);
    text += buffer;
  };
  for (int j = 0; j < lp.numCols; ++j) put(" %+.17g x%.0f", lp.cost[j], j);
  put(" %+.17g\n", lp.offset, 0);
  for (int i = 0; i < lp.numRows; ++i) {
    put("  %.17g <=", lp.rowLower[i], 0);
    for (int j = 0; j < lp.numCols; ++j)
      for (NzIndex k = lp.a.start[j]; k < lp.a.start[j + 1]; ++k)
        if (lp.a.index[k] == i) put(" %+.17g x%.0f", lp.a.value[k], j);
    put(" <= %.17g\n", lp.rowUpper[i], 0);
  }
  for (int j = 0; j < lp.numCols; ++j) {
    put("  %.17g <= x%.0f", lp.colLower[j], j);
    put(" <= %.17g\n", lp.colUpper[j], 0);
  }
  return text;
}

}  // namespace tarvik::test
