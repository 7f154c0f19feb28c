// Tuned constants of the factorization, each with what it trades.
#pragma once

#include <cstddef>

namespace tarvik::lu {

// Candidate rows and columns that the Markowitz search looks at before it takes the best pivot
// found: more search, less fill (Suhl and Suhl, 1990, advise 4).
inline constexpr int kSearchLimit = 4;

// Columns with two entries looked at for a partner, where such pairs are wanted.
inline constexpr int kPairSearch = 32;

// With so few multipliers, their rows are looked for in a column one by one, by comparisons
// that vectorize; with more, the column is scanned once.
inline constexpr std::size_t kFewMultipliers = 3;

// The active submatrix is finished densely from this density and dimension on: no more
// searching and linking, but zeros are worked on.
inline constexpr double kDenseDensity = 0.6;
inline constexpr int kDenseMinDim = 12;
// From this dimension on LAPACK is worth its start-up.
inline constexpr int kLapackMinDim = 1001;

// Spare room of a vector that is moved because it is full: a share of its length and a few.
// More room, fewer moves; the garbage left behind stays within a constant factor.
inline constexpr int kRoomShare = 2;
inline constexpr int kRoomExtra = 4;

// Symbolic solves: tried while the right-hand side is at most this dense and the prediction of
// the result at most that dense (Hall and McKinnon, 2005), and given up for a plain loop once
// the search has looked at more entries than this share of the plain loop's own length.
inline constexpr double kSparseRhsDensity = 0.10;
inline constexpr double kSparseResultDensity = 0.10;
inline constexpr double kSearchBudget = 0.25;
// A result denser than this is handed over without a list of its entries.
inline constexpr double kListDensity = 0.30;

// The new diagonal of an update, computed twice, must agree to this relative error; with a
// fresh factorization a larger one is borne, because factoring again would not help.
inline constexpr double kUpdateTol = 1e-7;
inline constexpr double kFreshUpdateTol = 1e-4;
// The row kept from BTRAN serves the update up to this diagonal.
inline constexpr double kMaxKeptPivot = 1e3;
// A diagonal that small is refused in any case.
inline constexpr double kMinUpdatePivot = 1e-13;
// A disagreement above this is accepted, but the factors are better renewed soon.
inline constexpr double kUpdateWarnTol = 1e-10;

// Refactorization by work is not asked for before this many updates.
inline constexpr int kMinUpdates = 20;
// Growth of the factors over the fresh ones that asks for a refactorization.
inline constexpr double kMaxGrowth = 3.0;

// Counted units (about nanoseconds) for one entry in the phases of a factorization and in
// solves.
inline constexpr double kUnitsGather = 6.0;
inline constexpr double kUnitsNucleus = 3.0;
inline constexpr double kUnitsDense = 0.5;
inline constexpr double kUnitsSolve = 1.5;
inline constexpr double kUnitsRowNorms = 4.0;
// In the nucleus, the price of a pivot's search and linking in entries, and that of an entry
// passed by comparisons that vectorize.
inline constexpr double kEntriesPerPivot = 20;
inline constexpr double kVectorShare = 0.2;

}  // namespace tarvik::lu
