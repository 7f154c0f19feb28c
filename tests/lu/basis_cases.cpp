#include "lu/basis_cases.h"

#include <algorithm>
#include <cmath>

namespace tarvik::test {

namespace {

// Collects one column with distinct rows.
class ColumnMaker {
 public:
  explicit ColumnMaker(BasisCase &basis) : basis_(basis), seen_(basis.m, 0) {}
  ColumnMaker &add(RowIndex row, double value) {
    if (!seen_[row]) {
      seen_[row] = 1;
      index_.push_back(row);
      value_.push_back(value);
    }
    return *this;
  }
  VarIndex finish() {
    basis_.a.append(static_cast<int>(index_.size()), index_.data(), value_.data());
    for (const int row : index_) seen_[row] = 0;
    index_.clear();
    value_.clear();
    return basis_.a.numMajor - 1;
  }

 private:
  BasisCase &basis_;
  Vec<char> seen_;
  Vec<int> index_;
  Vec<double> value_;
};

double coefficient(Random &random) {
  const double size = random.uniform(0.2, 3.0);
  return random.below(2) ? size : -size;
}

// Logicals are told by negative placeholders -1 - row until the number of columns is known.
void closeHead(BasisCase &basis) {
  for (VarIndex &var : basis.head)
    if (var < 0) var = basis.logical(-1 - var);
}

}  // namespace

BasisCase logicalBasis(int m, Random &random) {
  BasisCase basis(m);
  basis.name = "logicals";
  for (int row = 0; row < m; ++row) basis.head.push_back(basis.logical(row));
  shuffle(basis.head, random);
  return basis;
}

BasisCase triangularBasis(int m, bool byRows, Random &random) {
  BasisCase basis(m);
  basis.name = byRows ? "row-triangular" : "column-triangular";
  ColumnMaker column(basis);
  for (int k = 0; k < m; ++k) {
    column.add(k, coefficient(random));
    // The reach is bounded, so that the inverse does not grow out of all proportions.
    const int reach = byRows ? m - 1 - k : k;
    for (int n = 0; n < 3 && reach > 0; ++n) {
      const int distance = 1 + random.below(std::min(reach, 40));
      column.add(byRows ? k + distance : k - distance, random.uniform(-0.4, 0.4));
    }
    basis.head.push_back(column.finish());
  }
  permute(basis, random);
  return basis;
}

BasisCase randomBasis(int m, int perColumn, double logicalShare, Random &random) {
  BasisCase basis(m);
  basis.name = "random";
  ColumnMaker column(basis);
  for (int k = 0; k < m; ++k) {
    if (random.uniform() < logicalShare) {
      basis.head.push_back(-1 - k);
      continue;
    }
    column.add(k, coefficient(random));
    for (int n = 1; n < perColumn; ++n) column.add(random.below(m), coefficient(random));
    basis.head.push_back(column.finish());
  }
  closeHead(basis);
  permute(basis, random);
  return basis;
}

BasisCase denseBlockBasis(int m, int block, Random &random) {
  BasisCase basis(m);
  basis.name = "dense block";
  ColumnMaker column(basis);
  for (int k = 0; k < m; ++k) {
    if (k < block) {
      for (int row = 0; row < block; ++row)
        if (row == k || random.below(10) < 9) column.add(row, coefficient(random));
      column.add(random.below(m), coefficient(random));
    } else {
      column.add(k, coefficient(random)).add(random.below(m), coefficient(random));
    }
    basis.head.push_back(column.finish());
  }
  permute(basis, random);
  return basis;
}

BasisCase staircaseBasis(int stages, int stageRows, Random &random) {
  BasisCase basis(stages * stageRows);
  basis.name = "staircase";
  ColumnMaker column(basis);
  for (int stage = 0; stage < stages; ++stage) {
    const int first = stage * stageRows;
    for (int k = 0; k < stageRows; ++k) {
      column.add(first + k, coefficient(random) * 2);
      for (int n = 0; n < 2; ++n) column.add(first + random.below(stageRows), coefficient(random));
      if (stage + 1 < stages)
        column.add(first + stageRows + random.below(stageRows), coefficient(random) / 2);
      basis.head.push_back(column.finish());
    }
  }
  permute(basis, random);
  return basis;
}

BasisCase networkBasis(int m, Random &random) {
  BasisCase basis(m);
  basis.name = "network";
  ColumnMaker column(basis);
  basis.head.push_back(-1);
  for (int node = 1; node < m; ++node)
    basis.head.push_back(column.add(node, 1).add(random.below(node), -1).finish());
  closeHead(basis);
  permute(basis, random);
  return basis;
}

void addSpareColumns(BasisCase &basis, int count, int perColumn, Random &random) {
  const int before = basis.a.numMajor;
  ColumnMaker column(basis);
  for (int n = 0; n < count; ++n) {
    for (int k = 0; k < perColumn; ++k) column.add(random.below(basis.m), coefficient(random));
    column.finish();
  }
  for (VarIndex &var : basis.head)
    if (var >= before) var += count;
}

void permute(BasisCase &basis, Random &random) {
  Vec<int> rowTo(basis.m);
  for (int row = 0; row < basis.m; ++row) rowTo[row] = row;
  shuffle(rowTo, random);
  for (int &row : basis.a.index) row = rowTo[row];
  for (VarIndex &var : basis.head)
    if (var >= basis.a.numMajor) var = basis.logical(rowTo[var - basis.a.numMajor]);
  shuffle(basis.head, random);
}

template <class Real>
LoadedBasis<Real>::LoadedBasis(BasisCase source) : basis(std::move(source)) {
  values.assign(basis.a.value.begin(), basis.a.value.end());
  factor.setup(&basis.a, &values, basis.m);
}

template <class Real>
void LoadedBasis<Real>::loadColumn(VarIndex var, SparseVec<Real> &x) const {
  x.clear();
  if (var >= basis.a.numMajor) return x.set(var - basis.a.numMajor, Real(1));
  for (NzIndex k = basis.a.start[var]; k < basis.a.start[var + 1]; ++k)
    x.set(basis.a.index[k], values[k]);
}

template <class Real>
double LoadedBasis<Real>::ftranError(const SparseVec<Real> &x, const Vec<Real> &b) const {
  Vec<long double> residual(b.begin(), b.end());
  SparseVec<Real> column;
  column.resize(basis.m);
  long double scale = 1, worst = 0;
  for (int i = 0; i < basis.m; ++i) {
    loadColumn(basis.head[i], column);
    for (int k = 0; k < column.count; ++k) {
      const long double term = static_cast<long double>(column.value[column.index[k]]) * x.value[i];
      residual[column.index[k]] -= term;
      scale = std::max(scale, std::abs(term));
    }
  }
  for (const long double value : residual) worst = std::max(worst, std::abs(value));
  return static_cast<double>(worst / scale);
}

template <class Real>
double LoadedBasis<Real>::btranError(const SparseVec<Real> &y, const Vec<Real> &c) const {
  SparseVec<Real> column;
  column.resize(basis.m);
  long double scale = 1, worst = 0;
  for (int i = 0; i < basis.m; ++i) {
    loadColumn(basis.head[i], column);
    long double residual = c[i];
    for (int k = 0; k < column.count; ++k) {
      const int row = column.index[k];
      const long double term = static_cast<long double>(column.value[row]) * y.value[row];
      residual -= term;
      scale = std::max(scale, std::abs(term));
    }
    worst = std::max(worst, std::abs(residual));
  }
  return static_cast<double>(worst / scale);
}

template <class Real>
void fillRandom(SparseVec<Real> &x, double density, Random &random) {
  x.clear();
  const int count = std::max(1, static_cast<int>(density * x.size));
  for (int k = 0; k < count && x.size > 0; ++k) {
    const int i = count == x.size ? k : random.below(x.size);
    if (x.value[i] == Real(0)) x.set(i, static_cast<Real>(random.uniform(-2, 2)));
  }
}

template <class Real>
double solveError(LoadedBasis<Real> &loaded, double density, double expectedDensity,
                  Random &random) {
  SparseVec<Real> x;
  x.resize(loaded.basis.m);
  fillRandom(x, density, random);
  Vec<Real> rhs = x.value;
  if (random.below(4) == 0) x.count = -1;
  loaded.factor.ftran(x, expectedDensity, loaded.work);
  double worst = loaded.ftranError(x, rhs);
  if (!listIsRight(x)) return 1;
  fillRandom(x, density, random);
  rhs = x.value;
  loaded.factor.btran(x, expectedDensity, loaded.work);
  if (!listIsRight(x)) return 1;
  return std::max(worst, loaded.btranError(x, rhs));
}

template <class Real>
bool listIsRight(const SparseVec<Real> &x) {
  if (!x.valid()) return true;
  Vec<char> listed(x.size, 0);
  for (int k = 0; k < x.count; ++k)
    if (listed[x.index[k]]++) return false;
  for (int i = 0; i < x.size; ++i)
    if (!listed[i] && x.value[i] != Real(0)) return false;
  return true;
}

template struct LoadedBasis<double>;
template struct LoadedBasis<long double>;
template void fillRandom(SparseVec<double> &, double, Random &);
template void fillRandom(SparseVec<long double> &, double, Random &);
template double solveError(LoadedBasis<double> &, double, double, Random &);
template double solveError(LoadedBasis<long double> &, double, double, Random &);
template bool listIsRight(const SparseVec<double> &);
template bool listIsRight(const SparseVec<long double> &);

}  // namespace tarvik::test
