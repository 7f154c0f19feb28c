#include "attr/violations.h"

#include <algorithm>
#include <cmath>

#include "tarvik.h"

namespace tarvik {

Vec<double> linearSlacks(const ModelData &data, const Vec<double> &x) {
  Vec<CompensatedSum> sums(data.numConstrs());
  for (int i = 0; i < data.numConstrs(); ++i) sums[i].add(data.rhs[i]);
  for (int j = 0; j < data.numVars(); ++j) {
    if (x[j] == 0) continue;
    for (NzIndex k = data.a.start[j]; k < data.a.start[j + 1]; ++k)
      sums[data.a.index[k]].addProduct(-data.a.value[k], x[j]);
  }
  Vec<double> slacks(data.numConstrs());
  for (int i = 0; i < data.numConstrs(); ++i) slacks[i] = sums[i].value();
  return slacks;
}

double quadraticSlack(const QConstr &qc, const Vec<double> &x) {
  CompensatedSum sum;
  sum.add(qc.rhs);
  for (std::size_t k = 0; k < qc.lind.size(); ++k) sum.addProduct(-qc.lval[k], x[qc.lind[k]]);
  for (int k = 0; k < qc.quad.count(); ++k)
    sum.addProduct(-qc.quad.val[k] * x[qc.quad.row[k]], x[qc.quad.col[k]]);
  return sum.value();
}

double slackViolation(char sense, double slack) {
  if (sense == '<') return std::max(0.0, -slack);
  return sense == '>' ? std::max(0.0, slack) : std::abs(slack);
}

double boundViolation(const ModelData &data, int var, double x) {
  const double lb = data.lb[var], ub = data.ub[var];
  double violation = 0;
  if (lb > -kInfBound && x < lb) violation = lb - x;
  if (ub < kInfBound && x > ub) violation = std::max(violation, x - ub);
  const bool mayBeZero = data.vtype[var] == 'S' || data.vtype[var] == 'N';
  return mayBeZero ? std::min(violation, std::abs(x)) : violation;
}

double integralityViolation(const ModelData &data, int var, double x) {
  const char type = data.vtype[var];
  return type == 'C' || type == 'S' ? 0 : std::abs(x - std::round(x));
}

// The largest member outside the best window of as many neighbours as the type allows.
double sosViolation(const Sos &sos, const Vec<double> &x) {
  const int count = static_cast<int>(sos.ind.size());
  const int window = sos.type;
  if (count <= window) return 0;
  Vec<double> after(static_cast<std::size_t>(count) + 1, 0.0);
  for (int k = count - 1; k >= 0; --k) after[k] = std::max(after[k + 1], std::abs(x[sos.ind[k]]));
  double before = 0, best = kUserInf;
  for (int k = 0; k + window <= count; ++k) {
    best = std::min(best, std::max(before, after[k + window]));
    before = std::max(before, std::abs(x[sos.ind[k]]));
  }
  return best;
}

namespace {

// The distance of y from the piecewise-linear function at x; end pieces extend without end.
double pwlDistance(const Vec<double> &px, const Vec<double> &py, double x, double y) {
  const int n = static_cast<int>(px.size());
  if (n == 1) return std::abs(y - py[0]);
  const auto line = [&](int a, int b) {
    return px[b] > px[a] ? py[a] + (py[b] - py[a]) * (x - px[a]) / (px[b] - px[a]) : py[a];
  };
  if (x < px[0]) return std::abs(y - line(0, 1));
  if (x > px[n - 1]) return std::abs(y - line(n - 2, n - 1));
  double best = kUserInf;
  for (int k = 0; k + 1 < n; ++k) {
    if (x < px[k] || x > px[k + 1]) continue;
    if (px[k] == px[k + 1]) {
      const double low = std::min(py[k], py[k + 1]), high = std::max(py[k], py[k + 1]);
      best = std::min(best, std::max({0.0, low - y, y - high}));
    } else {
      best = std::min(best, std::abs(y - line(k, k + 1)));
    }
  }
  return best;
}

double functionValue(const GenConstr &g, double x) {
  switch (g.type) {
    case TVK_GENCONSTR_POLY: {
      double value = 0;
      for (const double c : g.coef) value = std::fma(value, x, c);
      return value;
    }
    case TVK_GENCONSTR_EXP:
      return std::exp(x);
    case TVK_GENCONSTR_EXPA:
      return std::pow(g.constant, x);
    case TVK_GENCONSTR_LOG:
      return std::log(x);
    case TVK_GENCONSTR_LOGA:
      return std::log(x) / std::log(g.constant);
    case TVK_GENCONSTR_POW:
      return std::pow(x, g.constant);
    case TVK_GENCONSTR_SIN:
      return std::sin(x);
    case TVK_GENCONSTR_COS:
      return std::cos(x);
    case TVK_GENCONSTR_TAN:
      return std::tan(x);
    default:
      return 1 / (1 + std::exp(-x));
  }
}

double normOf(const GenConstr &g, const Vec<double> &x) {
  double norm = 0;
  for (const int j : g.vars) {
    const double v = std::abs(x[j]);
    if (g.constant == 0)
      norm += v > 1e-9;
    else if (g.constant == 1)
      norm += v;
    else if (g.constant == 2)
      norm = std::hypot(norm, v);
    else
      norm = std::max(norm, v);
  }
  return norm;
}

double indicatorViolation(const GenConstr &g, const Vec<double> &x) {
  if (std::round(x[g.resVar]) != g.binVal) return 0;
  CompensatedSum sum;
  sum.add(g.constant);
  for (std::size_t k = 0; k < g.vars.size(); ++k) sum.addProduct(-g.coef[k], x[g.vars[k]]);
  return slackViolation(g.sense, sum.value());
}

double extremum(const GenConstr &g, const Vec<double> &x, bool isMax) {
  double value = g.constant;
  for (const int j : g.vars) value = isMax ? std::max(value, x[j]) : std::min(value, x[j]);
  return value;
}

double logical(const GenConstr &g, const Vec<double> &x, bool isAnd) {
  double value = isAnd;
  for (const int j : g.vars) value = isAnd ? std::min(value, x[j]) : std::max(value, x[j]);
  return value;
}

}  // namespace

double genConstrViolation(const GenConstr &g, const Vec<double> &x) {
  const double result = x[g.resVar];
  double violation = 0;
  switch (g.type) {
    case TVK_GENCONSTR_MAX:
      violation = std::abs(result - extremum(g, x, true));
      break;
    case TVK_GENCONSTR_MIN:
      violation = std::abs(result - extremum(g, x, false));
      break;
    case TVK_GENCONSTR_ABS:
      violation = std::abs(result - std::abs(x[g.vars[0]]));
      break;
    case TVK_GENCONSTR_AND:
      violation = std::abs(result - logical(g, x, true));
      break;
    case TVK_GENCONSTR_OR:
      violation = std::abs(result - logical(g, x, false));
      break;
    case TVK_GENCONSTR_NORM:
      violation = std::abs(result - normOf(g, x));
      break;
    case TVK_GENCONSTR_INDICATOR:
      violation = indicatorViolation(g, x);
      break;
    case TVK_GENCONSTR_PWL:
      violation = pwlDistance(g.coef, g.pwlY, x[g.vars[0]], result);
      break;
    default:
      violation = std::abs(result - functionValue(g, x[g.vars[0]]));
      break;
  }
  // Outside the domain of the function nothing satisfies the constraint.
  return std::isnan(violation) ? kUserInf : violation;
}

double coneViolation(const Cone &cone, const Vec<double> &x) {
  double norm = 0;
  for (std::size_t k = 1; k < cone.members.size(); ++k) norm = std::hypot(norm, x[cone.members[k]]);
  return std::max(0.0, norm - x[cone.members[0]]);
}

ViolationMaxima violationMaxima(const ModelData &data, const Vec<double> &x) {
  ViolationMaxima v;
  const Vec<double> slacks = linearSlacks(data, x);
  for (int i = 0; i < data.numConstrs(); ++i)
    v.constr = std::max(v.constr, slackViolation(data.sense[i], slacks[i]));
  for (const QConstr &qc : data.qconstrs)
    v.qconstr = std::max(v.qconstr, slackViolation(qc.sense, quadraticSlack(qc, x)));
  for (const Cone &cone : data.cones) v.qconstr = std::max(v.qconstr, coneViolation(cone, x));
  for (int j = 0; j < data.numVars(); ++j) {
    v.bound = std::max(v.bound, boundViolation(data, j, x[j]));
    v.integrality = std::max(v.integrality, integralityViolation(data, j, x[j]));
    const bool isInteger = data.vtype[j] != 'C' && data.vtype[j] != 'S';
    v.hugeIntegers = v.hugeIntegers || (isInteger && std::abs(x[j]) > kMaxInt);
  }
  for (const Sos &sos : data.sos) v.sos = std::max(v.sos, sosViolation(sos, x));
  for (const GenConstr &g : data.genConstrs) {
    const double violation = genConstrViolation(g, x);
    double &worst = g.isFunction() && g.options.nonlinear == 1 ? v.nonlinear : v.genConstr;
    if (violation > worst && &worst == &v.genConstr) v.approximatedFunction = g.isFunction();
    worst = std::max(worst, violation);
  }
  return v;
}

}  // namespace tarvik
