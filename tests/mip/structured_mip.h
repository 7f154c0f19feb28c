// Tiny random mixed-integer programs made of what presolve looks for: packing rows and knapsacks
// that conflict, equations in few columns, variable bounds, columns that are multiples of others,
// blocks that nothing joins, holes and ordered sets. Deterministic in the seed.
#pragma once

#include <algorithm>

#include "base/random.h"
#include "mip/mip_model.h"

namespace tarvik::test {

class StructuredMip {
 public:
  explicit StructuredMip(std::uint64_t seed) : random_(seed * 7919 + 13) {}

  MipModel generate() {
    const int n = 3 + random_.below(6);
    withHoles_ = chance(0.35);
    withSets_ = chance(0.35);
    fractional_ = chance(0.3);
    model_.kind.resize(n);
    model_.holeLower.assign(n, 0);
    model_.holeUpper.assign(n, 0);
    rowsOf_.resize(n);
    for (int j = 0; j < n; ++j) column(j);
    const int blocks = chance(0.3) ? 2 : 1;
    const int rows = 1 + random_.below(6);
    for (int i = 0; i < rows; ++i) {
      const int block = random_.below(blocks);
      first_ = block * n / blocks;
      last_ = (block + 1) * n / blocks;
      row();
    }
    if (chance(0.4)) repeatColumn();
    if (withSets_) sets();
    finish();
    return model_;
  }

 private:
  bool chance(double probability) { return random_.uniform() < probability; }
  double coefficient(int range) {
    if (fractional_) return random_.uniform(-range, range);
    const int value = 1 + random_.below(range);
    return chance(0.3) ? -value : value;
  }

  void column(int j) {
    LpModel &lp = model_.lp;
    double lower = 0, upper = 1;
    VarKind kind = VarKind::Integer;
    if (withHoles_ && chance(0.4)) {
      kind = chance(0.5) ? VarKind::SemiContinuous : VarKind::SemiInteger;
      const double size = fractional_ ? random_.uniform(0.5, 2) : 1 + random_.below(2);
      const bool negative = chance(0.2);
      lower = negative ? -size - 2 : 0;
      upper = negative ? 0 : size + 2;
      model_.holeLower[j] = negative ? -size : 0;
      model_.holeUpper[j] = negative ? 0 : size;
    } else if (chance(0.3)) {
      kind = VarKind::Continuous;
      upper = chance(0.2) ? kInf : fractional_ ? random_.uniform(0, 4) : random_.below(5);
      if (chance(0.1)) lower = -kInf;
    } else if (chance(0.4)) {
      lower = random_.below(3) - 1;
      upper = lower + random_.below(4);
    }
    lp.colLower.push_back(lower);
    lp.colUpper.push_back(upper);
    lp.cost.push_back(chance(0.3) ? 0 : coefficient(5));
    model_.kind[j] = kind;
    point_.push_back(pointIn(j));
  }

  double pointIn(int j) {
    const double lower = model_.lp.colLower[j], upper = model_.lp.colUpper[j];
    if (isSemi(model_.kind[j])) return chance(0.5) ? 0 : isInf(upper) ? lower : upper + lower;
    if (isInf(lower)) return isInf(upper) ? 0 : upper;
    if (isInf(upper) || chance(0.5)) return lower;
    return model_.kind[j] == VarKind::Integer ? std::floor(upper) : 0.5 * (lower + upper);
  }

