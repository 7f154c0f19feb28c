// Independent checks of solutions and certificates against a model, in the model's own scale.
// Every driver calls these before it believes a kernel. Sums are compensated.
#pragma once

#include "lp/lp_model.h"

namespace tarvik {

struct SolutionQuality {
  double boundViolation = 0, boundViolationSum = 0;      // columns outside their bounds
  double rowViolation = 0, rowViolationSum = 0;          // row activities outside their bounds
  double activityResidual = 0, activityResidualSum = 0;  // |A x - rowActivity|
  double dualViolation = 0, dualViolationSum = 0;        // wrong signs of reduced costs and duals
  double dualResidual = 0, dualResidualSum = 0;          // |cost - A'y - colDual|
  double complementarity = 0, complementaritySum = 0;    // |dual| x distance to its bound
  double objective = 0;                                  // cost'x + offset, recomputed
};

// Primal measures need colValue (and rowActivity for the residual); dual ones rowDual and
// colDual. Absent (empty) vectors leave their measures at 0. A variable counts as "at a bound"
// within primalTol.
SolutionQuality checkSolution(const LpModel &lp, const LpSolution &solution, double primalTol);

// A Farkas certificate y proves infeasibility when the smallest value that y'(Ax) can take over
// the column bounds exceeds the largest that the row bounds allow, or the other way round (y is
// accepted with either sign: as a dual ray, whose signs are those of rowDual, or negated).
// Multipliers that need an infinite row bound count as zero, and so do, if it takes that, those
// below dropTol times the largest; a combined coefficient against an infinite column bound spoils
// the proof unless it is mere cancellation noise. Returns the proven violation (positive: a proof),
// relative to the size of the terms in the sum; not positive: no proof.
double farkasViolation(const LpModel &lp, const Vec<double> &farkas, double dropTol = 1e-9);

// A ray r proves unboundedness (given feasibility) when A r and r respect the finite bounds'
// recession directions within tol x |r| and cost'r < 0. Returns cost'r / |r|, or 0: no proof.
double rayImprovement(const LpModel &lp, const Vec<double> &ray, double tol = 1e-9);

}  // namespace tarvik
