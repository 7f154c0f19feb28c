// Presolve of what makes columns restricted: holes and ordered sets. The linear reductions leave
// restricted columns where they are and move their bounds only; here those bounds are brought in
// line with holes and sets, and what they decide is dropped: holes that are behind a bound, members
// that are zero, sets that allow everything that is left. Columns that were restricted by it are
// plain then.
//
// No column is removed, so there is nothing to undo.
#pragma once

#include "mip/mip_model.h"
#include "mip/problem.h"

namespace tarvik {

struct RestrictionResult {
  bool infeasible = false;
  int changes = 0;  // bounds moved, holes and sets dropped
};

// With keepPoints every feasible point stays one; otherwise the objective has a say.
RestrictionResult simplifyRestrictions(MipModel &model, const MipTolerances &tolerances,
                                       bool keepPoints);

// A column: it has a hole or is a member of a set.
Vec<char> restrictedColumns(const MipModel &model);

}  // namespace tarvik
