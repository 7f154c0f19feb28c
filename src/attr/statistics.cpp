#include "attr/statistics.h"

#include "attr/handler_kit.h"

namespace tarvik {

namespace {

void addPwl(const Vec<double> &x, const Vec<double> &y, MagnitudeRange &rangeX,
            MagnitudeRange &rangeY, MagnitudeRange &middleX, MagnitudeRange &middleY) {
  for (const double v : x) rangeX.add(v);
  for (const double v : y) rangeY.add(v);
  for (std::size_t k = 1; k + 1 < x.size(); ++k) {
    middleX.add(x[k]);
    middleY.add(y[k]);
  }
}

void addGenConstr(const GenConstr &g, ModelStatistics &s) {
  switch (g.type) {
    case TVK_GENCONSTR_MAX:
      s.maxConstants.addFinite(g.constant);
      break;
    case TVK_GENCONSTR_MIN:
      s.minConstants.addFinite(g.constant);
      break;
    case TVK_GENCONSTR_INDICATOR:
      s.indicatorRhs.addFinite(g.constant);
      for (const double v : g.coef) s.indicatorCoef.add(v);
      break;
    case TVK_GENCONSTR_PWL:
      addPwl(g.coef, g.pwlY, s.pwlConX, s.pwlConY, s.pwlConMiddleX, s.pwlConMiddleY);
      break;
    default:
      break;
  }
}

ModelStatistics compute(const ModelData &data) {
  ModelStatistics s;
  for (const double v : data.a.value) s.matrix.add(v);
  for (const double v : data.lb) s.bounds.addFinite(v);
  for (const double v : data.ub) s.bounds.addFinite(v);
  for (const double v : data.obj) s.obj.add(v);
  for (const double v : data.rhs) s.rhs.addFinite(v);
  // The stored quadratic objective is doubled.
  for (const double v : data.q.val) s.qObj.add(0.5 * v);
  for (const QConstr &qc : data.qconstrs) {
    for (const double v : qc.quad.val) s.qcQuad.add(v);
    for (const double v : qc.lval) s.qcLinear.add(v);
    s.qcRhs.addFinite(qc.rhs);
  }
  for (const PwlObjective &pwl : data.pwl)
    addPwl(pwl.x, pwl.y, s.pwlObjX, s.pwlObjY, s.pwlObjMiddleX, s.pwlObjMiddleY);
  for (const GenConstr &g : data.genConstrs) addGenConstr(g, s);
  return s;
}

void printRange(Env &env, const char *label, const MagnitudeRange &range) {
  env.log("  %-16s [%.0e, %.0e]\n", label, range.empty() ? 0 : range.min, range.max);
}

void printRanges(Env &env, const ModelData &data, const ModelStatistics &s) {
  const auto whenFilled = [&](const char *label, const MagnitudeRange &range) {
    if (!range.empty()) printRange(env, label, range);
  };
  env.log("Coefficient statistics:\n");
  printRange(env, "Matrix range", s.matrix);
  whenFilled("QMatrix range", s.qcQuad);
  if (!s.qcLinear.empty() && s.qcLinear.min != s.qcLinear.max)
    printRange(env, "QLMatrix range", s.qcLinear);
  printRange(env, "Objective range", s.obj);
  whenFilled("QObjective range", s.qObj);
  printRange(env, "Bounds range", s.bounds);
  printRange(env, "RHS range", s.rhs);
  if (!data.qconstrs.empty()) printRange(env, "QRHS range", s.qcRhs);
  whenFilled("PWLObj x range", s.pwlObjX);
  whenFilled("PWLObj obj range", s.pwlObjY);
  whenFilled("PWLCon x range", s.pwlConX);
  whenFilled("PWLCon y range", s.pwlConY);
  whenFilled("GenCon rhs range", s.indicatorRhs);
  whenFilled("GenCon coe range", s.indicatorCoef);
  MagnitudeRange constants = s.maxConstants;
  constants.add(s.minConstants.max);
  if (!s.minConstants.empty()) constants.add(s.minConstants.min);
  whenFilled("GenCon const rng", constants);
}

// Collects whether any warning was printed.
class Warnings {
 public:
  explicit Warnings(Env &env) : env_(env) {}
  bool any() const { return any_; }

  bool when(bool condition, const char *text) {
    if (condition) {
      env_.log("Warning: %s\n", text);
      any_ = true;
    }
    return condition;
  }
  bool when(bool condition, const char *subject, const char *text) {
    if (condition) {
      env_.log("Warning: %s %s\n", subject, text);
      any_ = true;
    }
    return condition;
  }

