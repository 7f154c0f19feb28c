#include "opt/warm_start.h"

#include <algorithm>
#include <utility>

#include "opt/lp_from_model.h"
#include "opt/options.h"
#include "simplex/start_basis.h"

namespace tarvik {

namespace {

void discardBasis(SolutionStore &store) {
  store.vbasis = {};
  store.cbasis = {};
  store.vDualNorm = {};
  store.cDualNorm = {};
  store.userBasis = false;
}

void discardStarts(SolutionStore &store) {
  store.pstart = {};
  store.dstart = {};
}

// Values for superbasic variables: the caller's start, else the last solution.
Vec<double> knownValues(const SolutionStore &store) {
  Vec<double> values = !store.pstart.empty() ? store.pstart
                       : !store.x.empty()    ? store.x
                                             : store.previousX;
  for (double &value : values)
    if (value >= kUserInf) value = 0;
  return values;
}

// Whether bounds alone do not tell where all nonbasic variables of a basis are.
bool wantsValues(const Basis &basis) {
  return basis.empty() || std::any_of(basis.col.begin(), basis.col.end(), [](VarStatus status) {
           return status == VarStatus::Free || status == VarStatus::Superbasic;
         });
}

Vec<double> knownWeights(const SolutionStore &store, const ModelData &data) {
  Vec<double> weights;
  if (static_cast<int>(store.vDualNorm.size()) != data.numVars() ||
      static_cast<int>(store.cDualNorm.size()) != data.numConstrs())
    return weights;
  weights = store.vDualNorm;
  weights.insert(weights.end(), store.cDualNorm.begin(), store.cDualNorm.end());
  return weights;
}

enum Method { kPrimal = 0, kDual = 1, kBarrier = 2 };

enum class Choice { Nothing, Basis, Vectors, Both };

struct Offer {
  bool basis = false;
  bool primal = false, dual = false;

  bool vectors() const { return primal || dual; }
};

Choice choose(const Env &env, const Offer &offer, int method) {
  const int warmStart = env.get(Int::LPWarmStart), use = env.get(Int::TARV_PAR_SPXSTARTUSE);
  if (warmStart == 0) return Choice::Nothing;
  const bool basis = offer.basis && (method != kBarrier || warmStart == 2);
  const bool oneSided = (method == kPrimal && offer.primal) || (method == kDual && offer.dual);
  const bool vectors = (offer.primal && offer.dual) || (use >= 1 && oneSided);
  if (!basis) return vectors ? Choice::Vectors : Choice::Nothing;
  if (!vectors) return Choice::Basis;
  return warmStart == 2 ? Choice::Vectors : use == 2 ? Choice::Both : Choice::Basis;
}

void logChoice(Env &env, Choice choice, const Offer &offer) {
  const bool both = offer.basis && offer.vectors();
  switch (choice) {
    case Choice::Nothing:
      if (offer.basis || offer.vectors())
        env.log("LP warm-start: discard %s\n", both          ? "basis and start vectors"
                                               : offer.basis ? "basis"
                                                             : "start vectors");
      break;
    case Choice::Basis:
      env.log(both ? "LP warm-start: discard start vectors, use basis\n"
                   : "LP warm-start: use basis\n");
      break;
    case Choice::Vectors:
      env.log(both ? "LP warm-start: discard basis, use start vectors\n"
                   : "LP warm-start: use start vectors\n");
      break;
    case Choice::Both:
      break;
  }
}

// A simplex variant starts from its own side only.
void dropOtherSide(Env &env, int method, Offer &offer) {
  if (env.get(Int::TARV_PAR_SPXSTARTUSE) < 1 || !offer.primal || !offer.dual) return;
  if (method == kPrimal) {
    env.log("Primal warm-start: use primal start, discard dual start\n");
    offer.dual = false;
  } else if (method == kDual) {
    env.log("Dual warm-start: use dual start, discard primal start\n");
    offer.primal = false;
  }
}

}  // namespace

WarmStart takeWarmStart(Model &model, int method) {
  Env &env = model.env();
  SolutionStore &store = model.solution();
  const ModelData &data = model.data();
  const auto fits = [](std::size_t size, int count) { return size == std::size_t(count); };
  Offer offer;
  offer.basis = fits(store.vbasis.size(), data.numVars()) &&
                fits(store.cbasis.size(), data.numConstrs()) &&
                data.numVars() + data.numConstrs() > 0;
  offer.primal = !store.pstart.empty() && fits(store.pstart.size(), data.numVars());
  offer.dual = !store.dstart.empty() && fits(store.dstart.size(), data.numConstrs());
  if (offer.basis && hasNonbasicInfiniteSlack(data, store.cbasis)) {
    env.log("Warning: nonbasic slack with infinite rhs, warm-start basis discarded\n");
    discardBasis(store);
    offer.basis = false;
  }
  const Choice choice = choose(env, offer, method);
  logChoice(env, choice, offer);
  WarmStart start;
  if (choice == Choice::Basis || choice == Choice::Both) {
    if (env.get(Int::LPWarmStart) == 2 && env.get(Int::Presolve) != 0)
      env.log("LP warm-start: get start vectors from basis, then crush them\n");
    start.basis = basisFromCodes(data, store.vbasis, store.cbasis, boundRules(env));
    start.edgeWeights = knownWeights(store, data);
  }
  if (choice == Choice::Vectors || choice == Choice::Both) dropOtherSide(env, method, offer);
  if (choice == Choice::Vectors) {
    if (offer.primal) start.primal = store.pstart;
    if (offer.dual) start.dual = store.dstart;
  }
  // A start vector goes before the last solution.
  if (choice == Choice::Basis) discardStarts(store);
  if (choice != Choice::Nothing && wantsValues(start.basis)) start.values = knownValues(store);
  discardStarts(store);
  if (start.basis.empty()) discardBasis(store);
  return start;
}

void makeBasisFromVectors(const LpModel &lp, Env &env, WarmStart &start) {
  if (!start.hasVectors() || lp.numRows == 0) return;
  StartBasis made = startBasis(lp, start.primal, start.dual);
  env.log("%s warm-start: %d superbasic variables.\n", start.primal.empty() ? "Dual" : "Primal",
          made.superbasics);
  start.basis = std::move(made.basis);
}

}  // namespace tarvik
