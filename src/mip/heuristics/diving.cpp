#include "mip/heuristics/diving.h"

#include <algorithm>
#include <cmath>

#include "mip/heuristics/heuristic_tools.h"
#include "mip/heuristics/lp_scope.h"
#include "mip/heuristics/rounding.h"
#include "mip/pseudo_costs.h"

namespace tarvik {

namespace {
// This share of the fractional columns is bounded before the relaxation is solved again.
constexpr double kShareAtOnce = 0.1;
// Relaxations that may turn out infeasible in one dive.
constexpr int kMaxBacktracks = 4;
// A dive that has not come to an end after so many solves gives up.
constexpr int kMaxSolves = 300;
// Columns that rounding could satisfy are left for the end.
constexpr double kRoundablePenalty = 1e3;
}  // namespace

const char *Diving::name() const {
  switch (kind_) {
    case DiveKind::Fractional:
      return "Fractional diving";
    case DiveKind::Coefficient:
      return "Coefficient diving";
    case DiveKind::PseudoCost:
      return "Pseudo-cost diving";
    case DiveKind::VectorLength:
      return "Vector length diving";
    case DiveKind::LineSearch:
      return "Line search diving";
    default:
      return "Guided diving";
  }
}

void Diving::findFractional(const HeuristicContext &context) {
  fractional_.clear();
  const Problem &problem = *context.problem;
  const Vec<double> &x = context.lp->x();
  for (int j = 0; j < problem.numCols(); ++j)
    if (problem.isIntegral(j) && !context.domain->isFixed(j) &&
        std::fabs(x[j] - std::round(x[j])) > problem.tolerances().integral)
      fractional_.push_back(j);
}

// Small scores come first.
Diving::Choice Diving::rate(const HeuristicContext &context, int col, double x) const {
  const Problem &problem = *context.problem;
  const double f = x - std::floor(x), cost = problem.lp().cost[col];
  const int down = problem.downLocks(col), up = problem.upLocks(col);
  Choice choice;
  choice.col = col;
  switch (kind_) {
    case DiveKind::Fractional:
      choice.up = f >= 0.5;
      choice.score = choice.up ? 1 - f : f;
      break;
    case DiveKind::Coefficient:
      choice.up = up < down || (up == down && f >= 0.5);
      choice.score = std::min(up, down) + (choice.up ? 1 - f : f);
      break;
    case DiveKind::PseudoCost: {
      const double downGain = context.pseudoCosts->down(col, x);
      const double upGain = context.pseudoCosts->up(col, x);
      const double moved = x - (*context.x)[col];
      choice.up = std::fabs(moved) > 0.4 ? moved > 0
                  : f < 0.3 || f > 0.7   ? f > 0.7
                                         : upGain < downGain;
      const double share = choice.up ? 1 - f : f;
      choice.score =
          share * (1 + (choice.up ? upGain : downGain)) / (1 + (choice.up ? downGain : upGain));
      break;
    }
    case DiveKind::VectorLength: {
      choice.up = cost >= 0;  // against the cost: rows are satisfied by it
      if (cost == 0) choice.up = down > up;
      const double distance = choice.up ? 1 - f : f;
      choice.score =
          (std::fabs(cost) * distance + 1e-6 * distance) / (1.0 + problem.cols().length(col));
      break;
    }
    case DiveKind::LineSearch: {
      const double root = (*context.x)[col];
      const double moved = x - root;
      choice.up = moved > 0 || (moved == 0 && f >= 0.5);
      choice.score = moved == 0 ? kUserInf : (choice.up ? 1 - f : f) / std::fabs(moved);
      break;
    }
    case DiveKind::Guided: {
      const double guide = context.sink->incumbent()[col];
      choice.up = guide > x;
      choice.score = std::fabs(x - guide);
      break;
    }
  }
  if (kind_ != DiveKind::Guided && (down == 0 || up == 0)) {
    choice.up = down != 0;
    choice.score += kRoundablePenalty;
  }
  return choice;
}

bool Diving::bound(HeuristicContext &context, const Choice &choice, double x) const {
  const BoundChange change = choice.up ? BoundChange{choice.col, BoundSide::Lower, std::ceil(x)}
                                       : BoundChange{choice.col, BoundSide::Upper, std::floor(x)};
  return context.domain->decide({change}) && context.domain->propagate(context.control->work);
}

// Bounds the best few columns, each the other way round when it fails. False: a dead end.
bool Diving::boundSome(HeuristicContext &context) {
  const Vec<double> &x = context.lp->x();
  Vec<Choice> choices;
  for (const int j : fractional_) choices.push_back(rate(context, j, x[j]));
  const std::size_t most =
      1 + static_cast<std::size_t>(kShareAtOnce * static_cast<double>(fractional_.size()));
  const auto before = [](const Choice &a, const Choice &b) {
    return a.score < b.score || (a.score == b.score && a.col < b.col);
  };
  std::sort(choices.begin(), choices.end(), before);
  Domain &domain = *context.domain;
  std::size_t made = 0;
  for (Choice &choice : choices) {
    const double value = x[choice.col];
    if (value < domain.lower(choice.col) || value > domain.upper(choice.col)) continue;
    const int level = domain.level();
    if (!bound(context, choice, value)) {
      domain.backtrackTo(level);
      choice.up = !choice.up;
      if (!bound(context, choice, value)) return false;
    }
    if (made == 0) {
      last_ = choice;
      lastX_ = value;
      lastLevel_ = level;
    }
    if (++made >= most) break;
  }
  return true;
}

// The first column of the latest round goes the other way. False: that fails as well.
bool Diving::takeBackLast(HeuristicContext &context, LpScope &scope) {
  context.domain->backtrackTo(std::max(lastLevel_, scope.level()));
  last_.up = !last_.up;
  return bound(context, last_, lastX_);
}

bool Diving::finish(HeuristicContext &context) {
  if (fractional_.empty())
    return context.sink->submit(Vec<double>(context.lp->x()), SolutionSource::Diving);
  const Vec<double> rounded = roundByLocks(*context.problem, context.lp->x());
  return !rounded.empty() && context.problem->objective(rounded) < context.sink->cutoff() &&
         submitChosen(context, rounded, SolutionSource::Diving);
}

bool Diving::isReady(const HeuristicContext &context) const {
  return kind_ != DiveKind::Guided || context.sink->hasPoint();
}

bool Diving::run(HeuristicContext &context) {
  LpScope scope(context);
  lastLevel_ = -1;
  int backtracks = 0;
  for (int solves = 0; solves < kMaxSolves; ++solves) {
    findFractional(context);
    const bool accepted = finish(context);
    if (fractional_.empty() || (accepted && kind_ == DiveKind::Guided)) break;
    if (isExhausted(context)) break;
    bool possible = boundSome(context);
    LpStatus status = LpStatus::Infeasible;
    if (possible) status = scope.solve();
    while (status == LpStatus::Infeasible || status == LpStatus::Cutoff) {
      if (lastLevel_ < 0 || ++backtracks > kMaxBacktracks || isExhausted(context)) return false;
      possible = takeBackLast(context, scope);
      lastLevel_ = -1;
      if (!possible) return false;
      status = scope.solve();
    }
    if (status != LpStatus::Optimal) break;
  }
  return false;
}

}  // namespace tarvik
