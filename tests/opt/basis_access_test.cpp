// What callers may ask about a final basis, on tiny random models against dense arithmetic: solves
// with the basis matrix, rows and columns of its inverse, condition numbers, and ranges, whose
// ends must be exactly where the basis stops being optimal.
#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>
#include <random>

#include "opt/tiny_model.h"

namespace {

using tiny::LoggedEnv;
using tiny::Spec;
using tiny::TinyModel;
using Matrix = std::vector<std::vector<double>>;

constexpr double kTol = 1e-7;

Spec randomSpec(std::mt19937 &random) {
  const auto draw = [&](int from, int to) {
    return from + static_cast<int>(random() % static_cast<unsigned>(to - from + 1));
  };
  const int n = draw(2, 6), m = draw(1, 5);
  Spec spec;
  spec.sense = draw(0, 1) ? TVK_MINIMIZE : TVK_MAXIMIZE;
  for (int j = 0; j < n; ++j) {
    spec.obj.push_back(draw(-5, 9) + 0.25 * draw(0, 3));
    const int kind = draw(0, 5);
    spec.lb.push_back(kind == 0 ? -TVK_INFINITY : draw(-3, 1));
    spec.ub.push_back(kind == 1   ? spec.lb.back()
                      : kind <= 3 ? TVK_INFINITY
                                  : std::max(0.0, spec.lb.back()) + draw(1, 9));
  }
  for (int i = 0; i < m; ++i) {
    tiny::Row row{{}, "<>="[draw(0, 2)], static_cast<double>(draw(-2, 12))};
    for (int j = 0; j < n; ++j) row.coef.push_back(draw(0, 2) ? draw(-3, 6) : 0);
    spec.rows.push_back(row);
  }
  return spec;
}

Matrix inverse(Matrix a) {
  const int m = static_cast<int>(a.size());
  Matrix inv(m, std::vector<double>(m, 0.0));
  for (int i = 0; i < m; ++i) inv[i][i] = 1;
  for (int k = 0; k < m; ++k) {
    int best = k;
    for (int i = k + 1; i < m; ++i)
      if (std::fabs(a[i][k]) > std::fabs(a[best][k])) best = i;
    std::swap(a[k], a[best]);
    std::swap(inv[k], inv[best]);
    const double pivot = a[k][k];
    for (int j = 0; j < m; ++j) {
      a[k][j] /= pivot;
      inv[k][j] /= pivot;
    }
    for (int i = 0; i < m; ++i) {
      if (i == k) continue;
      const double factor = a[i][k];
      for (int j = 0; j < m; ++j) {
        a[i][j] -= factor * a[k][j];
        inv[i][j] -= factor * inv[k][j];
      }
    }
  }
  return inv;
}

// The final basis of a solved model in dense form.
struct DenseBasis {
  DenseBasis(const Spec &spec, const TinyModel &model)
      : n(static_cast<int>(spec.obj.size())), m(static_cast<int>(spec.rows.size())), head(m) {
    EXPECT_EQ(TVKgetBasisHead(model.get(), head.data()), 0);
    matrix.assign(m, std::vector<double>(m, 0.0));
    for (int p = 0; p < m; ++p)
      for (int i = 0; i < m; ++i) matrix[i][p] = entry(spec, i, head[p]);
    inv = inverse(matrix);
    status = model.intArray("VBasis", n);
  }
  double entry(const Spec &spec, int row, int var) const {
    return var < n ? spec.rows[row].coef[var] : var - n == row ? 1 : 0;
  }
  bool isBasic(int var) const { return std::find(head.begin(), head.end(), var) != head.end(); }

