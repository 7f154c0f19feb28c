#include <gtest/gtest.h>

#include <cmath>

#include "heuristic_fixture.h"
#include "mip/heuristics/diving.h"
#include "mip/heuristics/feasibility_jump.h"
#include "mip/heuristics/lp_scope.h"
#include "mip/heuristics/moving_point.h"
#include "mip/heuristics/neighbourhood.h"
#include "mip/heuristics/one_opt.h"
#include "mip/heuristics/rounding.h"
#include "mip/heuristics/shifting.h"
#include "mip/heuristics/trivial.h"

namespace tarvik::test {
namespace {

// Rows and columns as the tests below want to see them again.
struct Snapshot {
  Vec<double> lower, upper, x;
  int level;
  std::size_t trail;
  Basis basis;
  double objective;
};

Snapshot snapshot(HeuristicFixture &f) {
  return {f.domain.lower(),        f.domain.upper(),       f.lp.x(),        f.domain.level(),
          f.domain.trail().size(), f.lp.simplex().basis(), f.lp.objective()};
}

void expectRestored(HeuristicFixture &f, const Snapshot &before) {
  EXPECT_EQ(f.domain.lower(), before.lower);
  EXPECT_EQ(f.domain.upper(), before.upper);
  EXPECT_EQ(f.domain.level(), before.level);
  EXPECT_EQ(f.domain.trail().size(), before.trail);
  const Basis basis = f.lp.simplex().basis();
  EXPECT_EQ(basis.col, before.basis.col);
  EXPECT_EQ(basis.row, before.basis.row);
  EXPECT_EQ(f.lp.status(), LpStatus::Optimal);
  EXPECT_NEAR(f.lp.objective(), before.objective, 1e-9 * (1 + std::fabs(before.objective)));
  for (std::size_t j = 0; j < before.x.size(); ++j) EXPECT_NEAR(f.lp.x()[j], before.x[j], 1e-9);
}

double violationOf(const Problem &problem, const MovingPoint &point) {
  double worst = 0;
  for (const int i : point.violated()) worst = std::max(worst, std::fabs(point.excess(i)));
  return worst;
}

TEST(MovingPoint, KeepsViolatedRowsAndObjective) {
  Random random(3);
  Problem problem(randomPacking(20, 8, random), {});
  MovingPoint point(problem, Vec<double>(20, 0));
  for (int step = 0; step < 300; ++step) {
    const int j = random.below(20);
    point.move(j, random.below(static_cast<int>(problem.lp().colUpper[j]) + 1));
    EXPECT_NEAR(violationOf(problem, point), problem.violation(point.x()), 1e-9);
    EXPECT_NEAR(point.objective(), problem.objective(point.x()), 1e-9);
  }
}

TEST(MovingPoint, RoomEndsAtTheFirstRowOrBound) {
  // 2 x0 + x1 <= 7, x0 - x1 >= -3
  Problem problem(
      makeModel({0, 0}, {9, 9}, {{-kInf, {{0, 2}, {1, 1}}, 7}, {-3, {{0, 1}, {1, -1}}, kInf}}), {});
  MovingPoint point(problem, {1, 2});
  EXPECT_DOUBLE_EQ(point.room(0, true), 1.5);
  EXPECT_DOUBLE_EQ(point.room(0, false), 1);
  EXPECT_DOUBLE_EQ(point.room(1, true), 2);
  EXPECT_DOUBLE_EQ(point.room(1, false), 2);
}

TEST(TrivialPoints, FindEachKindOfPoint) {
  // Feasible at the lower side, at the upper side, and only with propagation.
  HeuristicFixture lower(makeModel({1, 1}, {5, 5}, {{-kInf, {{0, 1}, {1, 1}}, 3}}));
  HeuristicFixture upper(makeModel({1, 1}, {5, 5}, {{10, {{0, 1}, {1, 1}}, kInf}}));
  HeuristicFixture between(makeModel({1, 1, 1}, {1, 1, 1},
                                     {{1, {{0, 1}, {1, 1}, {2, 1}}, 1}, {1, {{0, 1}, {1, 1}}, 1}}));
  for (HeuristicFixture *f : {&lower, &upper, &between}) {
    HeuristicContext context = f->context();
    TrivialPoints().run(context);
    EXPECT_TRUE(f->sink.hasIncumbent());
    EXPECT_EQ(f->domain.level(), 0);
  }
  EXPECT_DOUBLE_EQ(lower.sink.incumbentObjective(), 0);
}

TEST(SimpleRounding, RoundsAwayFromLocksOnly) {
  // Packing: down is free. The second model locks both sides.
  HeuristicFixture packing(makeModel({-1, -1}, {1, 1}, {{-kInf, {{0, 2}, {1, 2}}, 3}}));
  packing.solveRelaxation();
  HeuristicContext context = packing.context();
  SimpleRounding().run(context);
  EXPECT_DOUBLE_EQ(packing.sink.incumbentObjective(), -1);
  HeuristicFixture locked(makeModel({1, 1, 1}, {1, 1, 1}, {{3, {{0, 2}, {1, 2}, {2, 2}}, 3}}));
  ASSERT_EQ(locked.solveRelaxation(), LpStatus::Optimal);
  EXPECT_TRUE(roundByLocks(locked.problem, locked.lp.x()).empty());
}

TEST(PropagatedRounding, SolvesWhatSimpleRoundingCannot) {
  Random random(5);
  int solved = 0;
  for (int trial = 0; trial < 10; ++trial) {
    HeuristicFixture f(randomPartitioning(30, 8, random));
    ASSERT_EQ(f.solveRelaxation(), LpStatus::Optimal);
    const Snapshot before = snapshot(f);
    HeuristicContext context = f.context();
    PropagatedRounding().run(context);
    solved += f.sink.hasIncumbent();
    expectRestored(f, before);
  }
  EXPECT_GE(solved, 8);
}

TEST(Shifting, MovesContinuousColumnsToMakeUpForRounding) {
  // The relaxation has 2.5 in the integral columns; once 0.5 is rounded away, y has to follow.
  HeuristicFixture f(
      makeModel({1, 1, 1.1}, {4, 4, 10}, {{2.5, {{0, 1}, {1, 1}, {2, 1}}, 2.5}}, {2}));
  ASSERT_EQ(f.solveRelaxation(), LpStatus::Optimal);
  HeuristicContext context = f.context();
  Shifting().run(context);
  EXPECT_NEAR(f.sink.incumbentObjective(), 2.55, 1e-9);
  EXPECT_EQ(f.sink.source(), SolutionSource::Shifting);
}

TEST(OneOpt, MovesSingleColumnsAndPairs) {
  // From zero: x0 can go up alone. From (1, 0) the pair exchanges.
  HeuristicFixture alone(makeModel({-3, -2}, {4, 4}, {{-kInf, {{0, 2}, {1, 1}}, 5}}));
  alone.sink.submit({0, 0}, SolutionSource::Trivial);
  HeuristicContext context = alone.context();
  OneOpt().run(context);
  EXPECT_DOUBLE_EQ(alone.sink.incumbentObjective(), -8);
  HeuristicFixture pair(makeModel({5, 2, 9}, {1, 1, 1}, {{1, {{0, 1}, {1, 1}, {2, 1}}, 1}}));
  pair.sink.submit({0, 0, 1}, SolutionSource::Trivial);
  HeuristicContext second = pair.context();
  OneOpt().run(second);
  EXPECT_DOUBLE_EQ(pair.sink.incumbentObjective(), 2);
}

TEST(FeasibilityJump, FindsPointsWithoutARelaxation) {
  Random random(11);
  int solved = 0;
  for (int trial = 0; trial < 10; ++trial) {
    HeuristicFixture f(randomPartitioning(60, 20, random));
    HeuristicContext context = f.context(2e7);
    FeasibilityJump().run(context);
    solved += f.sink.hasIncumbent();
    EXPECT_EQ(f.domain.level(), 0);
  }
  EXPECT_GE(solved, 8);
  // General integers and continuous columns that have to meet equations.
  HeuristicFixture f(makeModel(
      {1, 1, 1}, {50, 50, 20},
      {{37, {{0, 3}, {1, 1}}, 37}, {12.5, {{1, 1}, {2, 1}}, 12.5}, {4, {{1, 1}}, kInf}}, {2}));
  HeuristicContext context = f.context(1e7);
  FeasibilityJump().run(context);
  EXPECT_TRUE(f.sink.hasIncumbent());
}

TEST(FeasibilityJump, StopsOnAnInfeasibleModel) {
  HeuristicFixture f(
      makeModel({0, 0, 0}, {1, 1, 1},
                {{1, {{0, 1}, {1, 1}}, 1}, {1, {{1, 1}, {2, 1}}, 1}, {1, {{0, 1}, {2, 1}}, 1}}));
  HeuristicContext context = f.context(1e6);
  FeasibilityJump().run(context);
  EXPECT_FALSE(f.sink.hasIncumbent());
  EXPECT_LT(f.control.work.counted(), context.workLimit + 1e5);
}

class DiveTest : public testing::TestWithParam<DiveKind> {};

TEST_P(DiveTest, FindsPointsAndRestoresEverything) {
  Random random(21);
  int solved = 0;
  for (int trial = 0; trial < 8; ++trial) {
    HeuristicFixture f(trial % 2 == 0 ? randomPacking(40, 10, random)
                                      : randomPartitioning(60, 15, random));
    // Not at the root: some decision is in force that has to survive.
    ASSERT_TRUE(f.domain.decide({{trial, BoundSide::Upper, 0}}));
    ASSERT_TRUE(f.domain.propagate(f.control.work));
    if (f.solveRelaxation() != LpStatus::Optimal) continue;
    if (GetParam() == DiveKind::Guided) f.sink.submit(Vec<double>(f.problem.numCols(), 0), {});
    const Snapshot before = snapshot(f);
    const double limit = f.control.limits.workLimit;
    HeuristicContext context = f.context();
    Diving(GetParam()).run(context);
    solved += f.sink.hasIncumbent() && f.sink.source() == SolutionSource::Diving;
    expectRestored(f, before);
    EXPECT_EQ(f.control.limits.workLimit, limit);
  }
  EXPECT_GE(solved, GetParam() == DiveKind::Guided ? 3 : 5);
}

INSTANTIATE_TEST_SUITE_P(All, DiveTest,
                         testing::Values(DiveKind::Fractional, DiveKind::Coefficient,
                                         DiveKind::PseudoCost, DiveKind::VectorLength,
                                         DiveKind::LineSearch, DiveKind::Guided));

class NeighbourhoodTest : public testing::TestWithParam<NeighbourhoodKind> {};

TEST_P(NeighbourhoodTest, ImprovesWithinItsLimits) {
  Random random(31);
  int improved = 0;
  for (int trial = 0; trial < 6; ++trial) {
    HeuristicFixture f(randomPacking(40, 8, random));
    ASSERT_EQ(f.solveRelaxation(), LpStatus::Optimal);
    const Vec<double> poor(f.problem.numCols(), 0), rounded = roundByLocks(f.problem, f.x);
    const Vec<Vec<double>> solutions{poor, rounded};
    if (GetParam() != NeighbourhoodKind::Rens) f.sink.submit(poor, SolutionSource::Trivial);
    if (GetParam() == NeighbourhoodKind::Rins) f.sink.submit(rounded, SolutionSource::Trivial);
    const double known = f.sink.incumbentObjective();
    const Snapshot before = snapshot(f);
    HeuristicContext context = f.context(1e8);
    context.solutions = &solutions;
    Neighbourhood heuristic(GetParam());
    for (int call = 0; call < 4; ++call) EXPECT_FALSE(heuristic.run(context));
    improved += f.sink.incumbentObjective() < known;
    expectRestored(f, before);
    EXPECT_LT(f.control.work.counted(), context.workLimit + 1e7);
  }
  EXPECT_GE(improved, 4);
}

INSTANTIATE_TEST_SUITE_P(All, NeighbourhoodTest,
                         testing::Values(NeighbourhoodKind::Rens, NeighbourhoodKind::Rins,
                                         NeighbourhoodKind::Crossover,
                                         NeighbourhoodKind::Mutation));

TEST(LpScope, BringsBackCostsAndBasis) {
  Random random(8);
  HeuristicFixture f(randomPacking(30, 10, random));
  ASSERT_EQ(f.solveRelaxation(), LpStatus::Optimal);
  const Snapshot before = snapshot(f);
  HeuristicContext context = f.context();
  {
    LpScope scope(context);
    for (int j = 0; j < 30; ++j) scope.setCost(j, j % 3 - 1.0);
    ASSERT_TRUE(f.domain.decide({{2, BoundSide::Lower, 1}}));
    EXPECT_EQ(scope.solve(), LpStatus::Optimal);
    EXPECT_NE(f.lp.objective(), before.objective);
  }
  expectRestored(f, before);
}

}  // namespace
}  // namespace tarvik::test
