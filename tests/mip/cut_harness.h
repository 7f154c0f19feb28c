// Separation rounds on a small problem, and the judge of their cuts: every integral assignment is
// enumerated and the cut's left-hand side is maximized over the continuous columns by a reference
// simplex. A valid cut never exceeds its right-hand side.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <sstream>

#include "mip/cuts/cut_filter.h"
#include "mip/cuts/separators.h"
#include "mip/probing.h"
#include "support/reference_lp.h"

namespace tarvik::test {

using SeparatorMaker = std::function<std::unique_ptr<Separator>(std::shared_ptr<CutContext>)>;

inline Problem makeProblem(const LpModel &lp, const Vec<VarKind> &kind) {
  MipModel model;
  model.lp = lp;
  model.kind = kind;
  return Problem(std::move(model), MipTolerances());
}

inline std::string describe(const Cut &cut) {
  std::ostringstream text;
  for (std::size_t k = 0; k < cut.index.size(); ++k)
    text << (k ? " + " : "") << cut.value[k] << " x" << cut.index[k];
  text << " <= " << cut.rhs;
  return text.str();
}

// The points of a problem with integral columns in small boxes.
class Enumeration {
 public:
  explicit Enumeration(const Problem &problem) : problem_(&problem), lp_(problem.lp()) {
    enumerate(0);
  }
  int feasibleAssignments() const { return static_cast<int>(assignments_.size()); }
  // The most that the cut's left-hand side exceeds its right-hand side.
  double excess(const Cut &cut) {
    double worst = -kInf;
    lp_.cost.assign(lp_.numCols, 0.0);
    for (std::size_t k = 0; k < cut.index.size(); ++k) lp_.cost[cut.index[k]] = -cut.value[k];
    for (const Vec<double> &values : assignments_) {
      fix(values);
      const LpSolution solution = ReferenceSimplex(lp_).solve();
      if (solution.status == LpStatus::Unbounded) return kInf;
      if (solution.status == LpStatus::Optimal)
        worst = std::max(worst, -solution.objective + lp_.offset - cut.rhs);
    }
    return worst;
  }
  double optimum() {
    double best = kInf;
    lp_.cost = problem_->lp().cost;
    for (const Vec<double> &values : assignments_) {
      fix(values);
      const LpSolution solution = ReferenceSimplex(lp_).solve();
      if (solution.status == LpStatus::Optimal) best = std::min(best, solution.objective);
    }
    return best;
  }

 private:
  void fix(const Vec<double> &values) {
    for (std::size_t k = 0; k < values.size(); ++k)
      lp_.colLower[problem_->integers()[k]] = lp_.colUpper[problem_->integers()[k]] = values[k];
  }
  void enumerate(std::size_t k) {
    if (k == problem_->integers().size()) {
      fix(values_);
      lp_.cost.assign(lp_.numCols, 0.0);
      if (ReferenceSimplex(lp_).solve().status == LpStatus::Optimal)
        assignments_.push_back(values_);
      return;
    }
    const int j = problem_->integers()[k];
    for (double v = problem_->lp().colLower[j]; v <= problem_->lp().colUpper[j]; ++v) {
      values_.push_back(v);
      enumerate(k + 1);
      values_.pop_back();
    }
  }

  const Problem *problem_;
  LpModel lp_;
  Vec<double> values_;
  Vec<Vec<double>> assignments_;
};

struct SeparationResult {
  int cuts = 0;
  double firstBound = 0, lastBound = 0;
};

// Rounds of one separator, or several, each cut judged.
inline SeparationResult separateAndJudge(const Problem &problem,
                                         const std::vector<SeparatorMaker> &makers, int rounds,
                                         int level) {
  SeparationResult result;
  SilentLog log;
  SolveControl control;
  control.log = &log;
  Domain domain(problem);
  Relaxation lp(problem, SimplexOptions());
  if (!domain.propagate(control.work)) return result;
  lp.follow(domain);
  if (lp.solve(control) != LpStatus::Optimal) return result;
  // What probing finds, but not what it fixes.
  ImplicationTable implications(1000);
  Domain probed(domain);
  probeBinaries(probed, control, 1e9, &implications);
  result.firstBound = result.lastBound = lp.objective();
  Enumeration truth(problem);
  const auto context = std::make_shared<CutContext>();
  std::vector<std::unique_ptr<Separator>> separators;
  for (const SeparatorMaker &make : makers) separators.push_back(make(context));
  int id = 0;
  for (int round = 0; round < rounds; ++round) {
    SeparationPoint point{};
    point.problem = &problem;
    point.global = &domain;
    point.lp = &lp;
    const Vec<double> x = lp.x();
    point.x = &x;
    point.work = &control.work;
    point.round = round;
    point.implications = &implications;
    Vec<Cut> cuts;
    for (const auto &separator : separators) separator->separate(point, level, cuts);
    Vec<std::shared_ptr<const Cut>> added;
    Vec<CutId> ids;
    for (const Cut &cut : cuts) {
      EXPECT_GT(efficacy(cut, x), 1e-5) << describe(cut);
      if (truth.feasibleAssignments() > 0) {
        EXPECT_LE(truth.excess(cut), 1e-6)
            << "family " << static_cast<int>(cut.family) << ": " << describe(cut);
      }
      if (::testing::Test::HasFailure()) return result;
      added.push_back(std::make_shared<const Cut>(cut));
      ids.push_back(id++);
    }
    if (added.empty()) break;
    result.cuts += static_cast<int>(added.size());
    lp.addCuts(added, ids);
    if (lp.solve(control) != LpStatus::Optimal) break;
    result.lastBound = lp.objective();
  }
  if (truth.feasibleAssignments() > 0) {
    EXPECT_LE(result.lastBound, truth.optimum() + 1e-6 * (1 + std::fabs(truth.optimum())));
  }
  return result;
}

}  // namespace tarvik::test
