#include "lp/lp_status.h"

#include "tarvik.h"

namespace tarvik {

int statusCode(LpStatus status) {
  switch (status) {
    case LpStatus::Optimal:
      return TVK_OPTIMAL;
    case LpStatus::Infeasible:
      return TVK_INFEASIBLE;
    case LpStatus::Unbounded:
      return TVK_UNBOUNDED;
    case LpStatus::InfeasibleOrUnbounded:
      return TVK_INF_OR_UNBD;
    case LpStatus::Cutoff:
      return TVK_CUTOFF;
    case LpStatus::IterationLimit:
      return TVK_ITERATION_LIMIT;
    case LpStatus::TimeLimit:
      return TVK_TIME_LIMIT;
    case LpStatus::WorkLimit:
      return TVK_WORK_LIMIT;
    case LpStatus::MemoryLimit:
      return TVK_MEM_LIMIT;
    case LpStatus::Interrupted:
    case LpStatus::Callback:
      return TVK_INTERRUPTED;
    case LpStatus::NotSolved:
      return TVK_LOADED;
    case LpStatus::Numeric:
      break;
  }
  return TVK_NUMERIC;
}

}  // namespace tarvik
