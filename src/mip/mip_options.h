// What a MIP solve may be told: plain numbers, named after the parameters they come from.
#pragma once

#include "base/types.h"
#include "mip/problem.h"
#include "presolve/presolve.h"
#include "simplex/simplex_options.h"

namespace tarvik {

// Effective levels of the cut families: 0 off, 1 moderate, 2 aggressive, -1 automatic.
struct CutSettings {
  int cover = 2, clique = 1, implied = 2, projImplied = 0, mir = 1, strongCg = 1, flowCover = 1,
      mixing = 1, flowPath = 1, gubCover = 1, mipSep = 0, infProof = 2, rlt = 1, relaxLift = 1,
      bqp = 1, psd = 1, liftProject = -1, zeroHalf = 1, modK = 1, network = 1, subMip = 0;
  int gomoryPasses = -1;  // -1 automatic, -3 automatic and more aggressive, 0 none
  int aggregationPasses = -1;
  int passes = -1;  // rounds at the root; -1 automatic
};

// What the search sets from within to work on improving its incumbent; the first is a value of
// MipOptions::focus.
inline constexpr int kImproveFocus = 4;
inline constexpr double kImproveHeuristics = 0.5;
inline constexpr int kImproveRins = 10;

// Rewriting of ordered sets of type 1 and 2 with binaries.
struct SosBigMOptions {
  double limit[2] = {-1, -1};  // the largest big M; 0: off, -1: automatic
  int encoding[2] = {-1, -1};  // 0 to 3, see sos_big_m.h; -1: automatic
};

// The reductions of mixed-integer presolve that can be switched off.
struct MipReductions {
  bool coefficients = true, cliques = true, dominated = true, twoRows = true,
       impliedIntegers = true, components = true;
  int knapsackLifting = -1;  // the longest row; 0: off, negative: automatic
};

struct MipOptions {
  MipTolerances tolerances;
  SimplexOptions simplex;
  PresolveOptions presolve;
  SosBigMOptions sosBigM;
  MipReductions reductions;
  CutSettings cuts;

  double mipGap = 1e-4, mipGapAbs = 1e-10;
  double cutoff = kUserInf;  // minimization sense
  double bestObjStop = -kUserInf, bestBdStop = kUserInf;
  double nodeLimit = kUserInf, iterationLimit = kUserInf;
  int solutionLimit = kMaxInt;
  double improveStartTime = kUserInf, improveStartGap = 0, improveStartNodes = kUserInf;
  bool noSolutionCutoff = false;
  int restarts = 1;  // of the root, where it has fixed a good part of the columns
  double softTimeLimit = kUserInf, softWorkLimit = kUserInf;  // seconds, counted units; in the tree

  int focus = 0;             // MIPFocus, 4 in the improve-start phase
  double heuristics = 0.05;  // share of the work
  double rootHeurMult = 1;   // factor of the root's allowance for them
  int rins = -1;
  int pumpPasses = -1;
  int subMipNodes = 500;
  int startNodeLimit = -1;
  bool zeroObjStart = false;  // starts are completed without the objective
  int minRelNodes = -1, zeroObjNodes = -1;
  int int2binNodes = -1;  // -1: subMipNodes
  double noRelTime = 0, noRelWork = 0;
  int noRelSolutions = kMaxInt;
  int partitionPlace = 15;  // bits, see PartitionPlace
  int relaxAndFix = 0;      // 0 to 3
  int varBranch = -1, branchDir = 0;
  int strongBranchCandidates = -1;  // the most that are probed at one place; -1: automatic
  bool fixByStrongBranching = true;
  bool branchByCuts = true;   // columns of deep Gomory cuts are probed first
  double setBranchRatio = 2;  // chains with more fractional members are split as sets
  int symmetry = -1;
  int infProof = -1;  // above 0: learn from infeasible nodes
  int degenMoves = -1;
  int nodeMethod = -1;
  int poolSearchMode = 0, poolSolutions = 10;
  double poolGap = kUserInf, poolGapAbs = kUserInf;
  bool presolveMip = true;  // reductions beyond the linear ones
  bool subMip = false;      // a search inside a search: silent, no nested sub-MIPs
  int threads = 1;
  int seed = 0;
  double displayInterval = 5;
  bool verbose = false;  // every node is logged
  double objSense = 1;   // -1: printed objectives are negated
};

// For a search inside another: silent, for one solution on one thread, without the stops and the
// phases that are about the caller's objective.
inline MipOptions nestedOptions(MipOptions options) {
  options.subMip = true;
  options.simplex.logging = options.presolve.logging = false;
  options.bestBdStop = kUserInf;
  options.improveStartGap = 0;
  options.improveStartTime = options.improveStartNodes = kUserInf;
  options.poolSearchMode = 0;
  options.poolSolutions = 1;
  options.threads = 1;
  return options;
}

}  // namespace tarvik