  // Whether this basis, nonbasic variables on their sides, is optimal for the data of spec.
  bool isOptimal(const Spec &spec, const std::vector<int> &side, double tol) const {
    std::vector<double> y(m, 0.0), rest(m);
    const double sense = spec.sense;
    for (int p = 0; p < m; ++p)
      for (int i = 0; i < m && head[p] < n; ++i) y[i] += sense * spec.obj[head[p]] * inv[p][i];
    for (int i = 0; i < m; ++i) rest[i] = spec.rows[i].rhs;
    for (int j = 0; j < n; ++j) {
      if (isBasic(j)) continue;
      const double x = side[j] < 0 ? spec.lb[j] : side[j] > 0 ? spec.ub[j] : 0;
      if (x < spec.lb[j] - tol || x > spec.ub[j] + tol) return false;
      double d = sense * spec.obj[j];
      for (int i = 0; i < m; ++i) {
        rest[i] -= spec.rows[i].coef[j] * x;
        d -= y[i] * spec.rows[i].coef[j];
      }
      const bool fixed = spec.lb[j] == spec.ub[j];
      if (!fixed && ((side[j] <= 0 && d < -tol) || (side[j] >= 0 && d > tol))) return false;
    }
    for (int i = 0; i < m; ++i) {
      if (isBasic(n + i)) continue;
      const double d = -y[i];  // the slack is nonnegative, nonpositive or zero
      if (spec.rows[i].sense == '<' ? d < -tol : spec.rows[i].sense == '>' && d > tol) return false;
    }
    for (int p = 0; p < m; ++p) {
      double x = 0;
      for (int i = 0; i < m; ++i) x += inv[p][i] * rest[i];
      const int j = head[p];
      const bool slack = j >= n;
      const char sense1 = slack ? spec.rows[j - n].sense : ' ';
      const double low = !slack ? spec.lb[j] : sense1 == '>' ? -TVK_INFINITY : 0;
      const double up = !slack ? spec.ub[j] : sense1 == '<' ? TVK_INFINITY : 0;
      if (x < low - tol || x > up + tol) return false;
    }
    return true;
  }

  int n, m;
  std::vector<int> head, status;
  Matrix matrix, inv;
};

// A sparse result vector with room for everything.
struct Result {
  explicit Result(int room) : ind(room), val(room), svec{0, ind.data(), val.data()} {}
  std::vector<double> dense() const {
    std::vector<double> all(ind.size(), 0.0);
    for (int k = 0; k < svec.len; ++k) all[svec.ind[k]] = svec.val[k];
    return all;
  }
  std::vector<int> ind;
  std::vector<double> val;
  TVKsvec svec;
};

void expectNear(const std::vector<double> &actual, const std::vector<double> &expected) {
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < actual.size(); ++i)
    EXPECT_NEAR(actual[i], expected[i], kTol * (1 + std::fabs(expected[i]))) << "entry " << i;
}

double norm1(const Matrix &a) {
  double norm = 0;
  for (std::size_t j = 0; j < a.size(); ++j) {
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i) sum += std::fabs(a[i][j]);
    norm = std::max(norm, sum);
  }
  return norm;
}

double norm2(const Matrix &a) {
  const std::size_t m = a.size();
  std::vector<double> x(m);
  for (std::size_t i = 0; i < m; ++i) x[i] = 1 + 0.1 * static_cast<double>(i * i);
  double norm = 0;
  for (int step = 0; step < 2000; ++step) {
    std::vector<double> ax(m, 0.0), next(m, 0.0);
    for (std::size_t i = 0; i < m; ++i)
      for (std::size_t j = 0; j < m; ++j) ax[i] += a[i][j] * x[j];
    for (std::size_t j = 0; j < m; ++j)
      for (std::size_t i = 0; i < m; ++i) next[j] += a[i][j] * ax[i];
    const double size = std::sqrt(std::inner_product(next.begin(), next.end(), next.begin(), 0.0));
    norm = std::sqrt(size / std::sqrt(std::inner_product(x.begin(), x.end(), x.begin(), 0.0)));
    for (std::size_t j = 0; j < m; ++j) x[j] = next[j] / size;
  }
  return norm;
}

