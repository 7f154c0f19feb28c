// Measures of a model and of its solution as attributes show them. They are computed above this
// floor (attr/statistics.h, attr/quality.h) and kept with the model until it changes.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>

#include "base/types.h"

namespace tarvik {

// The smallest and the largest magnitude of nonzero values.
struct MagnitudeRange {
  double min = kUserInf, max = 0;

  bool empty() const { return max == 0; }
  void add(double value) {
    const double magnitude = std::abs(value);
    if (magnitude == 0) return;
    if (magnitude < min) min = magnitude;
    if (magnitude > max) max = magnitude;
  }
  // For values of which an infinite magnitude says nothing.
  void addFinite(double value) {
    if (std::abs(value) < kInf) add(value);
  }
};

struct ModelStatistics {
  MagnitudeRange matrix, bounds, obj, rhs;
  MagnitudeRange qcQuad, qcLinear, qcRhs, qObj;
  MagnitudeRange pwlObjX, pwlObjY, pwlConX, pwlConY;
  MagnitudeRange pwlObjMiddleX, pwlObjMiddleY, pwlConMiddleX, pwlConMiddleY;
  MagnitudeRange indicatorRhs, indicatorCoef, maxConstants, minConstants;
};

enum class Quality : int {
  Bound,
  BoundS,
  Constr,
  ConstrS,
  ConstrResidual,
  ConstrSResidual,
  Dual,
  DualS,
  DualResidual,
  DualSResidual,
  Int,
  Compl,
  Count
};

struct QualityMeasure {
  bool available = false;
  double max = 0, sum = 0;
  int index = -1;  // the first element that attains max; -1 without elements
};

struct QualityReport {
  std::array<QualityMeasure, static_cast<int>(Quality::Count)> measures;
  // Which solution was measured.
  std::uint64_t generation = 0;
  double objVal = 0, runtime = 0;

  QualityMeasure &operator[](Quality q) { return measures[static_cast<int>(q)]; }
  const QualityMeasure &operator[](Quality q) const { return measures[static_cast<int>(q)]; }
};

}  // namespace tarvik
