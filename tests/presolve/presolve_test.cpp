// The presolve interface beyond solving: limits, options, warm starts, interrupts.
#include "presolve/presolve.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "lp/check.h"
#include "support/lp_checks.h"
#include "support/random_lp.h"
#include "support/reference_lp.h"

namespace tarvik {
namespace {

struct Presolved {
  SilentLog log;
  SolveControl control;
  Presolve presolve;
  PresolveStatus status;
  explicit Presolved(const LpModel &lp, const PresolveOptions &options = {},
                     Progress *progress = nullptr) {
    control.log = &log;
    control.progress = progress;
    status = presolve.run(lp, options, control);
  }
};

bool hasReduced(PresolveStatus status) {
  return status == PresolveStatus::Unchanged || status == PresolveStatus::Reduced ||
         status == PresolveStatus::Solved;
}

// A model that reduces away: z satisfies the second row by itself, the first gives y.
LpModel easyModel() {
  return test::denseLp({-1, -2, 0}, {{0, 4}, {0, 3}, {0, kInf}}, {{1, 1, 0}, {1, -1, 1}},
                       {{5, 5}, {1, kInf}});
}

TEST(Presolve, EveryPrefixOfTheReductionsIsExact) {
  int cut = 0;
  for (std::uint64_t seed = 500000; seed < 502000; ++seed) {
    const LpModel lp = test::randomLp(seed);
    const LpSolution reference = test::solveReference(lp);
    if (reference.status != LpStatus::Optimal) continue;
    for (int limit = 0; limit < 12; ++limit) {
      SCOPED_TRACE("seed " + std::to_string(seed) + " limit " + std::to_string(limit));
      PresolveOptions options;
      options.reductionLimit = limit;
      Presolved run(lp, options);
      ASSERT_TRUE(hasReduced(run.status));
      ASSERT_LE(run.presolve.stats().reductions, limit);
      cut += run.presolve.stats().reductions == limit;
      LpSolution full;
      run.presolve.postsolve(test::solveReference(run.presolve.reduced()), full);
      ASSERT_TRUE(test::isOptimal(lp, full, 1e-6));
      ASSERT_TRUE(test::isBasicSolution(lp, full, 1e-6));
    }
  }
  EXPECT_GT(cut, 1000);
}

TEST(Presolve, OptionsSwitchReductionsOff) {
  PresolveOptions off;
  off.level = 0;
  Presolved untouched(easyModel(), off);
  EXPECT_EQ(untouched.status, PresolveStatus::Unchanged);
  EXPECT_EQ(untouched.presolve.reduced().numCols, 3);
  EXPECT_EQ(untouched.presolve.reduced().a.numNz(), 5);

  PresolveOptions noAggregation;
  noAggregation.aggregate = 0;
  const LpModel doubleton =
      test::denseLp({1, -1, 3}, {{0, 4}, {0, 4}, {0, 9}}, {{1, 1, 0}, {1, -2, 1}, {-1, 3, 2}},
                    {{5, 5}, {1, kInf}, {2, kInf}});
  EXPECT_LT(Presolved(doubleton).presolve.reduced().numRows, 3);
  EXPECT_EQ(Presolved(doubleton, noAggregation).presolve.reduced().numRows, 3);
}

// A switch leaves what its reductions would have removed, and the rest stays exact.
TEST(Presolve, EveryStageCanBeLeftOut) {
  PresolveOptions variants[4];
  variants[0].singletonCols = false;
  variants[1].parallel = false;
  variants[2].dominated = false;
  variants[3].multiplierLimit = 1;
  int larger[4] = {};
  for (std::uint64_t seed = 510000; seed < 511000; ++seed) {
    const LpModel lp = test::randomLp(seed);
    if (test::solveReference(lp).status != LpStatus::Optimal) continue;
    const auto size = [](const Presolved &run) {
      return run.presolve.reduced().numRows + run.presolve.reduced().numCols;
    };
    const int usual = size(Presolved(lp));
    for (int k = 0; k < 4; ++k) {
      SCOPED_TRACE("seed " + std::to_string(seed) + " variant " + std::to_string(k));
      Presolved run(lp, variants[k]);
      ASSERT_TRUE(hasReduced(run.status));
      larger[k] += size(run) > usual;
      LpSolution full;
      run.presolve.postsolve(test::solveReference(run.presolve.reduced()), full);
      ASSERT_TRUE(test::isOptimal(lp, full, 1e-6));
      ASSERT_TRUE(test::isBasicSolution(lp, full, 1e-6));
    }
  }
  for (int k = 0; k < 4; ++k) EXPECT_GT(larger[k], 0) << k;
}

TEST(Presolve, CountsWhatItRemoves) {
  const LpModel lp = easyModel();
  Presolved run(lp);
  EXPECT_EQ(run.presolve.stats().rowsRemoved, 2);
  EXPECT_EQ(run.presolve.stats().colsRemoved, 3);
  EXPECT_EQ(run.presolve.stats().nonzerosRemoved, 5);
  LpSolution full;
  run.presolve.postsolve({}, full);
  EXPECT_TRUE(test::isOptimal(lp, full, 1e-9));
  EXPECT_NEAR(full.objective, test::solveReference(lp).objective, 1e-9);
}

// Five supplies and six demands, all met exactly, in units of their own: any of the rows follows
// from the others if the totals agree.
LpModel transportation(double excess) {
  constexpr int kFrom = 5, kTo = 6;
  LpModel lp;
  lp.numCols = kFrom * kTo;
  lp.numRows = kFrom + kTo;
  const auto unit = [](int row) { return 1.0 / (1 + row % 3); };
  for (int i = 0; i < lp.numRows; ++i) {
    const double side = unit(i) * ((i < kFrom ? kTo : kFrom) + (i == 0 ? excess : 0));
    lp.rowLower.push_back(side);
    lp.rowUpper.push_back(side);
  }
  lp.a.clear(lp.numRows);
  for (int j = 0; j < lp.numCols; ++j) {
    const int rows[] = {j / kTo, kFrom + j % kTo};
    const double values[] = {unit(rows[0]), unit(rows[1])};
    lp.a.append(2, rows, values);
    lp.cost.push_back(1 + j * 7 % 11);
    lp.colLower.push_back(0);
    lp.colUpper.push_back(4);
  }
  return lp;
}

TEST(Presolve, RemovesDependentEquations) {
  PresolveOptions options;
  options.aggregate = 0;
  options.depRows = 1;
  const LpModel agreeing = transportation(0), close = transportation(1e-6);
  const LpModel contradicting = transportation(1e-2);
  Presolved run(agreeing, options);
  EXPECT_EQ(run.presolve.stats().rowsRemoved, 1);
  EXPECT_EQ(run.presolve.stats().colsRemoved, 0);
  // Neither a consequence of the others nor clearly a contradiction to them.
  Presolved unclear(close, options);
  EXPECT_EQ(unclear.status, PresolveStatus::Unchanged);
  Presolved contradiction(contradicting, options);
  EXPECT_EQ(contradiction.status, PresolveStatus::Infeasible);
  EXPECT_GT(farkasViolation(contradicting, contradiction.presolve.farkas()), 0);
  options.depRows = 0;
  EXPECT_EQ(Presolved(contradicting, options).status, PresolveStatus::Unchanged);
}

// Bounds that several rows imply together: x1 <= x0 <= 1 and x2 <= x1 + y <= 2 leave nothing to the
// last row, unless its side is smaller, and contradict a lower side above 3.
TEST(Presolve, ConcludesFromDerivedBounds) {
  PresolveOptions options;
  options.parallel = options.dominated = options.singletonCols = false;
  options.aggregate = 0;
  const auto chain = [](double lower, double upper) {
    return test::denseLp({1, -1, -2, 1}, {{0, 1}, {0, kInf}, {0, kInf}, {0, 1}},
                         {{-1, 1, 0, 0}, {0, -1, 1, -1}, {0, 1, 1, 0}},
                         {{-kInf, 0}, {-kInf, 0}, {lower, upper}});
  };
  const auto rowsLeft = [&](double upper, int derivedBounds) {
    options.derivedBounds = derivedBounds;
    return Presolved(chain(-kInf, upper), options).presolve.reduced().numRows;
  };
  EXPECT_EQ(rowsLeft(3, 0), 3);
  EXPECT_LT(rowsLeft(3, 1), 3);
  EXPECT_EQ(rowsLeft(2.9, 1), 3);

  const LpModel contradiction = chain(3.1, kInf);
  Presolved run(contradiction, options);
  ASSERT_EQ(run.status, PresolveStatus::Infeasible);
  EXPECT_GT(farkasViolation(contradiction, run.presolve.farkas()), 0);
}

// y >= 2 x and x >= y / 3 make x's bound follow from itself by way of y's; without it no optimum is
// left.
TEST(Presolve, DerivedBoundsDoNotSupportThemselves) {
  const LpModel lp =
      test::denseLp({1, 1, 0}, {{0, kInf}, {-kInf, kInf}, {-1, 1}},
                    {{-2, 1, 0}, {3, -1, 0}, {1, 1, 1}}, {{0, kInf}, {0, kInf}, {-kInf, 5}});
  PresolveOptions options;
  options.derivedBounds = 1;
  Presolved run(lp, options);
  ASSERT_TRUE(hasReduced(run.status));
  LpSolution full;
  run.presolve.postsolve(test::solveReference(run.presolve.reduced()), full);
  EXPECT_TRUE(test::isOptimal(lp, full, 1e-9));
  EXPECT_EQ(full.objective, 0);
}

// Row i is the sum of the first i + 1 of as many vectors with one half of the entries each, whose
// sides are those at the point of ones; all but some are equations.
LpModel sumsOfVectors(int rows, int cols) {
  Random random(rows);
  Vec<double> sum(static_cast<std::size_t>(cols), 0.0);
  SparseMatrix matrix;
  LpModel lp;
  matrix.clear(cols);
  for (int i = 0; i < rows; ++i) {
    for (int j = 0; j < cols; ++j) sum[j] += random.below(2) * (1 + random.below(9));
    Vec<int> index;
    Vec<double> value;
    double side = 0;
    for (int j = 0; j < cols; ++j)
      if (sum[j] != 0) index.push_back(j), value.push_back(sum[j]), side += sum[j];
    matrix.append(static_cast<int>(index.size()), index.data(), value.data());
    lp.rowLower.push_back(side);
    lp.rowUpper.push_back(i % 5 == 4 ? kInf : side);
  }
  lp.numRows = rows;
  lp.numCols = cols;
  lp.a = transpose(matrix);
  for (int j = 0; j < cols; ++j) lp.cost.push_back(1 + random.below(9));
  lp.colLower.assign(lp.cost.size(), 0.0);
  lp.colUpper.assign(lp.cost.size(), kInf);
  return lp;
}

TEST(Presolve, CancelsEntriesOfDenseModels) {
  const LpModel lp = sumsOfVectors(45, 50);
  const LpSolution reference = test::solveReference(lp);
  PresolveOptions options;
  for (const int level : {-1, 1, 2}) {
    options.sparsify = level;
    Presolved run(lp, options);
    ASSERT_EQ(run.status, PresolveStatus::Reduced);
    EXPECT_GT(run.presolve.stats().sparsified, lp.a.numNz() / 4) << level;
    EXPECT_EQ(run.presolve.stats().sparsifiedFrom, lp.a.numNz());
    LpSolution full;
    run.presolve.postsolve(test::solveReference(run.presolve.reduced()), full);
    EXPECT_NEAR(full.objective, reference.objective, 1e-6 * reference.objective);
    EXPECT_TRUE(test::isOptimal(lp, full, 1e-6));
  }
  // Rows of integers stay such rows.
  const Vec<char> integer(50, 1);
  options.integer = &integer;
  Presolved integral(lp, options);
  EXPECT_GT(integral.presolve.stats().sparsified, 0);
  for (const double value : integral.presolve.reduced().a.value)
    EXPECT_EQ(value, std::round(value));
  options.sparsify = 0;
  EXPECT_EQ(Presolved(lp, options).presolve.stats().sparsified, 0);
  // Too few columns.
  EXPECT_EQ(Presolved(sumsOfVectors(45, 38)).presolve.stats().sparsified, 0);
}

TEST(Presolve, ContradictingBoundsAreInfeasible) {
  LpModel rows = easyModel();
  rows.rowLower[1] = 2, rows.rowUpper[1] = 1;
  EXPECT_EQ(Presolved(rows).status, PresolveStatus::Infeasible);
  LpModel cols = easyModel();
  cols.colLower[2] = 2, cols.colUpper[2] = 1;
  EXPECT_EQ(Presolved(cols).status, PresolveStatus::Infeasible);
  cols.colLower[2] = kInf, cols.colUpper[2] = kInf;
  EXPECT_EQ(Presolved(cols).status, PresolveStatus::Infeasible);
}

TEST(Presolve, ACallbackStopsIt) {
  struct Refusing : Progress {
    bool onPresolve(const PresolveProgress &) override { return false; }
  } refusing;
  EXPECT_EQ(Presolved(easyModel(), {}, &refusing).status, PresolveStatus::Stopped);
}

TEST(Presolve, IntegralColumnsKeepIntegralSolutions) {
  // 2x + 3y = 12 with both integral must not become bounds of one real column.
  const LpModel lp = test::denseLp({1, 1}, {{0, 10}, {0, 10}}, {{2, 3}}, {{12, 12}});
  const Vec<char> integer{1, 1};
  PresolveOptions options;
  options.integer = &integer;
  Presolved run(lp, options);
  ASSERT_TRUE(hasReduced(run.status));
  EXPECT_EQ(run.presolve.reduced().numCols, 2);

  // 2 <= 3x <= 10 is 1 <= x <= 3.
  const LpModel bounds =
      test::denseLp({0, 1}, {{0, 10}, {0, 10}}, {{3, 0}, {1, 2}}, {{2, 10}, {3, 5}});
  Presolved rounded(bounds, options);
  const LpModel &reduced = rounded.presolve.reduced();
  ASSERT_EQ(reduced.numCols, 2);
  EXPECT_EQ(reduced.colLower[0], 1);
  EXPECT_EQ(reduced.colUpper[0], 3);
}

TEST(Presolve, WarmStartsHaveOneBasicVariableARow) {
  test::RandomLpOptions shape;
  shape.maxRows = 12;
  shape.maxCols = 16;
  int nontrivial = 0;
  for (std::uint64_t seed = 0; seed < 2000; ++seed) {
    const LpModel lp = test::randomLp(seed, shape);
    const LpSolution optimum = test::solveReference(lp);
    if (optimum.status != LpStatus::Optimal) continue;
    Presolved run(lp);
    if (!hasReduced(run.status)) continue;
    Basis crushed;
    ASSERT_TRUE(run.presolve.crushBasis(optimum.basis, crushed));
    const auto basics = std::count(crushed.col.begin(), crushed.col.end(), VarStatus::Basic) +
                        std::count(crushed.row.begin(), crushed.row.end(), VarStatus::Basic);
    ASSERT_EQ(basics, run.presolve.reduced().numRows);
    ASSERT_EQ(static_cast<int>(crushed.col.size()), run.presolve.reduced().numCols);
    nontrivial += basics > 2;
    for (std::size_t k = 0; k < crushed.col.size(); ++k) {
      const bool atUpper = crushed.col[k] == VarStatus::AtUpper;
      ASSERT_FALSE(atUpper && isInf(run.presolve.reduced().colUpper[k]));
    }
    EXPECT_FALSE(run.presolve.crushBasis({}, crushed));
  }
  EXPECT_GT(nontrivial, 50);
}

}  // namespace
}  // namespace tarvik