// Calls check(spec, model, basis) for many solved models.
void forOptima(const std::function<void(const Spec &, TinyModel &, const DenseBasis &)> &check) {
  std::mt19937 random(7);
  LoggedEnv env;
  int optima = 0;
  for (int k = 0; k < 600 && !testing::Test::HasFailure(); ++k) {
    const Spec spec = randomSpec(random);
    TinyModel model(env, spec);
    model.set("Presolve", k % 2 ? -1 : 0);
    model.set("ScaleFlag", k % 3 - 1);
    if (model.solve() != TVK_OPTIMAL) continue;
    ++optima;
    SCOPED_TRACE(k);
    check(spec, model, DenseBasis(spec, model));
  }
  EXPECT_GT(optima, 150);
}

TEST(BasisAccess, AgreesWithTheDenseInverse) {
  forOptima([](const Spec &spec, TinyModel &model, const DenseBasis &basis) {
    const int n = basis.n, m = basis.m;
    for (int k = 0; k < m; ++k) {
      Result x(m), row(n + m);
      ASSERT_EQ(TVKBinvj(model.get(), k, &x.svec), 0);
      std::vector<double> column(m);
      for (int p = 0; p < m; ++p) column[p] = basis.inv[p][k];
      expectNear(x.dense(), column);
      ASSERT_EQ(TVKBinvi(model.get(), k, &x.svec), 0);
      expectNear(x.dense(), basis.inv[k]);
      ASSERT_EQ(TVKBinvRowi(model.get(), k, &row.svec), 0);
      std::vector<double> product(n + m, 0.0);
      for (int j = 0; j < n + m; ++j)
        for (int i = 0; i < m; ++i) product[j] += basis.inv[k][i] * basis.entry(spec, i, j);
      expectNear(row.dense(), product);
    }
    std::vector<int> ind{0, m - 1};
    std::vector<double> val{2, -3}, b(m, 0.0), forward(m, 0.0), backward(m, 0.0);
    b[0] += 2;
    b[m - 1] -= 3;
    const TVKsvec rhs{2, ind.data(), val.data()};
    for (int p = 0; p < m; ++p)
      for (int i = 0; i < m; ++i) {
        forward[p] += basis.inv[p][i] * b[i];
        backward[i] += basis.inv[p][i] * b[p];
      }
    Result x(m);
    ASSERT_EQ(TVKFSolve(model.get(), &rhs, &x.svec), 0);
    expectNear(x.dense(), forward);
    ASSERT_EQ(TVKBSolve(model.get(), &rhs, &x.svec), 0);
    expectNear(x.dense(), backward);
    for (int j = 0; j < n; ++j) {
      std::vector<double> image(m, 0.0);
      for (int p = 0; p < m; ++p)
        for (int i = 0; i < m; ++i) image[p] += basis.inv[p][i] * spec.rows[i].coef[j];
      ASSERT_EQ(TVKBinvColj(model.get(), j, &x.svec), 0);
      expectNear(x.dense(), image);
    }
  });
}

TEST(BasisAccess, ConditionNumbersAgreeWithTheDenseInverse) {
  forOptima([](const Spec &, TinyModel &model, const DenseBasis &basis) {
    const double exact = norm1(basis.matrix) * norm1(basis.inv);
    EXPECT_NEAR(model.dblAttr("KappaExact"), exact, kTol * exact);
    EXPECT_LE(model.dblAttr("Kappa"), exact * (1 + kTol));
    EXPECT_GE(model.dblAttr("Kappa"), exact / 3);
    const double spectral = norm2(basis.matrix) * norm2(basis.inv);
    EXPECT_LE(model.dblAttr("N2Kappa"), spectral * (1 + kTol));
    EXPECT_GE(model.dblAttr("N2Kappa"), spectral * 0.7);
  });
}

