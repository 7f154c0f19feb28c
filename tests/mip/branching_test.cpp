// What branching looks at beyond fractional columns: nonbasic columns that can stay at their bound,
// other optima of the relaxation, and chains of binaries that are split as sets.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "mip/branch_sets.h"
#include "mip/degenerate_moves.h"
#include "mip/heuristic_fixture.h"
#include "mip/nonbasic_probing.h"
#include "mip/quiet_solve.h"
#include "mip/reference_mip.h"

namespace tarvik::test {
namespace {

// A cutoff that no solution stands behind.
class CutoffSink : public CheckingSink {
 public:
  CutoffSink(const Problem &problem, double cutoff) : CheckingSink(problem), cutoff_(cutoff) {}
  double cutoff() const override { return cutoff_; }

 private:
  double cutoff_;
};

MipModel within(const MipModel &model, const Domain &domain) {
  MipModel restricted = model;
  for (int j = 0; j < model.lp.numCols; ++j) {
    restricted.lp.colLower[j] = domain.lower(j);
    restricted.lp.colUpper[j] = domain.upper(j);
  }
  return restricted;
}

TEST(NonbasicStrongBranch, FixesNothingThatABetterSolutionNeeds) {
  int fixed = 0;
  for (int seed = 1; seed <= 60; ++seed) {
    SCOPED_TRACE(seed);
    Random random(seed);
    const MipModel model =
        seed % 2 ? randomPacking(7, 4, random) : randomPartitioning(12, 5, random);
    const double optimum = ReferenceMip(model).solve().objective;
    for (const double room : {0.5, 3.0}) {
      HeuristicFixture at(model);
      ASSERT_EQ(at.solveRelaxation(), LpStatus::Optimal);
      CutoffSink sink(at.problem, optimum + room);
      const NonbasicProbing result = nonbasicStrongBranch(at.domain, at.lp, sink, 100, at.control);
      fixed += result.fixed;
      ASSERT_FALSE(result.infeasible);
      EXPECT_EQ(at.lp.status(), LpStatus::Optimal);
      EXPECT_NEAR(ReferenceMip(within(model, at.domain)).solve().objective, optimum, 1e-6);
    }
  }
  EXPECT_GT(fixed, 50);
}

TEST(NonbasicStrongBranch, ProbesNoMoreThanAllowed) {
  Random random(3);
  HeuristicFixture at(randomPacking(12, 4, random));
  ASSERT_EQ(at.solveRelaxation(), LpStatus::Optimal);
  CutoffSink sink(at.problem, at.lp.objective() + 1e-3);
  EXPECT_EQ(nonbasicStrongBranch(at.domain, at.lp, sink, 0, at.control).fixed, 0);
  EXPECT_LE(nonbasicStrongBranch(at.domain, at.lp, sink, 2, at.control).fixed, 2);
}

// Three columns that are all alike, one half each.
TEST(Brancher, ProbesColumnsOfDeepCutsFirst) {
  for (const int deep : {0, 1, 2}) {
    HeuristicFixture at(makeModel({-1, -1, -1}, {1, 1, 1},
                                  {{-kInf, {{0, 1}, {1, 1}}, 1},
                                   {-kInf, {{1, 1}, {2, 1}}, 1},
                                   {-kInf, {{0, 1}, {2, 1}}, 1}}));
    ASSERT_EQ(at.solveRelaxation(), LpStatus::Optimal);
    at.options.strongBranchCandidates = 1;
    PseudoCosts costs(3);
    Brancher brancher(at.problem, at.options, costs);
    Vec<double> efficacy(3, 0.1);
    efficacy[deep] = 0.2;
    brancher.setCutEfficacy(efficacy);
    CutoffSink sink(at.problem, kUserInf);
    brancher.choose(at.domain, at.lp, sink, at.control);
    for (int j = 0; j < 3; ++j) EXPECT_EQ(costs.count(j, true), j == deep) << j;
  }
}

TEST(DegenerateMoves, KeepTheOptimumAndNeverAddFractionalColumns) {
  int improved = 0;
  for (int seed = 1; seed <= 60; ++seed) {
    SCOPED_TRACE(seed);
    Random random(seed);
    MipModel model = randomPartitioning(60, 24, random);
    // Few different costs make many optima.
    for (double &cost : model.lp.cost) cost = 1 + std::floor(cost / 10);
    HeuristicFixture at(model);
    ASSERT_EQ(at.solveRelaxation(), LpStatus::Optimal);
    const double objective = at.lp.objective();
    Vec<int> before, after;
    fractionalColumns(at.domain, at.lp.x(), before);
    int told = 0;
    const int less = degenerateMoves(at.domain, at.lp, 3, at.control, [&] { ++told; });
    EXPECT_LE(told, 3);
    ASSERT_EQ(at.lp.status(), LpStatus::Optimal);
    EXPECT_NEAR(at.lp.objective(), objective, 1e-6);
    fractionalColumns(at.domain, at.lp.x(), after);
    EXPECT_EQ(static_cast<int>(before.size()) - less, static_cast<int>(after.size()));
    EXPECT_GE(less, 0);
    improved += less > 0;
    // Costs and bounds are the problem's again.
    for (int k = 0; k < 3; ++k) {
      const int j = random.below(60);
      if (at.domain.isFixed(j)) continue;
      const double value = random.below(2);
      at.domain.decide({{j, BoundSide::Lower, value}, {j, BoundSide::Upper, value}});
      Relaxation fresh(at.problem, at.options.simplex);
      Domain copy(at.problem);
      for (int c = 0; c < 60; ++c)
        copy.decide(
            {{c, BoundSide::Lower, at.domain.lower(c)}, {c, BoundSide::Upper, at.domain.upper(c)}});
      fresh.follow(copy);
      const LpStatus expected = fresh.solve(at.control);
      ASSERT_EQ(at.solveRelaxation(), expected);
      if (expected != LpStatus::Optimal) break;
      EXPECT_NEAR(at.lp.objective(), fresh.objective(), 1e-6);
    }
  }
  EXPECT_GT(improved, 5);
}

// A piecewise-linear function over `members` segments: exactly one segment, a weight at each of
// their ends that may be positive beside the chosen segment only. Columns: segments, then weights.
struct Chain {
  explicit Chain(int members, int extraRows = 0) {
    Vec<double> cost(members, 0), upper(members, 1);
    Vec<int> continuous;
    Vec<Row> rows(2);
    rows[0] = {1, {}, 1};
    rows[1] = {1, {}, 1};
    for (int k = 0; k < members; ++k) rows[0].entries.emplace_back(k, 1);
    for (int k = 0; k <= members; ++k) {
      const int weight = members + k;
      cost.push_back((k * 7) % 5 - 0.25 * k);
      upper.push_back(1);
      continuous.push_back(weight);
      rows[1].entries.emplace_back(weight, 1);
      Row link{-kInf, {{weight, 1}}, 0};
      if (k > 0) link.entries.emplace_back(k - 1, -1);
      if (k < members) link.entries.emplace_back(k, -1);
      rows.push_back(link);
    }
    // Makes the relaxation mix segments that are far apart.
    Row mean{0.45 * members, {}, 0.55 * members};
    for (int k = 0; k <= members; ++k) mean.entries.emplace_back(members + k, k);
    rows.push_back(mean);
    for (int k = 0; k < extraRows; ++k) rows.push_back({-kInf, {{0, 1}, {members, 1}}, 5});
    model = makeModel(cost, upper, rows, continuous);
  }
  MipModel model;
};

TEST(BranchSets, ChainsOfLinkedMembers) {
  const auto detect = [](const MipModel &model) {
    return detectBranchSets(Problem(MipModel(model), MipTolerances{}));
  };
  const BranchSetList found = detect(Chain(10).model);
  ASSERT_EQ(found.count(), 1);
  const SosSet set = found.set(0);
  ASSERT_EQ(set.cols.size(), 10u);
  EXPECT_EQ(set.type, 1);
  for (int k = 0; k < 10; ++k) EXPECT_EQ(set.cols[k], k);
  // Too few members; a member with three and four more entries.
  EXPECT_EQ(detect(Chain(9).model).count(), 0);
  EXPECT_EQ(detect(Chain(10, 3).model).count(), 1);
  EXPECT_EQ(detect(Chain(10, 4).model).count(), 0);
  // A link that is missing, turned round, or not at zero.
  for (const double coef : {0.0, 1.0}) {
    MipModel broken = Chain(10).model;
    for (NzIndex k = broken.lp.a.start[4]; k < broken.lp.a.start[5]; ++k)
      if (broken.lp.a.value[k] < 0) broken.lp.a.value[k] = coef;
    EXPECT_EQ(detect(broken).count(), 0) << coef;
  }
  MipModel shifted = Chain(10).model;
  shifted.lp.rowUpper[6] = 0.5;
  EXPECT_EQ(detect(shifted).count(), 0);
  // Partitioning needs an equation with ones.
  MipModel packing = Chain(10).model;
  packing.lp.rowLower[0] = -kInf;
  EXPECT_EQ(detect(packing).count(), 0);
}

TEST(BranchSets, SplittingThemFindsTheOptimum) {
  for (const int members : {10, 13, 17}) {
    const MipModel model = Chain(members).model;
    double expected = kUserInf;
    for (int chosen = 0; chosen < members; ++chosen) {
      MipModel fixed = model;
      for (int k = 0; k < members; ++k)
        fixed.lp.colLower[k] = fixed.lp.colUpper[k] = k == chosen ? 1 : 0;
      const LpSolution solution = ReferenceMip(fixed).solve();
      if (solution.status == LpStatus::Optimal) expected = std::min(expected, solution.objective);
    }
    ASSERT_LT(expected, kUserInf);
    for (const double ratio : {0.0, 2.0, 1e100}) {
      MipOptions options;
      options.mipGap = 0;
      options.setBranchRatio = ratio;
      options.presolve.level = 0;
      options.heuristics = 0;
      options.cuts.passes = 0;
      const MipOutcome outcome = solveQuietly(model, options);
      ASSERT_EQ(outcome.status, MipStatus::Optimal);
      EXPECT_NEAR(outcome.solutions.front().objective, expected, 1e-6);
    }
  }
}

// x2 has no bound but the set. Beyond it, the relaxation is unbounded and its row has integral
// points only if the right-hand side is even.
TEST(Brancher, UnboundedRelaxationsAreUnboundedOnlyWithIntegralPoints) {
  for (const bool even : {false, true}) {
    const double side = even ? 4 : 5;
    MipModel model = makeModel({1, 1, -1, 1}, {4, 4, kInf, 10},
                               {{side, {{0, 2}, {1, 2}, {3, 1}}, side}}, {2, 3});
    model.sos.push_back({1, {2, 3}, {1, 2}});
    for (const bool semi : {false, true}) {
      if (semi) {
        model.kind[2] = VarKind::SemiContinuous;
        model.holeLower.assign(4, 0);
        model.holeUpper = {0, 0, 3, 0};
      }
      for (const int level : {0, -1}) {
        for (const int threads : {1, 2}) {
          MipOptions options;
          options.presolve.level = level;
          options.threads = threads;
          const MipOutcome outcome = solveQuietly(model, options);
          EXPECT_EQ(outcome.status, even ? MipStatus::Unbounded : MipStatus::Optimal)
              << semi << level << threads;
          if (even) continue;
          ASSERT_FALSE(outcome.solutions.empty());
          EXPECT_NEAR(outcome.solutions.front().objective, 3, 1e-6);
        }
      }
    }
  }
}

// No integral point, which only a search without end could tell: x + y and x - y + 1 would both be
// even. One of two unbounded columns is zero.
TEST(Brancher, LimitsEndTheSearchWithinAnUnboundedNode) {
  MipModel model =
      makeModel({-1, 0, -1, -1, 0, 0, -1, -1}, {kInf, kInf, kInf, kInf, .2, .2, kInf, kInf},
                {{0, {{0, 1}, {1, 1}, {2, -2}, {4, 1}}, 0},
                 {1, {{0, 1}, {1, -1}, {3, -2}, {5, 1}}, 1},
                 {-kInf, {{6, 1}, {7, -1}}, 5}},
                {4, 5, 6, 7});
  std::fill(model.lp.colLower.begin(), model.lp.colLower.begin() + 4, -kInf);
  model.lp.colLower[4] = model.lp.colLower[5] = -.2;
  model.sos.push_back({1, {6, 7}, {1, 2}});
  for (const int threads : {1, 2}) {
    MipOptions options;
    options.threads = threads;
    options.nodeLimit = 50;
    EXPECT_EQ(solveQuietly(model, options).status, MipStatus::NodeLimit);
    options.nodeLimit = kUserInf;
    options.iterationLimit = 200;
    const MipOutcome outcome = solveQuietly(model, options);
    EXPECT_EQ(outcome.status, MipStatus::IterationLimit);
    EXPECT_GE(outcome.iterations, 200);
  }
  // At the root all are limits alike.
  model.sos.clear();
  MipOptions options;
  options.nodeLimit = 50;
  EXPECT_EQ(solveQuietly(model, options).status, MipStatus::InfeasibleOrUnbounded);
}

}  // namespace
}  // namespace tarvik::test
