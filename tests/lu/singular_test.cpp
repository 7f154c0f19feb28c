// Singular and nearly singular bases: what is dropped, and that the repaired basis is factored.
#include <gtest/gtest.h>

#include <algorithm>

#include "lu/basis_cases.h"

namespace tarvik::test {
namespace {

void addMultiple(const BasisCase &basis, VarIndex var, VarIndex firstLogical, double factor,
                 Vec<double> &dense) {
  if (var >= firstLogical) {
    dense[var - firstLogical] += factor;
    return;
  }
  for (NzIndex k = basis.a.start[var]; k < basis.a.start[var + 1]; ++k)
    dense[basis.a.index[k]] += factor * basis.a.value[k];
}

// Replaces some basic columns by combinations of two others, and of a little of themselves:
// without that the rank falls by their number.
int makeDependent(BasisCase &basis, int count, double disturbance, Random &random) {
  Vec<int> position(basis.m);
  for (int i = 0; i < basis.m; ++i) position[i] = i;
  shuffle(position, random);
  const int before = basis.a.numMajor;
  Vec<double> dense(basis.m);
  Vec<std::pair<int, int>> replaced;
  for (int n = 0; n < count; ++n) {
    std::fill(dense.begin(), dense.end(), 0.0);
    for (int part = 1; part <= 2; ++part)
      addMultiple(basis, basis.head[position[3 * n + part]], before, random.uniform(0.5, 2.0),
                  dense);
    if (disturbance != 0)
      addMultiple(basis, basis.head[position[3 * n]], before, disturbance, dense);
    Vec<int> index;
    Vec<double> value;
    for (int row = 0; row < basis.m; ++row)
      if (dense[row] != 0) {
        index.push_back(row);
        value.push_back(dense[row]);
      }
    basis.a.append(static_cast<int>(index.size()), index.data(), value.data());
    replaced.emplace_back(position[3 * n], before + n);
  }
  for (VarIndex &var : basis.head)
    if (var >= before) var += count;
  for (const auto &[at, var] : replaced) basis.head[at] = var;
  return count;
}

// What a repair must satisfy in any case; then the repaired basis solves.
template <class Real>
void checkRepair(LoadedBasis<Real> &loaded, Vec<VarIndex> before, Random &random) {
  Vec<VarIndex> expected;
  std::sort(before.begin(), before.end());
  Vec<VarIndex> dropped = loaded.repair.dropped;
  std::sort(dropped.begin(), dropped.end());
  std::set_difference(before.begin(), before.end(), dropped.begin(), dropped.end(),
                      std::back_inserter(expected));
  ASSERT_EQ(expected.size() + dropped.size(), before.size());
  ASSERT_EQ(loaded.repair.row.size(), dropped.size());
  for (const RowIndex row : loaded.repair.row) {
    EXPECT_EQ(loaded.basis.head[row], loaded.basis.logical(row));
    expected.push_back(loaded.basis.logical(row));
  }
  std::sort(expected.begin(), expected.end());
  Vec<VarIndex> after = loaded.basis.head;
  std::sort(after.begin(), after.end());
  EXPECT_EQ(expected, after);
  EXPECT_EQ(std::adjacent_find(after.begin(), after.end()), after.end());
  EXPECT_LT(solveError(loaded, 0.0, 0.0, random), 1e-9);
  EXPECT_LT(solveError(loaded, 1.0, 1.0, random), 1e-9);
}

template <class Real>
class SingularTest : public ::testing::Test {};
using Reals = ::testing::Types<double, long double>;
TYPED_TEST_SUITE(SingularTest, Reals);

TYPED_TEST(SingularTest, DropsAsManyAsTheRankIsShort) {
  Random random(11);
  for (int trial = 0; trial < 40; ++trial) {
    SCOPED_TRACE(trial);
    BasisCase basis = trial % 4 == 0   ? triangularBasis(120, trial % 8 == 0, random)
                      : trial % 4 == 1 ? randomBasis(100, 3, 0.3, random)
                      : trial % 4 == 2 ? denseBlockBasis(90, 60, random)
                                       : networkBasis(150, random);
    const int missing = makeDependent(basis, 1 + random.below(8), 0.0, random);
    const Vec<VarIndex> before = basis.head;
    LoadedBasis<TypeParam> loaded(basis);
    loaded.refactor();
    EXPECT_EQ(static_cast<int>(loaded.repair.dropped.size()), missing);
    checkRepair(loaded, before, random);
    loaded.refactor();  // the repaired basis is regular
    EXPECT_TRUE(loaded.repair.empty());
  }
}

// LAPACK does not pass over dependent columns; the plain loop has to take over.
TEST(Singular, LargeDenseBlockWithDependentColumns) {
  Random random(12);
  BasisCase basis = denseBlockBasis(300, 290, random);
  makeDependent(basis, 3, 0.0, random);
  const Vec<VarIndex> before = basis.head;
  LoadedBasis<double> loaded(basis);
  loaded.refactor();
  EXPECT_EQ(loaded.repair.dropped.size(), 3u);
  checkRepair(loaded, before, random);
}

// A dependence hidden by less than the pivot tolerance counts as one; one clearly above does not.
TEST(Singular, PivotToleranceDecides) {
  Random random(13);
  for (int trial = 0; trial < 20; ++trial) {
    const double disturbance = trial % 2 == 0 ? 1e-10 : 1e-4;
    BasisCase basis = triangularBasis(60, false, random);
    makeDependent(basis, 1, disturbance, random);
    const Vec<VarIndex> before = basis.head;
    LoadedBasis<double> loaded(basis);
    loaded.factor.options().markowitzTol = 0.5;
    loaded.refactor();
    EXPECT_EQ(loaded.repair.dropped.size(), trial % 2 == 0 ? 1u : 0u);
    checkRepair(loaded, before, random);
  }
}

TEST(Singular, OddHeadings) {
  Random random(14);
  BasisCase basis(4);
  const int rows[4] = {0, 1, 2, 3};
  const double ones[4] = {1, 1, 1, 1}, tiny[1] = {1e-9}, zeros[2] = {0, 0};
  const VarIndex empty = basis.nextColumn();
  basis.a.append(0, rows, ones);
  const VarIndex full = basis.nextColumn();
  basis.a.append(4, rows, ones);
  const VarIndex small = basis.nextColumn();
  basis.a.append(1, rows, tiny);
  const VarIndex zero = basis.nextColumn();
  basis.a.append(2, rows, zeros);
  const auto headings = {
      Vec<VarIndex>{empty, empty, empty, empty}, Vec<VarIndex>{full, full, full, full},
      Vec<VarIndex>{small, full, basis.logical(1), basis.logical(1)},
      Vec<VarIndex>{zero, small, basis.logical(3), full},
      Vec<VarIndex>{basis.logical(2), basis.logical(2), basis.logical(2), basis.logical(2)}};
  const int dropped[] = {4, 3, 2, 2, 3};
  int n = 0;
  for (const Vec<VarIndex> &head : headings) {
    SCOPED_TRACE(n);
    basis.head = head;
    LoadedBasis<double> loaded(basis);
    loaded.refactor();
    EXPECT_EQ(static_cast<int>(loaded.repair.dropped.size()), dropped[n++]);
    EXPECT_LT(solveError(loaded, 1.0, 1.0, random), 1e-12);
  }
}

}  // namespace
}  // namespace tarvik::test