// Every finite end of a range: the basis is optimal there and not beyond; every infinite one:
// optimal far out.
TEST(Sensitivity, RangesEndWhereTheBasisStopsBeingOptimal) {
  forOptima([](const Spec &spec, TinyModel &model, const DenseBasis &basis) {
    const int n = basis.n, m = basis.m;
    const auto rc = model.dblArray("RC", n);
    std::vector<int> side(n);
    for (int j = 0; j < n; ++j) {
      const double d = spec.sense * rc[j];
      side[j] = basis.status[j] == TVK_NONBASIC_LOWER ? -1 : basis.status[j] == TVK_NONBASIC_UPPER;
      if (!basis.isBasic(j) && spec.lb[j] == spec.ub[j]) side[j] = d >= 0 ? -1 : 1;
    }
    ASSERT_TRUE(basis.isOptimal(spec, side, 1e-6));
    const auto check = [&](const char *name, int element, double end, bool upper,
                           const std::function<void(Spec &, double)> &change) {
      SCOPED_TRACE(std::string(name) + " of " + std::to_string(element));
      Spec at = spec;
      if (std::fabs(end) >= TVK_INFINITY) {
        EXPECT_EQ(end > 0, upper);
        change(at, upper ? 1e6 : -1e6);
        EXPECT_TRUE(basis.isOptimal(at, side, 1e-4));
        return;
      }
      const double step = (upper ? 1 : -1) * 1e-3 * (1 + std::fabs(end));
      change(at, end);
      EXPECT_TRUE(basis.isOptimal(at, side, 1e-6)) << end;
      change(at, end + step);
      EXPECT_FALSE(basis.isOptimal(at, side, 1e-6)) << end;
    };
    const auto objLow = model.dblArray("SAObjLow", n), objUp = model.dblArray("SAObjUp", n);
    const auto lbLow = model.dblArray("SALBLow", n), lbUp = model.dblArray("SALBUp", n);
    const auto ubLow = model.dblArray("SAUBLow", n), ubUp = model.dblArray("SAUBUp", n);
    for (int j = 0; j < n; ++j) {
      const auto obj = [j](Spec &s, double v) { s.obj[j] = v; };
      const auto lb = [j](Spec &s, double v) { s.lb[j] = v; };
      const auto ub = [j](Spec &s, double v) { s.ub[j] = v; };
      check("SAObjLow", j, objLow[j], false, obj);
      check("SAObjUp", j, objUp[j], true, obj);
      check("SALBLow", j, lbLow[j], false, lb);
      check("SALBUp", j, lbUp[j], true, lb);
      check("SAUBLow", j, ubLow[j], false, ub);
      check("SAUBUp", j, ubUp[j], true, ub);
    }
    const auto rhsLow = model.dblArray("SARHSLow", m), rhsUp = model.dblArray("SARHSUp", m);
    for (int i = 0; i < m; ++i) {
      const auto rhs = [i](Spec &s, double v) { s.rows[i].rhs = v; };
      check("SARHSLow", i, rhsLow[i], false, rhs);
      check("SARHSUp", i, rhsUp[i], true, rhs);
    }
  });
}

TEST(Sensitivity, RangesOfAMaximizationAreInItsOwnSense) {
  // x + y <= 4, x + 3y <= 8, x <= 3: optimum at (3, 1), y basic between its neighbours.
  LoggedEnv env;
  TinyModel model(env,
                  {{3, 2}, {{{1, 1}, '<', 4}, {{1, 3}, '<', 8}}, {}, {3, TVK_INFINITY}, -1, 0});
  EXPECT_FALSE(model.has("SAObjLow"));
  EXPECT_FALSE(model.has("Kappa"));
  ASSERT_EQ(model.solve(), TVK_OPTIMAL);
  expectNear(model.dblArray("SAObjLow", 2), {2, 0});
  expectNear({model.dblArray("SAObjUp", 2)[1]}, {3});
  EXPECT_GE(model.dblArray("SAObjUp", 2)[0], TVK_INFINITY);
  // The first right-hand side: from x = 3, y = 0 to y = 5/3.
  expectNear({model.dblArray("SARHSLow", 2)[0], model.dblArray("SARHSUp", 2)[0]}, {3, 3 + 5 / 3.0});
  expectNear({model.dblArray("SARHSLow", 2)[1]}, {6});
  expectNear({model.dblArray("SAUBLow", 2)[0], model.dblArray("SAUBUp", 2)[0]}, {2, 4});
}

