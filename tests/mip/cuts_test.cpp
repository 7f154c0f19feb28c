// Cuts of all families: valid on thousands of random models, found where they are known to exist.
#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdlib>
#include <numeric>

#include "base/random.h"
#include "mip/cut_harness.h"
#include "mip/cuts/cut_dump.h"
#include "mip/cuts/cut_pool.h"
#include "mip/cuts/proof_cuts.h"
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
      {"LiftAndProject", makeLiftAndProjectSeparator},
      {"Cover", makeCoverSeparator},
      {"GubCover", makeGubCoverSeparator},
      {"Mixing", makeMixingSeparator},
      {"FlowPath", makeFlowPathSeparator},
      {"ImpliedBound", makeImpliedBoundSeparator},
      {"ProjectedBound", makeProjectedBoundSeparator},
      {"Network", makeNetworkSeparator},
      {"Clique", makeCliqueSeparator},
      {"ZeroHalf", makeZeroHalfSeparator},
      {"ModK", makeModKSeparator},
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

  // Every eighth one is a network.
  RandomMip generate() {
    RandomMip mip = random_.below(8) == 0 ? network() : general();
    mip.lp.numRows = static_cast<int>(rows_.size());
    mip.lp.a.clear(mip.lp.numRows);
    for (int j = 0; j < mip.lp.numCols; ++j) appendColumn(mip, j);
    return mip;
  }

 private:
  RandomMip general() {
    RandomMip mip;
    const int ints = 2 + random_.below(4), conts = random_.below(4), n = ints + conts;
    fractional_ = random_.below(3) == 0;
    std::vector<std::vector<double>> rows;
    for (int j = 0; j < n; ++j) addColumn(mip, j < ints);
    const int general = 1 + random_.below(4);
    for (int i = 0; i < general; ++i) addGeneralRow(mip, n);
    for (int j = ints; j < n; ++j)
      if (random_.below(3) > 0) addVariableBound(mip, n, j, random_.below(ints));
    if (ints < n && random_.below(4) > 0) addLowerVariableBounds(mip, n, ints);
    if (random_.below(2)) addPacking(mip, n, ints);
    if (random_.below(2) == 0) addGroups(mip, n);
    mip.lp.numCols = n;
    return mip;
  }
  // One or two commodities from outside to two nodes, and between these; each leg has a fixed
  // charge or modules.
  RandomMip network() {
    RandomMip mip;
    const int legs = 3, commodities = 1 + random_.below(2);
    const int n = legs * (1 + commodities);
    for (int j = 0; j < n; ++j) {
      const bool opening = j >= n - legs;
      mip.kind.push_back(opening || random_.below(12) == 0 ? VarKind::Integer
                                                           : VarKind::Continuous);
      mip.lp.colLower.push_back(0);
      mip.lp.colUpper.push_back(opening ? 1 + (random_.below(3) == 0) : 3);
      if (mip.kind[j] == VarKind::Continuous && random_.below(2)) mip.lp.colUpper[j] = kInf;
      mip.lp.cost.push_back(opening ? 1 + random_.below(9) : 0.5 * random_.below(4));
    }
    for (int c = 0; c < commodities; ++c)
      for (int node = 0; node < 2; ++node) {
        std::vector<double> row(n, 0.0);
        const double scale = random_.below(3) == 0 ? -2 : 1,
                     demand = scale * (1 + random_.below(3));
        for (int leg = 0; leg < legs; ++leg) {
          if (leg == node) row[c * legs + leg] = scale;
          if (leg == 2) row[c * legs + leg] = node == 0 ? scale : -scale;
        }
        const bool atLeast = random_.below(4) == 0;
        addRow(mip, row, atLeast && scale < 0 ? -kInf : demand,
               atLeast && scale > 0 ? kInf : demand);
      }
    for (int leg = 0; leg < legs; ++leg) addCapacities(mip, n, legs, leg);
    mip.lp.numCols = n;
    return mip;
  }
  // Joint, or of each commodity.
  void addCapacities(RandomMip &mip, int n, int legs, int leg) {
    const bool joint = random_.below(2);
    std::vector<double> row(n, 0.0);
    for (int j = leg; j < n - legs; j += legs) {
      row[j] = 1;
      row[n - legs + leg] = -(2.0 + random_.below(9) / 2.0);
      if (joint && j + legs < n - legs) continue;
      addRow(mip, row, -kInf, 0);
      row.assign(n, 0.0);
    }
  }
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
  // Of the last column, by every integral one.
  void addLowerVariableBounds(RandomMip &mip, int n, int ints) {
    for (int y = 0; y < ints; ++y) {
      std::vector<double> row(n, 0.0);
      row[n - 1] = 1;
      row[y] = -(1.0 + random_.below(3));
      addRow(mip, row, 0, kInf);
    }
  }
  // Two exclusive pairs among the first four columns, and a knapsack of them.
  void addGroups(RandomMip &mip, int n) {
    if (n < 4) return;
    std::vector<double> first(n, 0.0), second(n, 0.0), knapsack(n, 0.0);
    first[0] = first[1] = second[2] = second[3] = 1;
    for (int j = 0; j < n; ++j) knapsack[j] = 3.0 + random_.below(4);
    addRow(mip, first, -kInf, 1);
    addRow(mip, second, -kInf, 1);
    addRow(mip, knapsack, -kInf, 7.0 + random_.below(8));
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

// TARVIK_RANDOM_CUTS models, from seed TARVIK_RANDOM_FIRST.
TEST(Cuts, AreValidOnRandomModels) {
  const char *wanted = std::getenv("TARVIK_RANDOM_CUTS"),
             *from = std::getenv("TARVIK_RANDOM_FIRST");
  const int first = from ? std::atoi(from) : 1, count = wanted ? std::atoi(wanted) : 700;
  std::vector<int> found(families().size(), 0);
  for (int seed = first; seed < first + count; ++seed) {
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

// Infeasible branches, and branches beyond a cutoff, of random models: their proofs, rounded at the
// optimum of the relaxation, hold for all points (that are within the cutoff).
class ProofCutJudge {
 public:
  explicit ProofCutJudge(std::uint64_t seed)
      : random_(seed + 77),
        mip_(MipGenerator(seed).generate()),
        problem_(makeProblem(mip_.lp, mip_.kind)),
        domain_(problem_),
        lp_(problem_, SimplexOptions()) {
    control_.log = &log_;
  }

  int run(bool withCutoff) {
    if (!domain_.propagate(control_.work)) return 0;
    lp_.follow(domain_);
    if (lp_.solve(control_) != LpStatus::Optimal) return 0;
    const double root = lp_.objective();
    const double cutoff = withCutoff ? root + 0.2 * (1 + std::fabs(root)) : kUserInf;
    ProofCuts proofs(problem_, domain_, 2);
    CutId nextId = 0;
    for (int trial = 0; trial < 5; ++trial) {
      branch(proofs, cutoff);
      lp_.setCutoff(kUserInf);
      if (lp_.solve(control_) != LpStatus::Optimal) break;
      proofs.beginNode();
      proofs.round(lp_, control_.work, nextId);
    }
    judge(cutoff);
    return proofs.count();
  }

 private:
  // Takes some columns off their values in the relaxation, for the time of one solve.
  void branch(ProofCuts &proofs, double cutoff) {
    const Vec<double> x(lp_.x());
    for (const int j : problem_.integers()) {
      if (random_.below(2)) continue;
      const bool up = random_.below(2) != 0;
      const double value = up ? std::floor(x[j]) + 1 : std::ceil(x[j]) - 1;
      if (!domain_.decide({{j, up ? BoundSide::Lower : BoundSide::Upper, value}})) break;
    }
    if (!domain_.empty()) {
      lp_.follow(domain_);
      lp_.setCutoff(cutoff);
      const LpStatus status = lp_.solve(control_);
      const bool cutOff =
          status == LpStatus::Cutoff || (status == LpStatus::Optimal && lp_.objective() >= cutoff);
      if (cutOff || status == LpStatus::Infeasible) proofs.take(lp_, cutOff, cutoff, control_.work);
    }
    domain_.backtrackTo(0);
    lp_.follow(domain_);
  }
  // The objective under the cutoff is one more row for the enumeration.
  void judge(double cutoff) const {
    LpModel lp(mip_.lp);
    if (cutoff < kUserInf) {
      SparseMatrix rows = transpose(lp.a);
      Vec<int> index(lp.numCols);
      std::iota(index.begin(), index.end(), 0);
      rows.append(lp.numCols, index.data(), lp.cost.data());
      lp.a = transpose(rows);
      lp.rowLower.push_back(-kInf);
      lp.rowUpper.push_back(cutoff);
      ++lp.numRows;
    }
    const Problem restricted = makeProblem(lp, mip_.kind);
    Enumeration truth(restricted);
    if (truth.feasibleAssignments() == 0) return;
    for (int k = 0; k < lp_.numCuts(); ++k)
      EXPECT_LE(truth.excess(lp_.cut(k)), 1e-6) << describe(lp_.cut(k));
  }

  Random random_;
  RandomMip mip_;
  Problem problem_;
  Domain domain_;
  Relaxation lp_;
  SilentLog log_;
  SolveControl control_;
};

TEST(Cuts, OfProofsAreValidOnRandomModels) {
  const char *wanted = std::getenv("TARVIK_RANDOM_CUTS"),
             *from = std::getenv("TARVIK_RANDOM_FIRST");
  const int first = from ? std::atoi(from) : 1, count = wanted ? std::atoi(wanted) : 700;
  int found[2] = {0, 0};
  for (int seed = first; seed < first + count; ++seed) {
    found[seed % 2] += ProofCutJudge(seed).run(seed % 2 != 0);
    ASSERT_FALSE(HasFailure()) << "seed " << seed;
  }
  RecordProperty("Infeasible", found[0]);
  RecordProperty("CutOff", found[1]);
  EXPECT_GT(found[0], 20);
  EXPECT_GT(found[1], 20);
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

Problem binaryProblem(const LpModel &lp) {
  return makeProblem(lp, Vec<VarKind>(lp.numCols, VarKind::Integer));
}

// 3 x1 + 4 x2 + 5 x3 <= 8: no two of the heaviest, nor all.
TEST(Cuts, CoverAKnapsack) {
  const LpModel lp = denseLp({-3, -4, -5}, {{0, 1}, {0, 1}, {0, 1}}, {{3, 4, 5}}, {{-kInf, 8}});
  const SeparationResult result = separateAndJudge(binaryProblem(lp), {makeCoverSeparator}, 5, 2);
  EXPECT_NEAR(result.firstBound, -8, 1e-9);
  EXPECT_GT(result.cuts, 0);
}

// The edges of a triangle allow one node; those of a five-cycle two.
TEST(Cuts, JoinEdgesToCliquesAndOddCycles) {
  const LpModel triangle =
      denseLp({-1, -1, -1}, {{0, 1}, {0, 1}, {0, 1}}, {{1, 1, 0}, {0, 1, 1}, {1, 0, 1}},
              {{-kInf, 1}, {-kInf, 1}, {-kInf, 1}});
  for (const SeparatorMaker &make :
       {SeparatorMaker(makeCliqueSeparator), SeparatorMaker(makeZeroHalfSeparator)}) {
    const SeparationResult result = separateAndJudge(binaryProblem(triangle), {make}, 2, 1);
    EXPECT_NEAR(result.firstBound, -1.5, 1e-9);
    EXPECT_NEAR(result.lastBound, -1, 1e-9);
  }
  const LpModel cycle =
      denseLp({-1, -1, -1, -1, -1}, {{0, 1}, {0, 1}, {0, 1}, {0, 1}, {0, 1}},
              {{1, 1, 0, 0, 0}, {0, 1, 1, 0, 0}, {0, 0, 1, 1, 0}, {0, 0, 0, 1, 1}, {1, 0, 0, 0, 1}},
              {{-kInf, 1}, {-kInf, 1}, {-kInf, 1}, {-kInf, 1}, {-kInf, 1}});
  const SeparationResult result =
      separateAndJudge(binaryProblem(cycle), {makeZeroHalfSeparator}, 2, 1);
  EXPECT_NEAR(result.lastBound, -2, 1e-9);
}

// Any three of four nodes hold at most two, twice over: the thirds of four triples leave 8/3.
TEST(Cuts, SumRowsModuloThree) {
  const LpModel lp = denseLp({-1, -1, -1, -1}, {{0, 4}, {0, 4}, {0, 4}, {0, 4}},
                             {{1, 1, 1, 0}, {1, 1, 0, 1}, {1, 0, 1, 1}, {0, 1, 1, 1}},
                             {{-kInf, 2}, {-kInf, 2}, {-kInf, 2}, {-kInf, 2}});
  const SeparationResult result = separateAndJudge(binaryProblem(lp), {makeModKSeparator}, 2, 1);
  EXPECT_NEAR(result.firstBound, -8.0 / 3, 1e-9);
  EXPECT_NEAR(result.lastBound, -2, 1e-9);
}

// x1 + x2 <= 10 y with x <= 4 each: x1 <= 4 y.
TEST(Cuts, SplitAJointVariableBound) {
  const LpModel lp = denseLp({-1, -1, 5}, {{0, 4}, {0, 4}, {0, 1}}, {{1, 1, -10}}, {{-kInf, 0}});
  const Problem problem =
      makeProblem(lp, {VarKind::Continuous, VarKind::Continuous, VarKind::Integer});
  const SeparationResult result = separateAndJudge(problem, {makeImpliedBoundSeparator}, 3, 1);
  EXPECT_NEAR(result.firstBound, -4, 1e-9);
  EXPECT_NEAR(result.lastBound, -3, 1e-9);
}

// Three pairs of weights 5 and 6, one of each pair at most, and room for 14: two in all.
TEST(Cuts, CoverAKnapsackOfGroups) {
  const LpModel lp =
      denseLp({-1, -1, -1, -1, -1, -1}, {{0, 1}, {0, 1}, {0, 1}, {0, 1}, {0, 1}, {0, 1}},
              {{5, 6, 5, 6, 5, 6}, {1, 1, 0, 0, 0, 0}, {0, 0, 1, 1, 0, 0}, {0, 0, 0, 0, 1, 1}},
              {{-kInf, 14}, {-kInf, 1}, {-kInf, 1}, {-kInf, 1}});
  const SeparationResult result =
      separateAndJudge(binaryProblem(lp), {makeGubCoverSeparator}, 5, 1);
  EXPECT_NEAR(result.firstBound, -2.8, 1e-9);
  EXPECT_NEAR(result.lastBound, -2, 1e-9);
}

// x >= 3 y1 and x >= 2 y2: x >= y1 + 2 y2.
TEST(Cuts, MixVariableBounds) {
  const LpModel lp = denseLp({1, -2, -1.5}, {{0, 10}, {0, 1}, {0, 1}}, {{1, -3, 0}, {1, 0, -2}},
                             {{0, kInf}, {0, kInf}});
  const Problem problem =
      makeProblem(lp, {VarKind::Continuous, VarKind::Integer, VarKind::Integer});
  const SeparationResult result = separateAndJudge(problem, {makeMixingSeparator}, 3, 1);
  EXPECT_NEAR(result.firstBound, -5.0 / 6, 1e-9);
  EXPECT_NEAR(result.lastBound, -0.5, 1e-9);
}

// Demands of 3 and 4 in two periods, each with a setup of 5; storing a unit costs 1. The second
// setup is not worth it.
TEST(Cuts, FollowAStockThroughThePeriods) {
  const LpModel lp =
      denseLp({0, 0, 1, 5, 5}, {{0, kInf}, {0, kInf}, {0, kInf}, {0, 1}, {0, 1}},
              {{1, 0, -1, 0, 0}, {0, 1, 1, 0, 0}, {1, 0, 0, -10, 0}, {0, 1, 0, 0, -10}},
              {{3, 3}, {4, 4}, {-kInf, 0}, {-kInf, 0}});
  const Problem problem =
      makeProblem(lp, {VarKind::Continuous, VarKind::Continuous, VarKind::Continuous,
                       VarKind::Integer, VarKind::Integer});
  const SeparationResult result = separateAndJudge(problem, {makeFlowPathSeparator}, 10, 1);
  EXPECT_NEAR(result.firstBound, 7, 1e-9);
  EXPECT_NEAR(result.lastBound, 9, 1e-9);
}

// Two commodities from a to b (1 unit each) and c (1 and 2 units), directly or by way of b; each
// leg takes modules of 4 at a price of 1. What leaves a needs two.
TEST(Cuts, CutANetworkWithJointCapacities) {
  LpModel lp = denseLp({0, 0, 0, 0, 0, 0, 1, 1, 1},
                       {{0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}},
                       {{1, 0, -1, 0, 0, 0, 0, 0, 0},
                        {0, 1, 1, 0, 0, 0, 0, 0, 0},
                        {0, 0, 0, 1, 0, -1, 0, 0, 0},
                        {0, 0, 0, 0, 1, 1, 0, 0, 0},
                        {1, 0, 0, 1, 0, 0, -4, 0, 0},
                        {0, 1, 0, 0, 1, 0, 0, -4, 0},
                        {0, 0, 1, 0, 0, 1, 0, 0, -4}},
                       {{1, 1}, {1, 1}, {1, 1}, {2, 2}, {-kInf, 0}, {-kInf, 0}, {-kInf, 0}});
  Vec<VarKind> kind(9, VarKind::Continuous);
  for (int j = 0; j < 9; ++j) lp.colUpper[j] = j < 6 ? kInf : 3;
  for (int j = 6; j < 9; ++j) kind[j] = VarKind::Integer;
  const Problem problem = makeProblem(lp, kind);
  const FlowNetwork network(problem, Domain(problem));
  EXPECT_EQ(network.numCommodities(), 2);
  EXPECT_EQ(network.numNodes(), 2);
  const SeparationResult result = separateAndJudge(problem, {makeNetworkSeparator}, 3, 1);
  EXPECT_NEAR(result.firstBound, 1.75, 1e-9);
  EXPECT_NEAR(result.lastBound, 2, 1e-9);
}

std::shared_ptr<const Cut> sharedCut(const Vec<double> &value, double rhs) {
  Cut cut;
  for (std::size_t k = 0; k < value.size(); ++k) cut.index.push_back(static_cast<int>(k));
  cut.value = value;
  cut.rhs = rhs;
  return std::make_shared<const Cut>(cut);
}

TEST(CutPool, KeepsTheTightestOfParallelCutsUntilItIsViolatedOrOld) {
  WorkMeter work;
  CutPool pool(3);
  pool.add(sharedCut({1, 2}, 4));
  pool.add(sharedCut({0.5, 1}, 1.5));  // tighter
  pool.add(sharedCut({2, 4}, 7));      // not so tight
  EXPECT_EQ(pool.size(), 1);
  pool.add(sharedCut({-1, -2}, 4));
  pool.add(sharedCut({1, 2.001}, 4));
  pool.add(sharedCut({1, 3}, 4));  // no room
  EXPECT_EQ(pool.size(), 3);
  Vec<Cut> cuts;
  EXPECT_EQ(pool.separate({1, 1.2}, work, cuts), 1);
  ASSERT_EQ(cuts.size(), 1);
  EXPECT_EQ(cuts[0].rhs, 1.5);
  EXPECT_EQ(pool.size(), 2);
  EXPECT_GT(work.counted(), 0);
  for (int round = 0; round < 100 && pool.size() > 0; ++round) pool.separate({0, 0}, work, cuts);
  EXPECT_EQ(pool.size(), 0);
  EXPECT_EQ(cuts.size(), 1);
}

// A pooled cut is a candidate only where it cuts as deep as the fresh ones on average.
TEST(CutPool, WaitsUntilItsCutsMatchTheFreshOnes) {
  WorkMeter work;
  CutPool pool;
  pool.add(sharedCut({1, 0}, 1));
  Vec<Cut> cuts{*sharedCut({0, 1}, 1), *sharedCut({0, 1}, 2)};
  EXPECT_EQ(pool.separate({1.5, 3}, work, cuts), 0);  // 0.5 against 2 and 1
  EXPECT_EQ(pool.separate({2.6, 3}, work, cuts), 1);
  ASSERT_EQ(cuts.size(), 3);
  EXPECT_EQ(cuts.back().value, (Vec<double>{1, 0}));
  EXPECT_EQ(pool.size(), 0);
}

// Cuts of smaller ids than the given one stay, and only solves that are counted make cuts older.
TEST(Relaxation, RemovesLaterCutsThatWereSlackForAWhile) {
  const LpModel lp = denseLp({-1, -1}, {{0, 1}, {0, 1}}, {{1, 1}}, {{-kInf, 2}});
  const Problem problem = binaryProblem(lp);
  Relaxation relaxation(problem, SimplexOptions());
  SilentLog log;
  SolveControl control;
  control.log = &log;
  const auto slack = sharedCut({1, 1}, 3), tight = sharedCut({2, 1}, 2),
             later = sharedCut({1, 2}, 7);
  relaxation.addCuts({slack, tight, later}, {0, 5, 6});
  for (int solve = 0; solve < 2; ++solve) {
    ASSERT_EQ(relaxation.solve(control), LpStatus::Optimal);
    EXPECT_TRUE(relaxation.removeSlackCuts(1, 5).empty());
  }
  relaxation.ageCuts();
  EXPECT_TRUE(relaxation.removeSlackCuts(2, 5).empty());
  EXPECT_EQ(relaxation.removeSlackCuts(1, 5), Vec<std::shared_ptr<const Cut>>{later});
  ASSERT_EQ(relaxation.numCuts(), 2);
  EXPECT_EQ(relaxation.cutId(0), 0);
  EXPECT_EQ(relaxation.removeSlackCuts(1), Vec<std::shared_ptr<const Cut>>{slack});
}

class TextLog : public Log {
 public:
  void print(const char *format, ...) override {
    char line[200];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    text += line;
  }
  std::string text;
};

TEST(CutDump, WritesTermsAndViolation) {
  const int index[] = {0, 2};
  const double value[] = {1, -2.5}, x[] = {3, 0, 1};
  TextLog log;
  dumpCut(log, x, 4, 1, 2, index, value, '<', 0.25);
  dumpCut(log, nullptr, -1, -1, 2, index, value, '>', 1);
  dumpCut(log, x, -1, -1, 0, index, value, '<', 2);
  dumpRow(log, 2, index, value, '=', 7);
  dumpRow(log, 1, index, value, '>', 0);
  EXPECT_EQ(log.text,
            "cuttype 4 (rank = 1) (cutlen = 2)  +1 x0[3] -2.5 x2[1] <= 0.25 (viol: 0.25)\n"
            "(cutlen = 2)  +1 x0 -2.5 x2 >= 1\n"
            "(cutlen = 0)  <= 2 (viol: -2)\n"
            " +1x0 -2.5x2 = 7\n"
            " +1x0 >= 0\n");
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
