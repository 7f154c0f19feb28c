// User callbacks of mixed-integer solves: where they are called, what they may ask for there, and
// how they end a solve.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/callback_fixture.h"

namespace {

constexpr int kItems = 24;

struct Seen : tarvik::test::SeenMessages {
  int count[10] = {};
  double bestSolution = -1;  // of the last one
  int counters = 0;
  int badPoints = 0, badOrder = 0;
  double nodes = 0;
  int target = 77;
  double share = -1;
  int terminateAt = -1;
};

double get(void *cbdata, int where, int what) {
  double value = -1;
  EXPECT_EQ(TVKcbget(cbdata, where, what, &value), 0) << what;
  return value;
}

int getInt(void *cbdata, int where, int what) {
  int value = -1;
  EXPECT_EQ(TVKcbget(cbdata, where, what, &value), 0) << what;
  return value;
}

double value(int j) { return 20 + (j * 37) % 23; }
double weight(int j) { return 15 + (j * 29) % 31; }

void lookAtSolution(void *cbdata, int where, Seen &seen) {
  std::vector<double> x(kItems, -1);
  EXPECT_EQ(TVKcbget(cbdata, where, TVK_CB_MIPSOL_SOL, x.data()), 0);
  double sum = 0;
  for (int j = 0; j < kItems; ++j) sum += value(j) * x[j];
  const double objective = get(cbdata, where, TVK_CB_MIPSOL_OBJ);
  EXPECT_NEAR(sum, objective, 1e-6);
  // Better than the best so far, which is the caller's infinity at first.
  EXPECT_GT(objective, get(cbdata, where, TVK_CB_MIPSOL_BESTOBJ));
  EXPECT_GE(get(cbdata, where, TVK_CB_MIPSOL_BESTBOUND), objective - 1e-6);
  EXPECT_EQ(getInt(cbdata, where, TVK_CB_MIPSOL_COUNTER), seen.counters++);
  EXPECT_GE(get(cbdata, where, TVK_CB_MIPSOL_NODECOUNT), 0);
  seen.bestSolution = objective;
}

void lookAtNode(void *cbdata, int where, Seen &seen) {
  std::vector<double> x(kItems, -1);
  const int status = getInt(cbdata, where, TVK_CB_MIPNODE_STATUS);
  const int code = TVKcbget(cbdata, where, TVK_CB_MIPNODE_SOL, x.data());
  EXPECT_EQ(code, status == TVK_OPTIMAL ? 0 : TVK_ERROR_CALLBACK);
  for (const double entry : x) seen.badPoints += code == 0 && (entry < -1e-6 || entry > 1 + 1e-6);
  EXPECT_GE(get(cbdata, where, TVK_CB_MIPNODE_BESTBOUND), seen.bestSolution - 1e-6);
}

int watch(TVKmodel *model, void *cbdata, int where, void *usrdata) {
  Seen &seen = *static_cast<Seen *>(usrdata);
  ++seen.count[where];
  if (where == seen.terminateAt) TVKterminate(model);
  double number = 0;
  switch (where) {
    case TVK_CB_MIP: {
      const double nodes = get(cbdata, where, TVK_CB_MIP_NODECOUNT);
      seen.badOrder += nodes < seen.nodes;
      seen.nodes = nodes;
      EXPECT_GE(get(cbdata, where, TVK_CB_MIP_PROGRESSTIME), 0);
      EXPECT_LE(getInt(cbdata, where, TVK_CB_MIP_PHASE), 2);
      EXPECT_EQ(TVKgetintparam(TVKgetenv(model), "TARV_PAR_NLTARGET", &seen.target), 0);
      EXPECT_EQ(TVKgetdblparam(TVKgetenv(model), "Heuristics", &seen.share), 0);
      EXPECT_EQ(getInt(cbdata, where, TVK_CB_MIP_OPENSCENARIOS), 0);
      EXPECT_EQ(TVKcbget(cbdata, where, TVK_CB_MIPSOL_OBJ, &number), TVK_ERROR_CALLBACK);
      break;
    }
    case TVK_CB_MIPSOL:
      lookAtSolution(cbdata, where, seen);
      EXPECT_EQ(TVKcbget(cbdata, where, TVK_CB_MIP_BESTOBJ, &number), TVK_ERROR_CALLBACK);
      break;
    case TVK_CB_MIPNODE:
      lookAtNode(cbdata, where, seen);
      break;
    case TVK_CB_MESSAGE:
      seen.take(cbdata);
      break;
    default:
      break;
  }
  return seen.answer(where);
}

class MipCallback : public tarvik::test::CallbackFixture<Seen> {
 protected:
  void SetUp() override {
    CallbackFixture::SetUp();
    std::vector<double> obj, ones(kItems, 1), weights;
    std::vector<char> types(kItems, TVK_BINARY);
    std::vector<int> all;
    for (int j = 0; j < kItems; ++j) {
      obj.push_back(value(j));
      weights.push_back(weight(j));
      all.push_back(j);
    }
    ASSERT_EQ(TVKnewmodel(env_, &model_, "m", kItems, obj.data(), nullptr, ones.data(),
                          types.data(), nullptr),
              0);
    for (const int k : {3, 5, 7}) {
      for (int j = 0; j < kItems; ++j) weights[j] = weight((j * k) % kItems);
      ASSERT_EQ(
          TVKaddconstr(model_, kItems, all.data(), weights.data(), TVK_LESS_EQUAL, 301, nullptr),
          0);
    }
    ASSERT_EQ(TVKsetintattr(model_, "ModelSense", TVK_MAXIMIZE), 0);
    ASSERT_EQ(TVKsetdblparam(TVKgetenv(model_), "MIPGap", 0), 0);
    ASSERT_EQ(TVKsetcallbackfunc(model_, watch, &seen_), 0);
  }
};

TEST_F(MipCallback, SeesProgressSolutionsAndNodes) {
  for (const int threads : {1, 2}) {
    seen_ = Seen();
    ASSERT_EQ(TVKreset(model_, 0), 0);
    ASSERT_EQ(TVKsetintparam(TVKgetenv(model_), "Threads", threads), 0);
    ASSERT_EQ(TVKoptimize(model_), 0) << TVKgeterrormsg(TVKgetenv(model_));
    ASSERT_EQ(intAttr("Status"), TVK_OPTIMAL);
    double objective = 0, nodes = 0;
    EXPECT_EQ(TVKgetdblattr(model_, "ObjVal", &objective), 0);
    EXPECT_EQ(TVKgetdblattr(model_, "NodeCount", &nodes), 0);
    EXPECT_NEAR(seen_.bestSolution, objective, 1e-6);
    EXPECT_EQ(seen_.nodes, nodes);
    EXPECT_EQ(seen_.badPoints + seen_.badOrder, 0);
    for (const int where : {TVK_CB_PRESOLVE, TVK_CB_SIMPLEX, TVK_CB_MIP, TVK_CB_MIPSOL,
                            TVK_CB_MIPNODE, TVK_CB_MESSAGE})
      EXPECT_GT(seen_.count[where], 0) << where;
  }
}

// The search turns this parameter off, and puts it back however it ends.
TEST_F(MipCallback, ParametersOfTheSearchAreRestored) {
  TVKenv *env = TVKgetenv(model_);
  ASSERT_EQ(TVKsetintparam(env, "TARV_PAR_NLTARGET", 1), 0);
  for (const int abortAt : {-1, TVK_CB_MIP, TVK_CB_MIPSOL}) {
    seen_ = Seen();
    seen_.abortAt = abortAt;
    ASSERT_EQ(TVKreset(model_, 0), 0);
    EXPECT_EQ(TVKoptimize(model_), abortAt < 0 ? 0 : 4711);
    EXPECT_EQ(seen_.target, -1);
    int target = 77;
    EXPECT_EQ(TVKgetintparam(env, "TARV_PAR_NLTARGET", &target), 0);
    EXPECT_EQ(target, 1);
  }
}

TEST_F(MipCallback, SeesWhatTheImproveStartChanges) {
  TVKenv *env = TVKgetenv(model_);
  ASSERT_EQ(TVKsetdblparam(env, "ImproveStartNodes", 0), 0);
  ASSERT_EQ(TVKoptimize(model_), 0);
  EXPECT_EQ(seen_.share, 0.5);
  double share = -1, nodes = -1;
  EXPECT_EQ(TVKgetdblparam(env, "Heuristics", &share), 0);
  EXPECT_EQ(TVKgetdblparam(env, "ImproveStartNodes", &nodes), 0);
  EXPECT_EQ(share, 0.05);
  EXPECT_EQ(nodes, 0);
}

TEST_F(MipCallback, HearsOnlySolutionsAndMessagesAfterTermination) {
  for (const int where : {TVK_CB_SIMPLEX, TVK_CB_MIP, TVK_CB_MIPNODE}) {
    seen_ = Seen();
    seen_.terminateAt = where;
    ASSERT_EQ(TVKreset(model_, 0), 0);
    EXPECT_EQ(TVKoptimize(model_), 0);
    EXPECT_EQ(intAttr("Status"), TVK_INTERRUPTED) << where;
    EXPECT_EQ(seen_.count[where], 1) << where;
    EXPECT_NE(seen_.text.find("Solve interrupted\n"), std::string::npos) << seen_.text;
  }
}

TEST_F(MipCallback, ItsAnswerEndsTheSearch) {
  for (const int where :
       {TVK_CB_PRESOLVE, TVK_CB_SIMPLEX, TVK_CB_MIP, TVK_CB_MIPSOL, TVK_CB_MIPNODE}) {
    seen_ = Seen();
    seen_.abortAt = where;
    log_.clear();
    ASSERT_EQ(TVKreset(model_, 0), 0);
    EXPECT_EQ(TVKoptimize(model_), 4711) << where;
    EXPECT_EQ(intAttr("Status"), TVK_INTERRUPTED) << where;
    EXPECT_EQ(seen_.count[where], 1) << where;
    EXPECT_NE(log_.find("Solve interrupted (error code 4711)\n"), std::string::npos) << log_;
    EXPECT_NE(seen_.text.find("Solve interrupted (error code 4711)\n"), std::string::npos);
  }
  // The next one knows nothing of it.
  seen_ = Seen();
  EXPECT_EQ(TVKoptimize(model_), 0);
  EXPECT_EQ(intAttr("Status"), TVK_OPTIMAL);
}

}  // namespace