TEST(BasisAccess, RefusesWhatItCannotAnswer) {
  LoggedEnv env;
  TinyModel model(env, {{1, 2}, {{{1, 1}, '>', 2}}, {}, {}, TVK_MINIMIZE, 0});
  Result x(3);
  int head = -7;
  const int one = 0;
  const double value = 1;
  TVKsvec b{1, const_cast<int *>(&one), const_cast<double *>(&value)};
  EXPECT_EQ(TVKFSolve(model.get(), &b, &x.svec), TVK_ERROR_DATA_NOT_AVAILABLE);
  EXPECT_EQ(TVKgetBasisHead(model.get(), &head), TVK_ERROR_DATA_NOT_AVAILABLE);
  EXPECT_EQ(TVKsingularvectors(model.get(), nullptr, nullptr), TVK_ERROR_DATA_NOT_AVAILABLE);
  ASSERT_EQ(model.solve(), TVK_OPTIMAL);
  EXPECT_EQ(TVKFSolve(model.get(), nullptr, &x.svec), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(TVKFSolve(model.get(), &b, nullptr), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(TVKgetBasisHead(model.get(), nullptr), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_EQ(TVKBinvColj(model.get(), 2, &x.svec), TVK_ERROR_INDEX_OUT_OF_RANGE);
  EXPECT_EQ(TVKBinvj(model.get(), 1, &x.svec), TVK_ERROR_INDEX_OUT_OF_RANGE);
  EXPECT_EQ(TVKBinvi(model.get(), -1, &x.svec), TVK_ERROR_INDEX_OUT_OF_RANGE);
  EXPECT_EQ(TVKBinvRowi(model.get(), 1, &x.svec), TVK_ERROR_INDEX_OUT_OF_RANGE);
  const int outside = 1;
  b.ind = const_cast<int *>(&outside);
  EXPECT_EQ(TVKBSolve(model.get(), &b, &x.svec), TVK_ERROR_INDEX_OUT_OF_RANGE);
  // The call's time replaces the solve's.
  EXPECT_EQ(TVKBinvColj(model.get(), 0, &x.svec), 0);
  EXPECT_LT(model.dblAttr("Work"), 1e-6);

  // A change of the model ends the basis.
  ASSERT_EQ(TVKsetdblattrelement(model.get(), "Obj", 0, 5), 0);
  ASSERT_EQ(TVKupdatemodel(model.get()), 0);
  EXPECT_EQ(TVKgetBasisHead(model.get(), &head), TVK_ERROR_DATA_NOT_AVAILABLE);
  EXPECT_FALSE(model.has("SARHSLow"));
}

TEST(BasisAccess, ARegularBasisHasNoSingularVectors) {
  LoggedEnv env;
  TinyModel model(env, {{1, 2}, {{{1, 1}, '>', 2}}, {}, {}, TVK_MINIMIZE, 0});
  ASSERT_EQ(model.solve(), TVK_OPTIMAL);
  TVKsvec *u = nullptr, *v = nullptr;
  ASSERT_EQ(TVKsingularvectors(model.get(), &u, &v), 0);
  EXPECT_EQ(u->len, 0);
  EXPECT_EQ(v->len, 0);
  TVKfree(u);
  TVKfree(v);
  TinyModel empty(env, {{1}, {}, {}, {}, TVK_MINIMIZE, 0});
  ASSERT_EQ(empty.solve(), TVK_OPTIMAL);
  ASSERT_EQ(TVKsingularvectors(empty.get(), &u, nullptr), 0);
  EXPECT_EQ(u->len, -1);
  TVKfree(u);
}

TEST(BasisAccess, AModelWithoutRowsHasAnEmptyBasis) {
  LoggedEnv env;
  TinyModel model(env, {{1}, {}, {}, {}, TVK_MINIMIZE, 0});
  Result x(1);
  TVKsvec b{0, nullptr, nullptr};
  int head = -7;
  EXPECT_EQ(TVKFSolve(model.get(), &b, &x.svec), TVK_ERROR_DATA_NOT_AVAILABLE);
  ASSERT_EQ(model.solve(), TVK_OPTIMAL);
  for (const auto call : {TVKFSolve, TVKBSolve}) {
    x.svec.len = 5;
    EXPECT_EQ(call(model.get(), &b, &x.svec), 0);
    EXPECT_EQ(x.svec.len, 0);
  }
  x.svec.len = 5;
  EXPECT_EQ(TVKBinvColj(model.get(), 0, &x.svec), 0);
  EXPECT_EQ(x.svec.len, 0);
  EXPECT_EQ(TVKBinvj(model.get(), 0, &x.svec), TVK_ERROR_INDEX_OUT_OF_RANGE);
  EXPECT_EQ(TVKgetBasisHead(model.get(), &head), 0);
  EXPECT_EQ(head, -7);
}

// Ones on the diagonal and minus ones above it: every pivot is 1, and yet the columns combine to
// a vector of length 2^-39 relative to their multipliers (Wilkinson 1961).
TEST(BasisAccess, NearDependencyIsExposed) {
  constexpr int kSize = 41;
  LoggedEnv env;
  Spec spec;
  spec.obj.assign(kSize, 0.0);
  spec.lb.assign(kSize, -TVK_INFINITY);
  spec.ub.assign(kSize, TVK_INFINITY);
  for (int i = 0; i < kSize; ++i) {
    std::vector<double> coef(kSize, 0.0);
    coef[i] = 1;
    for (int j = i + 1; j < kSize; ++j) coef[j] = -1;
    spec.rows.push_back({coef, '=', 1.0 - (kSize - 1 - i)});
  }
  TinyModel model(env, spec);
  std::vector<int> basic(kSize, TVK_BASIC), nonbasic(kSize, TVK_NONBASIC_LOWER);
  ASSERT_EQ(TVKsetintattrarray(model.get(), "VBasis", 0, kSize, basic.data()), 0);
  ASSERT_EQ(TVKsetintattrarray(model.get(), "CBasis", 0, kSize, nonbasic.data()), 0);
  ASSERT_EQ(model.solve(), TVK_OPTIMAL);
  EXPECT_EQ(model.intArray("VBasis", kSize), basic);
  const DenseBasis basis(spec, model);
  TVKsvec *u = nullptr, *v = nullptr;
  ASSERT_EQ(TVKsingularvectors(model.get(), &u, &v), 0);
  for (const bool transposed : {false, true}) {
    const TVKsvec *vector = transposed ? v : u;
    ASSERT_EQ(vector->len, kSize) << transposed;
    double largest = 0;
    std::vector<double> image(kSize, 0.0);
    for (int k = 0; k < vector->len; ++k) {
      largest = std::max(largest, std::fabs(vector->val[k]));
      for (int i = 0; i < kSize; ++i)
        image[i] += vector->val[k] * (transposed ? basis.matrix[vector->ind[k]][i]
                                                 : basis.matrix[i][vector->ind[k]]);
    }
    EXPECT_NEAR(largest, 1, 1e-12);
    for (const double value : image) EXPECT_NEAR(value, 0, 1e-9) << transposed;
  }
  TVKfree(u);
  TVKfree(v);
}

}  // namespace
