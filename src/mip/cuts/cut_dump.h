// Cuts and rows as text in the log, for those who look for a faulty one. A solve never calls them.
#pragma once

#include "base/solve_control.h"

namespace tarvik {

// A negative type or rank is left out; `x` may be null, else values and the violation are told.
void dumpCut(Log &log, const double *x, int type, int rank, int count, const int *index,
             const double *value, char sense, double rhs);
// sense: '<', '>' or '='.
void dumpRow(Log &log, int count, const int *index, const double *value, char sense, double rhs);

}  // namespace tarvik
