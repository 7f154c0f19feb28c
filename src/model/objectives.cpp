#include "model/objectives.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>

#include "model/growth.h"
#include "model/validate.h"

namespace tarvik {

PendingObjective &pendingObjective(PendingChanges &p, int number) {
  for (PendingObjective &objective : p.objectives)
    if (objective.number == number) return objective;
  p.objectives.emplace_back().number = number;
  return p.objectives.back();
}

PendingScenario &pendingScenario(PendingChanges &p, int number) {
  for (PendingScenario &scenario : p.scenarios)
    if (scenario.number == number) return scenario;
  p.scenarios.emplace_back().number = number;
  return p.scenarios.back();
}

namespace {

// Checks indices and values and adds the terms up, one entry a variable.
Vec<double> denseTerms(const LinearTerms &linear, int numVars) {
  Vec<double> dense(numVars, 0.0);
  if (linear.count <= 0) return dense;
  requireArgument(linear.ind && linear.val);
  for (int k = 0; k < linear.count; ++k) {
    if (linear.ind[k] < 0 || linear.ind[k] >= numVars)
      throw Error(TVK_ERROR_INDEX_OUT_OF_RANGE, "Problem setting objective");
  }
  checkFinite(linear.val, linear.count);
  for (int k = 0; k < linear.count; ++k) dense[linear.ind[k]] += linear.val[k];
  return dense;
}

void checkQuadTerms(int count, const int *rows, const int *cols, const double *values,
                    int numVars) {
  if (count <= 0) return;
  requireArgument(rows && cols && values);
  for (int k = 0; k < count; ++k) {
    if (!std::isfinite(values[k])) {
      throw Error(TVK_ERROR_INVALID_ARGUMENT, "Element %d of a double array is Nan or Inf.", k);
    }
  }
  for (int k = 0; k < count; ++k)
    for (const int j : {rows[k], cols[k]})
      if (j < 0 || j >= numVars) throw Error(TVK_ERROR_INDEX_OUT_OF_RANGE);
}

constexpr std::size_t kQuadSlack = 1000;

void makeRoomForTerms(QuadTerms &q, int count) {
  makeRoom(q.row, count, kQuadSlack);
  makeRoom(q.col, count, kQuadSlack);
  makeRoom(q.val, count, kQuadSlack);
}

}  // namespace

void addQuadTerms(Model &model, int count, const int *rows, const int *cols, const double *values) {
  if (count == 0) return;
  if (count < 0) throw Error(TVK_ERROR_INVALID_ARGUMENT);
  requireArgument(rows && cols && values);
  model.edit([&](PendingChanges &p) {
    checkQuadTerms(count, rows, cols, values, p.currentVars());
    makeRoomForTerms(p.q, count);
    for (int k = 0; k < count; ++k) p.q.append(rows[k], cols[k], values[k]);
  });
}

void deleteQuadTerms(Model &model) {
  model.edit([](PendingChanges &p) {
    p.deleteQ = true;
    p.q.clear();
  });
}

void setObjective(Model &model, int sense, double constant, const LinearTerms &linear, int numQuad,
                  const int *qrow, const int *qcol, const double *qval) {
  if (sense < -1 || sense > 1) throw Error(TVK_ERROR_INVALID_ARGUMENT, "Invalid objective sense");
  checkFiniteValue(constant);
  model.edit([&](PendingChanges &p) {
    const Vec<double> dense = denseTerms(linear, p.currentVars());
    checkQuadTerms(numQuad, qrow, qcol, qval, p.currentVars());
    if (numQuad > 0) makeRoomForTerms(p.q, numQuad);
    queueValues(p.obj, {0, p.currentVars(), nullptr}, dense.data(), p.allVars());

    if (sense != 0) p.objSense = sense;
    p.objCon = constant;
    p.deleteQ = true;
    p.q.clear();
    for (int k = 0; k < numQuad; ++k) p.q.append(qrow[k], qcol[k], qval[k]);
  });
}

void setObjectiveN(Model &model, int number, const ObjectiveSettings &settings,
                   const LinearTerms &linear) {
  if (number < 0) throw Error(TVK_ERROR_INVALID_ARGUMENT, "Objective index must be non-negative");
  if (number >= kMaxInt)
    throw Error(TVK_ERROR_INVALID_ARGUMENT, "Objective index %d is too large", number);
  for (const double v : {settings.weight, settings.absTol, settings.relTol, settings.con})
    checkNoNanValue(v);
  model.edit([&](PendingChanges &p) {
    PendingObjective fresh;
    fresh.number = number;
    const Vec<double> dense = denseTerms(linear, p.currentVars());
    queueValues(fresh.coef, {0, p.currentVars(), nullptr}, dense.data(), p.allVars());
    fresh.con = settings.con;
    fresh.priority = settings.priority;
    fresh.weight = settings.weight;
    fresh.absTol = settings.absTol;
    fresh.relTol = settings.relTol;
    fresh.name = settings.name ? settings.name : "";
    fresh.replaceCoef = true;
    pendingObjective(p, number) = std::move(fresh);
    const int count = p.numObj.value_or(static_cast<int>(model.data().objectives.size()));
    if (number >= count) p.numObj = number + 1;
  });
}

void setPwlObjective(Model &model, int var, int count, const double *x, const double *y) {
  if (count >= 1) {
    requireArgument(x && y);
    checkNoNan(x, count);
    checkNoNan(y, count);
    checkFinite(x, count);
  }
  model.edit([&](PendingChanges &p) {
    if (var < 0 || var >= p.currentVars()) throw Error(TVK_ERROR_INDEX_OUT_OF_RANGE);
    double total = std::max(count, 0);
    if (static_cast<double>(p.pwlPoints) + total > 2147483647.0)
      throw Error(TVK_ERROR_EXCEED_2B_NONZEROS);
    PwlObjective pwl;
    pwl.var = var;
    if (count > 0) {
      pwl.x.assign(x, x + count);
      pwl.y.assign(y, y + count);
    }
    makeRoom(p.pwl, 1);
    p.pwl.push_back(std::move(pwl));
    p.pwlPoints += static_cast<std::int64_t>(total);
  });
}

namespace {

constexpr double kMinPieceLength = 1e-6;

[[noreturn]] void failPwl(Env &env, const char *format, ...) __attribute__((format(printf, 2, 3)));

[[noreturn]] void failPwl(Env &env, const char *format, ...) {
  char text[512];
  va_list args;
  va_start(args, format);
  std::vsnprintf(text, sizeof text, format, args);
  va_end(args);
  env.log("Error: %s\n", text);
  throw Error(TVK_ERROR_INVALID_PIECEWISE_OBJ, "%s", text);
}

bool hasCrowdedPoints(const PwlObjective &pwl) {
  for (std::size_t k = 3; k < pwl.x.size(); ++k)
    if (pwl.x[k] - pwl.x[k - 3] < kMinPieceLength) return true;
  return false;
}

void checkPwl(Env &env, const PwlObjective &pwl, double lb, double ub, const char *name) {
  const std::size_t n = pwl.x.size();
  for (std::size_t k = 1; k < n; ++k)
    if (pwl.x[k] < pwl.x[k - 1])
      failPwl(env, "x values for PWL objective of variable %s aren't sorted", name);
  if (n > 1 && pwl.x[n - 1] - pwl.x[0] < kMinPieceLength)
    failPwl(env, "all x values for PWL objective of variable %s differ less than 1E-6", name);
  if (n > 1 && lb < pwl.x[0] && pwl.x[1] - pwl.x[0] < kMinPieceLength) {
    failPwl(env,
            "length of the first piece of PWL obj. of variable %s < 1e-6, cannot be extended to lb",
            name);
  }
  if (n > 1 && ub > pwl.x[n - 1] && pwl.x[n - 1] - pwl.x[n - 2] < kMinPieceLength) {
    failPwl(env,
            "length of the last piece of PWL obj. of variable %s < 1e-6, cannot be extended to ub",
            name);
  }
}

}  // namespace

void checkPwlObjectives(Model &model) {
  const ModelData &data = model.data();
  bool crowded = false;
  for (const PwlObjective &pwl : data.pwl) {
    const char *name = model.varName(pwl.var);
    checkPwl(model.env(), pwl, data.lb[pwl.var], data.ub[pwl.var], name);
    for (const double stored : pwl.y) {
      const double y = data.objSense * stored;
      if (std::abs(y) < kInfBound) continue;
      failPwl(model.env(), "PWL obj. value %s for variable %s", y > 0 ? "> 1e+20" : "< -1e+20",
              name);
    }
    crowded = crowded || hasCrowdedPoints(pwl);
  }
  if (crowded) {
    model.env().log(
        "Warning: more than three points for PWL objective have (almost) the same x values\n");
  }
}

}  // namespace tarvik
