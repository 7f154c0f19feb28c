// Differential test on tiny random LPs: both algorithms, from the slack basis and from old bases
// after changes, permuted and rescaled, against certificates that are checked independently.
#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>

#include "lp/check.h"
#include "simplex/simplex.h"
#include "support/ill_conditioned_lp.h"
#include "support/lp_checks.h"
#include "support/random_lp.h"
#include "support/reference_lp.h"

namespace tarvik::test {
namespace {

constexpr double kTol = 1e-6;

int modelCount() { return randomLpCount(4000); }

LpSolution solveWith(Simplex &simplex, SimplexMethod method) {
  SilentLog log;
  SolveControl control;
  control.log = &log;
  control.limits.iterationLimit = 100000;
  control.limits.start();
  LpSolution solution;
  simplex.solve(method, control);
  simplex.getSolution(solution);
  return solution;
}

LpSolution solveFresh(const LpModel &lp, SimplexMethod method, SimplexOptions options = {}) {
  Simplex simplex(options);
  simplex.load(lp);
  return solveWith(simplex, method);
}

bool boundsCross(const LpModel &lp) {
  for (int j = 0; j < lp.numCols; ++j)
    if (lp.colLower[j] > lp.colUpper[j] + 1e-9) return true;
  for (int i = 0; i < lp.numRows; ++i)
    if (lp.rowLower[i] > lp.rowUpper[i] + 1e-9) return true;
  return false;
}

// The claim of a solution, proven by what comes with it.
::testing::AssertionResult isProven(const LpModel &lp, const LpSolution &solution) {
  switch (solution.status) {
    case LpStatus::Optimal: {
      const auto optimal = isOptimal(lp, solution, kTol);
      return optimal ? isBasicSolution(lp, solution, kTol) : optimal;
    }
    case LpStatus::Infeasible:
      if (boundsCross(lp) || farkasViolation(lp, solution.farkas) > 0)
        return ::testing::AssertionSuccess();
      return ::testing::AssertionFailure() << "infeasible without a proof";
    case LpStatus::Unbounded: {
      if (!(rayImprovement(lp, solution.ray) < 0))
        return ::testing::AssertionFailure() << "unbounded without a ray";
      const SolutionQuality q = checkSolution(lp, solution, kTol);
      if (q.boundViolation > kTol || q.rowViolation > kTol)
        return ::testing::AssertionFailure() << "unbounded without a feasible point";
      return ::testing::AssertionSuccess();
    }
    default:
      return ::testing::AssertionFailure() << "status " << static_cast<int>(solution.status);
  }
}

void expectSame(const LpModel &lp, const LpSolution &solution, const LpSolution &reference,
                const char *what) {
  EXPECT_TRUE(isProven(lp, solution)) << what << "\n" << describe(lp);
  if (edgeOfFeasibility(lp, solution, reference, kTol)) return;
  EXPECT_EQ(solution.status, reference.status) << what << "\n" << describe(lp);
  if (solution.status == LpStatus::Optimal && reference.status == LpStatus::Optimal) {
    EXPECT_NEAR(solution.objective, reference.objective,
                kTol * (1 + std::fabs(reference.objective)))
        << what << "\n"
        << describe(lp);
  }
}

LpModel permuted(const LpModel &lp, Random &random) {
  Vec<int> rowTo(lp.numRows), colFrom(lp.numCols);
  for (int i = 0; i < lp.numRows; ++i) rowTo[i] = i;
  for (int j = 0; j < lp.numCols; ++j) colFrom[j] = j;
  shuffle(rowTo, random);
  shuffle(colFrom, random);
  LpModel result = lp;
  result.a.clear(lp.numRows);
  for (int j = 0; j < lp.numCols; ++j) {
    const int from = colFrom[j];
    Vec<int> index;
    for (NzIndex k = lp.a.start[from]; k < lp.a.start[from + 1]; ++k)
      index.push_back(rowTo[lp.a.index[k]]);
    result.a.append(static_cast<int>(index.size()), index.data(),
                    lp.a.value.data() + lp.a.start[from]);
    result.cost[j] = lp.cost[from];
    result.colLower[j] = lp.colLower[from];
    result.colUpper[j] = lp.colUpper[from];
  }
  for (int i = 0; i < lp.numRows; ++i) {
    result.rowLower[rowTo[i]] = lp.rowLower[i];
    result.rowUpper[rowTo[i]] = lp.rowUpper[i];
  }
  return result;
}

// Every row multiplied by a random power of two, which changes no solution.
LpModel rescaled(const LpModel &lp, Random &random) {
  LpModel result = lp;
  for (int i = 0; i < lp.numRows; ++i) {
    const double factor = std::exp2(random.below(13) - 6);
    for (NzIndex k = 0; k < lp.a.numNz(); ++k)
      if (lp.a.index[k] == i) result.a.value[k] *= factor;
    if (!isInf(lp.rowLower[i])) result.rowLower[i] *= factor;
    if (!isInf(lp.rowUpper[i])) result.rowUpper[i] *= factor;
  }
  return result;
}

// One random change, made to the model and to the engine alike.
void change(LpModel &lp, Simplex &simplex, Random &random) {
  const int kind = random.below(4);
  if (kind == 0) {
    const int j = random.below(lp.numCols);
    lp.cost[j] += random.below(7) - 3;
    simplex.setCost(j, lp.cost[j]);
  } else if (kind == 1 || lp.numRows == 0) {
    const int j = random.below(lp.numCols);
    lp.colUpper[j] = isInf(lp.colUpper[j]) ? 3 : lp.colUpper[j] - 1;
    lp.colLower[j] = std::fmin(lp.colLower[j], lp.colUpper[j]);
    simplex.setColBounds(j, lp.colLower[j], lp.colUpper[j]);
  } else if (kind == 2) {
    const int i = random.below(lp.numRows);
    if (!isInf(lp.rowUpper[i])) lp.rowUpper[i] -= 1;
    if (!isInf(lp.rowLower[i])) lp.rowLower[i] -= 1;
    simplex.setRowBounds(i, lp.rowLower[i], lp.rowUpper[i]);
  } else {
    SparseMatrix rows = transpose(lp.a);
    Vec<int> index;
    Vec<double> value;
    for (int j = 0; j < lp.numCols; ++j) {
      if (random.uniform() >= 0.5) continue;
      index.push_back(j);
      value.push_back(1 + random.below(3));
    }
    const NzIndex start[2] = {0, static_cast<NzIndex>(index.size())};
    const double lower = -kInf, upper = random.below(10);
    simplex.addRows(1, start, index.data(), value.data(), &lower, &upper);
    rows.append(static_cast<int>(index.size()), index.data(), value.data());
    lp.a = transpose(rows);
    lp.rowLower.push_back(lower);
    lp.rowUpper.push_back(upper);
    ++lp.numRows;
  }
}

TEST(RandomLp, BothMethodsAgreeWithTheReference) {
  for (int seed = 1; seed <= modelCount() && !::testing::Test::HasFailure(); ++seed) {
    const LpModel lp = randomLp(seed);
    const LpSolution reference = solveReference(lp);
    SCOPED_TRACE(seed);
    expectSame(lp, solveFresh(lp, SimplexMethod::Dual), reference, "dual");
    expectSame(lp, solveFresh(lp, SimplexMethod::Primal), reference, "primal");
    SimplexOptions plain;
    plain.perturbValue = 0;
    plain.scaleFlag = 0;
    expectSame(lp, solveFresh(lp, SimplexMethod::Dual, plain), reference, "plain dual");
  }
}

// On models of any kind, also infeasible and unbounded ones, and from points that are no good.
TEST(RandomLp, ACrashLeadsToTheSameVerdict) {
  int crashed = 0;
  for (int seed = 1; seed <= modelCount() && !::testing::Test::HasFailure(); ++seed) {
    const LpModel lp = randomLp(seed);
    SCOPED_TRACE(seed);
    SimplexOptions options;
    options.crash = 1;
    options.scaleFlag = seed % 2 - 1;
    Simplex simplex(options);
    simplex.load(lp);
    SilentLog log;
    SolveControl control;
    control.log = &log;
    control.limits.start();
    const bool ok = simplex.crash(control);
    crashed += static_cast<int>(ok);
    const LpSolution found = solveWith(simplex, ok ? SimplexMethod::Primal : SimplexMethod::Dual);
    expectSame(lp, found, solveReference(lp), "crash");
  }
  EXPECT_GT(crashed, modelCount() / 2);
}

TEST(RandomLp, EveryPricingRuleAgrees) {
  for (int seed = 1; seed <= modelCount() / 4 && !::testing::Test::HasFailure(); ++seed) {
    const LpModel lp = randomLp(seed);
    const LpSolution reference = solveReference(lp);
    SCOPED_TRACE(seed);
    for (int rule = 0; rule <= 3; ++rule) {
      SimplexOptions options;
      options.pricing = rule;
      options.normAdjust = seed % 5 - 1;
      SCOPED_TRACE(rule);
      expectSame(lp, solveFresh(lp, SimplexMethod::Dual, options), reference, "dual");
      expectSame(lp, solveFresh(lp, SimplexMethod::Primal, options), reference, "primal");
    }
  }
}

// Any statuses at all make a basis, which may be short, long or singular.
Basis anyBasis(const LpModel &lp, Random &random) {
  Basis basis;
  for (int j = 0; j < lp.numCols; ++j) basis.col.push_back(static_cast<VarStatus>(random.below(4)));
  for (int i = 0; i < lp.numRows; ++i) basis.row.push_back(static_cast<VarStatus>(random.below(4)));
  return basis;
}

// Whatever is switched on or off, and however little patience a solve is given.
SimplexOptions anyOptions(Random &random) {
  SimplexOptions options;
  const auto maybe = [&] { return random.below(2) == 0; };
  const auto oneOf = [&](std::initializer_list<int> values) {
    return values.begin()[random.below(static_cast<int>(values.size()))];
  };
  options.pricing = oneOf({-1, 1});
  options.bigTol = maybe() ? 1e-4 : 1e-9;
  options.perturbAfter = oneOf({-1, 0, 1, 3});
  options.warmBasis = oneOf({-1, 0, 1, 2, 3});
  options.pairLimit = oneOf({-1, 1, 2000000000});
  options.logInterval = oneOf({1, 100});
  options.heldLimit = oneOf({0, 1, 100});
  options.endFactor = oneOf({1, 2});
  options.exactNorms = maybe();
  options.flipBeyondStep = maybe();
  options.weighRatios = maybe();
  options.symbolicL = maybe();
  options.primalDualSwitch = maybe();
  return options;
}

TEST(RandomLp, NoOptionChangesTheResult) {
  for (int seed = 1; seed <= modelCount() && !::testing::Test::HasFailure(); ++seed) {
    const LpModel lp = randomLp(seed);
    const LpSolution reference = solveReference(lp);
    Random random(seed + 4000000);
    SCOPED_TRACE(seed);
    for (const auto method : {SimplexMethod::Dual, SimplexMethod::Primal}) {
      Simplex simplex(anyOptions(random));
      simplex.load(lp);
      expectSame(lp, solveWith(simplex, method), reference, "fresh");
      simplex.setBasis(anyBasis(lp, random));
      expectSame(lp, solveWith(simplex, method), reference, "from a basis");
    }
  }
}

// Wide enough for many sections of partial pricing, in both phases.
TEST(RandomLp, PartialPricingLooksAtAllSections) {
  for (int seed = 1; seed <= 5; ++seed) {
    double objective = 0;
    const LpModel lp = wideRangeLp(40, 4000, 1, seed, objective);
    SimplexOptions partial;
    partial.primalPartial = 2;
    SCOPED_TRACE(seed);
    const LpSolution primal = solveFresh(lp, SimplexMethod::Primal, partial);
    EXPECT_TRUE(isOptimal(lp, primal, kTol));
    EXPECT_NEAR(primal.objective, objective, kTol * (1 + std::fabs(objective)));
  }
}

// A model that comes with a basis far from the optimum: the copies of the matrix that pivot rows
// are formed from change on the way, and so do wrong scale factors nothing but the path.
TEST(RandomLp, LoadingWithABasisLeadsToTheSameOptimum) {
  int longest = 0;
  for (int seed = 1; seed <= 5; ++seed) {
    double objective = 0;
    const LpModel lp = wideRangeLp(150, 400, 1, seed, objective);
    SCOPED_TRACE(seed);
    Basis slack;
    slack.col.assign(lp.numCols, VarStatus::AtLower);
    slack.row.assign(lp.numRows, VarStatus::Basic);
    Scaling known;
    if (seed % 2 == 0) known.col.assign(lp.numCols / 2, 4.0);
    Simplex simplex{SimplexOptions{}};
    simplex.load(lp, slack, nullptr, seed == 1 ? nullptr : &known);
    const LpSolution found = solveWith(simplex, SimplexMethod::Dual);
    EXPECT_TRUE(isOptimal(lp, found, kTol));
    EXPECT_NEAR(found.objective, objective, kTol * (1 + std::fabs(objective)));
    longest = std::max(longest, static_cast<int>(simplex.iterations()));
  }
  EXPECT_GT(longest, 100);
}

TEST(RandomLp, PermutingAndScalingChangesNothing) {
  for (int seed = 1; seed <= modelCount() / 4 && !::testing::Test::HasFailure(); ++seed) {
    const LpModel lp = randomLp(seed);
    Random random(seed);
    SCOPED_TRACE(seed);
    const LpSolution reference = solveReference(lp);
    const LpModel shuffled = permuted(lp, random);
    expectSame(shuffled, solveFresh(shuffled, SimplexMethod::Dual), reference, "permuted");
    const LpModel scaled = rescaled(lp, random);
    expectSame(scaled, solveFresh(scaled, SimplexMethod::Dual), reference, "rescaled");
  }
}

void resolveAfterChanges(int seed) {
  LpModel lp = randomLp(seed);
  Random random(seed + 1000000);
  SCOPED_TRACE(seed);
  Simplex simplex{SimplexOptions{}};
  simplex.load(lp);
  solveWith(simplex, SimplexMethod::Dual);
  for (int step = 0; step < 5; ++step) {
    change(lp, simplex, random);
    const auto method = random.below(2) == 0 ? SimplexMethod::Dual : SimplexMethod::Primal;
    expectSame(lp, solveWith(simplex, method), solveReference(lp), "after a change");
  }
}

TEST(RandomLp, ResolvesFromTheOldBasisAfterChanges) {
  for (int seed = 1; seed <= modelCount() / 4 && !::testing::Test::HasFailure(); ++seed)
    resolveAfterChanges(seed);
  // A proof whose noise of 1e-14 sits on a row without the bound it needs.
  resolveAfterChanges(155411);
}

// What a tree search does: bounds move to and fro, solves go on from the values of the last one,
// are cut off at an objective or stopped after an iteration.
TEST(RandomLp, ASearchGoesOnFromValuesAndBoundsHold) {
  RandomLpOptions shape;
  shape.maxRows = 10;
  shape.maxCols = 16;
  shape.plantFeasible = 0.9;
  SimplexOptions options;
  options.polish = false;
  options.quickVerdicts = true;
  options.logging = false;
  for (int seed = 1; seed <= modelCount() / 8 && !::testing::Test::HasFailure(); ++seed) {
    LpModel lp = RandomLp(seed, shape).generate();
    const LpModel original = lp;
    Random random(seed + 3000000);
    WorkMeter work;
    SCOPED_TRACE(seed);
    Simplex simplex(options);
    simplex.load(lp);
    for (int step = 0; step < 20 && !::testing::Test::HasFailure(); ++step) {
      for (int k = random.below(3); k >= 0; --k) {
        const int j = random.below(lp.numCols);
        double &lower = lp.colLower[j], &upper = lp.colUpper[j];
        lower = original.colLower[j], upper = original.colUpper[j];
        const int what = random.below(4);
        if (what == 0 && !isInf(lower)) upper = lower;
        if (what == 1 && !isInf(upper)) lower = upper;
        if (what == 2)
          lower = std::max(lower, -1.0 * random.below(2)), upper = std::max(lower, upper);
        simplex.setColBounds(j, lower, upper);
      }
      const LpSolution reference = solveReference(lp);
      const bool optimal = reference.status == LpStatus::Optimal;
      const double objective = optimal ? reference.objective : 0;
      simplex.options().cutoff = random.below(2) == 0 ? 1e100 : objective + random.below(5) - 2;
      simplex.setIterationCap(random.below(3) == 0 ? simplex.iterations() + 1 : 1e100);
      const LpSolution found = solveWith(simplex, SimplexMethod::Dual);
      const double slack = 1e-6 * (1 + std::fabs(objective));
      if (found.status == LpStatus::Cutoff) {
        EXPECT_TRUE(reference.status == LpStatus::Infeasible ||
                    (optimal && objective > simplex.options().cutoff - slack))
            << step;
      } else if (found.status == LpStatus::IterationLimit) {
        EXPECT_TRUE(!optimal || simplex.dualBound(work) <= objective + slack) << step;
      } else {
        EXPECT_EQ(found.status, reference.status) << step;
        EXPECT_TRUE(!optimal || std::fabs(found.objective - objective) <= slack) << step;
      }
    }
  }
}

TEST(RandomLp, RowsAreDeletedAndBasesInstalled) {
  for (int seed = 1; seed <= modelCount() / 4 && !::testing::Test::HasFailure(); ++seed) {
    LpModel lp = randomLp(seed);
    Random random(seed + 2000000);
    SCOPED_TRACE(seed);
    Simplex simplex{SimplexOptions{}};
    simplex.load(lp);
    solveWith(simplex, SimplexMethod::Dual);
    Vec<char> mark(lp.numRows, 0);
    for (char &m : mark) m = random.below(3) == 0;
    SparseMatrix rows = transpose(lp.a), kept;
    kept.clear(lp.numCols);
    Vec<double> lower, upper;
    for (int i = 0; i < lp.numRows; ++i) {
      if (mark[i]) continue;
      kept.append(rows.length(i), rows.index.data() + rows.start[i],
                  rows.value.data() + rows.start[i]);
      lower.push_back(lp.rowLower[i]);
      upper.push_back(lp.rowUpper[i]);
    }
    lp.a = transpose(kept);
    lp.numRows = kept.numMajor;
    lp.rowLower = lower;
    lp.rowUpper = upper;
    simplex.deleteRows(mark);
    const LpSolution reference = solveReference(lp);
    expectSame(lp, solveWith(simplex, SimplexMethod::Dual), reference, "after deleting rows");
    const Basis basis = anyBasis(lp, random);
    simplex.setBasis(basis);
    expectSame(lp, solveWith(simplex, SimplexMethod::Dual), reference, "from a random basis");
    simplex.setBasis(basis);
    expectSame(lp, solveWith(simplex, SimplexMethod::Primal), reference, "primal from a basis");
  }
}

}  // namespace
}  // namespace tarvik::test
