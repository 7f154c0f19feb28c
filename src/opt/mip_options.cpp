#include "opt/mip_options.h"

#include <algorithm>

#include "opt/options.h"

namespace tarvik {

CutSettings resolveCutSettings(const Env &env) {
  const int cuts = env.get(Int::Cuts), common = std::min(cuts, 2);
  const auto level = [&](Int parameter, int automatic) {
    const int own = env.get(parameter);
    if (own >= 0) return own;
    return common >= 0 ? common : automatic;
  };
  // Families that only the most aggressive common level switches on.
  const auto onlyAggressive = [&](Int parameter) {
    const int own = env.get(parameter);
    return own >= 0 ? own : common == 2 ? 1 : 0;
  };
  CutSettings result;
  result.cover = level(Int::CoverCuts, 2);
  result.clique = level(Int::CliqueCuts, 1);
  result.implied = level(Int::ImpliedCuts, 2);
  result.projImplied = onlyAggressive(Int::ProjImpliedCuts);
  result.mir = level(Int::MIRCuts, 1);
  result.strongCg = level(Int::StrongCGCuts, 1);
  result.flowCover = level(Int::FlowCoverCuts, 1);
  result.mixing = level(Int::MixingCuts, 1);
  result.flowPath = level(Int::FlowPathCuts, 1);
  result.gubCover = level(Int::GUBCoverCuts, 1);
  result.mipSep = level(Int::MIPSepCuts, 0);
  result.infProof = level(Int::InfProofCuts, 2);
  result.rlt = level(Int::RLTCuts, 1);
  result.relaxLift = level(Int::RelaxLiftCuts, 1);
  result.bqp = level(Int::BQPCuts, 1);
  result.psd = level(Int::PSDCuts, 1);
  result.liftProject = level(Int::LiftProjectCuts, -1);
  result.zeroHalf = level(Int::ZeroHalfCuts, 1);
  result.modK = level(Int::ModKCuts, 1);
  result.network = level(Int::NetworkCuts, 1);
  result.subMip = onlyAggressive(Int::SubMIPCuts);
  result.gomoryPasses = env.get(Int::GomoryPasses);
  if (result.gomoryPasses < 0)
    result.gomoryPasses = common == 0 ? 0 : cuts == 2 ? 5 : cuts == 3 ? -3 : -1;
  result.aggregationPasses = env.get(Int::CutAggPasses);
  result.passes = env.get(Int::CutPasses);
  return result;
}

MipOptions mipOptions(const Env &env, int objSense) {
  MipOptions options;
  options.tolerances.primal = env.get(Dbl::FeasibilityTol);
  options.tolerances.dual = env.get(Dbl::OptimalityTol);
  options.tolerances.integral = env.get(Dbl::IntFeasTol);
  options.simplex = simplexOptions(env);
  options.simplex.logSign = objSense;
  options.simplex.logTitle = "Root simplex log...";
  options.simplex.wantCertificates = false;
  options.presolve = presolveOptions(env);
  options.presolve.keepPoints = env.get(Int::LazyConstraints) == 1;
  options.sosBigM.limit[0] = env.get(Dbl::PreSOS1BigM);
  options.sosBigM.limit[1] = env.get(Dbl::PreSOS2BigM);
  options.sosBigM.encoding[0] = env.get(Int::PreSOS1Encoding);
  options.sosBigM.encoding[1] = env.get(Int::PreSOS2Encoding);
  options.reductions.coefficients = env.get(Int::TARV_PAR_PRECOEFFICIENT) != 0;
  options.reductions.cliques = env.get(Int::TARV_PAR_PRECLIQUE) != 0;
  options.reductions.dominated = env.get(Int::TARV_PAR_PREDOMINATE) != 0;
  options.reductions.twoRows = env.get(Int::TARV_PAR_PRETWOROWS) != 0;
  options.reductions.knapsackLifting = env.get(Int::TARV_PAR_PREKNAPLIFTLEN);
  options.reductions.impliedIntegers = env.get(Int::TARV_PAR_IMPLIEDINT) != 0;
  options.reductions.components = env.get(Int::TARV_PAR_PRECONNECTED) != 0;
  options.cuts = resolveCutSettings(env);
  options.mipGap = env.get(Dbl::MIPGap);
  options.mipGapAbs = env.get(Dbl::MIPGapAbs);
  options.cutoff = env.get(Dbl::Cutoff);
  options.bestObjStop = env.get(Dbl::BestObjStop);
  options.bestBdStop = env.get(Dbl::BestBdStop);
  options.nodeLimit = env.get(Dbl::NodeLimit);
  options.iterationLimit = env.get(Dbl::IterationLimit);
  options.solutionLimit = env.get(Int::SolutionLimit);
  options.improveStartTime = env.get(Dbl::ImproveStartTime);
  options.improveStartGap = env.get(Dbl::ImproveStartGap);
  options.improveStartNodes = env.get(Dbl::ImproveStartNodes);
  if (env.get(Int::TARV_PAR_PRERESTART) == 0) options.restarts = 0;
  options.softTimeLimit = env.get(Dbl::TARV_PAR_TIMESOFTLIMIT);
  options.softWorkLimit = env.get(Dbl::TARV_PAR_VTIMESOFTLIMIT);
  options.noSolutionCutoff = env.get(Int::TARV_PAR_NOSOLCUTOFF) == 1;
  options.focus = env.get(Int::MIPFocus);
  options.heuristics = env.get(Dbl::Heuristics);
  options.rootHeurMult = env.get(Dbl::TARV_PAR_ROOTHEURMULT);
  options.rins = env.get(Int::RINS);
  options.pumpPasses = env.get(Int::PumpPasses);
  options.subMipNodes = env.get(Int::SubMIPNodes);
  options.startNodeLimit = env.get(Int::StartNodeLimit);
  options.zeroObjStart = env.get(Int::TARV_PAR_ZEROOBJSTART) == 1;
  options.minRelNodes = env.get(Int::MinRelNodes);
  options.zeroObjNodes = env.get(Int::ZeroObjNodes);
  options.int2binNodes = env.get(Int::TARV_PAR_INT2BINNODES);
  options.noRelTime = env.get(Dbl::NoRelHeurTime);
  options.noRelWork = env.get(Dbl::NoRelHeurWork);
  options.noRelSolutions = env.get(Int::TARV_PAR_NORELHEURSOLS);
  options.partitionPlace = env.get(Int::PartitionPlace);
  options.relaxAndFix = env.get(Int::TARV_PAR_PARTRELAXANDFIXHEUR);
  options.varBranch = env.get(Int::VarBranch);
  options.branchDir = env.get(Int::BranchDir);
  options.strongBranchCandidates = env.get(Int::TARV_PAR_SBMAXCANDS);
  options.setBranchRatio = env.get(Dbl::TARV_PAR_SOSBRRAT);
  options.fixByStrongBranching = env.get(Int::TARV_PAR_SBFIX) != 0;
  options.branchByCuts = env.get(Int::TARV_PAR_GMICUTBRANCH) != 0;
  options.symmetry = env.get(Int::DualReductions) == 1 ? env.get(Int::Symmetry) : 0;
  options.infProof = env.get(Int::TARV_PAR_INFPROOF);
  options.degenMoves = env.get(Int::DegenMoves);
  options.nodeMethod = env.get(Int::NodeMethod);
  options.poolSearchMode = env.get(Int::PoolSearchMode);
  options.poolSolutions = env.get(Int::PoolSolutions);
  options.poolGap = env.get(Dbl::PoolGap);
  options.poolGapAbs = env.get(Dbl::PoolGapAbs);
  options.threads = env.effectiveThreads();
  options.seed = env.get(Int::Seed);
  options.displayInterval = env.get(Int::DisplayInterval);
  options.verbose = env.get(Int::OutputFlag) > 1;
  options.objSense = objSense;
  return options;
}

}  // namespace tarvik
