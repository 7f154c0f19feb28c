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

// Candidates beyond so many times the limit are not looked at.
constexpr std::size_t kCandidateFactor = 5;

double productOf(const Cut &a, const Cut &b) {
  double product = 0;
  std::size_t i = 0, k = 0;
  if (a.index.back() < b.index.front() || b.index.back() < a.index.front()) return 0;
  while (i < a.index.size() && k < b.index.size()) {
    if (a.index[i] == b.index[k])
      product += a.value[i++] * b.value[k++];
    else if (a.index[i] < b.index[k])
      ++i;
    else
      ++k;
  }
  return product;
}

double normOf(const Cut &cut) {
  double square = 0;
  for (const double value : cut.value) square += value * value;
  return std::sqrt(square);
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
  if (order.size() > kCandidateFactor * filter.limit) order.resize(kCandidateFactor * filter.limit);
  Vec<int> chosen;
  Vec<double> norm;  // of the chosen ones
  for (const int k : order) {
    if (static_cast<int>(chosen.size()) >= filter.limit) break;
    const double own = normOf(cuts[k]);
    bool close = false;
    for (std::size_t c = 0; c < chosen.size() && !close; ++c)
      close = productOf(cuts[k], cuts[chosen[c]]) > filter.largestParallelism * own * norm[c];
    if (close) continue;
    chosen.push_back(k);
    norm.push_back(own);
  }
  return chosen;
}

}  // namespace tarvik
