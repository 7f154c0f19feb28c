// A test with an environment whose log is kept, and a folder of its own for files.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "model/model.h"
#include "tarvik.h"

namespace tarvik {

class FileTest : public testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = testing::TempDir() + "tarvikXXXXXX";
    ASSERT_TRUE(mkdtemp(pattern.data()));
    folder_ = pattern;
    ASSERT_EQ(TVKemptyenv(&env_), 0);
    TVKsetintparam(env_, "LogToConsole", 0);
    TVKsetlogcallbackfuncenv(env_, keepLog, &log_);
    ASSERT_EQ(TVKstartenv(env_), 0);
  }
  void TearDown() override {
    for (TVKmodel *model : models_) TVKfreemodel(model);
    TVKfreeenv(env_);
    std::filesystem::remove_all(folder_);
  }

  std::string path(const std::string &name) const { return folder_ + "/" + name; }
  std::string write(const std::string &name, const std::string &text) const {
    std::ofstream(path(name), std::ios::binary) << text;
    return path(name);
  }
  static std::string contents(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
  }
  bool logged(const std::string &text) const { return log_.find(text) != std::string::npos; }

  // The code of reading a text as a file of that name; the model, if any, is kept.
  int tryRead(const std::string &name, const std::string &text) {
    log_.clear();
    TVKmodel *model = nullptr;
    const int code = TVKreadmodel(env_, write(name, text).c_str(), &model);
    EXPECT_EQ(model != nullptr, code == 0);
    if (model) models_.push_back(model);
    return code;
  }
  TVKmodel *read(const std::string &name, const std::string &text) {
    EXPECT_EQ(tryRead(name, text), 0) << message() << log_;
    return models_.empty() ? nullptr : models_.back();
  }
  TVKmodel *readFile(const std::string &file) {
    TVKmodel *model = nullptr;
    EXPECT_EQ(TVKreadmodel(env_, file.c_str(), &model), 0) << message() << log_;
    if (model) models_.push_back(model);
    return model;
  }
  std::string written(TVKmodel *model, const std::string &name) {
    EXPECT_EQ(TVKwrite(model, path(name).c_str()), 0) << TVKgeterrormsg(model->envHandle());
    return contents(path(name));
  }
  std::string message() const { return TVKgeterrormsg(env_); }

  static double attr(TVKmodel *model, const char *name, int k) {
    double value = 0;
    EXPECT_EQ(TVKgetdblattrelement(model, name, k, &value), 0) << name;
    return value;
  }

  TVKenv *env_ = nullptr;
  std::string folder_, log_;
  std::vector<TVKmodel *> models_;

 private:
  static int keepLog(const char *text, void *log) {
    *static_cast<std::string *>(log) += text;
    return 0;
  }
};

}  // namespace tarvik
