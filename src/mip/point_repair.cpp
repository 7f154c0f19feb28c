#include "mip/point_repair.h"

#include <algorithm>
#include <cmath>

namespace tarvik {

namespace {

// Of the members that a set lets be nonzero together, those stay that are largest in sum.
template <class Fix>
void zeroOutside(const SosSet &set, const Vec<double> &point, double tolerance, const Fix &fix) {
  const int count = static_cast<int>(set.cols.size());
  int best = 0;
  double largest = -1;
  for (int first = 0; first < count; ++first) {
    double sum = 0;
    for (int k = first; k < std::min(first + set.type, count); ++k)
      sum += std::fabs(point[set.cols[k]]);
    if (sum > largest) largest = sum, best = first;
  }
  for (int k = 0; k < count; ++k)
    if (k < best || k >= best + set.type || std::fabs(point[set.cols[k]]) <= tolerance)
      fix(set.cols[k], 0);
}

}  // namespace

Vec<BoundChange> PointRepair::discretePart(const Vec<double> &point) const {
  Vec<BoundChange> changes;
  const double tolerance = problem_.tolerances().integral;
  const auto fix = [&](int col, double value) {
    changes.push_back({col, BoundSide::Lower, value});
    changes.push_back({col, BoundSide::Upper, value});
  };
  for (int j = 0; j < problem_.numCols(); ++j) {
    const bool zero = std::fabs(point[j]) <= tolerance;
    if (problem_.isIntegral(j) || (problem_.isSemi(j) && zero))
      fix(j, std::round(point[j]));
    else if (problem_.isSemi(j) && point[j] > 0)
      changes.push_back({j, BoundSide::Lower, problem_.model().holeUpper[j]});
    else if (problem_.isSemi(j))
      changes.push_back({j, BoundSide::Upper, problem_.model().holeLower[j]});
  }
  for (const SosSet &set : problem_.model().sos) zeroOutside(set, point, tolerance, fix);
  return changes;
}

bool PointRepair::run(const Vec<double> &point, SolveControl &control, Vec<double> &repaired) {
  if (problem_.numContinuous() == 0) return false;
  Domain fixed(problem_);
  if (!fixed.decide(discretePart(point))) return false;
  if (!relaxation_) relaxation_ = std::make_unique<Relaxation>(problem_, options_);
  for (int j = 0; j < problem_.numCols(); ++j)
    relaxation_->simplex().setColBounds(j, fixed.lower(j), fixed.upper(j));
  if (relaxation_->solve(control) != LpStatus::Optimal) return false;
  repaired = relaxation_->x();
  for (int j = 0; j < problem_.numCols(); ++j)
    if (problem_.isIntegral(j)) repaired[j] = std::round(point[j]);
  return true;
}

}  // namespace tarvik
