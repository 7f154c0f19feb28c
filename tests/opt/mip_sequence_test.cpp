// Random sequences of solves of one model under changing limits, cutoffs, threads, pools and
// starts: whatever is kept from one solve to the next, every answer is true.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>
#include <string>

#include "tiny_model.h"

using namespace tiny;

namespace {

constexpr double kNone = 1e100;

class Sequence {
 public:
  Sequence(LoggedEnv &env, unsigned seed)
      : random_(seed), sense_(below(2) == 0 ? TVK_MINIMIZE : TVK_MAXIMIZE), model_(env, spec()) {
    makeIntegral(model_);
    optimum_ = solvedOnce();
    if (below(2) == 0) model_.set("Heuristics", 0.0);
    for (const char *off : {"Presolve", "Cuts"})
      if (below(2) == 0) model_.set(off, 0);
  }

  void step(bool last) {
    static constexpr double kNodes[] = {0, 1, 2, 5, 20, kNone};
    change("Threads", 1 + below(2));
    change("NodeLimit", last ? kNone : kNodes[below(6)]);
    change("IterationLimit", last || below(4) > 0 ? kNone : below(30));
    if (below(3) == 0) change("PoolSearchMode", below(3));
    if (below(3) == 0) change("PoolSolutions", 1 + below(6));
    if (below(2) == 0) changeCutoff();
    if (below(4) == 0) {
      ASSERT_EQ(TVKreset(model_.get(), below(2)), 0);
      trace_ += " reset";
    }
    if (below(3) == 0) giveStart();
    check(model_.solve(), last);
  }

  const std::string &trace() const { return trace_; }

 private:
  int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }

  // Knapsacks that take some nodes.
  Spec spec() {
    Spec spec;
    spec.sense = sense_;
    const int cols = 8 + below(8), rows = 2 + below(2);
    for (int j = 0; j < cols; ++j) {
      spec.obj.push_back(-sense_ * (5 + below(40)));
      spec.ub.push_back(1 + below(3));
    }
    spec.lb.assign(cols, 0);
    for (int i = 0; i < rows; ++i) {
      Row row{{}, '<', 0};
      for (int j = 0; j < cols; ++j) row.rhs += row.coef.emplace_back(5 + below(40));
      row.rhs = std::floor(0.6 * row.rhs);
      spec.rows.push_back(row);
    }
    return spec;
  }

  static void makeIntegral(TinyModel &model) {
    const int cols = model.intAttr("NumVars");
    for (int j = 0; j < cols; ++j)
      ASSERT_EQ(TVKsetcharattrelement(model.get(), "VType", j, TVK_INTEGER), 0);
    model.set("MIPGap", 0.0);
    ASSERT_EQ(TVKupdatemodel(model.get()), 0);
  }

  double solvedOnce() {
    TVKmodel *copy = TVKcopymodel(model_.get());
    EXPECT_EQ(TVKoptimize(copy), 0);
    double value = 0;
    EXPECT_EQ(TVKgetdblattr(copy, "ObjVal", &value), 0);
    TVKfreemodel(copy);
    return value;
  }

  void change(const char *name, int value) {
    model_.set(name, value);
    trace_.append(" ").append(name).append("=").append(std::to_string(value));
  }
  void change(const char *name, double value) {
    model_.set(name, value);
    trace_.append(" ").append(name).append("=").append(std::to_string(value));
  }
  void changeCutoff() {
    cutoff_ = below(3) == 0 ? kNone : sense_ * (optimum_ * sense_ + below(60) - 10.5);
    change("Cutoff", cutoff_ == kNone ? sense_ * kNone : cutoff_);
  }
  void giveStart() {
    const int cols = model_.intAttr("NumVars");
    trace_ += " start";
    for (int j = 0; j < cols; ++j)
      ASSERT_EQ(
          TVKsetdblattrelement(model_.get(), "Start", j, below(6) == 0 ? TVK_UNDEFINED : below(2)),
          0);
  }

  // All in the sense of a minimization.
  void check(int status, bool last) {
    trace_.append(" -> ").append(std::to_string(status)).append(";");
    const double optimum = sense_ * optimum_, tolerance = 1e-4 * (1 + std::fabs(optimum));
    const double cutoff = cutoff_ == kNone ? kNone : sense_ * cutoff_;
    const int solutions = model_.intAttr("SolCount");
    const double value = solutions > 0 ? sense_ * model_.dblAttr("ObjVal") : kNone;
    const double bound = sense_ * model_.dblAttr("ObjBound");
    EXPECT_GE(value, optimum - tolerance);
    if (solutions > 0) {
      EXPECT_LE(value, cutoff + tolerance);
    }
    EXPECT_LE(bound, std::min(optimum, cutoff) + tolerance);
    if (status == TVK_OPTIMAL)
      EXPECT_NEAR(value, optimum, tolerance);
    else if (status == TVK_CUTOFF)
      EXPECT_GE(optimum, cutoff - tolerance);
    else
      EXPECT_TRUE(!last && (status == TVK_NODE_LIMIT || status == TVK_ITERATION_LIMIT));
  }

  std::mt19937 random_;
  int sense_;
  TinyModel model_;
  double optimum_ = 0, cutoff_ = kNone;
  std::string trace_;
};

TEST(MipSequence, EveryAnswerIsTrue) {
  const char *wanted = std::getenv("TARVIK_RANDOM_SEQUENCES");
  const unsigned count = wanted ? static_cast<unsigned>(std::atoi(wanted)) : 40;
  for (unsigned seed = 1; seed <= count && !testing::Test::HasFailure(); ++seed) {
    LoggedEnv env;
    Sequence sequence(env, seed);
    for (int step = 0; step < 4 && !testing::Test::HasFailure(); ++step) {
      sequence.step(step == 3);
      if (testing::Test::HasFailure()) ADD_FAILURE() << seed << ":" << sequence.trace();
    }
  }
}

}  // namespace
