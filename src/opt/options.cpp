#include "opt/options.h"

#include <algorithm>
#include <cstdlib>

namespace tarvik {

namespace {

// On, off and automatic as numbers of blocks.
int pairLimit(int option) { return option > 0 ? 2000000000 : option == 0 ? -1 : 0; }

}  // namespace

SimplexOptions simplexOptions(const Env &env) {
  SimplexOptions options;
  options.primalTol = env.get(Dbl::FeasibilityTol);
  options.dualTol = env.get(Dbl::OptimalityTol);
  options.markowitzTol = env.get(Dbl::MarkowitzTol);
  options.pivotTol = env.get(Dbl::TARV_PAR_PIVOTTOL);
  options.zeroTol = env.get(Dbl::TARV_PAR_ZERO);
  options.perturbValue = env.get(Dbl::PerturbValue);
  options.cutoff = env.get(Dbl::Cutoff);
  options.scaleFlag = env.get(Int::ScaleFlag);
  options.pricing = env.get(Int::SimplexPricing);
  options.normAdjust = env.get(Int::NormAdjust);
  options.numericFocus = env.get(Int::NumericFocus);
  options.luInterval = env.get(Int::TARV_PAR_LUINTERVAL);
  options.primalPartial = env.get(Int::TARV_PAR_PRIMALPARTIAL);
  options.quad = env.get(Int::Quad);
  if (options.perturbValue > 0) options.perturbAfter = env.get(Int::TARV_PAR_PERTURBITER);
  options.bigTol = env.get(Dbl::TARV_PAR_BIGTOL);
  options.crash = env.get(Int::TARV_PAR_SIMPLEXCRASH);
  options.warmBasis = env.get(Int::TARV_PAR_WARMBASIS);
  options.pairLimit = pairLimit(env.get(Int::TARV_PAR_LU2X2BLOCK));
  if (const int every = env.get(Int::TARV_PAR_SDISPINTERVAL); every > 0)
    options.logInterval = every;
  options.heldLimit = env.get(Int::TARV_PAR_STMPFIXES);
  options.exactNorms = env.get(Int::TARV_PAR_EXACTNORM) == 1 && std::abs(options.pricing) == 1;
  options.flipBeyondStep = env.get(Int::TARV_PAR_NONDEGENFLIP) != 0;
  options.weighRatios = env.get(Int::TARV_PAR_SIMPLEXPWRATIO) != 0;
  options.symbolicL = env.get(Int::TARV_PAR_SPXLHEIGHT) != 0;
  options.quitOnSingular = env.get(Int::TARV_PAR_REFACTORQUIT) != 0;
  options.endFactor = env.get(Int::TARV_PAR_SIMPLEXENDFAC);
  options.statistics = env.get(Int::TARV_PAR_LPSTATS);
  options.seed = env.get(Int::Seed);
  options.primalDualSwitch = env.get(Int::TARV_PAR_PRIMDUALSWITCH) != 0;
  return options;
}

PresolveOptions presolveOptions(const Env &env) {
  PresolveOptions options;
  options.level = env.get(Int::Presolve);
  options.aggregate = env.get(Int::Aggregate);
  options.aggFill = env.get(Int::AggFill);
  options.preDual = env.get(Int::PreDual);
  options.depRows = env.get(Int::PreDepRow);
  const int preBound = env.get(Int::TARV_PAR_PREBOUND);
  options.derivedBounds = preBound == 1 ? -1 : preBound / 2;
  options.sparsify = env.get(Int::PreSparsify);
  options.singletonCols = env.get(Int::TARV_PAR_PRESINGLECOL) != 0;
  options.parallel = env.get(Int::TARV_PAR_PREPARALLEL) != 0;
  options.dominated = env.get(Int::TARV_PAR_PREDOMINATE) != 0;
  options.multiplierLimit = env.get(Dbl::TARV_PAR_AGGMULTLIMIT);
  options.passes = env.get(Int::PrePasses);
  options.reductionLimit = env.get(Int::TARV_PAR_PRELIMIT);
  options.dualReductions = env.get(Int::DualReductions) != 0;
  options.affine = env.get(Int::PreCrush) == 1;
  options.primalTol = env.get(Dbl::FeasibilityTol);
  options.dualTol = env.get(Dbl::OptimalityTol);
  options.zeroTol = env.get(Dbl::TARV_PAR_ZERO);
  return options;
}

LpDriverOptions lpDriverOptions(const Env &env, bool logging) {
  LpDriverOptions options;
  options.simplex = simplexOptions(env);
  options.simplex.logging = logging;
  options.presolve = presolveOptions(env);
  options.presolve.logging = logging;
  options.mayChangeMethod = options.simplex.primalDualSwitch;
  return options;
}

BoundRules boundRules(const Env &env) {
  BoundRules rules;
  rules.infinite = std::min(env.get(Dbl::TARV_PAR_INFBOUND), kInfBound);
  rules.fixTol = std::clamp(env.get(Dbl::TARV_PAR_FIXTOL), 0.0, env.get(Dbl::FeasibilityTol));
  return rules;
}

Limits solveLimits(const Env &env) {
  Limits limits;
  limits.timeLimit = env.get(Dbl::TimeLimit);
  limits.workLimit = env.get(Dbl::WorkLimit);
  limits.iterationLimit = env.get(Dbl::IterationLimit);
  for (int k = 0; k < 3; ++k) limits.stopFlags[k] = env.stopFlag(k);
  limits.memory = &env.account();
  limits.start();
  return limits;
}

}  // namespace tarvik
