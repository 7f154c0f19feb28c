#include "model/solution_store.h"

#include <utility>

namespace tarvik {

void SolutionStore::clearResults() {
  SolutionStore fresh;
  fresh.vbasis = std::move(vbasis);
  fresh.cbasis = std::move(cbasis);
  fresh.userBasis = userBasis;
  fresh.vDualNorm = std::move(vDualNorm);
  fresh.cDualNorm = std::move(cDualNorm);
  fresh.pstart = std::move(pstart);
  fresh.dstart = std::move(dstart);
  fresh.extendedPrecision = extendedPrecision;
  fresh.solver = std::move(solver);
  fresh.runtime = runtime;
  fresh.work = work;
  fresh.generation = generation + 1;
  fresh.previousX = std::move(x.empty() ? previousX : x);
  fresh.solvedVars = std::move(solvedVars);
  *this = std::move(fresh);
}

void SolutionStore::clearAll() {
  SolutionStore fresh;
  fresh.generation = generation + 1;
  *this = std::move(fresh);
}

}  // namespace tarvik
