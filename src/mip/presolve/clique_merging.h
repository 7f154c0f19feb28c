// Set packing rows grown by the conflict graph. A row that can take in so many literals that it
// covers other packing rows replaces them: fewer rows, and a tighter relaxation. Literals that
// exclude all members of a set partitioning row are false.
//
// Rows come and go, columns stay: there is nothing to undo.
//
// Literature: Achterberg, Bixby, Gu, Rothberg and Weninger (2020), section 4.2 (clique merging).
#pragma once

#include "base/solve_control.h"
#include "mip/problem.h"

namespace tarvik {

struct CliqueMergingResult {
  int rowsRemoved = 0;
  int rowsGrown = 0;
  int fixed = 0;
};

CliqueMergingResult mergeCliques(MipModel &model, const MipTolerances &tolerances, WorkMeter &work);

}  // namespace tarvik
