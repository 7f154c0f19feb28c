// What a simplex solve may be told: plain numbers, named after the parameters they come from.
#pragma once

namespace tarvik {

struct SimplexOptions {
  double primalTol = 1e-6;  // FeasibilityTol
  double dualTol = 1e-6;    // OptimalityTol
  double markowitzTol = 0.0078125;
  double pivotTol = 3e-8;
  double zeroTol = 1e-13;
  double perturbValue = 2e-4;
  double bigTol = 3e-6;   // dual pivots below it wait until there are no others
  double cutoff = 1e100;  // stop when the dual objective (offset included) exceeds it
  int scaleFlag = -1;     // -1 automatic, 0 none, 1 equilibrate, 2 geometric, 3 both
  int pricing = -1;       // SimplexPricing
  int normAdjust = -1;
  int primalPartial = 0;  // partial pricing: 1 for very wide models, 2 always
  int numericFocus = 0;
  int luInterval = 0;  // fixed refactorization interval when positive
  int quad = -1;       // extended precision: 0 never, 1 from the start, -1 when trouble asks for it
  int endFactor = 1;   // 0 gives up after few repairs of singular bases, 2 factors before verdicts
  int statistics = 0;  // LP statistics report: 1 of what is seen anyway, 2 with condition numbers
  int seed = 0;
  int crash = -1;  // Simplex::crash: 0 never, 1 and 2 on any model, -1 where it promises to pay
  int perturbAfter = -1;    // iterations (dual) or idle ones (primal) before it; -1 automatic
  int warmBasis = -1;       // of a given basis: bit 0 perturbs, bit 1 computes exact edge weights
  int pairLimit = 0;        // 2 x 2 blocks that a factorization looks for first; none up to 0
  int logInterval = 100;    // iterations between looks at the clock of the log
  int heldLimit = 100;      // dependent variables kept out of the basis for a while
  bool exactNorms = false;  // dual simplex: steepest edge begins with exact norms
  bool flipBeyondStep = false;  // dual simplex: boxed variables tied with the pivot flip too
  bool weighRatios = true;      // dual simplex: structurals before logicals among ties
  bool symbolicL = true;        // sparse solves with L
  bool quitOnSingular = false;  // the first singular basis ends the solve
  bool primalDualSwitch = true;
  bool polish = true;  // go on at an optimum until tighter tolerances hold, where that is cheap
  bool quickVerdicts = false;    // optima may rest on values updated through a few iterations
  bool wantCertificates = true;  // keep Farkas proof or ray
  bool logging = true;
  const char *logTitle = nullptr;  // stands above the header of the log
  double logSign = 1;              // -1 prints objectives of a maximization in its own sense
};

}  // namespace tarvik