  // The literal of a binary column, so that packing rows come with complements.
  void row() {
    Vec<std::pair<int, double>> entries;
    const double kind = random_.uniform();
    double lower = -kInf, upper = kInf;
    if (kind < 0.35) {
      upper = 1;
      for (const int j : someColumns(0.6, true)) {
        const bool complemented = chance(0.15);
        entries.push_back({j, complemented ? -1 : 1});
        if (complemented) upper -= 1;
      }
      if (chance(0.2)) lower = upper;
    } else if (kind < 0.5) {
      double total = 0;
      for (const int j : someColumns(0.6, false)) {
        entries.push_back({j, std::fabs(coefficient(6))});
        total += entries.back().second;
      }
      upper = fractional_ ? total * random_.uniform(0.3, 0.9) : std::floor(total * 0.6);
    } else if (kind < 0.65) {
      const Vec<int> cols = someColumns(0.5, false);
      for (std::size_t k = 0; k < cols.size() && k < 2; ++k)
        entries.push_back({cols[k], coefficient(chance(0.5) ? 1 : 3)});
      chance(0.6) ? sides(entries, lower, upper, true) : sides(entries, lower, upper, false);
    } else {
      for (const int j : someColumns(0.5, false)) entries.push_back({j, coefficient(4)});
      sides(entries, lower, upper, chance(0.3));
    }
    if (entries.empty()) return;
    const int i = static_cast<int>(model_.lp.rowLower.size());
    for (const auto &[j, value] : entries) rowsOf_[j].push_back({i, value});
    model_.lp.rowLower.push_back(lower);
    model_.lp.rowUpper.push_back(upper);
  }

  Vec<int> someColumns(double share, bool binary) {
    Vec<int> cols;
    for (int j = first_; j < last_; ++j) {
      const bool isBinary = model_.kind[j] == VarKind::Integer && model_.lp.colLower[j] == 0 &&
                            model_.lp.colUpper[j] == 1;
      if ((!binary || isBinary) && chance(share)) cols.push_back(j);
    }
    shuffle(cols, random_);
    return cols;
  }

  // Around the planted point, mostly.
  void sides(const Vec<std::pair<int, double>> &entries, double &lower, double &upper,
             bool equation) {
    double activity = 0;
    for (const auto &[j, value] : entries) activity += value * point_[j];
    if (chance(0.15)) activity += coefficient(3);
    const double slack = chance(0.5) ? 0 : std::fabs(coefficient(2));
    if (equation)
      lower = upper = activity;
    else
      (chance(0.5) ? upper = activity + slack : lower = activity - slack);
  }

  // The last column becomes a multiple of another one, of whatever kind it is.
  void repeatColumn() {
    const int last = static_cast<int>(rowsOf_.size()) - 1, like = random_.below(last);
    const double factor = chance(0.6) ? 1 : chance(0.5) ? 2 : -1;
    rowsOf_[last] = rowsOf_[like];
    for (auto &[i, value] : rowsOf_[last]) value *= factor;
    if (chance(0.7)) model_.lp.cost[last] = factor * model_.lp.cost[like];
  }

  void sets() {
    const int n = static_cast<int>(model_.kind.size()), count = 1 + random_.below(2);
    for (int s = 0; s < count; ++s) {
      SosSet set;
      set.type = 1 + random_.below(2);
      Vec<int> cols;
      for (int j = 0; j < n; ++j)
        if (chance(0.6)) cols.push_back(j);
      shuffle(cols, random_);
      for (const int j : cols) {
        set.weights.push_back(static_cast<double>(set.cols.size()));
        set.cols.push_back(j);
      }
      if (set.cols.size() > 1) model_.sos.push_back(set);
    }
  }

  void finish() {
    LpModel &lp = model_.lp;
    lp.numCols = static_cast<int>(rowsOf_.size());
    lp.numRows = static_cast<int>(lp.rowLower.size());
    lp.a.clear(lp.numRows);
    for (const auto &entries : rowsOf_) {
      Vec<int> index;
      Vec<double> value;
      for (const auto &[i, a] : entries) {
        index.push_back(i);
        value.push_back(a);
      }
      lp.a.append(static_cast<int>(index.size()), index.data(), value.data());
    }
    if (!withHoles_) {
      model_.holeLower.clear();
      model_.holeUpper.clear();
    }
  }

  Random random_;
  MipModel model_;
  Vec<Vec<std::pair<int, double>>> rowsOf_;
  Vec<double> point_;
  bool withHoles_ = false, withSets_ = false, fractional_ = false;
  int first_ = 0, last_ = 0;
};

}  // namespace tarvik::test
