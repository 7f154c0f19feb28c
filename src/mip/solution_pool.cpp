#include "mip/solution_pool.h"

#include <algorithm>
#include <cmath>

namespace tarvik {

Vec<double> SolutionPool::integralPart(const Vec<double> &x) const {
  Vec<double> part;
  for (int j = 0; j < problem_->numCols(); ++j)
    if (problem_->isIntegral(j)) part.push_back(std::round(x[j]));
  return part;
}

bool SolutionPool::has(const Vec<double> &x) const {
  const Vec<double> part = integralPart(x);
  return std::any_of(members_.begin(), members_.end(),
                     [&](const Member &member) { return member.integral == part; });
}

bool SolutionPool::add(const Vec<double> &x, double objective) {
  if (!inUse() || objective >= worst()) return false;
  Vec<double> part = integralPart(x);
  const auto same = std::find_if(members_.begin(), members_.end(),
                                 [&](const Member &member) { return member.integral == part; });
  if (same != members_.end()) {
    if (objective >= same->objective) return false;
    members_.erase(same);
  }
  const auto place =
      std::upper_bound(members_.begin(), members_.end(), objective,
                       [](double value, const Member &member) { return value < member.objective; });
  members_.insert(place, {objective, std::move(part)});
  if (static_cast<int>(members_.size()) > size_) members_.pop_back();
  return true;
}

}  // namespace tarvik
