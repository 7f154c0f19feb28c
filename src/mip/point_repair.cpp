#include "mip/point_repair.h"

#include <cmath>

namespace tarvik {

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
  for (const SosSet &set : problem_.model().sos)
    for (const int j : set.cols)
      if (std::fabs(point[j]) <= tolerance) fix(j, 0);
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
