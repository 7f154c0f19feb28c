// Benichou, Gauthier, Girodet, Hentges, Ribiere and Vincent (1971); the product score follows
// Achterberg (2007).
#include "mip/pseudo_costs.h"

#include <algorithm>
#include <cmath>

namespace tarvik {

namespace {
constexpr double kLeastGain = 1e-6;
}

void PseudoCosts::update(int col, double distance, double gain) {
  if (distance == 0) return;
  const bool up = distance > 0;
  const double perUnit = std::max(gain, 1e-10) / (std::fabs(distance) + 0.001);
  gain_[up][col] =
      count_[up][col] > 0 ? gain_[up][col] + perUnit : std::max(gain_[up][col], perUnit);
  ++count_[up][col];
  ++totalCount_[up];
  totalGain_[up] += perUnit;
}

void PseudoCosts::addObserved(const PseudoCosts &before, const PseudoCosts &after) {
  for (int d = 0; d < 2; ++d) {
    for (std::size_t j = 0; j < count_[d].size(); ++j) {
      count_[d][j] += after.count_[d][j] - before.count_[d][j];
      cutoffs_[d][j] += after.cutoffs_[d][j] - before.cutoffs_[d][j];
      gain_[d][j] += after.gain_[d][j] - before.gain_[d][j];
    }
    totalCount_[d] += after.totalCount_[d] - before.totalCount_[d];
    totalGain_[d] += after.totalGain_[d] - before.totalGain_[d];
  }
}

double PseudoCosts::perUnit(int col, bool up) const {
  if (count_[up][col] > 0) return gain_[up][col] / count_[up][col];
  return totalCount_[up] > 0 ? totalGain_[up] / totalCount_[up] : 1;
}

double PseudoCosts::down(int col, double x) const {
  return perUnit(col, false) * (x - std::floor(x));
}
double PseudoCosts::up(int col, double x) const { return perUnit(col, true) * (std::ceil(x) - x); }

double PseudoCosts::cutoffRate(int col, bool up) const {
  return cutoffs_[up][col] / (1.0 + cutoffs_[up][col] + count_[up][col]);
}

double PseudoCosts::score(double down, double up) {
  return std::max(down, kLeastGain) * std::max(up, kLeastGain);
}

double PseudoCosts::averageScore() const {
  const auto average = [&](int d) {
    return totalCount_[d] > 0 ? totalGain_[d] / totalCount_[d] : 1;
  };
  return score(0.5 * average(0), 0.5 * average(1));
}

}  // namespace tarvik
