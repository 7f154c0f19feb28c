// Random small models with every kind of data that files hold, built through the C interface:
// odd names, numbers of all magnitudes, every variable type and bound, quadratic parts, SOS, all
// general constraints with options, and either piecewise-linear objectives and scenarios or
// several objectives.
#pragma once

#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "model/model.h"
#include "tarvik.h"

namespace tarvik {

class RandomModel {
 public:
  RandomModel(TVKenv *env, unsigned seed, bool cones) : random_(seed), cones_(cones) {
    check(
        TVKnewmodel(env, &model_, "random model", 0, nullptr, nullptr, nullptr, nullptr, nullptr));
    build();
    check(TVKupdatemodel(model_));
  }
  // The model, which the caller frees, and how many of the calls that built it failed.
  TVKmodel *model() const { return model_; }
  int failures() const { return failures_; }

 private:
  int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
  bool chance(int percent) { return below(100) < percent; }
  void check(int code) { failures_ += code != 0; }

  // Anything from a small integer to a number of 53 random bits and extreme magnitude.
  double number() {
    switch (below(6)) {
      case 0:
      case 1:
        return below(19) - 9;
      case 2:
        return (below(2001) - 1000) / 100.0;
      case 3:
        return 1.0 / (1 + below(50)) * (chance(50) ? 1 : -1);
      case 4:
        return chance(50) ? 2147483648.0 + below(5) : -1999999999.0 + below(5);
      default: {
        const double mantissa = 1 + std::ldexp(static_cast<double>(random_()), -32) +
                                std::ldexp(static_cast<double>(random_() >> 12), -52);
        return std::ldexp(chance(50) ? mantissa : -mantissa, below(100) - 40);
      }
    }
  }
  double nonzero() {
    const double value = number();
    return value == 0 ? 1 : value;
  }

  std::string name(const char *letter, int k) {
    static constexpr const char *kOdd[] = {
        "%s%d",     "%s[%d]", "%s*%d", "%s(%d,1)", "\xc3\xa4%s%d", "%s_%d_with_a_rather_long_name",
        "\"%s%d\"", "%s%d.5", "%s%d#", "%s-%d",    "%s,%d"};
    char text[80];
    std::snprintf(text, sizeof text, kOdd[chance(50) ? 0 : below(std::size(kOdd))], letter, k);
    return text;
  }

  void build() {
    numVars_ = 3 + below(8);
    for (int j = 0; j < numVars_; ++j) addVariable(j);
    check(TVKupdatemodel(model_));
    for (int i = below(6); i > 0; --i) addRow(i);
    numVars_ = model_->data().numVars();
    check(TVKsetintattr(model_, "ModelSense", chance(50) ? 1 : -1));
    if (chance(50)) check(TVKsetdblattr(model_, "ObjCon", number()));
    check(TVKupdatemodel(model_));
    numVars_ = model_->data().numVars();
    for (int k = below(3); k > 0; --k) addQuadraticRow(k);
    for (int k = cones_ ? 2 : 0; k > 0; --k) {
      const std::vector<int> members = distinct(2);
      check(TVKaddcone(model_, 2, members.data()));
    }
    for (int k = below(3); k > 0; --k) addSet();
    for (int k = below(8); k > 0; --k) addGeneral(k);
    if (chance(30)) {
      addObjectives();
    } else {
      if (chance(50)) addQuadraticObjective();
      if (chance(30)) addPwlObjective();
      if (chance(40)) addScenarios();
    }
    // In the order of the sections of a file.
    constexpr int kLazy[] = {0, 1, 2, 3, -1};
    for (int i = 0, section = 0; i < model_->data().numConstrs(); ++i) {
      if (section < 4 && chance(25)) ++section;
      check(TVKsetintattrelement(model_, "Lazy", i, kLazy[section]));
    }
  }

  void addVariable(int j) {
    constexpr char kTypes[] = {'C', 'C', 'C', 'B', 'I', 'S', 'N'};
    const char type = kTypes[below(std::size(kTypes))];
    double lower = chance(50) ? 0 : number(), upper = chance(50) ? 1e100 : number();
    if (chance(20)) lower = -1e100;
    if (chance(10)) lower = upper < 1e30 ? upper : 0;
    if (type == 'B') {
      lower = chance(80) ? 0 : 1;
      upper = 1;
    }
    if (type == 'S' || type == 'N') lower = chance(50) ? 0 : std::fabs(number());
    if (lower > upper) upper = lower + 1;
    check(TVKaddvar(model_, 0, nullptr, nullptr, chance(60) ? number() : 0, lower, upper, type,
                    name("x", j).c_str()));
  }

