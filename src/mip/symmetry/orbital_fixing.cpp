#include "mip/symmetry/orbital_fixing.h"

#include <algorithm>

namespace tarvik {

namespace {
constexpr double kMemberWork = 4;
}

OrbitalFixing::OrbitalFixing(const Problem &problem, const SymmetryGroup &group)
    : problem_(problem),
      group_(group),
      marks_(problem.numCols()),
      stabilizer_(std::make_shared<const Vec<DensePermutation>>(group.small())),
      orbitOf_(problem.numCols(), -1) {}

void OrbitalFixing::advance(const Vec<BoundChange> &decision, bool preferred, WorkMeter &work) {
  before_.push_back({marks_.size(), stabilizer_});
  if (!preferred) return;
  stale_ = true;
  for (const BoundChange &change : decision) {
    marks_.add(change);
    const int point = group_.pointOf(change.col);
    if (point >= 0 && !stabilizer_->empty())
      stabilizer_ =
          std::make_shared<const Vec<DensePermutation>>(stabilizerOf(point, *stabilizer_, work));
  }
}

void OrbitalFixing::retreat(int decisions) {
  if (decisions >= static_cast<int>(before_.size())) return;
  const Step &step = before_[decisions];
  stale_ = stale_ || step.marks < marks_.size();
  marks_.undoTo(step.marks);
  stabilizer_ = step.stabilizer;
  before_.resize(decisions);
  seen_ = 0;
}

void OrbitalFixing::computeOrbits(WorkMeter &work) {
  for (const int j : orbits_.members) orbitOf_[j] = -1;
  orbits_ = group_.orbitsUnder(marks_, *stabilizer_, work);
  for (int k = 0; k < orbits_.count(); ++k)
    for (int p = orbits_.starts[k]; p < orbits_.starts[k + 1]; ++p)
      orbitOf_[orbits_.members[p]] = k;
  stale_ = false;
  seen_ = 0;
}

bool OrbitalFixing::tightenOrbit(int orbit, Domain &domain) {
  const int *begin = orbits_.members.data() + orbits_.starts[orbit];
  const int *end = orbits_.members.data() + orbits_.starts[orbit + 1];
  if (!problem_.isIntegral(*begin)) return true;
  double lower = -kInf, upper = kInf;
  for (const int *j = begin; j < end; ++j) {
    lower = std::max(lower, domain.lower(*j));
    upper = std::min(upper, domain.upper(*j));
  }
  const Reason reason{Reason::Symmetry, -1};
  for (const int *j = begin; j < end; ++j)
    if (!domain.tighten(*j, BoundSide::Lower, lower, reason) ||
        !domain.tighten(*j, BoundSide::Upper, upper, reason))
      return false;
  return true;
}

bool OrbitalFixing::tighten(Domain &domain, WorkMeter &work) {
  if (stale_) computeOrbits(work);
  if (orbits_.count() == 0) return true;
  // The problem's own bounds agree, and so do those that agreed before unless they have changed.
  const Vec<TrailEntry> &trail = domain.trail();
  Vec<int> changed;
  for (std::size_t k = seen_; k < trail.size(); ++k)
    if (orbitOf_[trail[k].col] >= 0) changed.push_back(orbitOf_[trail[k].col]);
  work.charge(static_cast<double>(trail.size() - std::min(seen_, trail.size())));
  std::sort(changed.begin(), changed.end());
  changed.erase(std::unique(changed.begin(), changed.end()), changed.end());
  for (const int orbit : changed) {
    work.charge(kMemberWork * (orbits_.starts[orbit + 1] - orbits_.starts[orbit]));
    if (!tightenOrbit(orbit, domain)) return false;
  }
  seen_ = trail.size();
  return true;
}

}  // namespace tarvik
