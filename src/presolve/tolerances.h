// The tuned constants of presolve, each with what it trades.
#pragma once

namespace tarvik::presolve {

// Entries of parallel rows and columns agree to this part.
inline constexpr double kParallel = 1e-12;
// Values closer than this (relative) are taken as equal: activity bounds against sides, implied
// bounds against bounds. Larger finds more, and lets reduced solutions violate by as much.
inline constexpr double kRounding = 1e-9;
// Bounds closer than this (relative) are made equal.
inline constexpr double kCoincidence = 1e-12;
// Smallest pivot for substituting a free column singleton, relative to the largest entry of its
// row; when bounds are implied the error of the row returns on them divided by the pivot.
inline constexpr double kFreeSingletonPivot = 1e-6;
inline constexpr double kImpliedFreePivot = 1e-3;
// Smallest pivot for substitution in longer columns: growth of entries against sparsity.
inline constexpr double kSubstitutionPivot = 1e-2;
// Smallest coefficient of a slack that becomes the range of its row: row errors return on the
// slack divided by it.
inline constexpr double kSlackCoef = 1e-3;
// Two entries of a doubleton equation may differ by this factor.
inline constexpr double kDoubletonRatio = 1e3;
// Columns are not fixed at bounds beyond this: values of that size drown others in their rows.
inline constexpr double kHugeValue = 1e12;
// A reduced cost must be this far from zero for all duals before it fixes a column.
inline constexpr double kStrictDual = 1e-7;

}  // namespace tarvik::presolve
