// Heuristics that search without a relaxation, or follow the caller's partitions.
#include <gtest/gtest.h>

#include <cmath>

#include "heuristic_fixture.h"
#include "mip/heuristics/local_search.h"
#include "mip/heuristics/no_rel.h"
#include "mip/heuristics/partition.h"
#include "mip/mip_solve.h"
#include "mip/quiet_solve.h"

namespace tarvik::test {
namespace {

MipSolution best(const MipModel &model) { return solveQuietly(model).solutions.front(); }

double optimum(const MipModel &model) { return best(model).objective; }

// Blocks that a few rows link; the columns of a block form a partition, the first one belongs to
// all of them.
MipModel linkedBlocks(int blocks, Random &random) {
  MipModel model = randomPacking(6 * blocks, 2 * blocks, random);
  for (int j = 0; j < model.lp.numCols; ++j) model.partition.push_back(1 + j / 6);
  model.partition[0] = 0;
  return model;
}

TEST(LocalSearch, ImprovesTheIncumbentUntilItGivesUp) {
  Random random(3);
  for (int trial = 0; trial < 5; ++trial) {
    HeuristicFixture f(randomPacking(40, 8, random));
    f.sink.submit(Vec<double>(40, 0), SolutionSource::Trivial);
    HeuristicContext context = f.context(3e7);
    LocalSearch search;
    ASSERT_TRUE(search.isReady(context));
    search.run(context);
    ASSERT_EQ(f.solveRelaxation(), LpStatus::Optimal);
    EXPECT_LT(f.sink.incumbentObjective(), 0.7 * f.lp.objective());
    EXPECT_EQ(f.sink.source(), SolutionSource::LocalSearch);
    EXPECT_LT(f.control.work.counted(), context.workLimit + 1e6);
  }
}

TEST(NoRel, FindsAndImprovesWithoutTheRelaxation) {
  Random random(5);
  const MipModel model = randomPartitioning(80, 20, random);
  Recorded f(model);
  HeuristicContext context = f.context();
  const HeurResult result = heurNoRel(context, 0, 0.5);
  EXPECT_EQ(f.lines.text.rfind("Starting NoRel heuristic\nFound phase-1 solution: relaxation ", 0),
            0u)
      << f.lines.text;
  EXPECT_TRUE(f.lines.says("Transition to phase 2\n"));
  EXPECT_TRUE(f.lines.says("NoRel heuristic complete\n"));
  EXPECT_LE(result.objective, 1.1 * optimum(model));
  EXPECT_EQ(f.lp.status(), LpStatus::NotSolved);
  // Neither time nor work: it does not run at all.
  f.lines.text.clear();
  heurNoRel(context, 0, 0);
  EXPECT_EQ(f.lines.text, "");
}

TEST(NoRel, SubmitsAsManySolutionsAsItMay) {
  Random random(7);
  HeuristicFixture f(randomPacking(40, 8, random));
  f.options.noRelSolutions = 0;
  HeuristicContext context = f.context();
  heurNoRel(context, 0, 0.05);
  EXPECT_FALSE(f.sink.hasIncumbent());
}

TEST(PartitionHeuristic, OptimisesEachPartitionAroundTheIncumbent) {
  Random random(9);
  const MipModel model = linkedBlocks(4, random);
  Recorded f(model);
  HeuristicContext context = f.context();
  heurPartition(context);
  EXPECT_EQ(f.lines.text, "") << "there is no incumbent";
  f.sink.submit(Vec<double>(24, 0), SolutionSource::Trivial);
  heurPartition(context);
  EXPECT_EQ(f.lines.text,
            "Starting partition heuristic: 4 partitions, 1 threads\n"
            "Completed partition heuristic\n");
  EXPECT_LE(f.sink.incumbentObjective(), 0.8 * optimum(model));
  // Columns of no partition stay as they are.
  MipModel fixed(model);
  for (int j = 0; j < 6; ++j) fixed.partition[j] = -1;
  HeuristicFixture g(fixed);
  g.sink.submit(Vec<double>(24, 0), SolutionSource::Trivial);
  HeuristicContext second = g.context();
  heurPartition(second);
  for (int j = 0; j < 6; ++j) EXPECT_EQ(g.sink.incumbent()[j], 0);
  EXPECT_LT(g.sink.incumbentObjective(), 0);
}

TEST(RelaxAndFix, BuildsASolutionPartitionByPartition) {
  Random random(11);
  const MipModel model = linkedBlocks(3, random);
  Recorded f(model);
  HeuristicContext context = f.context();
  const HeurResult result = heurRelaxAndFix(context);
  EXPECT_LE(result.objective, 0.8 * optimum(model));
  EXPECT_TRUE(
      f.lines.says("Relax-and-fix started: explore 500 nodes per partition (3 partitions)...\n"
                   "Relax-and-fix partition 1: intvars 6, fixedvars 0, relaxedvars 12\n"))
      << f.lines.text;
  EXPECT_TRUE(f.lines.says("Relax-and-fix partition 2: intvars 6, fixedvars 6, relaxedvars 6\n"));
  EXPECT_TRUE(f.lines.says("Relax-and-fix partition 3: found solution at objective "));
  // Nothing better than the optimum can be built.
  f.sink.submit(best(model).x, SolutionSource::Node);
  f.lines.text.clear();
  f.options.nodeLimit = 10;
  heurRelaxAndFix(context);
  EXPECT_TRUE(f.lines.says("Relax-and-fix started: explore 10 nodes per partition"));
  EXPECT_TRUE(f.lines.says("extended solution objective would exceed cutoff\n")) << f.lines.text;
}

}  // namespace
}  // namespace tarvik::test
