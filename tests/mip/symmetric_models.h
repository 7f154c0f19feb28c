// Small problems with symmetries: what search trees are wasted on. All columns are integral with
// finite bounds, most of them binary, so that all points can be listed.
#pragma once

#include "base/random.h"
#include "mip/mip_model.h"

namespace tarvik::test {

class ModelBuilder {
 public:
  explicit ModelBuilder(int cols) {
    LpModel &lp = model.lp;
    lp.numCols = cols;
    lp.cost.assign(cols, 0);
    lp.colLower.assign(cols, 0);
    lp.colUpper.assign(cols, 1);
    model.kind.assign(cols, VarKind::Integer);
    entries_.resize(cols);
  }
  struct Entry {
    int col;
    double value;
  };
  void addRow(const Vec<Entry> &row, double lower, double upper) {
    for (const Entry &entry : row) entries_[entry.col].push_back({model.lp.numRows, entry.value});
    model.lp.rowLower.push_back(lower);
    model.lp.rowUpper.push_back(upper);
    ++model.lp.numRows;
  }
  MipModel take() {
    LpModel &lp = model.lp;
    lp.a.clear(lp.numRows);
    for (const auto &column : entries_) {
      Vec<int> index;
      Vec<double> value;
      for (const Entry &entry : column) {
        index.push_back(entry.col);
        value.push_back(entry.value);
      }
      lp.a.append(static_cast<int>(index.size()), index.data(), value.data());
    }
    return std::move(model);
  }

  MipModel model;

