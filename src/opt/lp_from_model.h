// Between the user's model and the kernels' currency. Going in, every constraint becomes a row
// with its bounds; coming back, a kernel's solution becomes the vectors of the solution store.
// Model and store are in the stored (minimization) sense, so no sign changes here.
//
// A bound that points the impossible way (a lower bound of plus infinity, a '<' row with right
// hand side minus infinity) has no counterpart in an LpModel, where infinite always means
// absent: findBadBounds names the first one before a model is built.
#pragma once

#include "lp/lp_model.h"
#include "model/model_data.h"
#include "model/solution_store.h"
#include "tarvik.h"

namespace tarvik {

// How the bounds of variables are read: from where on they are infinite, and how close to each
// other they make a constant of the variable.
struct BoundRules {
  double infinite = kInfBound;
  double fixTol = 0;
};

struct BadBounds {
  enum class Kind { None, Column, Row } kind = Kind::None;
  int index = -1;
  // The bound rules out every value (infeasible), or pulls the objective to minus infinity.
  bool unbounded = false;
};

// The first variable whose bounds cross by more than tol or are infinite on the wrong side, or
// the first constraint whose right-hand side is infinite on the wrong side.
BadBounds findBadBounds(const ModelData &data, double tol, const BoundRules &rules = {});

// Bounds as the kernels take them, infinite ones as +-kInf.
struct Bounds {
  double lower, upper;
};
inline double clamped(double bound, double infinite) {
  if (bound >= infinite) return kInf;
  if (bound <= -infinite) return -kInf;
  return bound;
}

inline Bounds colBounds(const ModelData &data, int col, const BoundRules &rules) {
  const Bounds bounds{clamped(data.lb[col], rules.infinite), clamped(data.ub[col], rules.infinite)};
  if (bounds.lower == bounds.upper || bounds.upper - bounds.lower > rules.fixTol) return bounds;
  const double middle = 0.5 * (bounds.lower + bounds.upper);
  return {middle, middle};
}

inline Bounds rowBounds(const ModelData &data, int row) {
  const double rhs = clamped(data.rhs[row], kInfBound);
  return {data.sense[row] == TVK_LESS_EQUAL ? -kInf : rhs,
          data.sense[row] == TVK_GREATER_EQUAL ? kInf : rhs};
}

// Matrices with two billion entries are beyond the 32-bit positions that kernels keep them by.
void requireSolvableSize(NzIndex nonzeros);

// Bounds that cross by no more than the tolerance of findBadBounds meet in their middle.
LpModel lpFromModel(const ModelData &data, const BoundRules &rules = {});

// A basis as the interface knows it (TVK_BASIC and so on) and back. Nonbasic slacks count as at
// the only finite side of their row.
Basis basisFromCodes(const ModelData &data, const Vec<int> &vbasis, const Vec<int> &cbasis,
                     const BoundRules &rules);
void basisToCodes(const Basis &basis, Vec<int> &vbasis, Vec<int> &cbasis);

// True when a nonbasic slack belongs to a row without a finite right-hand side.
bool hasNonbasicInfiniteSlack(const ModelData &data, const Vec<int> &cbasis);

// Stores what the solution has: vectors that are empty in it stay unavailable in the store. The
// Farkas certificate comes out as multipliers l of a contradiction l'A x <= l'b.
void storeSolution(const ModelData &data, LpSolution &&solution, SolutionStore &store);

}  // namespace tarvik
