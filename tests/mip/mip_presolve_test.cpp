// The reductions of mixed-integer presolve on generated models: each of them fires, and each alone
// keeps the optimum.
#include <gtest/gtest.h>

#include "mip/mip_solve.h"
#include "mip/presolve/clique_merging.h"
#include "mip/presolve/dominated_binaries.h"
#include "mip/presolve/implied_integers.h"
#include "mip/presolve/sos_big_m.h"
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
    total.impliedIntegers += stats.impliedIntegers;
    total.components += stats.components;
  }
  EXPECT_GE(total.restrictions, 100);
  EXPECT_GE(total.bounds, 100);
  EXPECT_GE(total.coefficients, 100);
  EXPECT_GE(total.sets, 100);
  EXPECT_GE(total.cliques, 5);
  EXPECT_GE(total.dominated, 5);
  EXPECT_GE(total.impliedIntegers, 5);
  EXPECT_GE(total.components, 5);
}

TEST_F(MipPresolveTest, SingleReductionsKeepTheOptimum) {
  int cliques = 0, dominated = 0, implied = 0;
  for (std::uint64_t seed = 1; seed <= 500 && !HasFailure(); ++seed) {
    const MipModel model = StructuredMip(seed).generate();
    MipModel merged(model), fixed(model), declared(model);
    const CliqueMergingResult result = mergeCliques(merged, options_.tolerances, control_.work);
    cliques += result.rowsRemoved + result.fixed;
    dominated += fixDominatedBinaries(fixed, control_.work);
    implied += declareImpliedIntegers(declared);
    if (result.rowsRemoved + result.fixed > 0) expectSameOptimum(model, merged, seed);
    expectSameOptimum(model, fixed, seed);
    expectSameOptimum(model, declared, seed);
  }
  EXPECT_GE(cliques, 5);
  EXPECT_GE(dominated, 5);
  EXPECT_GE(implied, 20);
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
