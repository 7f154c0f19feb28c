// Factorization and solves of bases of all shapes, checked by residuals against the matrix.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "lu/basis_cases.h"

namespace tarvik::test {
namespace {

std::vector<BasisCase> allShapes(Random &random) {
  std::vector<BasisCase> shapes;
  for (const int m : {1, 2, 3, 10, 200, 3000}) {
    shapes.push_back(logicalBasis(m, random));
    shapes.push_back(triangularBasis(m, true, random));
    shapes.push_back(triangularBasis(m, false, random));
    shapes.push_back(networkBasis(m, random));
  }
  for (const int m : {5, 40, 300, 600}) {
    shapes.push_back(randomBasis(m, 2, 0.3, random));
    shapes.push_back(randomBasis(m, 4, 0.1, random));
    shapes.push_back(randomBasis(m, 4, 0.7, random));
    shapes.push_back(randomBasis(m, m / 4 + 1, 0.0, random));
  }
  shapes.push_back(denseBlockBasis(60, 30, random));
  shapes.push_back(denseBlockBasis(400, 300, random));
  shapes.push_back(staircaseBasis(20, 30, random));
  shapes.push_back(staircaseBasis(150, 6, random));
  return shapes;
}

template <class Real>
class FactorTest : public ::testing::Test {};
using Reals = ::testing::Types<double, long double>;
TYPED_TEST_SUITE(FactorTest, Reals);

TYPED_TEST(FactorTest, SolvesEveryShapeAtEveryDensity) {
  Random random(1);
  const double tolerance = std::is_same_v<TypeParam, double> ? 1e-10 : 1e-12;
  for (BasisCase &shape : allShapes(random)) {
    SCOPED_TRACE(shape.name + " " + std::to_string(shape.m));
    Vec<VarIndex> before = shape.head;
    LoadedBasis<TypeParam> loaded(shape);
    loaded.refactor();
    ASSERT_TRUE(loaded.repair.empty());
    Vec<VarIndex> after = loaded.basis.head;
    std::sort(before.begin(), before.end());
    std::sort(after.begin(), after.end());
    EXPECT_EQ(before, after);  // a permutation, nothing else
    for (const double density : {0.0, 0.01, 0.2, 1.0})
      for (const double expected : {0.0, 1.0})
        EXPECT_LT(solveError(loaded, density, expected, random), tolerance);
    // A second factorization of the reordered heading, with used memory, does as well.
    loaded.refactor();
    EXPECT_LT(solveError(loaded, 0.1, 0.0, random), tolerance);
  }
}

TEST(FactorBasics, EmptyBasis) {
  LoadedBasis<double> loaded{BasisCase(0)};
  loaded.refactor();
  EXPECT_TRUE(loaded.repair.empty());
  SparseVec<double> x;
  x.resize(0);
  loaded.factor.ftran(x, 0, loaded.work, true);
  loaded.factor.btran(x, 0, loaded.work);
  EXPECT_EQ(x.count, 0);
}

TEST(FactorBasics, LogicalsKeepTheirRows) {
  Random random(2);
  LoadedBasis<double> loaded(logicalBasis(50, random));
  loaded.refactor();
  for (int row = 0; row < 50; ++row) EXPECT_EQ(loaded.basis.head[row], loaded.basis.logical(row));
}

// The symbolic and the plain solves are the same up to rounding, and the sparse result is
// told with its list.
TEST(FactorBasics, SparseAndPlainSolvesAgree) {
  Random random(3);
  for (BasisCase shape : {triangularBasis(2000, true, random), networkBasis(3000, random),
                          staircaseBasis(100, 20, random), randomBasis(1000, 3, 0.6, random)}) {
    SCOPED_TRACE(shape.name);
    LoadedBasis<double> loaded(shape);
    loaded.refactor();
    SparseVec<double> sparse, plain;
    sparse.resize(shape.m);
    plain.resize(shape.m);
    for (int trial = 0; trial < 50; ++trial) {
      fillRandom(sparse, 0.0, random);
      plain.copyFrom(sparse);
      const bool forward = trial % 2 == 0;
      const auto solve = [&](SparseVec<double> &x, double expected) {
        if (forward)
          loaded.factor.ftran(x, expected, loaded.work);
        else
          loaded.factor.btran(x, expected, loaded.work);
      };
      solve(sparse, 0.0);
      plain.count = -1;
      solve(plain, 1.0);
      EXPECT_TRUE(listIsRight(sparse) && listIsRight(plain));
      for (int i = 0; i < shape.m; ++i)
        EXPECT_NEAR(sparse.value[i], plain.value[i], 1e-9 * (1 + std::abs(plain.value[i])));
    }
  }
}

// A sparse solve with a sparse result must not cost in proportion to the dimension.
TEST(FactorBasics, SparseSolveCostsWhatTheResultCosts) {
  BasisCase basis(20000);
  for (int k = 0; k < basis.m; ++k) {
    const int rows[2] = {k, k + 1};
    const double values[2] = {2, -1};
    basis.a.append(k % 100 < 99 ? 2 : 1, rows, values);  // chains of a hundred
    basis.head.push_back(k);
  }
  LoadedBasis<double> loaded(basis);
  loaded.refactor();
  SparseVec<double> x;
  x.resize(basis.m);
  for (int trial = 0; trial < 2; ++trial) {
    x.clear();
    x.set(10000, 1.0);
    const double before = loaded.work.counted();
    if (trial == 0)
      loaded.factor.ftran(x, 0.0, loaded.work);
    else
      loaded.factor.btran(x, 0.0, loaded.work);
    ASSERT_TRUE(x.valid());
    EXPECT_LE(x.count, 100);
    EXPECT_LT(loaded.work.counted() - before, 2000);
  }
}

TEST(FactorBasics, TriangularBasesCostLinearWork) {
  Random random(4);
  double perRow[2];
  int n = 0;
  for (const int m : {2000, 40000}) {
    LoadedBasis<double> loaded(triangularBasis(m, true, random));
    loaded.refactor();
    perRow[n++] = loaded.factor.stats().factorWork / m;
    EXPECT_EQ(loaded.factor.stats().kernelDim, 0);
    EXPECT_EQ(loaded.factor.stats().freshNz, loaded.factor.stats().basisNz);
  }
  EXPECT_LT(perRow[1], 1.2 * perRow[0]);
}

// A well-conditioned matrix full of tiny entries that the count alone would choose as pivots.
double errorWithThreshold(double threshold, std::uint64_t seed) {
  Random random(seed);
  BasisCase basis(300);
  for (int k = 0; k < basis.m; ++k) {
    const int rows[4] = {k, (k + 1 + random.below(90)) % 300, (k + 100 + random.below(90)) % 300,
                         (k + 200 + random.below(90)) % 300};
    const double values[4] = {3, 1e-7, 0.5, random.below(2) ? 1e-7 : 1.0};
    basis.a.append(4, rows, values);
    basis.head.push_back(k);
  }
  LoadedBasis<double> loaded(basis);
  loaded.factor.options().markowitzTol = threshold;
  loaded.refactor();
  EXPECT_TRUE(loaded.repair.empty());
  return solveError(loaded, 1.0, 1.0, random);
}

TEST(FactorBasics, ThresholdKeepsTinyPivotsOut) {
  double accurate = 0, careless = 0;
  for (std::uint64_t seed = 1; seed <= 10; ++seed) {
    accurate = std::max(accurate, errorWithThreshold(0.1, seed));
    careless = std::max(careless, errorWithThreshold(0.0, seed));
  }
  EXPECT_LT(accurate, 1e-11);
  EXPECT_GT(careless, 1e-8);  // or else the matrix does not test anything
}

// The dense finish beyond LAPACK's start, where only its pivots may order the rows.
TYPED_TEST(FactorTest, LargeDenseBlocks) {
  Random random(6);
  LoadedBasis<TypeParam> loaded(denseBlockBasis(1040, 1020, random));
  loaded.refactor();
  ASSERT_TRUE(loaded.repair.empty());
  for (const double density : {0.0, 1.0})
    EXPECT_LT(solveError(loaded, density, density, random), 1e-10);
}

}  // namespace
}  // namespace tarvik::test
