#include "mip/cuts/cut_filter.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace tarvik {

namespace {

// Weight of the share of integral columns, and of parallelism with the objective.
constexpr double kIntegralWeight = 0.1;
constexpr double kObjectiveWeight = 0.1;

double scoreOf(const Cut &cut, const Problem &problem, const Vec<double> &x, double costNorm) {
  double integral = 0, along = 0, square = 0;
  for (std::size_t k = 0; k < cut.index.size(); ++k) {
    integral += problem.isIntegral(cut.index[k]);
    along += cut.value[k] * problem.lp().cost[cut.index[k]];
    square += cut.value[k] * cut.value[k];
  }
  const double share = integral / static_cast<double>(cut.index.size());
  const double parallel = costNorm > 0 ? std::fabs(along) / (costNorm * std::sqrt(square)) : 0;
  return efficacy(cut, x) * (1 + kIntegralWeight * share + kObjectiveWeight * parallel);
}

}  // namespace

Vec<int> chooseCuts(const Vec<Cut> &cuts, const Problem &problem, const Vec<double> &x,
                    const CutFilter &filter) {
  double costSquare = 0;
  for (const double c : problem.lp().cost) costSquare += c * c;
  Vec<double> score(cuts.size());
  Vec<int> order;
  for (std::size_t k = 0; k < cuts.size(); ++k) {
    if (efficacy(cuts[k], x) < filter.leastEfficacy) continue;
    score[k] = scoreOf(cuts[k], problem, x, std::sqrt(costSquare));
    order.push_back(static_cast<int>(k));
  }
  std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return score[a] > score[b]; });
  Vec<int> chosen;
  for (const int k : order) {
    if (static_cast<int>(chosen.size()) >= filter.limit) break;
    const bool close = std::any_of(chosen.begin(), chosen.end(), [&](int other) {
      return parallelism(cuts[k], cuts[other]) > filter.largestParallelism;
    });
    if (!close) chosen.push_back(k);
  }
  return chosen;
}

}  // namespace tarvik
