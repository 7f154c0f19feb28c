#include "fuzz_files.h"

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

namespace tarvik::fuzz {

void require(bool condition, const char *what, std::string_view first, std::string_view second) {
  if (condition) return;
  std::cerr << what << '\n' << first << "\n----\n" << second << std::endl;
  std::abort();
}

namespace {

int dropLog(const char *, void *) { return 0; }

int intAttribute(TVKmodel *model, const char *name) {
  int value = 0;
  require(TVKgetintattr(model, name, &value) == 0, "an attribute is not available", name);
  return value;
}

constexpr std::string_view kSample = R"(Minimize
 x0 + x1 + x2 + x3 + x4 + x5 + x6 + x7
Subject To
 r0: x0 + x1 + x2 >= 1
 r1: x3 - x4 + x7 <= 4
 q0: x0 + [ x1 ^2 ] <= 9
Bounds
 x6 <= 8
 x7 <= 9
Binaries
 x2 x3
Generals
 x4 x5
Semi-continuous
 x6 x7
SOS
 s0: S1 :: x0:1 x1:2
General Constraints
 g0: x0 = MAX ( x1 , x2 )
End
)";

}  // namespace

Session &Session::get() {
  static Session session;
  return session;
}

Session::Session() {
  std::string pattern = (std::filesystem::temp_directory_path() / "tarvik_fuzzXXXXXX").string();
  require(mkdtemp(pattern.data()) != nullptr, "no folder for files", pattern);
  folder_ = pattern;
  require(TVKemptyenv(&env_) == 0, "no environment");
  TVKsetintparam(env_, "LogToConsole", 0);
  TVKsetlogcallbackfuncenv(env_, dropLog, nullptr);
  require(TVKstartenv(env_) == 0, "the environment does not start");
}

Session::~Session() {
  TVKfreeenv(env_);
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

std::string Session::put(const std::string &name, std::string_view bytes) const {
  std::ofstream(path(name), std::ios::binary) << bytes;
  return path(name);
}

std::string Session::contents(const std::string &name) const {
  std::ifstream file(path(name), std::ios::binary);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

TVKmodel *Session::read(const std::string &name, std::string_view bytes) const {
  TVKmodel *model = nullptr;
  const int code = TVKreadmodel(env_, put(name, bytes).c_str(), &model);
  require((code == 0) == (model != nullptr), "a code and a model contradict each other", bytes);
  require(code == 0 || *TVKgeterrormsg(env_) != '\0', "an error without a message", bytes);
  return model;
}

std::string Session::written(TVKmodel *model, const std::string &name) const {
  const int code = TVKwrite(model, path(name).c_str());
  require(code == 0, "a model is not written", name, TVKgeterrormsg(TVKgetenv(model)));
  return contents(name);
}

void Session::requireStable(TVKmodel *model, const std::string &name, bool exact) const {
  // MPS files hold scenarios or several objectives, but not both.
  if (exact && intAttribute(model, "NumObj") > 1 && intAttribute(model, "NumScenarios") > 0) return;
  const std::string first = written(model, name);
  // Unnamed general constraints get names when others of them have some; lazy rows move behind
  // the others.
  const bool atOnce = exact && intAttribute(model, "NumGenConstrs") == 0 &&
                      first.find("\nLAZYCONS") == std::string::npos &&
                      first.find("\nUSERCUTS") == std::string::npos;
  TVKmodel *once = read(name, first);
  require(once != nullptr, TVKgeterrormsg(env_), first);
  const std::string second = written(once, name);
  TVKfreemodel(once);
  if (atOnce) {
    require(first == second, "a model changes on its way through a file", first, second);
    return;
  }
  TVKmodel *twice = read(name, second);
  require(twice != nullptr, TVKgeterrormsg(env_), first, second);
  const std::string third = written(twice, name);
  TVKfreemodel(twice);
  require(second == third, "a text changes when it is read and written", second, third);
}

TVKmodel *sampleModel() {
  TVKmodel *model = Session::get().read("sample.lp", kSample);
  require(model != nullptr, "the sample model is not read");
  return model;
}

}  // namespace tarvik::fuzz
