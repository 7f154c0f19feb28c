// Forrest-Tomlin updates: long sequences with a check after each, refusals, and the advice to
// factor again.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "lu/basis_cases.h"
#include "simplex/lu/row_norms.h"

namespace tarvik::test {
namespace {

// One exchange as the simplex method does it: an entering variable that is not basic, a leaving
// position with a good pivot. unitBtran says whether the leaving row is computed first.
template <class Real>
UpdateResult exchange(LoadedBasis<Real> &loaded, bool unitBtran, Random &random) {
  BasisCase &basis = loaded.basis;
  Vec<char> basic(basis.a.numMajor + basis.m, 0);
  for (const VarIndex var : basis.head) basic[var] = 1;
  VarIndex entering = 0;
  do {
    entering = random.below(static_cast<int>(basic.size()));
  } while (basic[entering]);
  SparseVec<Real> column, other;
  column.resize(basis.m);
  other.resize(basis.m);
  loaded.loadColumn(entering, column);
  loaded.factor.ftran(column, 0.05, loaded.work, true);
  Real largest = 0;
  for (const Real value : column.value) largest = std::max(largest, std::abs(value));
  BasisPos p = 0;
  do {
    p = random.below(basis.m);
  } while (std::abs(column.value[p]) < largest / 4);
  // Other solves in between must not disturb the kept spike.
  fillRandom(other, 0.05, random);
  loaded.factor.ftran(other, 0.5, loaded.work);
  if (unitBtran) {
    other.clear();
    other.set(p, Real(1));
    loaded.factor.btran(other, 0.05, loaded.work);
  }
  const UpdateResult result = loaded.factor.update(p, column.value[p], loaded.work);
  if (result != UpdateResult::RefactorNow) basis.head[p] = entering;
  return result;
}

// Largest relative difference between the norms of a group of rows of the inverse and those of the
// rows by themselves.
template <class Real>
double rowNormError(LoadedBasis<Real> &loaded, int count, Random &random) {
  BasisPos rows[lu::kMaxRowNorms];
  double norms[lu::kMaxRowNorms];
  for (int k = 0; k < count; ++k) {
    do {
      rows[k] = random.below(loaded.basis.m);
    } while (std::find(rows, rows + k, rows[k]) != rows + k);
  }
  loaded.factor.rowNorms(rows, count, norms, loaded.work);
  double error = 0;
  for (int k = 0; k < count; ++k) {
    SparseVec<Real> row;
    row.resize(loaded.basis.m);
    row.set(rows[k], Real(1));
    loaded.factor.btran(row, 0.5, loaded.work);
    double norm = 0;
    for (const Real value : row.value) norm += static_cast<double>(value * value);
    error = std::max(error, std::fabs(norms[k] - norm) / norm);
  }
  return error;
}

template <class Real>
class UpdateTest : public ::testing::Test {};
using Reals = ::testing::Types<double, long double>;
TYPED_TEST_SUITE(UpdateTest, Reals);

TYPED_TEST(UpdateTest, LongSequencesStayAccurate) {
  Random random(21);
  for (BasisCase shape : {logicalBasis(80, random), triangularBasis(300, true, random),
                          networkBasis(300, random), staircaseBasis(20, 12, random),
                          denseBlockBasis(60, 30, random), randomBasis(200, 3, 0.5, random)}) {
    SCOPED_TRACE(shape.name);
    addSpareColumns(shape, shape.m, 4, random);
    LoadedBasis<TypeParam> loaded(shape);
    loaded.factor.options().maxUpdates = 1000;
    loaded.refactor();
    ASSERT_TRUE(loaded.repair.empty());
    int accepted = 0;
    for (int step = 0; step < 150; ++step) {
      const UpdateResult result = exchange(loaded, step % 3 != 0, random);
      accepted += result != UpdateResult::RefactorNow;
      const double density = step % 2 == 0 ? 0.0 : 0.3;
      ASSERT_LT(solveError(loaded, density, density, random), 1e-8) << step;
      ASSERT_LT(rowNormError(loaded, 1 + step % lu::kMaxRowNorms, random), 1e-8) << step;
      if (result == UpdateResult::RefactorNow) loaded.refactor();
    }
    EXPECT_GT(accepted, 140);
    // Factoring the basis reached gives the same solutions, so heading and factors agree.
    loaded.refactor();
    EXPECT_TRUE(loaded.repair.empty());
    EXPECT_LT(solveError(loaded, 1.0, 1.0, random), 1e-8);
  }
}

// Columns go out and come back: positions that were at the end of the pivot order move again.
TEST(Update, SamePositionsOverAndOver) {
  Random random(22);
  BasisCase basis = staircaseBasis(4, 5, random);
  addSpareColumns(basis, 6, 3, random);
  LoadedBasis<double> loaded(basis);
  loaded.factor.options().maxUpdates = 100000;
  loaded.refactor();
  for (int step = 0; step < 2000; ++step) {
    const UpdateResult result = exchange(loaded, step % 2 == 0, random);
    if (result != UpdateResult::Ok) loaded.refactor();
    ASSERT_TRUE(loaded.repair.empty());
    ASSERT_LT(solveError(loaded, 0.1, 0.0, random), 1e-7) << step;
  }
}

TEST(Update, RefusesWhatDoesNotAgreeAndChangesNothing) {
  Random random(23);
  BasisCase basis = triangularBasis(100, false, random);
  addSpareColumns(basis, 50, 4, random);
  LoadedBasis<double> loaded(basis);
  loaded.refactor();
  SparseVec<double> column, kept;
  column.resize(basis.m);
  kept.resize(basis.m);
  EXPECT_EQ(loaded.factor.update(3, 1.0, loaded.work), UpdateResult::RefactorNow);  // no spike
  loaded.loadColumn(basis.a.numMajor - 1, column);
  loaded.factor.ftran(column, 0.1, loaded.work, true);
  int p = 0;
  while (std::abs(column.value[p]) < 0.1) ++p;
  EXPECT_EQ(loaded.factor.update(p, column.value[p] * 1.01, loaded.work),
            UpdateResult::RefactorNow);
  EXPECT_EQ(loaded.factor.update(p, 0.0, loaded.work), UpdateResult::RefactorNow);
  EXPECT_EQ(loaded.factor.update(p, std::nan(""), loaded.work), UpdateResult::RefactorNow);
  EXPECT_LT(solveError(loaded, 0.3, 0.3, random), 1e-10);
  EXPECT_EQ(loaded.factor.stats().updates, 0);
  // The spike is still there for the right value; afterwards it is used up.
  EXPECT_NE(loaded.factor.update(p, column.value[p], loaded.work), UpdateResult::RefactorNow);
  loaded.basis.head[p] = basis.a.numMajor - 1;
  EXPECT_LT(solveError(loaded, 0.3, 0.3, random), 1e-10);
  EXPECT_EQ(loaded.factor.update(p, column.value[p], loaded.work), UpdateResult::RefactorNow);
}

TEST(Update, AsksForARefactorizationByLimitAndByWork) {
  Random random(24);
  BasisCase basis = randomBasis(400, 3, 0.2, random);
  addSpareColumns(basis, 400, 6, random);
  LoadedBasis<double> loaded(basis);
  loaded.factor.options().maxUpdates = 7;
  loaded.refactor();
  int accepted = 0;
  UpdateResult result = UpdateResult::Ok;
  while (result == UpdateResult::Ok) {
    result = exchange(loaded, true, random);
    accepted += result != UpdateResult::RefactorNow;
  }
  EXPECT_EQ(result, UpdateResult::RefactorSoon);
  EXPECT_EQ(accepted, 7);

  loaded.factor.options().maxUpdates = 1000000;
  loaded.refactor();
  EXPECT_EQ(loaded.factor.stats().updates, 0);
  for (accepted = 0; accepted < 2000; ++accepted)
    if (exchange(loaded, true, random) != UpdateResult::Ok) break;
  EXPECT_GE(accepted, 19);
  EXPECT_LT(accepted, 1000);
}

}  // namespace
}  // namespace tarvik::test
