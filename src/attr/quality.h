// How well the stored solution satisfies the model: the attributes BoundVio ... ComplVioIndex.
//
// Violations are those of attr/violations.h. A constraint's residual is the difference between
// its stored slack and its slack computed from x; a dual residual that between the stored reduced
// cost and c - A'y. A reduced cost (dual value) violates the dual where it has the sign of a bound
// (row side) that does not exist; complementarity is the product of a multiplier and the distance
// from what it belongs to. The scaled families weigh rows by the power of two next to the inverse
// of their largest coefficient, as equilibration does; columns are not scaled.
#pragma once

#include "model/model.h"

namespace tarvik {

// Throws 10005 without a solution. Computed once until the solution changes.
const QualityReport &solutionQuality(Model &model);

}  // namespace tarvik
