#include "attr/quality.h"

#include <algorithm>
#include <cmath>

#include "attr/handler_kit.h"
#include "attr/violations.h"

namespace tarvik {

namespace {

// Collects one measure over elements in order.
class Collector {
 public:
  void add(int index, double value) {
    if (index_ < 0 || value > max_) {
      max_ = value;
      index_ = index;
    }
    sum_.add(value);
  }
  void store(QualityMeasure &measure) const {
    measure.available = true;
    measure.max = max_;
    measure.sum = sum_.value();
    measure.index = index_;
  }

 private:
  double max_ = 0;
  int index_ = -1;
  CompensatedSum sum_;
};

Vec<double> rowScales(const ModelData &data) {
  Vec<double> largest(data.numConstrs(), 0.0);
  for (std::size_t k = 0; k < data.a.index.size(); ++k)
    largest[data.a.index[k]] = std::max(largest[data.a.index[k]], std::abs(data.a.value[k]));
  for (double &v : largest) v = v > 0 ? std::exp2(-std::round(std::log2(v))) : 1;
  return largest;
}

void measurePrimal(const ModelData &data, const SolutionStore &s, const Vec<double> &scale,
                   QualityReport &q) {
  Collector bound, integrality, constr, constrS, residual, residualS;
  for (int j = 0; j < data.numVars(); ++j) {
    bound.add(j, boundViolation(data, j, s.x[j]));
    integrality.add(j, integralityViolation(data, j, s.x[j]));
  }
  const Vec<double> slacks = linearSlacks(data, s.x);
  const int numConstrs = data.numConstrs();
  for (int i = 0; i < numConstrs; ++i) {
    const double violation = slackViolation(data.sense[i], slacks[i]);
    const double difference = s.slack.empty() ? 0 : std::abs(slacks[i] - s.slack[i]);
    constr.add(i, violation);
    constrS.add(i, scale[i] * violation);
    residual.add(i, difference);
    residualS.add(i, scale[i] * difference);
  }
  for (int k = 0; k < data.numQConstrs(); ++k) {
    const QConstr &qc = data.qconstrs[k];
    const double slack = quadraticSlack(qc, s.x);
    const double violation = slackViolation(qc.sense, slack);
    const double difference = s.qcSlack.empty() ? 0 : std::abs(slack - s.qcSlack[k]);
    constr.add(numConstrs + k, violation);
    constrS.add(numConstrs + k, violation);
    residual.add(numConstrs + k, difference);
    residualS.add(numConstrs + k, difference);
  }
  bound.store(q[Quality::Bound]);
  bound.store(q[Quality::BoundS]);
  integrality.store(q[Quality::Int]);
  constr.store(q[Quality::Constr]);
  constrS.store(q[Quality::ConstrS]);
  residual.store(q[Quality::ConstrResidual]);
  residualS.store(q[Quality::ConstrSResidual]);
}

// In the stored sense a minimum has y <= 0 on '<' rows and y >= 0 on '>' rows.
double rowDualViolation(char sense, double y) {
  if (sense == '<') return std::max(0.0, y);
  return sense == '>' ? std::max(0.0, -y) : 0;
}

double reducedCostViolation(const ModelData &data, int j, double d) {
  if (d > 0) return data.lb[j] > -kInfBound ? 0 : d;
  return d == 0 || data.ub[j] < kInfBound ? 0 : -d;
}

double columnComplementarity(const ModelData &data, int j, double x, double d) {
  if (d > 0 && data.lb[j] > -kInfBound) return d * std::max(0.0, x - data.lb[j]);
  if (d < 0 && data.ub[j] < kInfBound) return -d * std::max(0.0, data.ub[j] - x);
  return 0;
}

// c + Qx - A'y of one column.
double dualSlack(const ModelData &data, const SolutionStore &s, const Vec<double> &qx, int j) {
  CompensatedSum sum;
  sum.add(data.obj[j]);
  if (!qx.empty()) sum.add(qx[j]);
  for (NzIndex k = data.a.start[j]; k < data.a.start[j + 1]; ++k)
    sum.addProduct(-data.a.value[k], s.pi[data.a.index[k]]);
  return sum.value();
}

Vec<double> quadraticGradient(const ModelData &data, const Vec<double> &x) {
  Vec<double> gradient;
  if (data.q.count() == 0) return gradient;
  gradient.assign(data.numVars(), 0.0);
  for (int k = 0; k < data.q.count(); ++k) {
    const int i = data.q.row[k], j = data.q.col[k];
    const double half = 0.5 * data.q.val[k];
    gradient[i] += half * x[j];
    gradient[j] += half * x[i];
  }
  return gradient;
}

void measureDual(const ModelData &data, const SolutionStore &s, const Vec<double> &scale,
                 QualityReport &q) {
  const bool hasDuals = !data.isMip() && data.qconstrs.empty() && data.cones.empty() &&
                        static_cast<int>(s.pi.size()) == data.numConstrs() &&
                        static_cast<int>(s.rc.size()) == data.numVars();
  if (!hasDuals) return;
  Collector dual, dualS, residual, compl_;
  const Vec<double> qx = quadraticGradient(data, s.x);
  const int numVars = data.numVars();
  for (int j = 0; j < numVars; ++j) {
    const double violation = reducedCostViolation(data, j, s.rc[j]);
    dual.add(j, violation);
    dualS.add(j, violation);
    residual.add(j, std::abs(dualSlack(data, s, qx, j) - s.rc[j]));
    compl_.add(j, columnComplementarity(data, j, s.x[j], s.rc[j]));
  }
  const Vec<double> slacks = linearSlacks(data, s.x);
  for (int i = 0; i < data.numConstrs(); ++i) {
    const double violation = rowDualViolation(data.sense[i], s.pi[i]);
    dual.add(numVars + i, violation);
    dualS.add(numVars + i, violation / scale[i]);
    const double product = data.sense[i] == '=' ? 0 : std::abs(s.pi[i] * slacks[i]);
    compl_.add(numVars + i, product);
  }
  dual.store(q[Quality::Dual]);
  dualS.store(q[Quality::DualS]);
  residual.store(q[Quality::DualResidual]);
  residual.store(q[Quality::DualSResidual]);
  compl_.store(q[Quality::Compl]);
}

bool isCurrent(const std::optional<QualityReport> &q, const SolutionStore &s) {
  return q && q->generation == s.generation && q->objVal == s.objVal && q->runtime == s.runtime;
}

const QualityMeasure &measure(Model &m, Quality which) {
  const QualityMeasure &found = solutionQuality(m)[which];
  if (!found.available) attrNotAvailable();
  return found;
}

template <Quality which>
void registerMeasure(AttrTable &t, Attr max, Attr sum, Attr index) {
  t.handlers<double>(max).get = [](Model &m, const Elements &, double *out) {
    *out = measure(m, which).max;
  };
  t.handlers<double>(sum).get = [](Model &m, const Elements &, double *out) {
    *out = measure(m, which).sum;
  };
  t.handlers<int>(index).get = [](Model &m, const Elements &, int *out) {
    *out = measure(m, which).index;
  };
}

}  // namespace

const QualityReport &solutionQuality(Model &model) {
  const SolutionStore &s = model.solution();
  const ModelData &data = model.data();
  if (static_cast<int>(s.x.size()) != data.numVars() || (s.x.empty() && !s.hasObjective))
    attrNotAvailable();
  std::optional<QualityReport> &kept = model.derived().quality;
  if (isCurrent(kept, s)) return *kept;
  QualityReport q;
  q.generation = s.generation;
  q.objVal = s.objVal;
  q.runtime = s.runtime;
  const Vec<double> scale = rowScales(data);
  measurePrimal(data, s, scale, q);
  measureDual(data, s, scale, q);
  kept = q;
  return *kept;
}

void registerQualityAttrs(AttrTable &t) {
  using A = Attr;
  registerMeasure<Quality::Bound>(t, A::BoundVio, A::BoundVioSum, A::BoundVioIndex);
  registerMeasure<Quality::BoundS>(t, A::BoundSVio, A::BoundSVioSum, A::BoundSVioIndex);
  registerMeasure<Quality::Constr>(t, A::ConstrVio, A::ConstrVioSum, A::ConstrVioIndex);
  registerMeasure<Quality::ConstrS>(t, A::ConstrSVio, A::ConstrSVioSum, A::ConstrSVioIndex);
  registerMeasure<Quality::ConstrResidual>(t, A::ConstrResidual, A::ConstrResidualSum,
                                           A::ConstrResidualIndex);
  registerMeasure<Quality::ConstrSResidual>(t, A::ConstrSResidual, A::ConstrSResidualSum,
                                            A::ConstrSResidualIndex);
  registerMeasure<Quality::Dual>(t, A::DualVio, A::DualVioSum, A::DualVioIndex);
  registerMeasure<Quality::DualS>(t, A::DualSVio, A::DualSVioSum, A::DualSVioIndex);
  registerMeasure<Quality::DualResidual>(t, A::DualResidual, A::DualResidualSum,
                                         A::DualResidualIndex);
  registerMeasure<Quality::DualSResidual>(t, A::DualSResidual, A::DualSResidualSum,
                                          A::DualSResidualIndex);
  registerMeasure<Quality::Int>(t, A::IntVio, A::IntVioSum, A::IntVioIndex);
  registerMeasure<Quality::Compl>(t, A::ComplVio, A::ComplVioSum, A::ComplVioIndex);
  t.handlers<double>(A::MaxVio).get = [](Model &m, const Elements &, double *out) {
    const QualityReport &q = solutionQuality(m);
    *out = std::max({q[Quality::Bound].max, q[Quality::Constr].max, q[Quality::Int].max});
  };
}

}  // namespace tarvik
