// Observers of a search: what they are told, in which order, and what becomes of what they refuse.
#include "mip/mip_observer.h"

#include <gtest/gtest.h>

#include <cmath>

#include "mip/heuristic_fixture.h"
#include "mip/mip_solve.h"

namespace tarvik::test {
namespace {

struct Event {
  char kind;
  double number;
  bool operator==(const Event &other) const { return kind == other.kind && number == other.number; }
};

class Watcher : public MipObserver {
 public:
  explicit Watcher(const MipModel &model) : model_(model) {}

  void onProgress(const MipProgress &progress) override {
    EXPECT_GE(progress.explored, explored_);
    explored_ = progress.explored;
    events.push_back({'p', progress.explored});
  }
  bool onSolution(const MipProgress &progress, const Vec<double> &x, double objective) override {
    EXPECT_LT(objective, progress.incumbent);
    EXPECT_EQ(x.size(), static_cast<std::size_t>(model_.lp.numCols));
    events.push_back({'s', objective});
    return true;
  }
  bool wantsNodes() const override { return true; }
  void onNode(const MipProgress &, const ObservedNode &node) override {
    events.push_back({'n', node.bound});
    if (!node.x) return;
    const Vec<double> x = node.userPoint();
    ASSERT_EQ(x.size(), static_cast<std::size_t>(model_.lp.numCols));
    for (int j = 0; j < model_.lp.numCols; ++j) {
      EXPECT_GE(x[j], model_.lp.colLower[j] - 1e-6);
      EXPECT_LE(x[j], model_.lp.colUpper[j] + 1e-6);
    }
    ++points;
  }

  Vec<Event> events;
  int points = 0;

 private:
  const MipModel &model_;
  double explored_ = 0;
};

MipOutcome watched(const MipModel &model, MipOptions options, MipObserver &observer) {
  SilentLog log;
  SolveControl control;
  control.log = &log;
  control.limits.start();
  options.simplex.logging = false;
  options.mipGap = 0;
  MipSolve solve(model, options, control);
  solve.observer = &observer;
  return solve.run();
}

TEST(Observer, IsToldTheSameByEveryRun) {
  Random random(4);
  MipModel model = randomPacking(22, 7, random);
  for (double &cost : model.lp.cost) cost = -100 - random.below(20);
  for (const int threads : {1, 3}) {
    MipOptions options;
    options.threads = threads;
    Watcher first(model), second(model);
    const MipOutcome outcome = watched(model, options, first);
    watched(model, options, second);
    ASSERT_EQ(outcome.status, MipStatus::Optimal);
    ASSERT_EQ(first.events.size(), second.events.size());
    for (std::size_t k = 0; k < first.events.size(); ++k)
      ASSERT_TRUE(first.events[k] == second.events[k]) << k;
    double solutions = 0, nodes = 0, best = kUserInf;
    for (const Event &event : first.events) {
      nodes += event.kind == 'n';
      if (event.kind != 's') continue;
      ++solutions;
      best = event.number;
    }
    EXPECT_EQ(best, outcome.solutions.front().objective);
    EXPECT_GT(solutions, 0);
    EXPECT_GT(nodes, outcome.explored);  // and the rounds of the root
    EXPECT_GT(first.points, 0);
  }
}

// Refuses what has a one in the first column.
class Refuser : public MipObserver {
 public:
  bool mayRefuse() const override { return true; }
  bool onSolution(const MipProgress &, const Vec<double> &x, double) override {
    const bool refused = x[0] > 0.5;
    count += refused;
    return !refused;
  }
  int count = 0;
};

TEST(Observer, WhatItRefusesNeverCounts) {
  for (int seed = 1; seed <= 5; ++seed) {
    Random random(static_cast<std::uint64_t>(seed));
    MipModel model = randomPacking(9, 3, random);
    model.lp.cost[0] = -500;
    MipOptions options;
    options.presolve.level = 0;
    options.presolveMip = false;
    options.symmetry = 0;
    options.threads = seed % 2 == 0 ? 2 : 1;
    Refuser refuser;
    const MipOutcome outcome = watched(model, options, refuser);
    model.lp.colUpper[0] = 0;
    MipObserver nothing;
    const MipOutcome expected = watched(model, options, nothing);
    EXPECT_GT(refuser.count, 0);
    ASSERT_FALSE(outcome.solutions.empty());
    for (const MipSolution &solution : outcome.solutions) EXPECT_EQ(solution.x[0], 0);
    EXPECT_NEAR(outcome.solutions.front().objective, expected.solutions.front().objective, 1e-6);
    // A node that was left with a refused point is not known to hold nothing else.
    EXPECT_EQ(outcome.status, MipStatus::Suboptimal);
  }
}

}  // namespace
}  // namespace tarvik::test
