#include "opt/tiny_model.h"

namespace tiny {

namespace {

int collect(const char *line, void *log) {
  *static_cast<std::string *>(log) += line;
  return 0;
}

}  // namespace

LoggedEnv::LoggedEnv() {
  EXPECT_EQ(TVKemptyenv(&env_), 0);
  EXPECT_EQ(TVKsetintparam(env_, "LogToConsole", 0), 0);
  EXPECT_EQ(TVKstartenv(env_), 0) << TVKgeterrormsg(env_);
  EXPECT_EQ(TVKsetlogcallbackfuncenv(env_, collect, &log_), 0);
}

LoggedEnv::~LoggedEnv() { TVKfreeenv(env_); }

TinyModel::TinyModel(LoggedEnv &env, const Spec &spec) {
  const int n = static_cast<int>(spec.obj.size());
  EXPECT_EQ(TVKnewmodel(env.get(), &model_, "tiny", n, spec.obj.data(),
                        spec.lb.empty() ? nullptr : spec.lb.data(),
                        spec.ub.empty() ? nullptr : spec.ub.data(), nullptr, nullptr),
            0)
      << TVKgeterrormsg(env.get());
  std::vector<int> index(n);
  for (int j = 0; j < n; ++j) index[j] = j;
  for (const Row &row : spec.rows)
    EXPECT_EQ(TVKaddconstr(model_, n, index.data(), row.coef.data(), row.sense, row.rhs, nullptr),
              0);
  EXPECT_EQ(TVKsetintattr(model_, "ModelSense", spec.sense), 0);
  EXPECT_EQ(TVKsetdblattr(model_, "ObjCon", spec.constant), 0);
}

void TinyModel::set(const char *param, int value) {
  EXPECT_EQ(TVKsetintparam(TVKgetenv(model_), param, value), 0) << param;
}

void TinyModel::set(const char *param, double value) {
  EXPECT_EQ(TVKsetdblparam(TVKgetenv(model_), param, value), 0) << param;
}

void TinyModel::set(const char *param, const char *value) {
  EXPECT_EQ(TVKsetstrparam(TVKgetenv(model_), param, value), 0) << param;
}

int TinyModel::solve() {
  EXPECT_EQ(TVKoptimize(model_), 0) << TVKgetmerrormsg(model_);
  return intAttr("Status");
}

int TinyModel::intAttr(const char *name) const {
  int value = -12345;
  EXPECT_EQ(TVKgetintattr(model_, name, &value), 0) << name << ": " << TVKgetmerrormsg(model_);
  return value;
}

double TinyModel::dblAttr(const char *name) const {
  double value = -12345;
  EXPECT_EQ(TVKgetdblattr(model_, name, &value), 0) << name << ": " << TVKgetmerrormsg(model_);
  return value;
}

std::vector<double> TinyModel::dblArray(const char *name, int length) const {
  std::vector<double> values(length, -12345);
  EXPECT_EQ(TVKgetdblattrarray(model_, name, 0, length, values.data()), 0)
      << name << ": " << TVKgetmerrormsg(model_);
  return values;
}

std::vector<int> TinyModel::intArray(const char *name, int length) const {
  std::vector<int> values(length, -12345);
  EXPECT_EQ(TVKgetintattrarray(model_, name, 0, length, values.data()), 0)
      << name << ": " << TVKgetmerrormsg(model_);
  return values;
}

}  // namespace tiny
