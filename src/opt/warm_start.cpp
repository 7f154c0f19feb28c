#include "opt/warm_start.h"

#include "opt/lp_from_model.h"

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

}  // namespace

WarmStart takeWarmStart(Model &model) {
  Env &env = model.env();
  SolutionStore &store = model.solution();
  const ModelData &data = model.data();
  const auto fits = [](std::size_t size, int count) { return size == std::size_t(count); };
  bool hasBasis = fits(store.vbasis.size(), data.numVars()) &&
                  fits(store.cbasis.size(), data.numConstrs()) &&
                  data.numVars() + data.numConstrs() > 0;
  const bool hasStarts = !store.pstart.empty() || !store.dstart.empty();

  if (hasBasis && hasNonbasicInfiniteSlack(data, store.cbasis)) {
    env.log("Warning: nonbasic slack with infinite rhs, warm-start basis discarded\n");
    discardBasis(store);
    hasBasis = false;
  }
  const bool useBasis = hasBasis && env.get(Int::LPWarmStart) > 0;
  WarmStart start;
  if (useBasis) {
    env.log(hasStarts ? "LP warm-start: discard start vectors, use basis\n"
                      : "LP warm-start: use basis\n");
    start.basis = basisFromCodes(data, store.vbasis, store.cbasis);
    start.values = knownValues(store);
  } else if (hasBasis || hasStarts) {
    env.log("LP warm-start: discard %s\n", hasBasis && hasStarts ? "basis and start vectors"
                                           : hasBasis            ? "basis"
                                                                 : "start vectors");
  }
  if (hasStarts) discardStarts(store);
  if (!useBasis) discardBasis(store);
  return start;
}

}  // namespace tarvik
