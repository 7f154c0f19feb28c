// A small program on the interface: it builds models of every kind of element, edits them, reads
// attributes and frees everything. Each step returns its code; the program stops at the first
// that fails, and its handles stay for the test to look at.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tarvik.h"

namespace tarvik_test {

class SmallProgram {
 public:
  // Files that it writes begin with the prefix, a short one.
  SmallProgram(TVKenv *env, const char *prefix)
      : env_(env), firstFile_(prefix), secondFile_(prefix) {
    firstFile_ += "first.mps";
    secondFile_ += "second.mps";
  }
  ~SmallProgram() { freeAll(); }
  SmallProgram(const SmallProgram &) = delete;
  SmallProgram &operator=(const SmallProgram &) = delete;

  int run() {
    for (const auto step :
         {&SmallProgram::build, &SmallProgram::extend, &SmallProgram::read, &SmallProgram::change,
          &SmallProgram::solve, &SmallProgram::solveAgain, &SmallProgram::useFiles})
      if (const int code = (this->*step)()) return code;
    return 0;
  }
  void freeAll() {
    EXPECT_EQ(TVKfreemodel(model_), 0);
    EXPECT_EQ(TVKfreemodel(second_), 0);
    model_ = second_ = nullptr;
  }
  TVKmodel *model() const { return model_; }
  TVKmodel *second() const { return second_; }

 private:
  static constexpr int kVars = 6;

  int build() {
    const double obj[kVars] = {1, 2, 3, 1, 1, 0}, ub[kVars] = {4, 4, 4, 4, 4, 1e100};
    const char *names[kVars] = {"a", "b", "c", "d", "a variable with a rather long name", nullptr};
    if (const int code =
            TVKnewmodel(env_, &model_, "small", kVars, obj, nullptr, ub, nullptr, names))
      return code;
    const int begin[2] = {0, 3}, ind[6] = {0, 1, 2, 2, 3, 4};
    const double val[6] = {1, 1, 1, 1, -1, 2}, rhs[2] = {2, 6};
    const char sense[2] = {TVK_GREATER_EQUAL, TVK_LESS_EQUAL};
    if (const int code = TVKaddconstrs(model_, 2, 6, begin, ind, val, sense, rhs, nullptr))
      return code;
    if (const int code = TVKaddrangeconstr(model_, 3, ind, val, 1, 5, "range")) return code;
    return TVKupdatemodel(model_);
  }
  int extend() {
    if (const int code = TVKnewmodel(env_, &second_, "second", kVars, nullptr, nullptr, nullptr,
                                     "CCCBIC", nullptr))
      return code;
    const int row[2] = {0, 1}, col[2] = {0, 2}, types[1] = {1}, begin[1] = {0}, ind[2] = {3, 4};
    const double val[2] = {1, 2};
    if (const int code = TVKaddqpterms(second_, 2, row, col, val)) return code;
    if (const int code = TVKaddsos(second_, 1, 2, types, begin, ind, val)) return code;
    if (const int code =
            TVKaddqconstr(second_, 2, ind, val, 2, row, row, val, TVK_LESS_EQUAL, 10, "q"))
      return code;
    if (const int code = TVKaddgenconstrMax(second_, "m", 5, 2, ind, -1e100)) return code;
    return TVKupdatemodel(second_);
  }
  int read() {
    int count = 0;
    if (const int code = TVKgetvarbyname(model_, "d", &count)) return code;
    char *name = nullptr;
    if (const int code = TVKgetstrattrelement(model_, "ConstrName", 0, &name)) return code;
    double values[kVars];
    if (const int code = TVKgetdblattrarray(model_, "UB", 0, kVars, values)) return code;
    return TVKgetintattr(second_, "NumGenConstrs", &count);
  }
  int change() {
    TVKenv *own = TVKgetenv(model_);
    if (const int code = TVKsetstrparam(own, "NodefileDir", "own")) return code;
    TVKenv *child = TVKgetconcurrentenv(model_, 1);
    if (!child) return TVK_ERROR_OUT_OF_MEMORY;
    if (const int code = TVKsetdblattrelement(model_, "Obj", 0, 5)) return code;
    const int gone[1] = {4};
    if (const int code = TVKdelvars(model_, 1, gone)) return code;
    return TVKupdatemodel(model_);
  }
  int solve() {
    if (const int code = TVKoptimize(model_)) return code;
    int status = 0;
    if (const int code = TVKgetintattr(model_, "Status", &status)) return code;
    EXPECT_EQ(status, TVK_OPTIMAL);
    double objective = 0;
    if (const int code = TVKgetdblattr(model_, "ObjVal", &objective)) return code;
    EXPECT_NEAR(objective, 4, 1e-9);  // b = 2
    return 0;
  }
  // The same without presolve, so that the simplex method has to work.
  int solveAgain() {
    if (const int code = TVKresetmodel(model_)) return code;
    TVKsetintparam(TVKgetenv(model_), "Presolve", 0);
    return solve();
  }
  int useFiles() {
    if (const int code = TVKwrite(model_, firstFile_.c_str())) return code;
    if (const int code = TVKwrite(second_, secondFile_.c_str())) return code;
    TVKfreemodel(second_);
    return TVKreadmodel(env_, secondFile_.c_str(), &second_);
  }

  TVKenv *env_;
  std::string firstFile_, secondFile_;
  TVKmodel *model_ = nullptr, *second_ = nullptr;
};

}  // namespace tarvik_test
