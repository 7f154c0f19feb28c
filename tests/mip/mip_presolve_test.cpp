// The reductions of mixed-integer presolve on generated models: each of them fires, and each alone
// keeps the optimum.
#include <gtest/gtest.h>

#include <cstdlib>

#include "mip/mip_solve.h"
#include "mip/presolve/clique_merging.h"
#include "mip/presolve/dominated_binaries.h"
#include "mip/presolve/implied_integers.h"
#include "mip/presolve/knapsack_lifting.h"
#include "mip/presolve/model_editor.h"
#include "mip/presolve/sos_big_m.h"
#include "mip/presolve/two_rows.h"
#include "reference_mip.h"
#include "structured_mip.h"
#include "support/random_lp.h"

namespace tarvik {
namespace {

using test::ReferenceMip;
using test::StructuredMip;

class MipPresolveTest : public ::testing::Test {
 protected:
  MipPresolveTest() {
    control_.log = &log_;
    control_.limits.start();
    options_.simplex.logging = false;
    options_.mipGap = 0;
  }

  // The optimum of a model whose discrete part may have been changed equivalently.
  void expectSameOptimum(const MipModel &before, const MipModel &after, std::uint64_t seed) {
    const LpSolution expected = ReferenceMip(before).solve(), found = ReferenceMip(after).solve();
    ASSERT_EQ(expected.status, found.status) << "seed " << seed << test::describe(before.lp);
    if (expected.status != LpStatus::Optimal) return;
    EXPECT_NEAR(expected.objective, found.objective, 1e-6) << "seed " << seed;
  }

  SilentLog log_;
  SolveControl control_;
  MipOptions options_;
};

TEST_F(MipPresolveTest, EveryReductionFiresOnGeneratedModels) {
  MipPresolveStats total;
  for (std::uint64_t seed = 1; seed <= 4000; ++seed) {
    const MipModel model = StructuredMip(seed).generate();
    MipPresolve presolve(model, options_, control_);
    presolve.run();
    const MipPresolveStats &stats = presolve.stats();
    total.restrictions += stats.restrictions;
    total.bounds += stats.bounds;
    total.coefficients += stats.coefficients;
    total.sets += stats.sets;
    total.cliques += stats.cliques;
    total.dominated += stats.dominated;
    total.twoRows += stats.twoRows;
    total.lifted += stats.lifted;
    total.impliedIntegers += stats.impliedIntegers;
    total.components += stats.components;
  }
  EXPECT_GE(total.restrictions, 100);
  EXPECT_GE(total.bounds, 100);
  EXPECT_GE(total.coefficients, 100);
  EXPECT_GE(total.sets, 100);
  EXPECT_GE(total.cliques, 5);
  EXPECT_GE(total.dominated, 5);
  EXPECT_GE(total.twoRows, 5);
  EXPECT_GE(total.lifted, 5);
  EXPECT_GE(total.impliedIntegers, 5);
  EXPECT_GE(total.components, 5);
}

TEST_F(MipPresolveTest, SingleReductionsKeepTheOptimum) {
  int cliques = 0, dominated = 0, implied = 0, bounds = 0, sides = 0, lifted = 0;
  for (std::uint64_t seed = 1; seed <= 500 && !HasFailure(); ++seed) {
    const MipModel model = StructuredMip(seed).generate();
    MipModel merged(model), fixed(model), declared(model), paired(model), heavier(model);
    const CliqueMergingResult result = mergeCliques(merged, options_.tolerances, control_.work);
    cliques += result.rowsRemoved + result.fixed;
    dominated += fixDominatedBinaries(fixed, control_.work);
    implied += declareImpliedIntegers(declared);
    if (result.rowsRemoved + result.fixed > 0) expectSameOptimum(model, merged, seed);
    const TwoRowResult pairs = reduceTwoRows(paired, options_.tolerances, control_.work);
    bounds += pairs.bounds;
    sides += pairs.sides;
    if (pairs.infeasible)
      EXPECT_EQ(ReferenceMip(model).solve().status, LpStatus::Infeasible) << "seed " << seed;
    else if (pairs.bounds + pairs.sides > 0)
      expectSameOptimum(model, paired, seed);
    lifted += liftKnapsacks(heavier, options_.tolerances, -1, control_.work);
    expectSameOptimum(model, heavier, seed);
    expectSameOptimum(model, fixed, seed);
    expectSameOptimum(model, declared, seed);
  }
  EXPECT_GE(cliques, 5);
  EXPECT_GE(dominated, 5);
  EXPECT_GE(implied, 20);
  EXPECT_GE(bounds, 20);
  EXPECT_GE(sides, 20);
  EXPECT_GE(lifted, 20);
}

// Rows that are added later, one in the model and one, translated, in the presolved model.
class CrushTest : public MipPresolveTest {
 protected:
  static LinearRow randomRow(const MipModel &model, Random &random) {
    LinearRow row;
    double activity = 0;
    for (int j = 0; j < model.lp.numCols; ++j) {
      if (random.uniform() < 0.4) continue;
      row.cols.push_back(j);
      row.values.push_back(1 + random.below(4) - 5 * (random.uniform() < 0.3));
      activity += row.values.back() * std::max(-9.0, std::min(9.0, model.lp.colUpper[j]));
    }
    row.upper = std::floor(activity * random.uniform(0.2, 0.8));
    return row;
  }

