// What becomes of starts: loaded, mended, completed, refused; and what the caller is told.
#include <gtest/gtest.h>

#include "heuristic_fixture.h"
#include "mip/mip_solve.h"

namespace tarvik::test {
namespace {

class Starts : public testing::Test {
 protected:
  MipOutcome solve(const MipModel &model, Vec<MipStart> starts) {
    log_.text.clear();
    SolveControl control;
    control.log = &log_;
    control.limits.start();
    control.limits.workLimit = workLimit_;
    options_.simplex.logging = options_.presolve.logging = false;
    MipSolve solve(model, options_, control);
    for (MipStart &start : starts) solve.addStart(std::move(start));
    return solve.run();
  }
  // What was said about starts, up to the first line that presolve prints.
  std::string said() const { return log_.text.substr(0, log_.text.find("Presolve")); }

  RecordedLog log_;
  MipOptions options_;
  double workLimit_ = 1e100;
};

constexpr double kNone = kUndefined;

// min x + y + c, x + y >= 3, c >= 2.5 - x; x, y integral.
MipModel covering() {
  return makeModel({2, 1, 1}, {5, 5, 10},
                   {{3, {{0, 1}, {1, 1}}, kInf}, {2.5, {{0, 1}, {2, 1}}, kInf}}, {2});
}

TEST_F(Starts, CompleteOnesAreCheckedAndMended) {
  solve(covering(), {{kOnlyStart, {1, 3, 1.5}}});
  EXPECT_EQ(said(), "\nLoaded user MIP start with objective 6.5\n\n");
  // The continuous column is too small: it is computed again.
  solve(covering(), {{kOnlyStart, {1, 3, 0.5}}});
  EXPECT_EQ(said(), "\nLoaded user MIP start with objective 6.5\n\n");
  solve(covering(), {{kOnlyStart, {0, 1, 4}}});
  EXPECT_EQ(said(),
            "\nuser MIP start did not produce a new incumbent solution\n"
            "user MIP start violates constraint R0 by 2.000000000\n\n");
}

TEST_F(Starts, SeveralHaveNumbersAndOnlyBetterOnesCount) {
  solve(covering(), {{0, {5, 5, 0}}, {1, {kNone, kNone, kNone}}, {2, {5, 5, 1}}, {3, {1, 2, 1.5}}});
  EXPECT_EQ(said(),
            "\nLoaded user MIP start 0 with objective 15\n"
            "No start values specified in MIP start\n"
            "user MIP start 2 did not produce a new incumbent solution\n"
            "Loaded user MIP start 3 with objective 5.5\n\n");
}

TEST_F(Starts, PartialOnesAreCompleted) {
  solve(covering(), {{kOnlyStart, {2, kNone, kNone}}});
  EXPECT_NE(said().find("\nuser MIP start produced solution with objective 5.5 ("),
            std::string::npos)
      << said();
  EXPECT_NE(said().find("\nLoaded user MIP start with objective 5.5\n"), std::string::npos);
  // 5 and 0 cannot both be met: one of them is dropped.
  MipModel model = covering();
  model.lp.rowUpper[0] = 4;
  solve(model, {{kOnlyStart, {3, 4, kNone}}});
  EXPECT_NE(said().find("\nAnother try with MIP start\n"), std::string::npos) << said();
  EXPECT_NE(said().find("\nLoaded user MIP start with objective"), std::string::npos);
  options_.zeroObjStart = true;
  solve(covering(), {{kOnlyStart, {2, kNone, kNone}}});
  EXPECT_NE(said().find("\nLoaded user MIP start with objective"), std::string::npos);
}

TEST_F(Starts, WhatThePreviousSolveLeftIsNeverSearchedFor) {
  for (const int limit : {-2, -1, 0, 100}) {
    options_.startNodeLimit = limit;
    solve(covering(), {{kPreviousSolve, {1, 2, 2}}});
    EXPECT_EQ(said(), std::string("\nLoaded MIP start from previous solve with objective ") +
                          (limit == -2 ? "6" : "5.5") + "\n\n");
    solve(covering(), {{kPreviousSolve, {0, 1, 2}}});
    EXPECT_EQ(said().rfind(
                  "\nMIP start from previous solve did not produce a new incumbent solution\n", 0),
              0u)
        << said();
    // New values for discrete variables are not searched for, either.
    solve(covering(), {{kPreviousSolve, {1, kNone, 2}}});
    EXPECT_EQ(said(),
              "\nMIP start from previous solve did not produce a new incumbent solution\n\n");
  }
  options_.startNodeLimit = -1;
  solve(covering(), {{kPreviousSolve, {1, 2, 2}, true}});
  EXPECT_EQ(said(), "\nLoaded MIP start from previous solve with objective 6\n\n");
  // Its continuous values are computed for the objective, whatever searches are made for.
  options_.zeroObjStart = true;
  solve(covering(), {{kPreviousSolve, {1, 2, 2}}});
  EXPECT_EQ(said(), "\nLoaded MIP start from previous solve with objective 5.5\n\n");
}

TEST_F(Starts, NoLimitLosesWhatThePreviousSolveLeft) {
  Random random(5);
  MipModel model = randomPacking(120, 40, random);
  for (int j = 8; j < 120; ++j) model.kind[j] = VarKind::Continuous;
  const MipOutcome first = solve(model, {});
  ASSERT_EQ(first.status, MipStatus::Optimal);
  const MipSolution &best = first.solutions.front();
  for (workLimit_ = 1e-5; workLimit_ < 0.1; workLimit_ *= 1.2) {
    const MipOutcome next = solve(model, {{kPreviousSolve, best.x}});
    ASSERT_FALSE(next.solutions.empty()) << workLimit_;
    EXPECT_LE(next.solutions.front().objective, best.objective + 1e-6) << workLimit_;
  }
}

TEST_F(Starts, SemiContinuousValuesLeaveTheHole) {
  // x in {0} or [2, 10] or its mirror image; rows that hold everywhere.
  for (const double sign : {1.0, -1.0}) {
    MipModel model = makeModel({sign, 1}, {0, 1}, {{0, {{1, 1}}, kInf}});
    model.kind[0] = VarKind::SemiContinuous;
    model.lp.colLower[0] = sign > 0 ? 0 : -10;
    model.lp.colUpper[0] = sign > 0 ? 10 : 0;
    model.holeLower = {sign > 0 ? 0.0 : -2.0, 0};
    model.holeUpper = {sign > 0 ? 2.0 : 0.0, 0};
    const std::pair<double, const char *> cases[] = {{0.9, "0"}, {1.2, "2"}, {3, "3"}, {-1, "0"}};
    for (const auto &[value, objective] : cases) {
      solve(model, {{kOnlyStart, {sign * value, 0}}});
      EXPECT_EQ(said().rfind(std::string("\nLoaded user MIP start with objective ") + objective, 0),
                0u)
          << value << said();
    }
  }
}

TEST_F(Starts, SparseOnesAreWarnedOf) {
  for (const int unset : {150, 90}) {
    const int n = unset + 10;
    MipModel model = makeModel(Vec<double>(n, 1), Vec<double>(n, 1), {{1, {{0, 1}}, kInf}});
    MipStart start;
    start.x.assign(n, kNone);
    for (int j = 0; j < 10; ++j) start.x[j] = 1;
    solve(model, {start});
    EXPECT_EQ(said().find("Warning: Completing partial solution with 150 unfixed non-continuous "
                          "variables out of 160\n") != std::string::npos,
              unset == 150)
        << said();
  }
}

TEST_F(Starts, SearchesGoOnFromThem) {
  // Presolve moves columns; the incumbent has to be found there again, or to be lived without.
  Random random(17);
  for (int trial = 0; trial < 30; ++trial) {
    const MipModel model = randomPartitioning(40, 12, random);
    options_ = {};
    options_.heuristics = 0.5;
    const MipOutcome first = solve(model, {});
    ASSERT_EQ(first.status, MipStatus::Optimal);
    const MipOutcome second = solve(model, {{kPreviousSolve, first.solutions.back().x}});
    EXPECT_EQ(second.status, MipStatus::Optimal);
    EXPECT_NEAR(second.solutions.front().objective, first.solutions.front().objective, 1e-6);
  }
}

}  // namespace
}  // namespace tarvik::test
