// Thousands of tiny LPs with and without presolve: statuses, objectives, optimality conditions
// and bases must agree with an independent simplex.
#include <gtest/gtest.h>

#include <algorithm>

#include "lp/check.h"
#include "presolve/presolve.h"
#include "support/lp_checks.h"
#include "support/random_lp.h"
#include "support/reference_lp.h"

namespace tarvik {
namespace {

struct Counts {
  int optimal = 0, infeasible = 0, unbounded = 0, undecided = 0, solved = 0;
  int sparsified = 0;
  int unfit = 0;  // bases that are a start only
};

LpStatus solvePresolved(const LpModel &lp, const PresolveOptions &options, LpSolution &full,
                        Counts &counts) {
  SilentLog log;
  SolveControl control;
  control.log = &log;
  Presolve presolve;
  const PresolveStatus status = presolve.run(lp, options, control);
  if (status == PresolveStatus::InfeasibleOrUnbounded) return LpStatus::InfeasibleOrUnbounded;
  if (status == PresolveStatus::Unbounded) return LpStatus::Unbounded;
  if (status == PresolveStatus::Infeasible) {
    full.farkas = presolve.farkas();
    return presolve.infeasibleMeansInfeasible() ? LpStatus::Infeasible
                                                : LpStatus::InfeasibleOrUnbounded;
  }
  EXPECT_NE(status, PresolveStatus::Stopped);
  if (status == PresolveStatus::Solved) ++counts.solved;
  const LpSolution reduced = test::solveReference(presolve.reduced());
  if (reduced.status == LpStatus::Optimal) {
    EXPECT_TRUE(test::isOptimal(presolve.reduced(), reduced, 1e-7));
    EXPECT_TRUE(test::isBasicSolution(presolve.reduced(), reduced, 1e-7));
    counts.sparsified += presolve.stats().sparsified > 0;
    counts.unfit += !presolve.postsolve(reduced, full);
    // Without a basis the restored point must be just as optimal.
    LpSolution basisFree = reduced, restored;
    basisFree.basis = Basis{};
    presolve.postsolve(basisFree, restored);
    EXPECT_TRUE(test::isOptimal(lp, restored, 1e-6)) << "without a basis";
  }
  if (reduced.status == LpStatus::Infeasible) {
    presolve.postsolveFarkas(reduced.farkas, full.farkas);
    if (!presolve.infeasibleMeansInfeasible()) return LpStatus::InfeasibleOrUnbounded;
  }
  return reduced.status;
}

bool basicsMatchRows(const LpModel &lp, const Basis &basis) {
  return std::count(basis.col.begin(), basis.col.end(), VarStatus::Basic) +
             std::count(basis.row.begin(), basis.row.end(), VarStatus::Basic) ==
         lp.numRows;
}

bool feasible(const LpModel &lp, const LpSolution &solution, double tol) {
  const SolutionQuality quality = checkSolution(lp, solution, tol);
  return std::max(quality.boundViolation, quality.rowViolation) <= tol;
}

// The reference counts rounding errors of dependent equations as contradictions. Two verdicts that
// speak of feasible points are right when there is one within the tolerance.
bool onTheEdge(const LpModel &lp, const PresolveOptions &options, LpStatus status,
               const LpSolution &full, double edge) {
  if (status == LpStatus::Optimal) return feasible(lp, full, edge);
  if (status != LpStatus::Unbounded) return false;
  LpModel anyPoint = lp;
  anyPoint.cost.assign(anyPoint.cost.size(), 0.0);
  Counts ignored;
  LpSolution point;
  return solvePresolved(anyPoint, options, point, ignored) == LpStatus::Optimal &&
         feasible(lp, point, edge);
}

// edge: violations that the tolerances of presolve may leave where the reference sees none.
void compare(const LpModel &lp, const PresolveOptions &options, Counts &counts,
             double edge = 1e-9) {
  const LpSolution reference = test::solveReference(lp);
  const int unfit = counts.unfit;
  LpSolution full;
  const LpStatus status = solvePresolved(lp, options, full, counts);
  if (status == LpStatus::InfeasibleOrUnbounded) {
    ++counts.undecided;
    ASSERT_NE(reference.status, LpStatus::Optimal);
    ASSERT_TRUE(options.dualReductions);
    return;
  }
  if (reference.status == LpStatus::Infeasible && onTheEdge(lp, options, status, full, edge))
    return;
  ASSERT_EQ(status, reference.status);
  counts.unbounded += status == LpStatus::Unbounded;
  if (status == LpStatus::Infeasible) {
    ++counts.infeasible;
    ASSERT_GT(farkasViolation(lp, full.farkas), 0);
  }
  if (status != LpStatus::Optimal) return;
  ++counts.optimal;
  ASSERT_NEAR(full.objective, reference.objective,
              1e-7 * std::max(1.0, std::fabs(reference.objective)));
  ASSERT_TRUE(test::isOptimal(lp, full, 1e-6));
  if (counts.unfit > unfit)
    ASSERT_TRUE(basicsMatchRows(lp, full.basis));
  else
    ASSERT_TRUE(test::isBasicSolution(lp, full, 1e-6));
}

// Calls check(seed, make(seed)) until one fails.
template <class Make, class Check>
void checkEach(std::uint64_t first, int count, const Make &make, const Check &check) {
  for (std::uint64_t seed = first; seed < first + count; ++seed) {
    const LpModel lp = make(seed);
    SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + test::describe(lp));
    check(seed, lp);
    if (::testing::Test::HasFailure()) break;
  }
}

Counts compareMany(std::uint64_t first, int count, const test::RandomLpOptions &shape,
                   const PresolveOptions &options) {
  Counts counts;
  checkEach(
      first, count, [&](std::uint64_t seed) { return test::randomLp(seed, shape); },
      [&](std::uint64_t, const LpModel &lp) { compare(lp, options, counts); });
  return counts;
}

NzIndex entriesLeft(const LpModel &lp, const PresolveOptions &options) {
  SilentLog log;
  SolveControl control;
  control.log = &log;
  Presolve presolve;
  presolve.run(lp, options, control);
  return presolve.reduced().a.numNz();
}

TEST(RandomLp, TinyModels) {
  const Counts counts = compareMany(1, test::randomLpCount(30000), {}, {});
  EXPECT_GT(counts.optimal, 5000);
  EXPECT_GT(counts.infeasible, 3000);
  EXPECT_GT(counts.undecided, 3000);
  EXPECT_GT(counts.solved, 2000);
}

TEST(RandomLp, LargerAndSparser) {
  test::RandomLpOptions shape;
  shape.maxRows = 14;
  shape.maxCols = 18;
  shape.density = 0.17;
  shape.plantFeasible = 0.9;
  const Counts counts = compareMany(100001, 10000, shape, {});
  EXPECT_GT(counts.optimal, 2000);
}

// Equations that depend on each other, here and there not quite.
TEST(RandomLp, CombinedRows) {
  test::RandomLpOptions shape;
  shape.maxRows = 7;
  shape.maxCols = 14;
  shape.plantFeasible = 0.9;
  PresolveOptions options;
  options.depRows = 1;
  Counts counts;
  checkEach(
      300001, test::randomLpCount(10000),
      [&](std::uint64_t seed) { return test::withCombinedRows(test::randomLp(seed, shape), seed); },
      [&](std::uint64_t, const LpModel &lp) { compare(lp, options, counts, options.primalTol); });
  EXPECT_GT(counts.optimal, 2000);
  EXPECT_GT(counts.infeasible, 1000);
}

// Bounds that follow in several steps, some only from what they would make superfluous.
TEST(RandomLp, ChainsOfBounds) {
  test::RandomLpOptions shape;
  shape.maxRows = 4;
  shape.maxCols = 5;
  shape.plantFeasible = 0.9;
  PresolveOptions with, without;
  with.derivedBounds = 1;
  without.derivedBounds = 0;
  Counts counts;
  int gained = 0;
  checkEach(
      400001, test::randomLpCount(5000),
      [&](std::uint64_t seed) { return test::withChains(test::randomLp(seed, shape), seed); },
      [&](std::uint64_t, const LpModel &lp) {
        compare(lp, with, counts);
        gained += entriesLeft(lp, with) < entriesLeft(lp, without);
      });
  EXPECT_GT(counts.optimal, 1000);
  EXPECT_GT(counts.infeasible, 500);
  EXPECT_GT(gained, 100);
}

// Rows from which equations can be taken away again, whatever the model's size. Dependent equations
// with rounding errors are too much for the reference.
TEST(RandomLp, CancelledEntries) {
  test::RandomLpOptions shape;
  shape.maxRows = 6;
  shape.maxCols = 14;
  shape.plantFeasible = 0.9;
  Counts counts;
  const auto make = [&](std::uint64_t seed) {
    shape.fractional = seed % 3 == 0;
    shape.density = 0.3 + 0.05 * (seed % 11);
    return test::withCombinedRows(test::randomLp(seed, shape), seed);
  };
  checkEach(400001, test::randomLpCount(10000), make, [&](std::uint64_t seed, const LpModel &lp) {
    PresolveOptions options;
    options.sparsify = 1 + seed % 2;
    options.sparsifyMinSize = 2;
    options.sparsifyMinLength = 1;
    options.depRows = seed % 3 == 0;
    options.aggregate = seed % 4 < 2;
    options.singletonCols = seed % 8 < 4;
    compare(lp, options, counts, options.primalTol);
  });
  EXPECT_GT(counts.sparsified, 400);
  EXPECT_GT(counts.unfit, 40);
}

TEST(RandomLp, KeepsInfeasibleAndUnboundedApart) {
  PresolveOptions options;
  options.dualReductions = false;
  const Counts counts = compareMany(200001, 10000, {}, options);
  EXPECT_GT(counts.infeasible, 1000);
  EXPECT_GT(counts.unbounded, 1000);
  EXPECT_EQ(counts.undecided, 0);
}

}  // namespace
}  // namespace tarvik
