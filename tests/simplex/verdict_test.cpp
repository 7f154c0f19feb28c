// Verdicts on models where tolerances leave a choice.
#include <gtest/gtest.h>

#include <limits>

#include "lp/check.h"
#include "lp/scaling.h"
#include "simplex/engine.h"
#include "support/ill_conditioned_lp.h"
#include "support/random_lp.h"

namespace tarvik::test {
namespace {

constexpr int kLinks = 60;

// x_1 = 0, x_k+1 - x_k = 0, x_n = gap: infeasible, though a gap of less than kLinks tolerances can
// be spread over the links until no row misses its bound by a whole tolerance.
LpModel brokenChain(double gap) {
  LpModel lp = emptyLp(kLinks + 1, kLinks);
  for (int k = 0; k < kLinks; ++k) {
    const int rows[2] = {k, k + 1};
    const double values[2] = {1, k + 1 < kLinks ? -1.0 : 1.0};
    lp.a.append(2, rows, values);
  }
  lp.colLower.assign(kLinks, -kInf);
  lp.rowLower.assign(kLinks + 1, 0.0);
  lp.rowLower[kLinks] = gap;
  lp.rowUpper = lp.rowLower;
  return lp;
}

LpSolution solveFromSpread(const LpModel &lp, double gap, SimplexMethod method) {
  Basis basis;
  basis.col.assign(kLinks, VarStatus::Superbasic);
  basis.row.assign(kLinks + 1, VarStatus::Basic);
  Vec<double> x(kLinks);
  for (int k = 0; k < kLinks; ++k) x[k] = gap * (k + 1) / (kLinks + 1);
  Simplex simplex{SimplexOptions{}};
  simplex.load(lp);
  simplex.setBasis(basis, &x);
  SilentLog log;
  SolveControl control;
  control.log = &log;
  control.limits.start();
  LpSolution solution;
  simplex.solve(method, control);
  simplex.getSolution(solution);
  return solution;
}

TEST(Verdict, ViolationsSpreadOverManyRowsAreNotFeasible) {
  constexpr double kGap = 5e-5;
  const LpModel lp = brokenChain(kGap);
  for (const auto method : {SimplexMethod::Dual, SimplexMethod::Primal}) {
    const LpSolution solution = solveFromSpread(lp, kGap, method);
    EXPECT_EQ(solution.status, LpStatus::Infeasible);
    EXPECT_GT(farkasViolation(lp, solution.farkas), 0);
  }
}

TEST(Verdict, ContradictionsWithinTheToleranceAreForgiven) {
  constexpr double kGap = 5e-7;
  const LpModel lp = brokenChain(kGap);
  for (const auto method : {SimplexMethod::Dual, SimplexMethod::Primal})
    EXPECT_EQ(solveFromSpread(lp, kGap, method).status, LpStatus::Optimal);
}

// x = 0 and x = 3e-7 contradict each other within the tolerance; 10 y >= 7e-6 holds at y = 0 after
// scaling only. The tolerance that makes y move leaves no point for x.
TEST(Verdict, TighterTolerancesProveNoInfeasibility) {
  const LpModel lp = denseLp({0, 1}, {{-kInf, kInf}, {0, 1}}, {{1, 0}, {1, 0}, {0, 10}},
                             {{0, 0}, {3e-7, 3e-7}, {7e-6, kInf}});
  const Basis basis{{VarStatus::Basic, VarStatus::AtLower},
                    {VarStatus::AtLower, VarStatus::Basic, VarStatus::Basic}};
  const Scaling scaling{{1, 1, 0.125}, {1, 1}};
  for (const auto method : {SimplexMethod::Dual, SimplexMethod::Primal}) {
    SimplexOptions options;
    options.scaleFlag = 2;
    Simplex simplex(options);
    simplex.load(lp, basis, nullptr, &scaling);
    SilentLog log;
    SolveControl control;
    control.log = &log;
    control.limits.start();
    EXPECT_EQ(simplex.solve(method, control), LpStatus::Optimal);
    LpSolution solution;
    simplex.getSolution(solution);
    EXPECT_LE(checkSolution(lp, solution, 1e-6).rowViolation, 1e-6);
  }
}

// Weights that have overflown make infeasible rows look as if there were nothing to choose.
TEST(Verdict, InvalidWeightsAreReset) {
  const LpModel lp = denseLp({1, 2}, {{0, 9}, {0, 9}}, {{1, 1}, {1, -1}}, {{3, kInf}, {-1, 1}});
  for (const double weight : {std::numeric_limits<double>::infinity(),
                              std::numeric_limits<double>::quiet_NaN(), -1.0, 0.0}) {
    Simplex simplex{SimplexOptions{}};
    simplex.load(lp);
    simplex.core().rowWeight.assign(2, weight);
    SilentLog log;
    SolveControl control;
    control.log = &log;
    control.limits.start();
    LpSolution solution;
    EXPECT_EQ(simplex.solve(SimplexMethod::Dual, control), LpStatus::Optimal) << weight;
    simplex.getSolution(solution);
    EXPECT_NEAR(solution.objective, 4, 1e-9) << weight;
  }
}

}  // namespace
}  // namespace tarvik::test
