#include "opt/feasrelax.h"

#include <algorithm>
#include <cmath>

#include "model/data_edit.h"
#include "model/validate.h"
#include "opt/derived_models.h"
#include "opt/optimize.h"

namespace tarvik {

namespace {

bool isRelaxed(const double *penalties, int k) { return penalties && penalties[k] < kInf; }

void checkPenalties(const double *penalties, int count) {
  if (!penalties) return;
  checkNoNan(penalties, count);
  for (int k = 0; k < count; ++k)
    if (penalties[k] < 0) throw Error(TVK_ERROR_INVALID_ARGUMENT, "Negative penalty for feasRelax");
}

// Adds the artificial variables and their rows, and collects what they cost.
class Relaxer {
 public:
  Relaxer(Model &model, ModelData &data, RelaxPrice price)
      : env_(model.env()), data_(data), price_(price) {}

  void run(const RelaxPenalties &penalties) {
    if (!data_.storesNames() && !env_.get(Int::IgnoreNames)) storeNames();
    const int numVars = data_.numVars(), numConstrs = data_.numConstrs();
    for (int j = 0; j < numVars; ++j) {
      if (isRelaxed(penalties.lb, j)) relaxLower(j, penalties.lb[j]);
      if (isRelaxed(penalties.ub, j)) relaxUpper(j, penalties.ub[j]);
    }
    for (int i = 0; i < numConstrs; ++i)
      if (isRelaxed(penalties.rhs, i)) relaxRow(i, penalties.rhs[i]);
    rows_.appendTo(data_);
    countTypes(data_);
  }

  // The sum of the prices takes the place of the objective.
  void setObjective() {
    data_.objSense = 1;
    dropObjective(data_);
    for (std::size_t k = 0; k < var_.size(); ++k) {
      if (price_ == RelaxPrice::Quadratic)
        data_.q.append(var_[k], var_[k], 2 * penalty_[k]);
      else
        data_.obj[var_[k]] = penalty_[k];
    }
  }

  // The sum of the prices stays at or below its smallest value.
  void limitPrice(ModelData &data, double limit) const {
    if (price_ == RelaxPrice::Quadratic) {
      QConstr qc;
      qc.rhs = limit;
      for (std::size_t k = 0; k < var_.size(); ++k) qc.quad.append(var_[k], var_[k], penalty_[k]);
      if (data.storesNames() || !data.qconstrNames.empty()) {
        completeNames(data.qconstrNames, data.numQConstrs(), "QC", 0);
        data.qconstrNames.append("feasobj");
      }
      if (!data.qconstrTags.empty()) data.qconstrTags.append("");
      if (!data.iisQConstrForce.empty()) data.iisQConstrForce.push_back(-1);
      data.qconstrs.push_back(std::move(qc));
    } else {
      NewRows row;
      row.add(static_cast<int>(var_.size()), var_.data(), penalty_.data(), '<', limit, "feasobj");
      row.appendTo(data);
    }
  }

 private:
  void storeNames() {
    completeNames(data_.varNames, data_.numVars(), "C", 0);
    completeNames(data_.constrNames, data_.numConstrs(), "R", 0);
    data_.varNamesIssued = data_.numVars();
    data_.constrNamesIssued = data_.numConstrs();
  }
  bool isSemi(int j) const { return data_.vtype[j] == 'S' || data_.vtype[j] == 'N'; }
  std::string varName(int j) const { return nameInData(data_.varNames, j, "C"); }

  [[noreturn]] void refuse(const char *text, const char *error) {
    env_.log("%s\n", text);
    throw Error(TVK_ERROR_NOT_SUPPORTED, "%s", error);
  }

  // A variable that measures a violation, with an entry in a row that exists.
  int addViolation(const char *kind, const std::string &name, double penalty, int row,
                   double value) {
    NewColumn column;
    column.numNz = row >= 0 ? 1 : 0;
    column.ind = &row;
    column.val = &value;
    const int violation = appendColumn(data_, column, std::string(kind) + "_" + name);
    const int priced = price_ == RelaxPrice::Count ? addSwitch(kind, name, violation) : violation;
    if (penalty > 0) {
      var_.push_back(priced);
      penalty_.push_back(penalty);
    }
    return violation;
  }

