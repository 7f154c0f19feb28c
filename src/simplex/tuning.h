// Tuned constants of the simplex engine, each with what it trades.
#pragma once

namespace tarvik::tuning {

// Weight of the newest solve in the running averages of result densities.
inline constexpr double kDensityMemory = 0.05;

// Pivots of row and column must agree to this relative difference; a larger one means that the
// factors have lost accuracy and asks for a refactorization.
inline constexpr double kPivotAgreement = 1e-7;

// An updated steepest-edge weight is believed while it is at least this share of the exact one.
inline constexpr double kWeightAgreement = 0.25;

// Exact weights are computed for several rows at once while rows of the inverse are at least so
// dense; sparser ones are cheaper one by one.
inline constexpr double kRowNormsDensity = 0.01;

// Smallest entry of the dual pivot row that may become a pivot, by updates since factorization:
// fresh factors allow smaller pivots.
inline constexpr double kRowPivotTolFresh = 1e-9;
inline constexpr double kRowPivotTolUsed = 3e-8;
inline constexpr double kRowPivotTolOld = 1e-6;
inline constexpr int kUsedUpdates = 10, kOldUpdates = 20;

// A pivot of fewer times the pivot tolerance is tiny: the primal simplex asks for more stable
// factors after one, the dual gives up to the primal when it has nothing better left.
inline constexpr double kTinyPivots = 10;
// Among tied candidates of the dual ratio test, pivots below this share of the largest do not
// count.
inline constexpr double kTiedPivotShare = 0.5;

// Base of the cost perturbation relative to the (damped) largest cost; larger values remove more
// degeneracy and leave more clean-up work. Smaller than some ten times the dual tolerance it is
// lost in the ratio test's own tolerance.
inline constexpr double kCostPerturbation = 1.5e-5;
// PerturbValue up to which it is multiplied, by how much (models with more rows than kManyRows, the
// others), and the working size of solves from scratch with more than kSomeRows rows. The base
// applies to that size unchanged.
inline constexpr double kDefaultPerturbValue = 2e-4;
inline constexpr int kSomeRows = 1000, kManyRows = 10000;
inline constexpr double kPerturbFactor = 10, kPerturbFactorManyRows = 25;
inline constexpr double kPerturbFromScratch = 0.005;

// Bounds of the phase-1 problem: [-kFreeBox, kFreeBox] for free variables, [0, 1] and [-1, 0] for
// one-sided ones.
inline constexpr double kFreeBox = 1000.0;

// A warm basis with at most so many infeasibilities is finished without perturbation.
inline constexpr int kWarmInfeasibilities = 10;

// What a loose row-wise copy of the matrix costs to make, in operations an entry. A freshly loaded
// basis forms its first pivot rows column by column, up to this cost.
inline constexpr double kRowCopyCost = 8;

// Pivot rows formed from the loose copy before the partitioned one is made.
inline constexpr int kLoosePrices = 50;
// Geometric scaling for a model that comes with a basis is content with this spread of a column's
// entries: few iterations will follow, and each pass costs as much as several of them. Stopping
// earlier on badly scaled models leaves bases that become singular.
inline constexpr double kWarmSpread = 10;

// Values updated through at most so many basis changes carry a verdict where that is allowed.
inline constexpr int kTrustedUpdates = 20;
// Iterations between tests of the dual bound against the cutoff.
inline constexpr int kCutoffTestInterval = 10;

// An optimum is polished to this tolerance while that costs few iterations, so that objective
// values do not carry the feasibility tolerance times large duals.
inline constexpr double kPolishTol = 1e-9;
inline constexpr int kPolishIterations = 100;
inline constexpr double kPolishShare = 0.05;  // of the iterations made so far

// Relative size of the random bound perturbation of the primal simplex.
inline constexpr double kBoundPerturbation = 5e-7;

// Devex weights are reset when an exact reference weight exceeds the kept one by this factor too
// often (errors of the framework), see the primal simplex.
inline constexpr double kDevexErrorFactor = 3.0;
inline constexpr int kDevexMaxErrors = 25;

// Rounds of "solve, remove perturbation, clean up" before the solve goes on without perturbation.
inline constexpr int kMaxPerturbedRounds = 3;
// Rounds in all before numerical trouble is reported.
inline constexpr int kMaxRounds = 40;

}  // namespace tarvik::tuning
