// Cuts of all families: valid on thousands of random models, found where they are known to exist.
#include <gtest/gtest.h>

#include "base/random.h"
#include "mip/cut_harness.h"
#include "support/random_lp.h"

namespace tarvik::test {
namespace {

struct Family {
  const char *name;
  SeparatorMaker make;
};

const std::vector<Family> &families() {
  static const std::vector<Family> all = {
      {"Mir", makeMirSeparator},
      {"Gomory", makeGomorySeparator},
      {"FlowCover", makeFlowCoverSeparator},
      {"StrongCg", makeStrongCgSeparator},
  };
  return all;
}

std::vector<SeparatorMaker> everyMaker() {
  std::vector<SeparatorMaker> makers;
  for (const Family &family : families()) makers.push_back(family.make);
  return makers;
}

// A model with a few integral columns in small boxes; the rest continuous, some with variable
// bounds. Kinds of rows: general, knapsack, set packing, variable bound, balance.
struct RandomMip {
  LpModel lp;
  Vec<VarKind> kind;
};

class MipGenerator {
 public:
  explicit MipGenerator(std::uint64_t seed) : random_(seed) {}

  RandomMip generate() {
    RandomMip mip;
    const int ints = 2 + random_.below(4), conts = random_.below(4), n = ints + conts;
    fractional_ = random_.below(3) == 0;
    std::vector<std::vector<double>> rows;
    for (int j = 0; j < n; ++j) addColumn(mip, j < ints);
    const int general = 1 + random_.below(4);
    for (int i = 0; i < general; ++i) addGeneralRow(mip, n);
    for (int j = ints; j < n; ++j)
      if (random_.below(3) > 0) addVariableBound(mip, n, j, random_.below(ints));
    if (random_.below(2)) addPacking(mip, n, ints);
    mip.lp.numCols = n;
    mip.lp.numRows = static_cast<int>(rows_.size());
    mip.lp.a.clear(mip.lp.numRows);
    for (int j = 0; j < n; ++j) appendColumn(mip, j);
    return mip;
  }

 private:
  double coefficient() {
    const double c = 1 + random_.below(9);
    const double value = fractional_ ? c + 0.1 * random_.below(10) : c;
    return random_.below(3) == 0 ? -value : value;
  }
  void addColumn(RandomMip &mip, bool integral) {
    const bool binary = integral && random_.below(4) > 0;
    const double lower = integral && !binary && random_.below(2) ? -1.0 : 0.0;
    double upper = binary ? 1 : lower + 2 + random_.below(2);
    if (!integral) upper = random_.below(2) ? kInf : 3.0 + random_.below(8);
    mip.kind.push_back(integral ? VarKind::Integer : VarKind::Continuous);
    mip.lp.colLower.push_back(lower);
    mip.lp.colUpper.push_back(upper);
    mip.lp.cost.push_back(random_.below(19) - 12);
  }
  void addRow(RandomMip &mip, std::vector<double> row, double lower, double upper) {
    rows_.push_back(std::move(row));
    mip.lp.rowLower.push_back(lower);
    mip.lp.rowUpper.push_back(upper);
  }
  void addGeneralRow(RandomMip &mip, int n) {
    std::vector<double> row(n, 0.0);
    double positive = 0;
    for (double &a : row) {
      if (random_.below(4) == 0) continue;
      a = coefficient();
      positive += std::max(a, 0.0);
    }
    const double rhs = std::floor(positive * (0.3 + 0.5 * random_.uniform())) +
                       (fractional_ ? 0.1 * random_.below(10) : 0);
    const int type = random_.below(6);
    addRow(mip, row, type == 0 ? rhs : (type == 1 ? rhs - 3 : -kInf), rhs);
  }
  void addVariableBound(RandomMip &mip, int n, int x, int y) {
    std::vector<double> row(n, 0.0);
    row[x] = 1;
    row[y] = -(2.0 + random_.below(8));
    addRow(mip, row, -kInf, random_.below(4) == 0 ? 1 : 0);
  }
  void addPacking(RandomMip &mip, int n, int ints) {
    std::vector<double> row(n, 0.0);
    for (int j = 0; j < ints; ++j)
      if (random_.below(3) > 0) row[j] = 1;
    addRow(mip, row, -kInf, 1 + random_.below(2));
  }
  void appendColumn(RandomMip &mip, int j) {
    Vec<int> index;
    Vec<double> value;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
      if (rows_[i][j] == 0) continue;
      index.push_back(static_cast<int>(i));
      value.push_back(rows_[i][j]);
    }
    mip.lp.a.append(static_cast<int>(index.size()), index.data(), value.data());
  }

