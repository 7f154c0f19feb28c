// What solves leave behind and attributes read: everything in the user's space and in the
// user's objective sense is derived at the attribute layer; the store itself holds values of the
// stored (minimization) model. A vector is empty while its data is not available.
#pragma once

#include "base/memory.h"
#include "base/types.h"

namespace tarvik {

struct SolutionStore {
  int status = 1;  // TVK_LOADED
  bool hasObjective = false;
  double objVal = 0;             // stored-model sense
  double objBound = kUndefined;  // stored-model sense
  Vec<double> x;                 // per variable
  Vec<double> slack;             // per constraint: rhs - activity
  Vec<double> pi, rc;            // duals and reduced costs, stored-model sense
  Vec<int> vbasis, cbasis;       // TVK_BASIC and so on
  Vec<double> farkasDual, unbdRay;
  double farkasProof = kUndefined;
  double runtime = 0, work = 0;  // seconds, work units
  double iterCount = 0;
  int barIterCount = 0;
  double nodeCount = 0;
  int solCount = 0;
  int concurrentWinMethod = -1;
  // Warm-start data that the caller gave for the next solve.
  Vec<double> pstart, dstart;
  bool userBasis = false;  // vbasis/cbasis were set by the caller since the last solve

  void clearResults();
};

}  // namespace tarvik