  std::vector<int> distinct(int count) {
    std::vector<int> all(numVars_);
    for (int j = 0; j < numVars_; ++j) all[j] = j;
    for (int j = 0; j < count; ++j) std::swap(all[j], all[j + below(numVars_ - j)]);
    all.resize(count);
    return all;
  }
  std::vector<double> numbers(int count) {
    std::vector<double> values(count);
    for (double &value : values) value = nonzero();
    return values;
  }

  void addRow(int i) {
    const int count = below(4);
    const std::vector<int> index = distinct(count);
    const std::vector<double> value = numbers(count);
    const double rhs = number();
    if (chance(25))
      check(TVKaddrangeconstr(model_, count, index.data(), value.data(), rhs,
                              rhs + 1 + std::fabs(number()), name("r", i).c_str()));
    else
      check(TVKaddconstr(model_, count, index.data(), value.data(), "<>="[below(3)], rhs,
                         name("c", i).c_str()));
  }

  void quadraticTerms(std::vector<int> &row, std::vector<int> &col, std::vector<double> &value) {
    const std::vector<int> vars = distinct(3);
    for (int k = 0; k < 3; ++k)
      for (int l = k; l < 3; ++l)
        if (chance(50) || (k == 0 && l == 0)) {
          row.push_back(vars[k]);
          col.push_back(vars[l]);
          value.push_back(nonzero());
        }
  }
  void addQuadraticRow(int k) {
    std::vector<int> row, col;
    std::vector<double> value;
    quadraticTerms(row, col, value);
    const int count = below(3);
    const std::vector<int> index = distinct(count);
    check(TVKaddqconstr(model_, count, index.data(), numbers(count).data(),
                        static_cast<int>(row.size()), row.data(), col.data(), value.data(),
                        "<>"[below(2)], number(), name("q", k).c_str()));
  }
  void addQuadraticObjective() {
    std::vector<int> row, col;
    std::vector<double> value;
    quadraticTerms(row, col, value);
    check(
        TVKaddqpterms(model_, static_cast<int>(row.size()), row.data(), col.data(), value.data()));
  }

  void addSet() {
    const int type = 1 + below(2), start = 0, count = 1 + below(3);
    const std::vector<int> index = distinct(count);
    std::vector<double> weight(count);
    for (int k = 0; k < count; ++k) weight[k] = k + below(100) / 128.0;
    check(TVKaddsos(model_, 1, count, &type, &start, index.data(), weight.data()));
  }

  // A variable of type 'B', made when there is none yet.
  int binary() {
    for (int j = 0; j < numVars_; ++j)
      if (model_->data().vtype[j] == 'B') return j;
    check(TVKaddvar(model_, 0, nullptr, nullptr, 0, 0, 1, 'B', "binary"));
    check(TVKupdatemodel(model_));
    return numVars_++;
  }

  std::string options() {
    constexpr const char *kOptions[] = {"", "FuncPieces=3", "FuncPieces=-1 FuncPieceError=1e-05",
                                        "FuncPieceLength=0.3 FuncPieceRatio=0.7",
                                        "FuncNonlinear=1"};
    return kOptions[below(std::size(kOptions))];
  }

