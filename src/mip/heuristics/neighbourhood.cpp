#include "mip/heuristics/neighbourhood.h"

#include <algorithm>
#include <cmath>

#include "mip/heuristics/heuristic_tools.h"
#include "mip/heuristics/sub_mip.h"

namespace tarvik {

namespace {
constexpr double kLeastRate = 0.2, kLargestRate = 0.95;
constexpr double kRateStep = 0.1;
// The share of the gap that a better solution has to close.
constexpr double kImprovement = 0.02;
constexpr double kRelativeImprovement = 1e-4;
constexpr int kCrossed = 3;
}  // namespace

const char *Neighbourhood::name() const {
  switch (kind_) {
    case NeighbourhoodKind::Rens:
      return "RENS";
    case NeighbourhoodKind::Rins:
      return "RINS";
    case NeighbourhoodKind::Crossover:
      return "Crossover";
    default:
      return "Mutation";
  }
}

SolutionSource Neighbourhood::source() const {
  switch (kind_) {
    case NeighbourhoodKind::Rens:
      return SolutionSource::Rens;
    case NeighbourhoodKind::Rins:
      return SolutionSource::Rins;
    case NeighbourhoodKind::Crossover:
      return SolutionSource::Crossover;
    default:
      return SolutionSource::Mutation;
  }
}

bool Neighbourhood::isReady(const HeuristicContext &context) const {
  if (context.problem->integers().empty()) return false;
  switch (kind_) {
    case NeighbourhoodKind::Rens:
      return true;
    case NeighbourhoodKind::Crossover:
      return context.solutions != nullptr && context.solutions->size() >= 2;
    default:
      return context.sink->hasPoint();
  }
}

void Neighbourhood::findFixings(HeuristicContext &context) {
  fixings_.clear();
  const Problem &problem = *context.problem;
  const double tolerance = problem.tolerances().integral;
  const Vec<double> &x = *context.x;
  for (const int j : problem.integers()) {
    double value = kind_ == NeighbourhoodKind::Rens ? std::round(x[j])
                                                    : std::round(context.sink->incumbent()[j]);
    bool agreed = true;
    switch (kind_) {
      case NeighbourhoodKind::Rens:
      case NeighbourhoodKind::Rins:
        agreed = std::fabs(x[j] - value) <= tolerance;
        break;
      case NeighbourhoodKind::Crossover: {
        const Vec<Vec<double>> &solutions = *context.solutions;
        const std::size_t first =
            solutions.size() - std::min<std::size_t>(kCrossed, solutions.size());
        for (std::size_t k = first; k < solutions.size(); ++k)
          agreed = agreed && std::fabs(solutions[k][j] - value) <= tolerance;
        break;
      }
      case NeighbourhoodKind::Mutation:
        break;
    }
    if (agreed) fixings_.push_back({j, value});
  }
}

// Drops fixings at random, or adds some of the incumbent's, until the rate is met. False: not
// enough can be fixed.
bool Neighbourhood::reachRate(HeuristicContext &context) {
  const Problem &problem = *context.problem;
  const auto wanted =
      static_cast<std::size_t>(std::ceil(rate_ * static_cast<double>(problem.integers().size())));
  if (kind_ == NeighbourhoodKind::Mutation) {
    shuffle(fixings_, *context.random);
    fixings_.resize(std::min(fixings_.size(), wanted));
    return !fixings_.empty();
  }
  if (fixings_.size() >= wanted) return true;
  if (kind_ == NeighbourhoodKind::Rens || !context.sink->hasPoint()) return false;
  Vec<char> fixed(problem.numCols(), 0);
  for (const Fixing &fixing : fixings_) fixed[fixing.col] = 1;
  Vec<int> others;
  for (const int j : problem.integers())
    if (!fixed[j]) others.push_back(j);
  shuffle(others, *context.random);
  for (const int j : others) {
    if (fixings_.size() >= wanted) break;
    fixings_.push_back({j, std::round(context.sink->incumbent()[j])});
  }
  return true;
}

void Neighbourhood::learn(const SubMip &sub) {
  if (sub.accepted() > 0) return;
  const MipStatus status = sub.outcome().status;
  const bool exhausted = status == MipStatus::Infeasible || status == MipStatus::Optimal;
  rate_ =
      std::min(std::max(rate_ + (exhausted ? -kRateStep : kRateStep), kLeastRate), kLargestRate);
}

bool Neighbourhood::run(HeuristicContext &context) {
  findFixings(context);
  if (!reachRate(context)) return false;
  SubMip sub(context, source());
  for (const Fixing &fixing : fixings_) {
    const LpModel &lp = sub.model().lp;
    if (fixing.value >= lp.colLower[fixing.col] && fixing.value <= lp.colUpper[fixing.col])
      sub.fix(fixing.col, fixing.value);
  }
  if (context.sink->hasPoint()) {
    const double incumbent = context.sink->incumbentObjective();
    const double least = std::max(kImprovement * (incumbent - context.lp->objective()),
                                  kRelativeImprovement * std::fabs(incumbent));
    sub.options().cutoff = std::min(sub.options().cutoff, incumbent - least);
  }
  sub.run();
  learn(sub);
  return false;
}

}  // namespace tarvik
