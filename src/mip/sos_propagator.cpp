#include "mip/sos_propagator.h"

#include <algorithm>
#include <cstdlib>

namespace tarvik {

SosPropagator::SosPropagator(const Problem &problem) : problem_(problem) {
  SparseMatrix sets;
  sets.clear(problem.numCols());
  for (const SosSet &set : problem.model().sos) {
    Vec<double> positions;
    for (std::size_t k = 0; k < set.cols.size(); ++k) positions.push_back(static_cast<double>(k));
    sets.append(static_cast<int>(set.cols.size()), set.cols.data(), positions.data());
  }
  memberships_ = transpose(sets);
}

bool SosPropagator::fixToZero(Domain &domain, int col) const {
  const Reason reason{Reason::Other, -1};
  return domain.tighten(col, BoundSide::Lower, 0, reason) &&
         domain.tighten(col, BoundSide::Upper, 0, reason);
}

bool SosPropagator::onChange(Domain &domain, int trailPosition) {
  const int col = domain.trail()[trailPosition].col;
  const double tolerance = problem_.tolerances().integral;
  if (domain.lower(col) <= tolerance && domain.upper(col) >= -tolerance) return true;
  for (NzIndex k = memberships_.start[col]; k < memberships_.start[col + 1]; ++k) {
    const SosSet &set = problem_.model().sos[memberships_.index[k]];
    const int here = static_cast<int>(memberships_.value[k]);
    for (int other = 0; other < static_cast<int>(set.cols.size()); ++other)
      if (std::abs(other - here) >= set.type && !fixToZero(domain, set.cols[other])) return false;
  }
  return true;
}

}  // namespace tarvik
