// An environment that logs to a string and a model in it whose callback is being tested. What the
// callback notes is `Seen`, with the texts of the messages and the place where to answer 4711.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tarvik.h"

namespace tarvik::test {

struct SeenMessages {
  std::string text;
  int abortAt = -1;

  void take(void *cbdata) {
    char *line = nullptr;
    EXPECT_EQ(TVKcbget(cbdata, TVK_CB_MESSAGE, TVK_CB_MSG_STRING, &line), 0);
    text += line;
  }
  int answer(int where) const { return where == abortAt ? 4711 : 0; }
};

template <class Seen>
class CallbackFixture : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(TVKemptyenv(&env_), 0);
    ASSERT_EQ(TVKsetintparam(env_, "LogToConsole", 0), 0);
    ASSERT_EQ(TVKsetlogcallbackfuncenv(env_, collect, &log_), 0);
    ASSERT_EQ(TVKstartenv(env_), 0);
  }
  void TearDown() override {
    EXPECT_EQ(TVKfreemodel(model_), 0);
    EXPECT_EQ(TVKfreeenv(env_), 0);
  }
  static int collect(const char *line, void *log) {
    *static_cast<std::string *>(log) += line;
    return 0;
  }
  int intAttr(const char *name) const {
    int value = -1;
    EXPECT_EQ(TVKgetintattr(model_, name, &value), 0) << name;
    return value;
  }

  TVKenv *env_ = nullptr;
  TVKmodel *model_ = nullptr;
  Seen seen_;
  std::string log_;
};

}  // namespace tarvik::test