 private:
  Env &env_;
  bool any_ = false;
};

double decades(const MagnitudeRange &range) {
  return std::log10(range.max + 1e-10) - std::log10(range.min + 1e-10);
}

void warnQuadratic(Warnings &warn, const ModelData &data, const ModelStatistics &s) {
  const char *subject =
      data.qconstrs.size() > 1 ? "Quadratic constraints contain" : "Quadratic constraint contains";
  if (!warn.when(decades(s.qcQuad) >= 10, subject, "large coefficient range"))
    warn.when(s.qcQuad.max > 1e8, subject, "large coefficients");
  if (!warn.when(decades(s.qcLinear) >= 12, subject, "large coefficient range on linear part"))
    warn.when(s.qcLinear.max > 1e8, subject, "large coefficients on linear part");
  warn.when(s.qcRhs.max > 1e9, "Model contains large rhs on quadratic constraints");
  if (!warn.when(decades(s.qObj) >= 10,
                 "Model contains large quadratic objective coefficient range"))
    warn.when(s.qObj.max > 1e8, "Model contains large quadratic objective coefficients");
}

void warnMiddlePoints(Warnings &warn, const MagnitudeRange &x, const MagnitudeRange &y,
                      const char *where) {
  const bool largeX = x.max > 1e7, largeY = y.max > 1e7;
  if (!largeX && !largeY) return;
  const std::string text = std::string("Model contains large ") +
                           (largeX && largeY ? "x and y"
                            : largeX         ? "x"
                                             : "y") +
                           " values for middle points of " + where;
  warn.when(true, text.c_str());
}

void warnGeneral(Warnings &warn, const ModelStatistics &s) {
  warnMiddlePoints(warn, s.pwlObjMiddleX, s.pwlObjMiddleY, "PWL objective");
  warnMiddlePoints(warn, s.pwlConMiddleX, s.pwlConMiddleY, "PWL constraints");
  warn.when(s.indicatorRhs.max > 1e9, "Model contains large rhs on indicator constraints");
  warn.when(decades(s.indicatorCoef) >= 12,
            "Model contains large coefficient range on indicator constraints");
  warn.when(s.maxConstants.max > 1e9, "Model contains large constants on general MAX constraints");
  warn.when(s.minConstants.max > 1e9, "Model contains large constants on general MIN constraints");
}

template <auto Range, auto End>
void getStatistic(Model &m, const Elements &, double *out) {
  *out = modelStatistics(m).*Range.*End;
}

template <auto Range>
void registerRange(AttrTable &t, Attr max, Attr min) {
  t.handlers<double>(max).get = getStatistic<Range, &MagnitudeRange::max>;
  t.handlers<double>(min).get = getStatistic<Range, &MagnitudeRange::min>;
}

}  // namespace

const ModelStatistics &modelStatistics(Model &model) {
  DerivedData &derived = model.derived();
  if (!derived.statistics) derived.statistics = compute(model.data());
  return *derived.statistics;
}

void printStatistics(Model &model) {
  Env &env = model.env();
  if (!env.logReachesAnybody()) return;
  const ModelData &data = model.data();
  const ModelStatistics &s = modelStatistics(model);
  printRanges(env, data, s);
  Warnings warn(env);
  if (!warn.when(decades(s.matrix) >= 12, "Model contains large matrix coefficient range"))
    warn.when(s.matrix.max > 1e8, "Model contains large matrix coefficients");
  warn.when(s.obj.max > 1e9, "Model contains large objective coefficients");
  warn.when(s.rhs.max > 1e9, "Model contains large rhs");
  warn.when(s.bounds.max > 1e9, "Model contains large bounds");
  warnQuadratic(warn, data, s);
  warnGeneral(warn, s);
  if (warn.any() && env.get(Int::NumericFocus) == 0) {
    env.log(
        "         Consider reformulating model or setting NumericFocus parameter\n"
        "         to avoid numerical issues.\n");
  }
}

void registerStatisticsAttrs(AttrTable &t) {
  using M = ModelStatistics;
  registerRange<&M::matrix>(t, Attr::MaxCoeff, Attr::MinCoeff);
  registerRange<&M::bounds>(t, Attr::MaxBound, Attr::MinBound);
  registerRange<&M::obj>(t, Attr::MaxObjCoeff, Attr::MinObjCoeff);
  registerRange<&M::rhs>(t, Attr::MaxRHS, Attr::MinRHS);
  registerRange<&M::qcQuad>(t, Attr::MaxQCCoeff, Attr::MinQCCoeff);
  registerRange<&M::qObj>(t, Attr::MaxQObjCoeff, Attr::MinQObjCoeff);
  registerRange<&M::qcLinear>(t, Attr::MaxQCLCoeff, Attr::MinQCLCoeff);
  registerRange<&M::qcRhs>(t, Attr::MaxQCRHS, Attr::MinQCRHS);
}

}  // namespace tarvik
