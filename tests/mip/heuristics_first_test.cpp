// Heuristics for a first solution: the pump and the searches of derived models, and what they say.
#include <gtest/gtest.h>

#include <cmath>

#include "heuristic_fixture.h"
#include "mip/heuristics/feasibility_pump.h"
#include "mip/heuristics/int2bin.h"
#include "mip/heuristics/min_rel.h"
#include "mip/heuristics/zero_objective.h"
#include "mip/mip_solve.h"

namespace tarvik::test {
namespace {

// An odd cycle: the relaxation is feasible, no integral point is.
MipModel oddCycle() {
  return makeModel({0, 0, 0}, {1, 1, 1},
                   {{1, {{0, 1}, {1, 1}}, 1}, {1, {{1, 1}, {2, 1}}, 1}, {1, {{0, 1}, {2, 1}}, 1}});
}

TEST(FeasibilityPump, FindsPointsAndLeavesTheRelaxationAlone) {
  Random random(3);
  int solved = 0;
  for (int trial = 0; trial < 10; ++trial) {
    Recorded f(trial % 2 == 0 ? randomPartitioning(60, 15, random) : randomPacking(30, 8, random));
    ASSERT_EQ(f.solveRelaxation(), LpStatus::Optimal);
    const double objective = f.lp.objective();
    HeuristicContext context = f.context();
    EXPECT_FALSE(heurFeasPump(context, 50).infeasible);
    solved += f.sink.hasIncumbent() && f.sink.source() == SolutionSource::FeasibilityPump;
    EXPECT_NE(f.sink.hasIncumbent(), f.lines.says("Feasibility pump: no solution found in"));
    EXPECT_EQ(f.sink.hasIncumbent(), f.lines.says("found feasible solution\n"));
    EXPECT_EQ(f.domain.level(), 0);
    EXPECT_EQ(f.lp.status(), LpStatus::Optimal);
    EXPECT_NEAR(f.lp.objective(), objective, 1e-9 * (1 + std::fabs(objective)));
  }
  EXPECT_GE(solved, 8);
}

TEST(FeasibilityPump, CountsItsPasses) {
  Recorded f(oddCycle());
  ASSERT_EQ(f.solveRelaxation(), LpStatus::Optimal);
  HeuristicContext context = f.context();
  heurFeasPump(context, 0);
  EXPECT_EQ(f.lines.text, "");
  heurFeasPump(context, 7);
  EXPECT_EQ(f.lines.text, "Feasibility pump: no solution found in 7 passes\n");
  f.lines.text.clear();
  HeuristicContext exhausted = f.context(0);
  heurFeasPump(exhausted, 7);
  EXPECT_EQ(f.lines.text, "Feasibility pump: no solution found in 0 passes\n");
}

TEST(FeasibilityPump, SkipsModelsWithSets) {
  MipModel model = oddCycle();
  model.sos.push_back({1, {0, 1}, {1, 2}});
  Recorded f(std::move(model));
  f.solveRelaxation();
  HeuristicContext context = f.context();
  heurFeasPump(context, 7);
  EXPECT_EQ(f.lines.text, "Feasibility pump skipped - SOS constraints in model\n");
}

TEST(ZeroObjective, FindsASolutionOrProvesThatThereIsNone) {
  Random random(5);
  for (const double slackCost : {0.0, -1.0}) {
    Recorded f(randomPartitioning(60, 15, random));
    HeuristicContext context = f.context();
    ZeroObjCall call;
    call.slackCost = slackCost;
    EXPECT_FALSE(heurZeroObj(context, call).infeasible);
    EXPECT_EQ(f.sink.source(), SolutionSource::ZeroObjective);
    EXPECT_TRUE(f.lines.says("Exploring 500 nodes in zero objective heuristic\n"));
    EXPECT_TRUE(f.lines.says("Feasible solution found by zero objective heuristic at node 0\n"));
  }
  Recorded f(oddCycle());
  HeuristicContext context = f.context();
  EXPECT_TRUE(heurZeroObj(context, {}).infeasible);
  EXPECT_TRUE(f.lines.says("Model proven infeasible by zero objective heuristic\n"));
}

TEST(MinRel, FindsASolutionOrProvesThatThereIsNone) {
  Random random(7);
  Recorded feasible(randomPartitioning(40, 10, random));
  HeuristicContext context = feasible.context();
  EXPECT_FALSE(heurMinRel(context, 500, true).infeasible);
  EXPECT_TRUE(feasible.sink.hasIncumbent());
  EXPECT_TRUE(feasible.lines.says("Exploring 500 nodes in MinRel heuristic\n"));
  EXPECT_TRUE(feasible.lines.says("Feasible solution found by MinRel heuristic at node"));
  Recorded infeasible(oddCycle());
  HeuristicContext second = infeasible.context();
  EXPECT_TRUE(heurMinRel(second, 500, true).infeasible);
  EXPECT_TRUE(infeasible.lines.says("Model proven infeasible by MinRel heuristic\n"));
}

TEST(MinRel, BlamesNoTolerancesForAWorseSolution) {
  Recorded f(makeModel({1}, {4}, {{1, {{0, 1}}, kInf}}));
  ASSERT_TRUE(f.sink.submit({1}, SolutionSource::Node));
  HeuristicContext context = f.context();
  heurMinRel(context, 500, true);
  heurZeroObj(context, {});
  EXPECT_FALSE(f.lines.says("did not satisfy tolerances")) << f.lines.text;
}

TEST(MinRel, JudgesTheBoundOfTheViolation) {
  for (const double side : {1e-4, 9e-5}) {
    Recorded f(makeModel({1, 1}, {0, 4}, {{side, {{0, 1}}, kInf}, {3, {{1, 2}}, kInf}}));
    HeuristicContext context = f.context();
    EXPECT_EQ(heurMinRel(context, 500, true).infeasible, side == 1e-4);
    EXPECT_EQ(f.lines.says("No solution found by MinRel heuristic\n"), side != 1e-4);
  }
}

TEST(Int2Bin, SearchesTheDigits) {
  Random random(9);
  for (int trial = 0; trial < 5; ++trial) {
    MipModel model = randomPacking(12, 4, random);
    model.lp.colLower[3] = 1;
    model.lp.colUpper[3] = 11;
    model.lp.colLower[4] = -5;
    Recorded f(model);
    HeuristicContext context = f.context(1e10);
    const HeurResult result = heurInt2Bin(context, 100000);
    SilentLog silent;
    SolveControl control;
    control.log = &silent;
    control.limits.start();
    const MipOutcome direct = MipSolve(model, f.options, control).run();
    if (direct.solutions.empty()) {
      EXPECT_TRUE(f.lines.says("int2bin presolved model is infeasible\n") ||
                  f.lines.says("No solution found by int2bin heuristic\n"));
      continue;
    }
    EXPECT_NEAR(result.objective, direct.solutions.front().objective,
                1e-4 * std::fabs(result.objective));
    EXPECT_TRUE(f.lines.says("Feasible solution found by int2bin heuristic at node"));
  }
  Recorded binary(randomPartitioning(20, 5, random));
  HeuristicContext context = binary.context();
  heurInt2Bin(context, 100);
  EXPECT_EQ(binary.lines.text, "");
}

TEST(SubMipHeuristics, AreSilentInsideASubMip) {
  Recorded f(oddCycle());
  f.options.subMip = true;
  ASSERT_EQ(f.solveRelaxation(), LpStatus::Optimal);
  HeuristicContext context = f.context();
  heurFeasPump(context, 5);
  heurZeroObj(context, {});
  heurMinRel(context, 5, true);
  EXPECT_EQ(f.lines.text, "");
}

}  // namespace
}  // namespace tarvik::test