  // A binary variable that is 1 unless there is no violation.
  int addSwitch(const char *kind, const std::string &name, int violation) {
    const std::string switchName = std::string(kind) + "B_" + name;
    NewColumn column;
    column.type = 'B';
    column.ub = 1;
    const int binary = appendColumn(data_, column, switchName);
    GenConstr g;
    g.type = TVK_GENCONSTR_INDICATOR;
    g.resVar = binary;
    g.binVal = 0;
    g.vars.push_back(violation);
    g.coef.push_back(1);
    if (data_.storesNames() || !data_.genConstrNames.empty()) {
      completeNames(data_.genConstrNames, data_.numGenConstrs(), "GC", 0);
      data_.genConstrNames.append(("C" + switchName).substr(0, kMaxNameLength));
    }
    if (!data_.iisGenConstrForce.empty()) data_.iisGenConstrForce.push_back(-1);
    data_.genConstrs.push_back(std::move(g));
    return binary;
  }

  // x + v >= lb (x - v <= ub) instead of the bound.
  void addBoundRow(int j, const char *kind, double penalty, double sign, double bound) {
    const int v = addViolation(kind, varName(j), penalty, -1, 0);
    const int ind[] = {j, v};
    const double val[] = {1, sign};
    rows_.add(2, ind, val, sign > 0 ? '>' : '<', bound, std::string("C") + kind + "_" + varName(j));
    if (data_.vtype[j] == 'B') data_.vtype[j] = 'I';
  }

  void relaxLower(int j, double penalty) {
    if (data_.lb[j] <= -kInfBound) return;
    if (isSemi(j) && data_.lb[j] > 0) {
      refuse("Relaxing positive lower bound of a semi variable for feasRelax isn't supported",
             "Relaxing lower bound of a semi variable for feasRelax");
    }
    addBoundRow(j, "ArtL", penalty, 1, data_.lb[j]);
    data_.lb[j] = -kInf;
  }

  void relaxUpper(int j, double penalty) {
    if (data_.ub[j] >= kInfBound) return;
    if (isSemi(j) && data_.ub[j] < 0) {
      refuse("Relaxing negative upper bound of a semi variable for feasRelax isn't supported",
             "Relaxing upper bound of a semi variable for feasRelax");
    }
    addBoundRow(j, "ArtU", penalty, -1, data_.ub[j]);
    data_.ub[j] = kInf;
  }

  void relaxRow(int i, double penalty) {
    const std::string name = nameInData(data_.constrNames, i, "R");
    if (data_.sense[i] != '<') addViolation("ArtP", name, penalty, i, 1);
    if (data_.sense[i] != '>') addViolation("ArtN", name, penalty, i, -1);
  }

  Env &env_;
  ModelData &data_;
  RelaxPrice price_;
  NewRows rows_;
  Vec<int> var_;  // what is priced, and at what price
  Vec<double> penalty_;
};

void checkModelKind(Model &model, bool minRelax) {
  if (!model.data().scenarios.empty())
    throw Error(TVK_ERROR_NOT_SUPPORTED, "feasRelax for multi-scenario model not supported");
  if (!minRelax || model.data().objectives.size() <= 1) return;
  model.env().log(
      "Feasibility relaxation with minrelax != 0 is not supported for multi-objective\n");
  throw Error(TVK_ERROR_NOT_SUPPORTED, "Multi-objective problem and minrelax != 0");
}

void replaceData(Model &model, ModelData &&data) {
  model.data() = std::move(data);
  model.solution().clearAll();
  model.dataChanged();
}

// Solves the model with the prices as its objective; -1 when no optimum is found.
double smallestPrice(Model &model) {
  model.env().log("\nSolve phase I feasrelax model to determine minimal relaxation\n\n");
  optimize(model);
  const SolutionStore &solution = model.solution();
  return solution.status == TVK_OPTIMAL && solution.hasObjective ? std::max(solution.objVal, 0.0)
                                                                 : -1;
}

}  // namespace

double relaxFeasibility(Model &model, RelaxPrice price, bool minRelax,
                        const RelaxPenalties &penalties) {
  checkPenalties(penalties.lb, model.data().numVars());
  checkPenalties(penalties.ub, model.data().numVars());
  checkPenalties(penalties.rhs, model.data().numConstrs());
  checkModelKind(model, minRelax);
  ModelData relaxed = model.data();
  Relaxer relaxer(model, relaxed, price);
  relaxer.run(penalties);
  ModelData second = minRelax ? relaxed : ModelData();
  relaxer.setObjective();
  if (!minRelax) {
    replaceData(model, std::move(relaxed));
    return -1;
  }
  ModelData original = std::move(model.data());
  replaceData(model, std::move(relaxed));
  try {
    const double best = smallestPrice(model);
    if (best < 0) return best;
    relaxer.limitPrice(second, best);
    replaceData(model, std::move(second));
    return best;
  } catch (...) {
    replaceData(model, std::move(original));
    throw;
  }
}

}  // namespace tarvik
