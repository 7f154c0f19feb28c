// The estimator is Hager's (1984) as improved by Higham (1988): the 1-norm of a matrix is a convex
// function that a few steps between vertices of the unit ball almost always maximize, each step
// costing one solve with the matrix and one with its transpose. A last try with a vector of
// alternating signs catches the matrices that mislead the steps.
#include "simplex/condition.h"

#include <algorithm>
#include <cmath>

#include "base/random.h"
#include "simplex/engine.h"

namespace tarvik {

namespace {

constexpr int kMaxSteps = 5;
constexpr int kInverseIterations = 4;
// Power iterations end when a norm has settled.
constexpr int kPowerIterations = 100;
constexpr double kSettled = 1e-5;
// |B u| below this multiple of |B| |u| makes u a null vector.
constexpr double kNullTol = 1e-9;

double sumOfSizes(const Vec<double> &x) {
  double sum = 0;
  for (const double value : x) sum += std::fabs(value);
  return sum;
}

int largest(const Vec<double> &x) {
  int best = 0;
  for (int i = 1; i < static_cast<int>(x.size()); ++i)
    if (std::fabs(x[i]) > std::fabs(x[best])) best = i;
  return best;
}

// Visits the entries (row, value) of the basis column at p in the user's scale.
template <class F>
void forBasisColumn(Engine<double> &e, BasisPos p, F &&f) {
  const VarIndex j = e.head[p];
  const double scale = e.lp.varScale(j);
  e.lp.forColumn(j, [&](int i, double a) { f(i, a / (e.lp.rowScale[i] * scale)); });
}

double basisNorm(Engine<double> &e) {
  double norm = 0;
  for (int p = 0; p < e.lp.m; ++p) {
    double sum = 0;
    forBasisColumn(e, p, [&](int, double a) { sum += std::fabs(a); });
    norm = std::max(norm, sum);
  }
  return norm;
}

double length(const Vec<double> &x) {
  double largestSize = std::fabs(x[largest(x)]), sum = 0;
  if (!(largestSize > 0) || !std::isfinite(largestSize)) return largestSize;
  for (const double value : x) sum += (value / largestSize) * (value / largestSize);
  return largestSize * std::sqrt(sum);
}

void multiply(Engine<double> &e, Vec<double> &x) {
  Vec<double> product(e.lp.m, 0.0);
  for (int p = 0; p < e.lp.m; ++p)
    forBasisColumn(e, p, [&](int i, double a) { product[i] += a * x[p]; });
  x.swap(product);
}

void multiplyTransposed(Engine<double> &e, Vec<double> &x) {
  Vec<double> product(e.lp.m, 0.0);
  for (int p = 0; p < e.lp.m; ++p)
    forBasisColumn(e, p, [&](int i, double a) { product[p] += a * x[i]; });
  x.swap(product);
}

// The largest singular value of a matrix given by its products.
template <class Apply, class ApplyTransposed>
double twoNorm(int m, Apply &&apply, ApplyTransposed &&applyTransposed) {
  Random random(1);
  Vec<double> x(m);
  for (double &value : x) value = random.uniform() - 0.5;
  double norm = 0;
  for (int step = 0; step < kPowerIterations; ++step) {
    const double size = length(x);
    if (!(size > 0) || !std::isfinite(size)) break;
    for (double &value : x) value /= size;
    apply(x);
    const double before = norm;
    norm = std::max(norm, length(x));
    if (norm - before <= kSettled * norm) break;
    applyTransposed(x);
  }
  return norm;
}

double inverseNormEstimate(Simplex &simplex, int m, WorkMeter &work) {
  Vec<double> x(m, 1.0 / m);
  double estimate = 0;
  int vertex = -1;
  for (int step = 0; step < kMaxSteps; ++step) {
    simplex.ftran(x, work);
    const double norm = sumOfSizes(x);
    if (step > 0 && norm <= estimate) break;
    estimate = norm;
    for (double &value : x) value = value >= 0 ? 1 : -1;
    simplex.btran(x, work);
    const int next = largest(x);
    if (next == vertex) break;
    vertex = next;
    x.assign(m, 0.0);
    x[vertex] = 1;
  }
  for (int i = 0; i < m; ++i) {
    const double size = m > 1 ? 1 + static_cast<double>(i) / (m - 1) : 1;
    x[i] = i % 2 == 0 ? size : -size;
  }
  simplex.ftran(x, work);
  return std::max(estimate, 2 * sumOfSizes(x) / (3.0 * m));
}

}  // namespace

double conditionEstimate(Simplex &simplex, WorkMeter &work) {
  Engine<double> &e = simplex.core();
  return basisNorm(e) * inverseNormEstimate(simplex, e.lp.m, work);
}

double conditionExact(Simplex &simplex, WorkMeter &work) {
  Engine<double> &e = simplex.core();
  SparseVec<double> column;
  column.resize(e.lp.m);
  double norm = 0;
  for (int i = 0; i < e.lp.m; ++i) {
    column.clear();
    column.set(i, e.lp.rowScale[i]);
    e.factor.ftran(column, e.columnDensity, work);
    double sum = 0;
    if (column.valid()) {
      for (int k = 0; k < column.count; ++k) {
        const int p = column.index[k];
        sum += std::fabs(column.value[p]) * e.lp.varScale(e.head[p]);
      }
    } else {
      for (int p = 0; p < e.lp.m; ++p) sum += std::fabs(column.value[p]) * e.lp.varScale(e.head[p]);
    }
    norm = std::max(norm, sum);
  }
  return basisNorm(e) * norm;
}

double conditionTwoNorm(Simplex &simplex, WorkMeter &work) {
  Engine<double> &e = simplex.core();
  if (e.lp.m == 0) return 1;
  const double norm = twoNorm(
      e.lp.m, [&](Vec<double> &x) { multiply(e, x); },
      [&](Vec<double> &x) { multiplyTransposed(e, x); });
  const double inverseNorm = twoNorm(
      e.lp.m, [&](Vec<double> &x) { simplex.ftran(x, work); },
      [&](Vec<double> &x) { simplex.btran(x, work); });
  return norm * inverseNorm;
}

Vec<double> nullVector(Simplex &simplex, bool transposed, WorkMeter &work) {
  Engine<double> &e = simplex.core();
  const int m = e.lp.m;
  Random random(1);
  Vec<double> u(m);
  for (double &value : u) value = random.uniform() - 0.5;
  for (int step = 0; step < kInverseIterations; ++step) {
    // One step of inverse iteration with B'B, ending with a solve by the matrix asked for.
    transposed ? simplex.ftran(u, work) : simplex.btran(u, work);
    transposed ? simplex.btran(u, work) : simplex.ftran(u, work);
    const double norm = std::fabs(u[largest(u)]);
    if (!(norm > 0) || !std::isfinite(norm)) return {};
    for (double &value : u) value /= norm;
  }
  Vec<double> residual(m, 0.0);
  for (int p = 0; p < m; ++p)
    forBasisColumn(e, p, [&](int i, double a) {
      if (transposed)
        residual[p] += a * u[i];
      else
        residual[i] += a * u[p];
    });
  if (std::fabs(residual[largest(residual)]) > kNullTol * basisNorm(e)) return {};
  return u;
}

}  // namespace tarvik