  void addGeneral(int k) {
    const std::string text = name("g", k);
    const char *label = text.c_str();
    const int first = binary();
    const std::vector<int> vars = distinct(3);
    const int y = vars[0], x = vars[1];
    const std::vector<double> px = {-2.5, 1.0 / 3, 1.0 / 3, 7}, py = numbers(4);
    const double norms[] = {0, 1, 2, 1e100};
    const int bits[] = {first};
    switch (below(19)) {
      case 0:
        return check(TVKaddgenconstrMax(model_, label, y, 2, &vars[1], chance(50) ? 2.5 : -1e100));
      case 1:
        return check(TVKaddgenconstrMin(model_, label, y, 2, &vars[1], chance(50) ? 2.5 : 1e100));
      case 2:
        return check(TVKaddgenconstrAbs(model_, label, y, x));
      case 3:
        return check(TVKaddgenconstrAnd(model_, label, first, 1, bits));
      case 4:
        return check(TVKaddgenconstrOr(model_, label, first, 1, bits));
      case 5:
        return check(TVKaddgenconstrNorm(model_, label, y, 2, &vars[1], norms[below(4)]));
      case 6:
      case 7:
        return check(TVKaddgenconstrIndicator(model_, label, first, below(2), 2, &vars[1],
                                              numbers(2).data(), "<>="[below(3)], number()));
      case 8:
        return check(TVKaddgenconstrPWL(model_, label, x, y, 4, px.data(), py.data()));
      case 9:
        return check(TVKaddgenconstrPoly(model_, label, x, y, 4, py.data(), options().c_str()));
      case 10:
        return check(TVKaddgenconstrExp(model_, label, x, y, options().c_str()));
      case 11:
        return check(TVKaddgenconstrLog(model_, label, x, y, options().c_str()));
      case 12:
        return check(TVKaddgenconstrSin(model_, label, x, y, options().c_str()));
      case 13:
        return check(TVKaddgenconstrCos(model_, label, x, y, options().c_str()));
      case 14:
        return check(TVKaddgenconstrTan(model_, label, x, y, options().c_str()));
      case 15:
        return check(TVKaddgenconstrLogistic(model_, label, x, y, options().c_str()));
      case 16:
        return check(TVKaddgenconstrExpA(model_, label, x, y, 1.0 / 3, options().c_str()));
      case 17:
        return check(TVKaddgenconstrLogA(model_, label, x, y, 2.5, options().c_str()));
      default:
        return check(TVKaddgenconstrPow(model_, label, x, y, 1.5, options().c_str()));
    }
  }

  void addPwlObjective() {
    const std::vector<double> x = {-1, 0.1, 0.1, 3.5};
    check(TVKsetpwlobj(model_, continuous(), 4, x.data(), numbers(4).data()));
  }
  int continuous() {
    for (int j = 0; j < numVars_; ++j)
      if (model_->data().vtype[j] == 'C') return j;
    check(TVKaddvar(model_, 0, nullptr, nullptr, 0, 0, 1e100, 'C', "continuous"));
    check(TVKupdatemodel(model_));
    return numVars_++;
  }

  void addObjectives() {
    const int count = 2 + below(2);
    check(TVKsetintattr(model_, "NumObj", count));
    check(TVKupdatemodel(model_));
    for (int n = 0; n < count; ++n) {
      const std::vector<int> index = distinct(2);
      check(TVKsetobjectiven(model_, n, below(5), number(), std::fabs(number()), 0.25,
                             chance(50) ? "" : name("goal", n).c_str(), chance(50) ? number() : 0,
                             2, index.data(), numbers(2).data()));
    }
  }

  void addScenarios() {
    const int count = 1 + below(3);
    TVKenv *env = TVKgetenv(model_);
    check(TVKsetintattr(model_, "NumScenarios", count));
    check(TVKupdatemodel(model_));
    for (int s = 0; s < count; ++s) {
      check(TVKsetintparam(env, "ScenarioNumber", s));
      if (chance(50)) check(TVKsetstrattr(model_, "ScenNName", name("case", s).c_str()));
      for (int j = 0; j < numVars_; ++j) {
        if (chance(20)) check(TVKsetdblattrelement(model_, "ScenNObj", j, number()));
        if (chance(20)) check(TVKsetdblattrelement(model_, "ScenNLB", j, -std::fabs(number())));
        if (chance(20)) check(TVKsetdblattrelement(model_, "ScenNUB", j, std::fabs(number())));
        if (chance(5)) check(TVKsetdblattrelement(model_, "ScenNUB", j, 1e100));
        if (chance(5)) check(TVKsetdblattrelement(model_, "ScenNLB", j, -1e100));
      }
      for (int i = 0; i < model_->data().numConstrs(); ++i)
        if (chance(20)) check(TVKsetdblattrelement(model_, "ScenNRHS", i, number()));
    }
    check(TVKsetintparam(env, "ScenarioNumber", 0));
  }

  std::mt19937 random_;
  const bool cones_;
  TVKmodel *model_ = nullptr;
  int numVars_ = 0;
  int failures_ = 0;
};

}  // namespace tarvik
