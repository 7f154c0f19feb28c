// Tiny models through the C interface: an environment that keeps its log in a string, models
// given as rows of numbers, and attribute reads that fail the test when they fail.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tarvik.h"

namespace tiny {

// An environment whose log lines are collected.
class LoggedEnv {
 public:
  LoggedEnv();
  ~LoggedEnv();
  LoggedEnv(const LoggedEnv &) = delete;
  LoggedEnv &operator=(const LoggedEnv &) = delete;

  TVKenv *get() const { return env_; }
  std::string &log() { return log_; }
  bool logged(const std::string &text) const { return log_.find(text) != std::string::npos; }

 private:
  TVKenv *env_ = nullptr;
  std::string log_;
};

struct Row {
  std::vector<double> coef;
  char sense;
  double rhs;
};

// minimize (or maximize) obj'x + constant over the rows and bounds lb <= x <= ub; empty bounds
// are the defaults 0 and infinity.
struct Spec {
  std::vector<double> obj;
  std::vector<Row> rows;
  std::vector<double> lb, ub;
  int sense = TVK_MINIMIZE;
  double constant = 0;
};

class TinyModel {
 public:
  TinyModel(LoggedEnv &env, const Spec &spec);
  ~TinyModel() { TVKfreemodel(model_); }
  TinyModel(const TinyModel &) = delete;
  TinyModel &operator=(const TinyModel &) = delete;

  TVKmodel *get() const { return model_; }
  void set(const char *param, int value);
  void set(const char *param, double value);
  void set(const char *param, const char *value);
  // Optimizes and returns the status.
  int solve();
  int intAttr(const char *name) const;
  double dblAttr(const char *name) const;
  std::vector<double> dblArray(const char *name, int length) const;
  std::vector<int> intArray(const char *name, int length) const;
  bool has(const char *attribute) const { return TVKisattravailable(model_, attribute) == 1; }

 private:
  TVKmodel *model_ = nullptr;
};

}  // namespace tiny
