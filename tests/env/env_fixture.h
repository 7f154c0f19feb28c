// Environments for tests: a log callback that collects what is printed, nothing on the console,
// and a directory of its own for files.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "tarvik.h"

namespace tarvik_test {

inline int collectLog(const char *msg, void *data) {
  static_cast<std::string *>(data)->append(msg);
  return 0;
}

inline std::string readFile(const std::filesystem::path &path) {
  std::ifstream file(path);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

// Runs in a fresh current directory, which goes away with the test.
class EnvTest : public ::testing::Test {
 protected:
  void SetUp() override {
    previous_ = std::filesystem::current_path();
    std::string pattern = (std::filesystem::temp_directory_path() / "tarvik_env_XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    directory_ = pattern;
    std::filesystem::current_path(directory_);
  }
  void TearDown() override {
    EXPECT_EQ(TVKfreeenv(env_), 0);
    std::filesystem::current_path(previous_);
    std::filesystem::remove_all(directory_);
  }

  // A created environment whose log goes to log_ only.
  void create() {
    ASSERT_EQ(TVKemptyenv(&env_), 0);
    ASSERT_EQ(TVKsetlogcallbackfuncenv(env_, collectLog, &log_), 0);
    ASSERT_EQ(TVKsetintparam(env_, "LogToConsole", 0), 0);
  }
  // A started one; the log of the start is dropped.
  void start() {
    create();
    ASSERT_EQ(TVKstartenv(env_), 0) << TVKgeterrormsg(env_);
    log_.clear();
  }
  std::string message() const { return TVKgeterrormsg(env_); }
  std::string takeLog() {
    std::string text;
    text.swap(log_);
    return text;
  }
  int intParam(const char *name) const {
    int value = -987654;
    EXPECT_EQ(TVKgetintparam(env_, name, &value), 0) << name;
    return value;
  }
  double dblParam(const char *name) const {
    double value = -987654;
    EXPECT_EQ(TVKgetdblparam(env_, name, &value), 0) << name;
    return value;
  }
  std::string strParam(const char *name) const {
    char value[512] = "?";
    EXPECT_EQ(TVKgetstrparam(env_, name, value), 0) << name;
    return value;
  }
  unsigned flagsOf(const char *name) const {
    unsigned flags = 0;
    EXPECT_EQ(TVKgetparamflags(env_, name, &flags), 0) << name;
    return flags;
  }
  static void write(const char *name, const std::string &text) { std::ofstream(name) << text; }

  TVKenv *env_ = nullptr;
  std::string log_;

 private:
  std::filesystem::path previous_, directory_;
};

// Sets an environment variable for the life of the scope.
class VariableScope {
 public:
  VariableScope(const char *name, const char *value) : name_(name) { setenv(name, value, 1); }
  ~VariableScope() { unsetenv(name_); }
  VariableScope(const VariableScope &) = delete;
  VariableScope &operator=(const VariableScope &) = delete;

 private:
  const char *name_;
};

}  // namespace tarvik_test
