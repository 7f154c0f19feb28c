// User callbacks through the C interface: registration, messages, progress of linear solves,
// abortion, and what a callback may do to the model that is being solved.
#include <gtest/gtest.h>

#include <vector>

#include "support/callback_fixture.h"

namespace {

struct Seen : tarvik::test::SeenMessages {
  std::vector<int> wheres;  // of every invocation
  int messagesWithoutModel = 0;
  std::vector<int> codes;  // of calls made inside the simplex callback
  double iterations = -1, seconds = -1;
};

int watch(TVKmodel *model, void *cbdata, int where, void *usrdata) {
  Seen &seen = *static_cast<Seen *>(usrdata);
  seen.wheres.push_back(where);
  if (where == TVK_CB_MESSAGE) {
    seen.take(cbdata);
    if (!model) ++seen.messagesWithoutModel;
  }
  if (where == TVK_CB_SIMPLEX && seen.codes.empty()) {
    double number = 0;
    int count = 0;
    EXPECT_EQ(TVKcbget(cbdata, where, TVK_CB_SPX_ITERCOUNT, &seen.iterations), 0);
    EXPECT_EQ(TVKcbget(cbdata, where, TVK_CB_RUNTIME, &seen.seconds), 0);
    EXPECT_EQ(TVKcbget(cbdata, where, TVK_CB_MSG_STRING, &number), TVK_ERROR_CALLBACK);
    EXPECT_EQ(TVKcbget(cbdata, where, TVK_CB_MIP_BESTOBJ, &number), TVK_ERROR_CALLBACK);
    // Questions are answered, changes are refused.
    EXPECT_EQ(TVKgetintattr(model, "NumVars", &count), 0);
    EXPECT_EQ(count, 2);
    TVKenv *env = TVKgetenv(model);
    seen.codes = {TVKoptimize(model), TVKfreemodel(model), TVKreset(model, 0),
                  TVKaddvar(model, 0, nullptr, nullptr, 1, 0, 1, 'C', nullptr),
                  TVKsetdblattrelement(model, "UB", 0, 3)};
    EXPECT_EQ(TVKsetintparam(env, "Presolve", 1), TVK_ERROR_INVALID_ARGUMENT);
    EXPECT_STREQ(TVKgeterrormsg(env), "Parameter not settable in callback");
    EXPECT_EQ(TVKsetdblparam(env, "TimeLimit", 77), 0);
  }
  return seen.answer(where);
}

class CallbackTest : public tarvik::test::CallbackFixture<Seen> {
 protected:
  // max x + 2y, x + y <= 4, x - y >= -2, 0 <= x, y <= 3
  void buildModel() {
    const double obj[] = {1, 2}, ub[] = {3, 3};
    ASSERT_EQ(TVKnewmodel(env_, &model_, "m", 2, const_cast<double *>(obj), nullptr,
                          const_cast<double *>(ub), nullptr, nullptr),
              0);
    int ind[] = {0, 1};
    double sum[] = {1, 1}, difference[] = {1, -1};
    ASSERT_EQ(TVKaddconstr(model_, 2, ind, sum, TVK_LESS_EQUAL, 4, nullptr), 0);
    ASSERT_EQ(TVKaddconstr(model_, 2, ind, difference, TVK_GREATER_EQUAL, -2, nullptr), 0);
    ASSERT_EQ(TVKsetintattr(model_, "ModelSense", -1), 0);
  }
  int optimize() { return TVKoptimize(model_); }
};

TEST_F(CallbackTest, RegistrationIsRememberedAndInherited) {
  TVKcallback callback = nullptr;
  EXPECT_EQ(TVKgetcallbackfuncenv(env_, &callback), 0);
  EXPECT_EQ(callback, nullptr);
  EXPECT_EQ(TVKgetcallbackfuncenv(env_, nullptr), TVK_ERROR_NULL_ARGUMENT);
  EXPECT_STREQ(TVKgeterrormsg(env_), "Unable to query callback function");
  ASSERT_EQ(TVKsetcallbackfuncenv(env_, watch, &seen_), 0);
  buildModel();
  EXPECT_EQ(TVKgetcallbackfunc(model_, &callback), 0);
  EXPECT_EQ(callback, &watch);
  ASSERT_EQ(TVKsetcallbackfunc(model_, nullptr, nullptr), 0);
  seen_ = Seen();
  EXPECT_EQ(optimize(), 0);
  EXPECT_TRUE(seen_.wheres.empty());
  EXPECT_EQ(TVKgetcallbackfuncenv(env_, &callback), 0);
  EXPECT_EQ(callback, &watch);
  EXPECT_NE(TVKsetcallbackfunc(nullptr, watch, &seen_), 0);
}

TEST_F(CallbackTest, GetsEveryLineOfTheLogAlsoWithoutOutput) {
  TVKmsg(env_, "before\n");
  ASSERT_EQ(TVKsetcallbackfuncenv(env_, watch, &seen_), 0);
  TVKmsg(env_, "one\ntwo\n");
  EXPECT_EQ(seen_.text, "one\ntwo\n");
  EXPECT_EQ(seen_.messagesWithoutModel, 2);
  ASSERT_EQ(TVKsetintparam(env_, "OutputFlag", 0), 0);
  seen_ = Seen();
  buildModel();
  EXPECT_EQ(optimize(), 0);
  EXPECT_NE(seen_.text.find("Optimal objective"), std::string::npos) << seen_.text;
  EXPECT_NE(seen_.text.find("User-callback calls "), std::string::npos);
}

TEST_F(CallbackTest, LinearSolvesReportProgressAndRefuseChanges) {
  buildModel();
  ASSERT_EQ(TVKsetcallbackfunc(model_, watch, &seen_), 0);
  ASSERT_EQ(TVKsetintparam(TVKgetenv(model_), "Presolve", 0), 0);
  EXPECT_EQ(optimize(), 0) << TVKgeterrormsg(TVKgetenv(model_));
  EXPECT_EQ(intAttr("Status"), TVK_OPTIMAL);
  ASSERT_EQ(seen_.codes.size(), 5u);
  for (const int code : seen_.codes) EXPECT_EQ(code, TVK_ERROR_OPTIMIZATION_IN_PROGRESS);
  EXPECT_GE(seen_.iterations, 0);
  EXPECT_GE(seen_.seconds, 0);
  double limit = 0;
  EXPECT_EQ(TVKgetdblparam(TVKgetenv(model_), "TimeLimit", &limit), 0);
  EXPECT_EQ(limit, 77);
}

TEST_F(CallbackTest, AnAnswerAbortsTheSolveAndBecomesItsCode) {
  buildModel();
  ASSERT_EQ(TVKsetintparam(TVKgetenv(model_), "Presolve", 0), 0);
  for (const int where : {TVK_CB_SIMPLEX, TVK_CB_MESSAGE}) {
    seen_ = Seen();
    seen_.abortAt = where;
    ASSERT_EQ(TVKsetcallbackfunc(model_, watch, &seen_), 0);
    EXPECT_EQ(optimize(), 4711);
    EXPECT_EQ(intAttr("Status"), TVK_INTERRUPTED) << where;
    EXPECT_EQ(TVKreset(model_, 0), 0);
  }
  ASSERT_EQ(TVKsetcallbackfunc(model_, nullptr, nullptr), 0);
  EXPECT_EQ(optimize(), 0);
  EXPECT_EQ(intAttr("Status"), TVK_OPTIMAL);
}

TEST_F(CallbackTest, CodesHaveTypes) {
  int type = 0, size = -1;
  EXPECT_EQ(TVKgetcbwhatinfo(nullptr, TVK_CB_MIPNODE_SOL, &type, &size), 0);
  EXPECT_EQ(type, 2);
  EXPECT_EQ(size, 1);
  EXPECT_EQ(TVKgetcbwhatinfo(nullptr, TVK_CB_MSG_STRING, &type, &size), 0);
  EXPECT_EQ(type, 3);
  EXPECT_EQ(size, 0);
  EXPECT_EQ(TVKgetcbwhatinfo(nullptr, 4711, &type, &size), TVK_ERROR_CALLBACK);
  double value = 0;
  int notContext = 5;
  EXPECT_EQ(TVKcbget(nullptr, 1, TVK_CB_RUNTIME, &value), TVK_ERROR_CALLBACK);
  EXPECT_EQ(TVKcbget(&notContext, 1, TVK_CB_RUNTIME, &value), TVK_ERROR_CALLBACK);
}

TEST_F(CallbackTest, SeesTheStartOfALoadedEnvironment) {
  TVKenv *env = nullptr;
  ASSERT_EQ(TVKloadenvadv(&env, nullptr, 0, TVK_VERSION_MAJOR, TVK_VERSION_MINOR,
                          TVK_VERSION_TECHNICAL, nullptr, nullptr, nullptr, nullptr, 0, -1, nullptr,
                          nullptr, watch, &seen_, nullptr, nullptr),
            0);
  seen_ = Seen();
  TVKmsg(env, "later\n");
  EXPECT_EQ(seen_.text, "");  // only the start has the callback
  EXPECT_EQ(TVKfreeenv(env), 0);
}

}  // namespace
