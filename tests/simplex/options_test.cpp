// What options of a solve change, seen from outside: the log, progress, edge weights.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "simplex/engine.h"
#include "support/ill_conditioned_lp.h"
#include "support/random_lp.h"

namespace tarvik::test {
namespace {

// The perturbation state by iteration, as callbacks see it.
class Witness : public Progress {
 public:
  bool onSimplex(const SimplexProgress &progress) override {
    seen.push_back(progress);
    return true;
  }
  // The first iteration with perturbed costs, -1 when there was none.
  double perturbedFrom() const {
    const auto first = std::find_if(seen.begin(), seen.end(),
                                    [](const SimplexProgress &p) { return p.perturbed == 2; });
    return first == seen.end() ? -1 : first->iterations;
  }
  Vec<SimplexProgress> seen;
};

LpModel longLp() {
  double objective = 0;
  return wideRangeLp(150, 400, 1, 3, objective);
}

Witness watch(const SimplexOptions &options, double *iterations = nullptr) {
  const LpModel lp = longLp();
  Simplex simplex(options);
  simplex.load(lp);
  SilentLog log;
  Witness witness;
  SolveControl control;
  control.log = &log;
  control.progress = &witness;
  control.limits.start();
  EXPECT_EQ(simplex.solve(SimplexMethod::Dual, control), LpStatus::Optimal);
  if (iterations) *iterations = simplex.iterations();
  return witness;
}

TEST(Options, ProgressIsShownAtTheIntervalAskedFor) {
  SimplexOptions options;
  options.logInterval = 1;
  double iterations = 0;
  EXPECT_GE(static_cast<double>(watch(options, &iterations).seen.size()), iterations);
  options.logInterval = 1000000;
  EXPECT_LT(static_cast<double>(watch(options).seen.size()), iterations / 4);
}

TEST(Options, PerturbationWaitsAsLongAsItIsTold) {
  SimplexOptions options;
  options.logInterval = 1;
  EXPECT_EQ(watch(options).perturbedFrom(), 0);
  options.perturbAfter = 40;
  EXPECT_EQ(watch(options).perturbedFrom(), 40);
  options.perturbValue = 0;
  EXPECT_NE(watch(options).perturbedFrom(), 40);
}

// Weights of a basis that is to be taken seriously are the norms of the rows of its inverse.
TEST(Options, WarmBasesGetExactWeightsWhereAsked) {
  const LpModel lp = longLp();
  SilentLog log;
  SolveControl control;
  control.log = &log;
  control.limits.start();
  Simplex first{SimplexOptions{}};
  first.load(lp);
  ASSERT_EQ(first.solve(SimplexMethod::Dual, control), LpStatus::Optimal);
  for (const int warmBasis : {0, 2}) {
    SimplexOptions options;
    options.warmBasis = warmBasis;
    Simplex simplex(options);
    simplex.load(lp);
    simplex.setBasis(first.basis());
    ASSERT_EQ(simplex.solve(SimplexMethod::Dual, control), LpStatus::Optimal);
    Engine<double> &engine = simplex.core();
    double error = 0;
    for (int i = 0; i < lp.numRows; ++i) {
      engine.unitBtran(i);
      double norm = 0;
      engine.rho.forEach([&](int, double x) { norm += x * x; });
      error = std::max(error, std::fabs(engine.rowWeight[i] - norm) / norm);
    }
    if (warmBasis == 2)
      EXPECT_LT(error, 1e-9);
    else
      EXPECT_GT(error, 1e-3);
  }
}

}  // namespace
}  // namespace tarvik::test