  static void append(MipModel &model, const LinearRow &row) {
    ModelEditor editor(model);
    editor.addRow(row.cols, row.values, row.lower, row.upper);
    editor.apply();
  }

  static double activity(const LinearRow &row, const Vec<double> &x) {
    double sum = 0;
    for (std::size_t k = 0; k < row.cols.size(); ++k) sum += row.values[k] * x[row.cols[k]];
    return sum;
  }

  static std::uint64_t firstSeed() {
    const char *text = std::getenv("TARVIK_RANDOM_FIRST");
    return text ? std::strtoull(text, nullptr, 10) : 1;
  }
  static std::uint64_t lastSeed(std::uint64_t usual) {
    const char *text = std::getenv("TARVIK_RANDOM_MIPS");
    return firstSeed() + (text ? std::strtoull(text, nullptr, 10) : usual) - 1;
  }
  static bool hasModel(PresolveStatus status) {
    return status == PresolveStatus::Unchanged || status == PresolveStatus::Reduced ||
           status == PresolveStatus::Solved;
  }
};

// Whatever the values of the presolved columns, the row says the same of both points.
TEST_F(CrushTest, TranslatedRowsHaveTheSameSlack) {
  int removed = 0, refused = 0;
  for (std::uint64_t seed = firstSeed(); seed <= lastSeed(2000) && !HasFailure(); ++seed) {
    Random random(seed);
    const MipModel model = StructuredMip(seed).generate();
    options_.presolve.affine = seed % 3 > 0;
    MipPresolve presolve(model, options_, control_);
    if (!hasModel(presolve.run())) continue;
    const LinearRow row = randomRow(model, random);
    LinearRow crushed(row);
    if (!presolve.crushRow(crushed)) {
      ++refused;
      EXPECT_FALSE(options_.presolve.affine) << "seed " << seed;
      EXPECT_EQ(crushed.cols, row.cols);
      continue;
    }
    removed += model.lp.numCols > presolve.reduced().lp.numCols;
    Vec<double> x;
    for (int j = 0; j < presolve.reduced().lp.numCols; ++j) x.push_back(random.uniform(-3, 3));
    const double slack = row.upper - activity(row, presolve.postsolve(x));
    EXPECT_NEAR(crushed.upper - activity(crushed, x), slack, 1e-7 * (1 + std::fabs(slack)))
        << "seed " << seed << test::describe(model.lp);
  }
  EXPECT_GE(removed, 300);
  EXPECT_GE(refused, 10);
}

// Valid rows change nothing: presolve may choose between solutions.
TEST_F(CrushTest, ValidRowsKeepTheOptimum) {
  options_.presolve.affine = true;
  int checked = 0;
  for (std::uint64_t seed = firstSeed(); seed <= lastSeed(500) && !HasFailure(); ++seed) {
    Random random(seed);
    const MipModel model = StructuredMip(seed).generate();
    MipPresolve presolve(model, options_, control_);
    if (!hasModel(presolve.run())) continue;
    LinearRow row = randomRow(model, random);
    MipModel extreme(model);
    extreme.lp.cost.assign(model.lp.numCols, 0);
    for (std::size_t k = 0; k < row.cols.size(); ++k) extreme.lp.cost[row.cols[k]] = -row.values[k];
    extreme.lp.offset = 0;
    const LpSolution most = ReferenceMip(extreme).solve();
    if (most.status != LpStatus::Optimal) continue;
    row.upper = -most.objective + 1e-6;
    ASSERT_TRUE(presolve.crushRow(row)) << "seed " << seed;
    MipModel cut(presolve.reduced());
    append(cut, row);
    expectSameOptimum(model, cut, seed);
    ++checked;
  }
  EXPECT_GE(checked, 200);
}

// Rows that cut off solutions find those that are left.
TEST_F(CrushTest, LateConstraintsFindEveryPoint) {
  options_.presolve.keepPoints = true;
  int cutting = 0, smaller = 0;
  for (std::uint64_t seed = firstSeed(); seed <= lastSeed(700) && !HasFailure(); ++seed) {
    Random random(seed);
    const MipModel model = StructuredMip(seed).generate();
    MipPresolve presolve(model, options_, control_);
    const PresolveStatus status = presolve.run();
    LinearRow row = randomRow(model, random);
    MipModel constrained(model);
    append(constrained, row);
    const LpSolution expected = ReferenceMip(constrained).solve();
    if (!hasModel(status)) {
      EXPECT_EQ(status, PresolveStatus::Infeasible) << "seed " << seed;
      EXPECT_EQ(expected.status, LpStatus::Infeasible) << "seed " << seed;
      continue;
    }
    ASSERT_TRUE(presolve.crushRow(row)) << "seed " << seed;
    MipModel reduced(presolve.reduced());
    if (reduced.lp.numCols > model.lp.numCols) continue;  // rewritten sets: enumeration is slow
    smaller += reduced.lp.numCols < model.lp.numCols;
    append(reduced, row);
    expectSameOptimum(constrained, reduced, seed);
    const LpSolution free = ReferenceMip(model).solve();
    cutting += expected.status != free.status || expected.objective > free.objective + 1e-6;
  }
  EXPECT_GE(cutting, 100);
  EXPECT_GE(smaller, 100);
}

// All encodings of small sets, with bounds of both signs.
TEST_F(MipPresolveTest, EncodingsOfSetsKeepTheOptimum) {
  int sets = 0;
  for (std::uint64_t seed = 1; seed <= 800 && !HasFailure(); ++seed) {
    const MipModel model = StructuredMip(seed).generate();
    if (model.sos.size() != 1 || model.lp.numCols > 5) continue;  // enumeration is slow
    SosBigMOptions options;
    for (int type = 0; type < 2; ++type) options.encoding[type] = static_cast<int>(seed % 4);
    MipModel rewritten(model);
    SosBigM bigM;
    sets += bigM.run(rewritten, options, model.lp.colLower, model.lp.colUpper);
    expectSameOptimum(model, rewritten, seed);
    EXPECT_EQ(bigM.numOldCols(), model.lp.numCols);
  }
  EXPECT_GE(sets, 20);
}

// The image of a point that obeys the sets obeys the rows that stand for them.
TEST_F(MipPresolveTest, ImagesOfPointsFitTheEncodings) {
  MipModel model;
  model.lp = test::denseLp({0, 0, 0, 0, 0}, {{0, 4}, {-2, 3}, {0, 1}, {0, 2}, {-5, 0}}, {}, {});
  model.kind.assign(5, VarKind::Continuous);
  const Vec<double> points[2] = {{0, 0, 0, 2, 0}, {0, 0, 1, 2, 0}};
  for (int type = 1; type <= 2; ++type)
    for (int encoding = 0; encoding < 4; ++encoding) {
      MipModel rewritten(model);
      rewritten.sos.push_back({type, {0, 1, 2, 3, 4}, {1, 2, 3, 4, 5}});
      SosBigMOptions options;
      options.encoding[0] = options.encoding[1] = encoding;
      SosBigM bigM;
      ASSERT_EQ(bigM.run(rewritten, options, model.lp.colLower, model.lp.colUpper), 1);
      Vec<double> x(points[type - 1]);
      bigM.extend(x);
      EXPECT_LE(Problem(std::move(rewritten), options_.tolerances).violation(x), 0)
          << type << encoding;
    }
}

}  // namespace
}  // namespace tarvik