 private:
  Vec<Vec<Entry>> entries_;  // by column: rows
};

// Items with sizes into equal bins, as few of them as possible; some sizes are equal.
inline MipModel binPacking(Random &random) {
  const int items = 3 + random.below(2), bins = 3;
  const auto x = [&](int i, int b) { return i * bins + b; };
  ModelBuilder builder((items + 1) * bins);
  Vec<double> size(items);
  for (double &s : size) s = 1 + random.below(4);
  for (int i = 0; i < items; ++i) {
    Vec<ModelBuilder::Entry> row;
    for (int b = 0; b < bins; ++b) row.push_back({x(i, b), 1});
    builder.addRow(row, 1, random.below(4) == 0 ? kInf : 1);
  }
  const double capacity = 4 + random.below(4);
  for (int b = 0; b < bins; ++b) {
    Vec<ModelBuilder::Entry> row;
    for (int i = 0; i < items; ++i) row.push_back({x(i, b), size[i]});
    row.push_back({x(items, b), -capacity});
    builder.addRow(row, -kInf, 0);
    builder.model.lp.cost[x(items, b)] = 1;
  }
  return builder.take();
}

// Jobs onto equal machines; the longest machine counts (an integral column).
inline MipModel scheduling(Random &random) {
  const int jobs = 4 + random.below(2), machines = 2 + random.below(2);
  const auto x = [&](int j, int m) { return j * machines + m; };
  const int longest = jobs * machines;
  ModelBuilder builder(longest + 1);
  builder.model.lp.colUpper[longest] = 15;
  builder.model.lp.cost[longest] = 1;
  for (int j = 0; j < jobs; ++j) {
    Vec<ModelBuilder::Entry> row;
    for (int m = 0; m < machines; ++m) row.push_back({x(j, m), 1});
    builder.addRow(row, 1, 1);
  }
  Vec<double> duration(jobs);
  for (double &d : duration) d = 1 + random.below(5);
  for (int m = 0; m < machines; ++m) {
    Vec<ModelBuilder::Entry> row{{longest, -1}};
    for (int j = 0; j < jobs; ++j) row.push_back({x(j, m), duration[j]});
    builder.addRow(row, -kInf, 0);
  }
  return builder.take();
}

// The vertices of a random graph in as few colours as possible.
inline MipModel colouring(Random &random) {
  const int vertices = 4, colours = 3;
  const auto x = [&](int v, int c) { return v * colours + c; };
  ModelBuilder builder((vertices + 1) * colours);
  for (int v = 0; v < vertices; ++v) {
    Vec<ModelBuilder::Entry> row;
    for (int c = 0; c < colours; ++c) row.push_back({x(v, c), 1});
    builder.addRow(row, 1, 1);
    for (int u = 0; u < v; ++u) {
      if (random.uniform() < 0.4) continue;
      for (int c = 0; c < colours; ++c)
        builder.addRow({{x(u, c), 1}, {x(v, c), 1}, {x(vertices, c), -1}}, -kInf, 0);
    }
  }
  for (int c = 0; c < colours; ++c) builder.model.lp.cost[x(vertices, c)] = 1;
  return builder.take();
}

// Rows and costs that are the same along a cycle: x(j) and x(j + 1) play the same part. Columns
// take up to three values, costs may be negative.
inline MipModel cyclic(Random &random) {
  const int n = 6 + random.below(5);
  ModelBuilder builder(n);
  const double cost = random.below(5) - 2;
  const int most = n <= 8 ? 1 + random.below(2) : 1;
  for (int j = 0; j < n; ++j) {
    builder.model.lp.cost[j] = cost;
    builder.model.lp.colUpper[j] = most;
  }
  const int kinds = 1 + random.below(3);
  for (int k = 0; k < kinds; ++k) {
    Vec<ModelBuilder::Entry> pattern;
    for (int j = 0; j < n; ++j)
      if (random.uniform() < 0.45) pattern.push_back({j, static_cast<double>(random.below(5)) - 2});
    const double lower = random.below(2) == 0 ? -kInf : random.below(3) - 1.0;
    const double upper = isInf(lower) || random.below(2) == 0 ? 1.0 + random.below(2) : kInf;
    for (int shift = 0; shift < n; ++shift) {
      Vec<ModelBuilder::Entry> row;
      for (const auto &entry : pattern)
        if (entry.value != 0) row.push_back({(entry.col + shift) % n, entry.value});
      if (!row.empty()) builder.addRow(row, lower, upper);
    }
  }
  return builder.take();
}

// Covering of triples: on lines of the Fano plane, or of the affine plane of order 3.
inline MipModel tripleCovering(Random &random) {
  const bool fano = random.below(2) == 0;
  const int n = fano ? 7 : 9;
  ModelBuilder builder(n);
  for (int j = 0; j < n; ++j) builder.model.lp.cost[j] = 1;
  const double needed = 1 + random.below(2);
  const auto cover = [&](int a, int b, int c) {
    if (random.uniform() < 0.9) builder.addRow({{a, 1}, {b, 1}, {c, 1}}, needed, kInf);
  };
  if (fano) {
    for (int k = 0; k < 7; ++k) cover(k, (k + 1) % 7, (k + 3) % 7);
  } else {
    for (int k = 0; k < 3; ++k) {
      cover(3 * k, 3 * k + 1, 3 * k + 2);
      cover(k, k + 3, k + 6);
      cover(k, 3 + (k + 1) % 3, 6 + (k + 2) % 3);
      cover(k, 3 + (k + 2) % 3, 6 + (k + 1) % 3);
    }
  }
  return builder.take();
}

// Blocks of columns with the same rows of their own, and rows that join all blocks alike; some
// have holes, some have sets within the blocks or across them.
inline MipModel blocks(Random &random) {
  const int blocks = 2 + random.below(3), width = blocks == 2 ? 4 : 3;
  const auto x = [&](int b, int k) { return b * width + k; };
  ModelBuilder builder(blocks * width);
  const auto pattern = [&] {
    Vec<double> values(width);
    for (double &value : values) value = random.below(6) - 2.0;
    return values;
  };
  const Vec<double> costs = pattern();
  for (int b = 0; b < blocks; ++b)
    for (int k = 0; k < width; ++k) {
      builder.model.lp.cost[x(b, k)] = costs[k];
      if (blocks == 2 && k == 0) builder.model.lp.colUpper[x(b, k)] = 3;
    }
  if (random.below(3) == 0) {
    builder.model.holeLower.assign(blocks * width, 0);
    builder.model.holeUpper.assign(blocks * width, 0);
    for (int b = 0; b < blocks; ++b) {
      builder.model.kind[x(b, 1)] = VarKind::SemiInteger;
      builder.model.holeUpper[x(b, 1)] = 2;
      builder.model.lp.colUpper[x(b, 1)] = 3;
    }
  }
  if (random.below(3) == 0) {
    const int type = 1 + random.below(2);
    const bool across = random.below(2) == 0;
    for (int s = 0; s < (across ? 1 : blocks); ++s) {
      SosSet set{type, {}, {}};
      for (int k = 0; k < (across ? blocks : width); ++k) {
        set.cols.push_back(across ? x(k, 0) : x(s, k));
        set.weights.push_back(k);
      }
      builder.model.sos.push_back(std::move(set));
    }
  }
  const int own = 1 + random.below(2), joint = 1 + random.below(2);
  for (int r = 0; r < own; ++r) {
    const Vec<double> values = pattern();
    const double limit = 1 + random.below(3);
    for (int b = 0; b < blocks; ++b) {
      Vec<ModelBuilder::Entry> row;
      for (int k = 0; k < width; ++k)
        if (values[k] != 0) row.push_back({x(b, k), values[k]});
      builder.addRow(row, -kInf, limit);
    }
  }
  for (int r = 0; r < joint; ++r) {
    const Vec<double> values = pattern();
    Vec<ModelBuilder::Entry> row;
    for (int b = 0; b < blocks; ++b)
      for (int k = 0; k < width; ++k)
        if (values[k] != 0) row.push_back({x(b, k), values[k]});
    const double side = random.below(5);
    const bool equation = random.below(3) == 0;
    builder.addRow(row, equation || random.below(2) == 0 ? side : -kInf,
                   equation || random.below(2) == 0 ? side : kInf);
  }
  return builder.take();
}

inline MipModel symmetricModel(std::uint64_t seed) {
  Random random(seed + 1234);
  switch (random.below(6)) {
    case 0:
      return binPacking(random);
    case 1:
      return scheduling(random);
    case 2:
      return colouring(random);
    case 3:
      return cyclic(random);
    case 4:
      return tripleCovering(random);
    default:
      return blocks(random);
  }
}

}  // namespace tarvik::test
