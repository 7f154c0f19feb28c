// What several heuristics need: targets for columns, points completed by propagation and by the
// continuous columns, and budgets.
#pragma once

#include "mip/heuristics/heuristic.h"

namespace tarvik {

// True when the heuristic has to end: its work is used up, or a limit of the solve is reached.
bool isExhausted(const HeuristicContext &context);

// The point of the box [lower, upper] that is nearest to `value`; rounded for integral columns.
double nearestValue(const Problem &problem, int col, double lower, double upper, double value);

// Hands over a point whose integral values are chosen. If rows are violated, continuous columns
// may still be able to make up for it: they are chosen anew unless propagation says they cannot.
bool submitChosen(HeuristicContext &context, const Vec<double> &x, SolutionSource source);

// Fixes the columns in this order at the value nearest to their target, with propagation after
// each; a value that fails is replaced by a neighbour or an end of the box, a limited number of
// times. Leaves the domain as it is; true when a solution was accepted.
bool fixAndPropagate(HeuristicContext &context, const Vec<int> &order, const Vec<double> &target,
                     SolutionSource source);

}  // namespace tarvik
