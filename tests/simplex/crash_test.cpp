// The penalty crash and the push to a vertex on the kinds of models that they are for.
#include <gtest/gtest.h>

#include <cmath>

#include "base/random.h"
#include "simplex/penalty_crash.h"
#include "simplex/simplex.h"
#include "support/lp_checks.h"

namespace tarvik::test {
namespace {

class Builder {
 public:
  Builder(int rows, double lower, double upper) {
    lp_.numRows = rows;
    lp_.rowLower.assign(rows, lower);
    lp_.rowUpper.assign(rows, upper);
    lp_.a.start.assign(1, 0);
  }
  void addColumn(double cost, const Vec<std::pair<int, double>> &entries) {
    for (const auto &[row, value] : entries) {
      lp_.a.index.push_back(row);
      lp_.a.value.push_back(value);
    }
    lp_.a.start.push_back(static_cast<NzIndex>(lp_.a.index.size()));
    lp_.cost.push_back(cost);
    lp_.colLower.push_back(0);
    lp_.colUpper.push_back(kInf);
    ++lp_.numCols;
  }
  LpModel finish() {
    lp_.a.numMajor = lp_.numCols;
    lp_.a.numMinor = lp_.numRows;
    return lp_;
  }
  LpModel &lp() { return lp_; }

 private:
  LpModel lp_;
};

// Rows that have to be covered, or met exactly, by columns of five ones; one column in each row's
// place makes sure that they can be.
LpModel coverModel(int rows, int cols, bool exactly, std::uint64_t seed) {
  Random random(seed);
  Builder builder(rows, 1, exactly ? 1 : kInf);
  constexpr int kLength = 5;
  for (int j = 0; j < cols; ++j) {
    Vec<std::pair<int, double>> entries;
    const int stride = 1 + static_cast<int>(random.uniform() * (rows / kLength - 1));
    const int first = j < rows / kLength ? j * kLength : static_cast<int>(random.uniform() * rows);
    for (int k = 0; k < kLength; ++k)
      entries.emplace_back((first + k * (j < rows / kLength ? 1 : stride)) % rows, 1.0);
    builder.addColumn(1 + std::floor(10 * random.uniform()), entries);
  }
  return builder.finish();
}

// The linear relaxation of a quadratic assignment of n facilities on a line by products (Adams and
// Johnson 1994): assignment rows, rows that tie products to their factors, and each product counted
// from both of its factors.
LpModel quadraticAssignment(int n, std::uint64_t seed) {
  Random random(seed);
  const int factors = n * n;
  // The row of a factor and a line, a facility or a place, other than its own.
  const auto tie = [&](int factor, int line, bool place) {
    const int own = place ? factor % n : factor / n;
    return 2 * n + (factor * 2 + static_cast<int>(place)) * (n - 1) + line - (line > own ? 1 : 0);
  };
  const int rows = 2 * n + factors * 2 * (n - 1);
  Vec<Vec<std::pair<int, double>>> columns(factors);
  for (int f = 0; f < factors; ++f) columns[f] = {{f / n, 1.0}, {n + f % n, 1.0}};
  for (int f = 0; f < factors; ++f)
    for (int line = 0; line < n; ++line) {
      if (line != f / n) columns[f].emplace_back(tie(f, line, false), -1.0);
      if (line != f % n) columns[f].emplace_back(tie(f, line, true), -1.0);
    }
  Vec<double> flow(factors);
  for (double &amount : flow) amount = std::floor(6 * random.uniform());
  Builder builder(rows, 0, 0);
  for (int i = 0; i < 2 * n; ++i) builder.lp().rowLower[i] = builder.lp().rowUpper[i] = 1;
  for (int f = 0; f < factors; ++f) builder.addColumn(0, columns[f]);
  for (int f = 0; f < factors; ++f)
    for (int g = f + 1; g < factors; ++g) {
      if (f / n == g / n || f % n == g % n) continue;
      builder.addColumn(std::floor(10 * random.uniform()), {{tie(f, g / n, false), 1.0},
                                                            {tie(f, g % n, true), 1.0},
                                                            {tie(g, f / n, false), 1.0},
                                                            {tie(g, f % n, true), 1.0}});
    }
  return builder.finish();
}

bool pays(const LpModel &lp) {
  ScaledLp<double> scaled;
  scaled.load(lp, computeScaling(lp, -1));
  return penaltyCrashPays(scaled);
}

struct Outcome {
  LpSolution solution;
  bool crashed = false;
  double work = 0;
};

Outcome solve(const LpModel &lp, int crash, double workLimit = 1e100) {
  SimplexOptions options;
  options.crash = crash;
  Simplex simplex(options);
  simplex.load(lp);
  SilentLog log;
  SolveControl control;
  control.log = &log;
  control.limits.workLimit = workLimit;
  control.limits.start();
  Outcome run;
  run.crashed = simplex.crash(control);
  simplex.solve(run.crashed ? SimplexMethod::Primal : SimplexMethod::Dual, control);
  simplex.getSolution(run.solution);
  run.work = control.work.counted();
  return run;
}

TEST(Crash, PaysForPartitionsCoversAndAssignmentsOnly) {
  const LpModel partition = coverModel(120, 600, true, 1);
  EXPECT_TRUE(pays(partition));
  EXPECT_TRUE(pays(coverModel(120, 600, false, 1)));
  EXPECT_TRUE(pays(quadraticAssignment(7, 1)));
  EXPECT_FALSE(pays(coverModel(50, 600, true, 1))) << "few rows";
  EXPECT_FALSE(pays(coverModel(120, 150, true, 1))) << "hardly wider than high";
  LpModel other = coverModel(120, 600, false, 1);
  for (double &entry : other.a.value) entry = -entry;
  EXPECT_FALSE(pays(other)) << "rows that nothing covers";
  for (int i = 0; i < other.numRows; ++i) {
    other.rowUpper[i] = -other.rowLower[i];
    other.rowLower[i] = -kInf;
  }
  EXPECT_TRUE(pays(other)) << "covers written the other way round";
  other = partition;
  other.a.value[7] = 2.5;
  EXPECT_FALSE(pays(other)) << "entries of several sizes";
  other = partition;
  other.rowUpper[3] = 2;
  EXPECT_FALSE(pays(other)) << "equalities and ranges";
  other = partition;
  other.cost[3] = -1;
  EXPECT_FALSE(pays(other)) << "a reward";
}

TEST(Crash, LeavesLittleToTheSimplex) {
  struct Case {
    const char *name;
    LpModel lp;
    double share;  // of the work from the slack basis
  };
  const Case cases[] = {{"partition", coverModel(200, 4000, true, 3), 0.8},
                        {"cover", coverModel(300, 6000, false, 3), 0.8},
                        // Pays from larger sizes on; here it must not cost much.
                        {"assignment", quadraticAssignment(7, 3), 1.5}};
  for (const Case &c : cases) {
    SCOPED_TRACE(c.name);
    const Outcome slack = solve(c.lp, 0), crash = solve(c.lp, -1);
    EXPECT_FALSE(slack.crashed);
    EXPECT_TRUE(crash.crashed);
    ASSERT_EQ(crash.solution.status, LpStatus::Optimal);
    EXPECT_TRUE(isOptimal(c.lp, crash.solution, 1e-6));
    EXPECT_TRUE(isBasicSolution(c.lp, crash.solution, 1e-6));
    EXPECT_NEAR(crash.solution.objective, slack.solution.objective,
                1e-6 * std::fabs(slack.solution.objective));
    EXPECT_LT(crash.work, c.share * slack.work);
  }
}

// Wherever the limit strikes, the solve ends by it.
TEST(Crash, StopsAtLimits) {
  const LpModel lp = quadraticAssignment(7, 2);
  for (double limit = 1e-5; limit < 1; limit *= 4) {
    const Outcome run = solve(lp, -1, limit);
    EXPECT_TRUE(run.solution.status == LpStatus::WorkLimit ||
                run.solution.status == LpStatus::Optimal);
    if (run.solution.status != LpStatus::Optimal) continue;
    EXPECT_TRUE(isOptimal(lp, run.solution, 1e-6));
  }
}

}  // namespace
}  // namespace tarvik::test
