// Heuristics that follow the caller's partitions of the columns. The partition heuristic goes
// through them one after the other: the columns of one partition are optimised again, together with
// those that belong to all, while the others keep the incumbent's values. Relax-and-fix builds a
// solution from nothing: in each step the columns of one partition are integral, those of earlier
// ones keep the values that were found for them, and those of later ones are relaxed.
//
// Literature: Wolsey (1998), section 12.5, for relax-and-fix.
#pragma once

#include "mip/heuristics/heuristic.h"

namespace tarvik {

// Bits of PartitionPlace: the points at which the partition heuristic runs.
enum PartitionPlace : int {
  kPartitionAtEnd = 1,
  kPartitionAtNodes = 2,
  kPartitionAfterCuts = 4,
  kPartitionBeforeCuts = 8,
  kPartitionBeforeRoot = 16
};

// The partition heuristic goes on around each better incumbent until none helps any more.
HeurResult heurPartition(HeuristicContext &context);

HeurResult heurRelaxAndFix(HeuristicContext &context);

}  // namespace tarvik
