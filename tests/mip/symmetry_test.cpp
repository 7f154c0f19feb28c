// Symmetries: what the search for them finds, against all permutations; and that a search that uses
// them gives the right answers.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <set>

#include "mip/mip_solve.h"
#include "mip/symmetric_models.h"
#include "mip/symmetry/automorphism_search.h"
#include "mip/symmetry/symmetry_group.h"

namespace tarvik::test {
namespace {

Problem asProblem(MipModel model) { return Problem(std::move(model), MipTolerances{}); }

// The problem with its columns in another order: column j goes to the place order[j]. Rows, sorted,
// tell whether it is still the same.
using Fingerprint = std::multiset<Vec<double>>;

Fingerprint fingerprint(const Problem &problem, const Vec<int> &order) {
  Fingerprint result;
  const LpModel &lp = problem.lp();
  for (int j = 0; j < lp.numCols; ++j)
    result.insert({-1, static_cast<double>(order[j]), lp.cost[j], lp.colLower[j], lp.colUpper[j],
                   static_cast<double>(problem.kind(j))});
  for (int i = 0; i < lp.numRows; ++i) {
    Vec<double> row(lp.numCols + 2, 0);
    for (NzIndex k = problem.rows().start[i]; k < problem.rows().start[i + 1]; ++k)
      row[order[problem.rows().index[k]]] = problem.rows().value[k];
    row[lp.numCols] = lp.rowLower[i];
    row[lp.numCols + 1] = lp.rowUpper[i];
    result.insert(row);
  }
  for (const SosSet &set : problem.model().sos) {
    Vec<double> members{-2, static_cast<double>(set.type)};
    for (const int j : set.cols) members.push_back(order[j]);
    if (set.type == 1) std::sort(members.begin() + 2, members.end());
    result.insert(members);
  }
  return result;
}

Permutation asPermutation(const Vec<int> &order) {
  Permutation permutation;
  for (int j = 0; j < static_cast<int>(order.size()); ++j)
    if (order[j] != j) {
      permutation.from.push_back(j);
      permutation.to.push_back(order[j]);
    }
  return permutation;
}

Vec<int> identity(int count) {
  Vec<int> order(count);
  std::iota(order.begin(), order.end(), 0);
  return order;
}

// The whole group that the generators make, as a set of orders.
std::set<Vec<int>> closure(const Vec<Permutation> &generators, int count) {
  std::set<Vec<int>> group{identity(count)};
  Vec<Vec<int>> open{identity(count)};
  while (!open.empty()) {
    const Vec<int> order = open.back();
    open.pop_back();
    for (const Permutation &g : generators) {
      Vec<int> next(order);
      for (int &j : next) {
        const auto place = std::lower_bound(g.from.begin(), g.from.end(), j);
        if (place != g.from.end() && *place == j) j = g.to[place - g.from.begin()];
      }
      if (group.insert(next).second) open.push_back(next);
    }
  }
  return group;
}

// Six columns at most: 720 permutations.
MipModel tinyModel(Random &random) {
  const int n = 4 + random.below(3);
  ModelBuilder builder(n);
  const int costs = 1 + random.below(2);
  for (int j = 0; j < n; ++j) builder.model.lp.cost[j] = random.below(costs);
  const int shift = 1 + random.below(n - 1), patterns = 1 + random.below(2);
  for (int p = 0; p < patterns; ++p) {
    const int size = 2 + random.below(3);
    Vec<ModelBuilder::Entry> row;
    Vec<int> order = identity(n);
    shuffle(order, random);
    for (int k = 0; k < std::min(size, n); ++k) row.push_back({order[k], 1.0 + random.below(2)});
    const int copies = random.below(3) == 0 ? 1 : n;
    for (int c = 0; c < copies; ++c) {
      builder.addRow(row, -kInf, 2);
      for (auto &entry : row) entry.col = (entry.col + shift) % n;
    }
  }
  if (random.below(4) == 0) {
    builder.model.kind[0] = VarKind::Continuous;
    builder.model.kind[1] = VarKind::Continuous;
  }
  if (random.below(4) == 0)
    builder.model.sos.push_back({1 + random.below(2), {0, 1, 2}, {1, 2, 3}});
  return builder.take();
}

TEST(Symmetry, FindsAllPermutations) {
  int symmetric = 0;
  for (int seed = 1; seed <= 120 && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    Random random(static_cast<std::uint64_t>(seed));
    const Problem problem = asProblem(tinyModel(random));
    const int n = problem.numCols();
    WorkMeter work;
    SymmetryCheck check(problem);
    std::set<Vec<int>> expected;
    Vec<int> order = identity(n);
    const Fingerprint unchanged = fingerprint(problem, order);
    do {
      const bool same = fingerprint(problem, order) == unchanged;
      if (same) expected.insert(order);
      ASSERT_EQ(check.isSymmetry(asPermutation(order), work), same);
    } while (std::next_permutation(order.begin(), order.end()));
    const SymmetrySearchResult found = findGenerators(problem, work, 1e12);
    EXPECT_TRUE(found.complete);
    EXPECT_EQ(closure(found.generators, n), expected);
    symmetric += expected.size() > 1;
  }
  EXPECT_GT(symmetric, 25);
}

// Larger groups, of which the orders are known.
TEST(Symmetry, FindsKnownGroups) {
  const auto orderOf = [](MipModel model) {
    const Problem problem = asProblem(std::move(model));
    WorkMeter work;
    const SymmetrySearchResult found = findGenerators(problem, work, 1e12);
    EXPECT_TRUE(found.complete);
    return closure(found.generators, problem.numCols()).size();
  };
  ModelBuilder fano(7);
  for (int k = 0; k < 7; ++k) fano.addRow({{k, 1}, {(k + 1) % 7, 1}, {(k + 3) % 7, 1}}, 1, kInf);
  EXPECT_EQ(orderOf(fano.take()), 168u);
  ModelBuilder petersen(10);
  for (int k = 0; k < 5; ++k) {
    petersen.addRow({{k, 1}, {(k + 1) % 5, 1}}, -kInf, 1);
    petersen.addRow({{k, 1}, {k + 5, 1}}, -kInf, 1);
    petersen.addRow({{k + 5, 1}, {5 + (k + 2) % 5, 1}}, -kInf, 1);
  }
  EXPECT_EQ(orderOf(petersen.take()), 120u);
  ModelBuilder path(6);
  for (int k = 0; k < 5; ++k) path.addRow({{k, 1}, {k + 1, 2}}, -kInf, 2);
  EXPECT_EQ(orderOf(path.take()), 1u);
}

// Bins with items of different sizes: all bins may be exchanged, whatever was decided in two.
TEST(Symmetry, TellsExchangeablePlaces) {
  const int items = 3, bins = 6;
  ModelBuilder builder(items * bins);
  for (int i = 0; i < items; ++i) {
    Vec<ModelBuilder::Entry> row;
    for (int b = 0; b < bins; ++b) row.push_back({i * bins + b, 1});
    builder.addRow(row, 1, 1);
  }
  for (int b = 0; b < bins; ++b) {
    Vec<ModelBuilder::Entry> row;
    for (int i = 0; i < items; ++i) row.push_back({i * bins + b, 2.0 + i});
    builder.addRow(row, -kInf, 6);
  }
  const Problem problem = asProblem(builder.take());
  WorkMeter work;
  const SymmetryGroup group(findGenerators(problem, work, 1e12).generators, problem.numCols());
  ASSERT_EQ(group.matrices().size(), 1u);
  EXPECT_EQ(group.matrices()[0].rows, items);
  EXPECT_EQ(group.matrices()[0].places.size(), static_cast<std::size_t>(bins));
  EXPECT_TRUE(group.generators().empty());
  ColumnMarks marks(problem.numCols());
  EXPECT_EQ(group.orbitsUnder(marks, {}, work).count(), items);
  // Item 0 into bin 1 and item 1 into bin 4: the other four bins are alike.
  marks.add({1, BoundSide::Lower, 1});
  marks.add({bins + 4, BoundSide::Lower, 1});
  const Orbits orbits = group.orbitsUnder(marks, {}, work);
  ASSERT_EQ(orbits.count(), items);
  EXPECT_EQ(Vec<int>(orbits.members.begin(), orbits.members.begin() + orbits.starts[1]),
            (Vec<int>{0, 2, 3, 5}));
  // Item 0 into another bin, too: bins 1 and 2 are alike now.
  marks.add({2, BoundSide::Lower, 1});
  EXPECT_EQ(group.orbitsUnder(marks, {}, work).count(), 2 * items);
  marks.undoTo(0);
  EXPECT_EQ(group.orbitsUnder(marks, {}, work).starts.back(), items * bins);
}

// Stabilizers of points, one after the other, against those in the whole group.
TEST(Symmetry, StabilizesPoints) {
  for (int seed = 1; seed <= 100 && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    Random random(static_cast<std::uint64_t>(seed));
    const Problem problem = asProblem(tinyModel(random));
    const int n = problem.numCols();
    WorkMeter work;
    const Vec<Permutation> found = findGenerators(problem, work, 1e12).generators;
    std::set<Vec<int>> expected = closure(found, n);
    Vec<DensePermutation> generators;
    for (const Permutation &g : found) {
      generators.push_back(identity(n));
      for (int k = 0; k < g.size(); ++k) generators.back()[g.from[k]] = g.to[k];
    }
    while (!generators.empty()) {
      const int point = random.below(n);
      generators = stabilizerOf(point, generators, work);
      std::erase_if(expected, [&](const Vec<int> &order) { return order[point] != point; });
      Vec<Permutation> sparse;
      for (const DensePermutation &g : generators) sparse.push_back(asPermutation(g));
      EXPECT_EQ(closure(sparse, n), expected);
    }
  }
}

// The best objective over all integral points; kUserInf: none is feasible.
double bestOf(const Problem &problem) {
  double best = kUserInf;
  const LpModel &lp = problem.lp();
  const int n = lp.numCols;
  // Depth first with the activities of the rows.
  Vec<double> activity(lp.numRows, 0), point(n);
  const auto visit = [&](auto &&self, int j, double objective) -> void {
    if (j == n) {
      for (int i = 0; i < lp.numRows; ++i)
        if (activity[i] < lp.rowLower[i] || activity[i] > lp.rowUpper[i]) return;
      if (objective < best && problem.violation(point) <= 1e-9) best = objective;
      return;
    }
    const SparseMatrix &a = lp.a;
    const auto add = [&](double x) {
      for (NzIndex k = a.start[j]; k < a.start[j + 1]; ++k) activity[a.index[k]] += a.value[k] * x;
    };
    for (double x = lp.colLower[j]; x <= lp.colUpper[j]; ++x) {
      point[j] = x;
      add(x);
      self(self, j + 1, objective + lp.cost[j] * x);
      add(-x);
    }
  };
  visit(visit, 0, lp.offset);
  return best;
}

MipOptions randomOptions(std::uint64_t seed) {
  Random random(seed + 5);
  MipOptions options;
  options.mipGap = 0;
  options.simplex.logging = false;
  options.seed = options.simplex.seed = random.below(5);
  // Without presolve and cuts more is left to the tree.
  options.presolve.level = random.uniform() < 0.8 ? 0 : -1;
  options.presolveMip = options.presolve.level != 0;
  if (random.uniform() < 0.8) options.cuts.passes = 0;
  options.heuristics = random.uniform() < 0.7 ? 0 : 0.2;
  options.subMip = false;
  options.symmetry = 1 + random.below(2);
  options.varBranch = random.below(5) - 1;
  options.branchDir = random.below(3) - 1;
  options.focus = random.below(4);
  options.threads = random.uniform() < 0.1 ? 2 : 1;
  return options;
}

void checkAnswer(std::uint64_t seed) {
  SCOPED_TRACE(std::string("seed ").append(std::to_string(seed)));
  const MipModel model = symmetricModel(seed);
  const Problem problem = asProblem(model);
  const double expected = bestOf(problem);
  SilentLog log;
  SolveControl control;
  control.log = &log;
  control.limits.start();
  MipSolve solve(model, randomOptions(seed), control);
  const MipOutcome outcome = solve.run();
  if (expected >= kUserInf) {
    EXPECT_EQ(outcome.status, MipStatus::Infeasible);
    return;
  }
  ASSERT_EQ(outcome.status, MipStatus::Optimal);
  EXPECT_NEAR(outcome.solutions.front().objective, expected, 1e-6);
  EXPECT_NEAR(outcome.bound, expected, 1e-6);
  EXPECT_LE(problem.violation(outcome.solutions.front().x), 1e-6);
}

TEST(Symmetry, SearchesAgreeWithEnumeration) {
  const char *wanted = std::getenv("TARVIK_RANDOM_MIPS");
  const char *first = std::getenv("TARVIK_RANDOM_FIRST");
  const std::uint64_t begin = first ? std::strtoull(first, nullptr, 10) : 1;
  const std::uint64_t count = wanted ? std::strtoull(wanted, nullptr, 10) : 400;
  for (std::uint64_t seed = begin; seed < begin + count && !HasFailure(); ++seed) checkAnswer(seed);
}

}  // namespace
}  // namespace tarvik::test
