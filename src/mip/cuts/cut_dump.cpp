#include "mip/cuts/cut_dump.h"

#include "base/compensated_sum.h"

namespace tarvik {

void dumpCut(Log &log, const double *x, int type, int rank, int count, const int *index,
             const double *value, char sense, double rhs) {
  if (type >= 0) log.print("cuttype %d ", type);
  if (rank >= 0) log.print("(rank = %d) ", rank);
  log.print("(cutlen = %d) ", count);
  CompensatedSum activity(-rhs);
  for (int k = 0; k < count; ++k) {
    if (x) {
      log.print(" %+g x%d[%g]", value[k], index[k], x[index[k]]);
      activity.addProduct(value[k], x[index[k]]);
    } else {
      log.print(" %+g x%d", value[k], index[k]);
    }
  }
  if (x)
    log.print(" %c= %g (viol: %g)\n", sense, rhs, activity.value());
  else
    log.print(" %c= %g\n", sense, rhs);
}

void dumpRow(Log &log, int count, const int *index, const double *value, char sense, double rhs) {
  for (int k = 0; k < count; ++k) log.print(" %+gx%d", value[k], index[k]);
  log.print(" %s %g\n", sense == '=' ? "=" : sense == '>' ? ">=" : "<=", rhs);
}

}  // namespace tarvik
