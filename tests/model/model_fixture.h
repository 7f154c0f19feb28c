// A silent environment and a model in it, for tests through the C interface.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tarvik.h"

class ModelTest : public ::testing::Test {
 protected:
  virtual int makeEnv() { return TVKemptyenv(&env); }
  void SetUp() override {
    ASSERT_EQ(makeEnv(), 0);
    ASSERT_EQ(TVKsetintparam(env, "LogToConsole", 0), 0);
    ASSERT_EQ(TVKstartenv(env), 0);
    ASSERT_EQ(TVKnewmodel(env, &model, "test", 0, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
    ASSERT_EQ(TVKsetlogcallbackfunc(model, collect, &log), 0);
    ASSERT_EQ(TVKsetlogcallbackfuncenv(env, collect, &log), 0);
  }
  void TearDown() override {
    EXPECT_EQ(TVKfreemodel(model), 0);
    TVKfreeenv(env);
  }
  static int collect(const char *text, void *target) {
    static_cast<std::string *>(target)->append(text);
    return 0;
  }

  TVKenv *modelEnv() const { return TVKgetenv(model); }
  std::string error() const { return TVKgetmerrormsg(model); }
  bool logged(const std::string &text) const { return log.find(text) != std::string::npos; }
  int count(const char *name) const {
    int value = -77;
    EXPECT_EQ(TVKgetintattr(model, name, &value), 0) << name << ": " << error();
    return value;
  }
  double scalar(const char *name) const {
    double value = -77;
    EXPECT_EQ(TVKgetdblattr(model, name, &value), 0) << name << ": " << error();
    return value;
  }
  std::vector<double> doubles(const char *name, int n) const {
    std::vector<double> values(n, -77);
    EXPECT_EQ(TVKgetdblattrarray(model, name, 0, n, values.data()), 0) << name << ": " << error();
    return values;
  }
  std::vector<int> ints(const char *name, int n) const {
    std::vector<int> values(n, -77);
    EXPECT_EQ(TVKgetintattrarray(model, name, 0, n, values.data()), 0) << name << ": " << error();
    return values;
  }
  std::string chars(const char *name, int n) const {
    std::string values(n, '?');
    EXPECT_EQ(TVKgetcharattrarray(model, name, 0, n, values.data()), 0) << name << ": " << error();
    return values;
  }
  std::vector<std::string> texts(const char *name, int n) const {
    std::vector<char *> values(n);
    EXPECT_EQ(TVKgetstrattrarray(model, name, 0, n, values.data()), 0) << name << ": " << error();
    return {values.begin(), values.end()};
  }
  void update() const { ASSERT_EQ(TVKupdatemodel(model), 0) << error(); }
  // Adds n continuous variables without coefficients and without names.
  void addVars(int n) const {
    ASSERT_EQ(TVKaddvars(model, n, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                         nullptr),
              0);
  }
  void addVar(double obj, double lb, double ub, char type, const char *name = nullptr) const {
    ASSERT_EQ(TVKaddvar(model, 0, nullptr, nullptr, obj, lb, ub, type, name), 0) << error();
  }

  TVKenv *env = nullptr;
  TVKmodel *model = nullptr;
  std::string log;
};
