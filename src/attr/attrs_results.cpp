// Attributes that a solve leaves behind.
#include "attr/handler_kit.h"

namespace tarvik {

namespace {

using S = SolutionStore;

void getObjVal(Model &m, const Elements &, double *out) {
  if (!m.solution().hasObjective) attrNotAvailable();
  *out = m.data().inCallersSense(m.solution().objVal);
}

void getObjBoundC(Model &m, const Elements &, double *out) {
  const S &s = m.solution();
  const double bound = s.objBoundC == kUndefined ? s.objBound : s.objBoundC;
  *out = bound == kUndefined ? bound : m.data().inCallersSense(bound);
}

void getXn(Model &m, const Elements &e, double *out) {
  const S &s = m.solution();
  const int number = m.env().get(Int::SolutionNumber);
  const Vec<double> *x = number < static_cast<int>(s.poolX.size()) ? &s.poolX[number]
                         : number == 0                             ? &s.x
                                                                   : nullptr;
  if (!x || x->empty()) attrNotAvailable();
  for (int k = 0; k < e.len; ++k) out[k] = (*x)[e[k]];
}

void getPoolObjVal(Model &m, const Elements &e, double *out) {
  const S &s = m.solution();
  const int number = m.env().get(Int::SolutionNumber);
  if (number < static_cast<int>(s.poolObj.size())) {
    *out = m.data().inCallersSense(s.poolObj[number]);
  } else if (number == 0) {
    getObjVal(m, e, out);
  } else {
    attrNotAvailable();
  }
}

// Objective ranges change places when the sense is turned.
template <auto Low, auto Up>
void getObjRange(Model &m, const Elements &e, double *out) {
  if (m.data().objSense > 0) {
    copySigned(m, m.solution().*Low, e, out);
  } else {
    copySigned(m, m.solution().*Up, e, out);
  }
}

void computeRanges(Model &m) {
  S &s = m.solution();
  if (s.saObjLow.empty() && s.solver) s.solver->computeRanges(m);
}
void computeKappa(Model &m) {
  S &s = m.solution();
  if (s.kappa == kUndefined && s.solver) s.kappa = s.solver->conditionEstimate(m);
}
void computeKappaExact(Model &m) {
  S &s = m.solution();
  if (s.kappaExact == kUndefined && s.solver) s.kappaExact = s.solver->conditionExact(m);
}
void computeTwoNormKappa(Model &m) {
  S &s = m.solution();
  if (s.n2Kappa == kUndefined && s.solver) s.n2Kappa = s.solver->conditionTwoNorm(m);
}

template <auto Member>
const int *iisVector(Model &m) {
  return m.solution().hasIis ? (m.solution().*Member).data() : nullptr;
}

void registerVectors(AttrTable &t) {
  const auto plain = [&](Attr attr, const double *(*storage)(Model &)) {
    t.handlers<double>(attr).storage = storage;
  };
  const auto derived = [&](Attr attr, void (*get)(Model &, const Elements &, double *)) {
    t.handlers<double>(attr).get = get;
  };
  plain(Attr::X, resultVector<&S::x>);
  plain(Attr::BarX, resultVector<&S::barX>);
  plain(Attr::Slack, resultVector<&S::slack>);
  plain(Attr::QCSlack, resultVector<&S::qcSlack>);
  plain(Attr::UnbdRay, resultVector<&S::unbdRay>);
  plain(Attr::FarkasDual, resultVector<&S::farkasDual>);
  plain(Attr::PreFixVal, resultVector<&S::preFixVal>);
  t.handlers<int>(Attr::VarPreStat).storage = resultVector<&S::varPreStat>;
  derived(Attr::Xn, getXn);
  derived(Attr::RC, signedResultVector<&S::rc>);
  derived(Attr::Pi, signedResultVector<&S::pi>);
  derived(Attr::QCPi, signedResultVector<&S::qcPi>);
  derived(Attr::SAObjLow, getObjRange<&S::saObjLow, &S::saObjUp>);
  derived(Attr::SAObjUp, getObjRange<&S::saObjUp, &S::saObjLow>);
  plain(Attr::SALBLow, resultVector<&S::saLbLow>);
  plain(Attr::SALBUp, resultVector<&S::saLbUp>);
  plain(Attr::SAUBLow, resultVector<&S::saUbLow>);
  plain(Attr::SAUBUp, resultVector<&S::saUbUp>);
  plain(Attr::SARHSLow, resultVector<&S::saRhsLow>);
  plain(Attr::SARHSUp, resultVector<&S::saRhsUp>);
}

void registerIis(AttrTable &t) {
  const auto set = [&](Attr attr, const int *(*storage)(Model &)) {
    t.handlers<int>(attr).storage = storage;
  };
  set(Attr::IISLB, iisVector<&S::iisLb>);
  set(Attr::IISUB, iisVector<&S::iisUb>);
  set(Attr::IISConstr, iisVector<&S::iisConstr>);
  set(Attr::IISSOS, iisVector<&S::iisSos>);
  set(Attr::IISQConstr, iisVector<&S::iisQConstr>);
  set(Attr::IISGenConstr, iisVector<&S::iisGenConstr>);
  set(Attr::IISMinimal, [](Model &m) {
    const S &s = m.solution();
    return s.hasIis ? &s.iisMinimal : nullptr;
  });
}

void registerCounters(AttrTable &t) {
  const auto ints = [&](Attr attr, const int *(*storage)(Model &)) {
    t.handlers<int>(attr).storage = storage;
  };
  const auto doubles = [&](Attr attr, const double *(*storage)(Model &)) {
    t.handlers<double>(attr).storage = storage;
  };
  ints(Attr::Status, resultScalar<&S::status>);
  ints(Attr::SolCount, resultScalar<&S::solCount>);
  ints(Attr::ConcurrentWinMethod, resultScalar<&S::concurrentWinMethod>);
  ints(Attr::ConcurrentWinner, resultScalar<&S::concurrentWinner>);
  ints(Attr::BarIterCount, resultScalar<&S::barIterCount>);
  ints(Attr::InfeasVar, resultScalar<&S::infeasVar>);
  ints(Attr::UnbdVar, resultScalar<&S::unbdVar>);
  ints(Attr::TuneResultCount, resultScalar<&S::tuneResultCount>);
  doubles(Attr::Runtime, resultScalar<&S::runtime>);
  doubles(Attr::Work, resultScalar<&S::work>);
  // Work units are the deterministic measure of time.
  doubles(Attr::RunVTime, resultScalar<&S::work>);
  doubles(Attr::FarkasProof, resultScalar<&S::farkasProof>);
  doubles(Attr::IterCount, resultScalar<&S::iterCount>);
  doubles(Attr::IterCount0, resultScalar<&S::iterCount0>);
  doubles(Attr::NodeCount, resultScalar<&S::nodeCount>);
  doubles(Attr::OpenNodeCount, resultScalar<&S::openNodeCount>);
  doubles(Attr::TOpen, resultScalar<&S::openNodeCount>);
  doubles(Attr::FirstSolNode, resultScalar<&S::firstSolNode>);
  doubles(Attr::MIPGap, resultScalar<&S::mipGap>);
  doubles(Attr::Kappa, resultScalar<&S::kappa>);
  doubles(Attr::KappaExact, resultScalar<&S::kappaExact>);
  doubles(Attr::N2Kappa, resultScalar<&S::n2Kappa>);
}

void registerBasisAnalysis(AttrTable &t) {
  for (const Attr range : {Attr::SAObjLow, Attr::SAObjUp, Attr::SALBLow, Attr::SALBUp,
                           Attr::SAUBLow, Attr::SAUBUp, Attr::SARHSLow, Attr::SARHSUp})
    t.setCompute(range, computeRanges);
  t.setCompute(Attr::Kappa, computeKappa);
  t.setCompute(Attr::KappaExact, computeKappaExact);
  t.setCompute(Attr::N2Kappa, computeTwoNormKappa);
}

}  // namespace

void registerResultAttrs(AttrTable &t) {
  registerVectors(t);
  registerIis(t);
  registerCounters(t);
  registerBasisAnalysis(t);
  t.handlers<double>(Attr::ObjVal).get = getObjVal;
  t.handlers<double>(Attr::ObjBound).get = signedResultScalar<&S::objBound>;
  t.handlers<double>(Attr::ObjBoundC).get = getObjBoundC;
  t.handlers<double>(Attr::PoolObjBound).get = signedResultScalar<&S::poolObjBound>;
  t.handlers<double>(Attr::PoolObjVal).get = getPoolObjVal;
}

}  // namespace tarvik
