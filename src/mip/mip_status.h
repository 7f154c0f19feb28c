// What a mixed-integer search ends with.
#pragma once

#include "base/solve_control.h"

namespace tarvik {

enum class MipStatus {
  Running,
  Optimal,
  Infeasible,
  InfeasibleOrUnbounded,
  Unbounded,
  IterationLimit,
  NodeLimit,
  TimeLimit,
  SolutionLimit,
  Interrupted,
  Numeric,
  Suboptimal,  // some relaxations could not be solved
  UserObjectiveLimit,
  WorkLimit,
  MemoryLimit,
  ImproveStart,  // never leaves the search
  Restart,       // the root has fixed so much that it should be presolved again
  SoftLimit
};

// Running where nothing asks for a stop.
MipStatus statusOf(StopReason reason);

}  // namespace tarvik