  Random random_;
  bool fractional_ = false;
  std::vector<std::vector<double>> rows_;
};

TEST(Cuts, AreValidOnRandomModels) {
  std::vector<int> found(families().size(), 0);
  for (int seed = 1; seed <= 600; ++seed) {
    const RandomMip mip = MipGenerator(seed).generate();
    const Problem problem = makeProblem(mip.lp, mip.kind);
    for (std::size_t f = 0; f < families().size(); ++f) {
      found[f] += separateAndJudge(problem, {families()[f].make}, 3, 1 + seed % 2).cuts;
      ASSERT_FALSE(HasFailure()) << families()[f].name << ", seed " << seed;
    }
    separateAndJudge(problem, everyMaker(), 4, 1);
    ASSERT_FALSE(HasFailure()) << "all, seed " << seed;
  }
  for (std::size_t f = 0; f < families().size(); ++f) {
    RecordProperty(families()[f].name, found[f]);
    EXPECT_GT(found[f], 20) << families()[f].name;
  }
}

// max y1 + y2 with 2 y1 + 2 y2 <= 3, and its mixed relatives.
TEST(Cuts, RoundARowWithItsDivisor) {
  const LpModel lp = denseLp({-1, -1}, {{0, 5}, {0, 5}}, {{2, 2}}, {{-kInf, 3}});
  const Problem problem = makeProblem(lp, {VarKind::Integer, VarKind::Integer});
  for (const SeparatorMaker &make :
       {SeparatorMaker(makeMirSeparator), SeparatorMaker(makeGomorySeparator),
        SeparatorMaker(makeStrongCgSeparator)}) {
    const SeparationResult result = separateAndJudge(problem, {make}, 3, 1);
    EXPECT_NEAR(result.firstBound, -1.5, 1e-9);
    EXPECT_NEAR(result.lastBound, -1, 1e-9);
  }
}

// A demand of 5 served by three arcs of capacity 4 with fixed charges: two must open.
TEST(Cuts, CoverAFlow) {
  const LpModel lp =
      denseLp({0, 0, 0, 10, 10, 10}, {{0, 4}, {0, 4}, {0, 4}, {0, 1}, {0, 1}, {0, 1}},
              {{1, 1, 1, 0, 0, 0}, {1, 0, 0, -4, 0, 0}, {0, 1, 0, 0, -4, 0}, {0, 0, 1, 0, 0, -4}},
              {{5, 5}, {-kInf, 0}, {-kInf, 0}, {-kInf, 0}});
  const Vec<VarKind> kind = {VarKind::Continuous, VarKind::Continuous, VarKind::Continuous,
                             VarKind::Integer,    VarKind::Integer,    VarKind::Integer};
  const Problem problem = makeProblem(lp, kind);
  for (const SeparatorMaker &make :
       {SeparatorMaker(makeFlowCoverSeparator), SeparatorMaker(makeMirSeparator)}) {
    const SeparationResult result = separateAndJudge(problem, {make}, 10, 1);
    EXPECT_NEAR(result.firstBound, 12.5, 1e-9);
    EXPECT_GT(result.lastBound, 17.5);
  }
}

}  // namespace
}  // namespace tarvik::test
