#include "opt/basis_access.h"

#include <cmath>
#include <cstdlib>
#include <memory>

#include "opt/retained_solve.h"
#include "opt/solve_clock.h"
#include "simplex/condition.h"

namespace tarvik {

namespace {

void requirePointer(const void *pointer, const char *name) {
  if (!pointer) throw Error(TVK_ERROR_NULL_ARGUMENT, "NULL '%s' argument supplied", name);
}

void requireResult(const TVKsvec *x) {
  requirePointer(x, "x");
  requirePointer(x->ind, "x->ind");
  requirePointer(x->val, "x->val");
}

void requireIndex(int index, int count, const char *what) {
  if (index < 0 || index >= count)
    throw Error(TVK_ERROR_INDEX_OUT_OF_RANGE, "%s index %d out of range", what, index);
}

// A linear model without rows that has been solved: its basis is empty, and there is nothing to
// factor.
bool hasEmptyBasis(const Model &model) {
  const SolutionStore &store = model.solution();
  return model.data().numConstrs() == 0 && store.status != TVK_LOADED &&
         dynamic_cast<RetainedSolve *>(store.solver.get()) &&
         static_cast<int>(store.vbasis.size()) == model.data().numVars();
}

// Null when the basis is empty.
RetainedSolve *requireBasis(Model &model) {
  RetainedSolve *kept = RetainedSolve::withBasis(model);
  if (!kept && !hasEmptyBasis(model))
    throw Error(TVK_ERROR_DATA_NOT_AVAILABLE, "No basis is available");
  return kept;
}

// Calls body(simplex, work) with the factored basis, unless that is empty, under a clock of its
// own.
template <class Body>
void withBasis(Model &model, Body &&body) {
  RetainedSolve *kept = requireBasis(model);
  SolveClock clock(model);
  if (!kept) return;
  bool changed = false;
  Simplex &simplex = kept->factoredBasis(model, clock.control(), changed);
  if (changed) model.env().log("Warning: singular basis was repaired\n");
  body(simplex, clock.control().work);
}

Vec<double> readVector(const TVKsvec *b, int size) {
  requirePointer(b, "b");
  if (b->len < 0) throw Error(TVK_ERROR_INVALID_ARGUMENT, "Negative vector length %d", b->len);
  if (b->len > 0) {
    requirePointer(b->ind, "b->ind");
    requirePointer(b->val, "b->val");
  }
  Vec<double> dense(size, 0.0);
  for (int k = 0; k < b->len; ++k) {
    requireIndex(b->ind[k], size, "Vector");
    if (!std::isfinite(b->val[k]))
      throw Error(TVK_ERROR_INVALID_ARGUMENT, "Element %d of the vector is Nan or Inf", k);
    dense[b->ind[k]] += b->val[k];
  }
  return dense;
}

void writeVector(const Env &env, const Vec<double> &dense, TVKsvec *x) {
  const double zero = env.get(Dbl::TARV_PAR_ZERO);
  x->len = 0;
  for (int i = 0; i < static_cast<int>(dense.size()); ++i) {
    if (std::fabs(dense[i]) <= zero) continue;
    x->ind[x->len] = i;
    x->val[x->len++] = dense[i];
  }
}

Vec<double> unitVector(int size, int at) {
  Vec<double> unit(size, 0.0);
  unit[at] = 1;
  return unit;
}

// One block with the structure in front, for the caller to free.
struct BlockReleaser {
  void operator()(TVKsvec *block) const { std::free(block); }
};
using SvecBlock = std::unique_ptr<TVKsvec, BlockReleaser>;

SvecBlock makeBlock(int room) {
  const std::size_t bytes = sizeof(TVKsvec) + room * (sizeof(double) + sizeof(int));
  SvecBlock block(static_cast<TVKsvec *>(std::malloc(bytes)));
  if (!block) throw std::bad_alloc();
  block->len = room > 0 ? 0 : -1;
  block->val = reinterpret_cast<double *>(block.get() + 1);
  block->ind = reinterpret_cast<int *>(block->val + room);
  return block;
}

}  // namespace

void solveWithBasis(Model &model, const TVKsvec *b, TVKsvec *x) {
  requireResult(x);
  requireBasis(model);
  Vec<double> v = readVector(b, model.data().numConstrs());
  withBasis(model, [&](Simplex &simplex, WorkMeter &work) { simplex.ftran(v, work); });
  writeVector(model.env(), v, x);
}

void solveWithTransposedBasis(Model &model, const TVKsvec *b, TVKsvec *y) {
  requireResult(y);
  requireBasis(model);
  Vec<double> v = readVector(b, model.data().numConstrs());
  withBasis(model, [&](Simplex &simplex, WorkMeter &work) { simplex.btran(v, work); });
  writeVector(model.env(), v, y);
}

void inverseTimesColumn(Model &model, int col, TVKsvec *x) {
  requireResult(x);
  requireBasis(model);
  const SparseMatrix &a = model.data().a;
  requireIndex(col, a.numMajor, "Column");
  Vec<double> v(a.numMinor, 0.0);
  for (NzIndex k = a.start[col]; k < a.start[col + 1]; ++k) v[a.index[k]] += a.value[k];
  withBasis(model, [&](Simplex &simplex, WorkMeter &work) { simplex.ftran(v, work); });
  writeVector(model.env(), v, x);
}

void columnOfInverse(Model &model, int row, TVKsvec *x) {
  requireResult(x);
  requireBasis(model);
  requireIndex(row, model.data().numConstrs(), "Column");
  Vec<double> v = unitVector(model.data().numConstrs(), row);
  withBasis(model, [&](Simplex &simplex, WorkMeter &work) { simplex.ftran(v, work); });
  writeVector(model.env(), v, x);
}

void rowOfInverse(Model &model, int position, TVKsvec *x) {
  requireResult(x);
  requireBasis(model);
  requireIndex(position, model.data().numConstrs(), "Row");
  Vec<double> v = unitVector(model.data().numConstrs(), position);
  withBasis(model, [&](Simplex &simplex, WorkMeter &work) { simplex.btran(v, work); });
  writeVector(model.env(), v, x);
}

void rowOfInverseTimesMatrix(Model &model, int position, TVKsvec *x) {
  requireResult(x);
  requireBasis(model);
  const SparseMatrix &a = model.data().a;
  requireIndex(position, a.numMinor, "Row");
  Vec<double> row(a.numMajor, 0.0);
  withBasis(model, [&](Simplex &simplex, WorkMeter &work) {
    Vec<double> y = unitVector(a.numMinor, position);
    simplex.btran(y, work);
    for (int j = 0; j < a.numMajor; ++j)
      for (NzIndex k = a.start[j]; k < a.start[j + 1]; ++k) row[j] += y[a.index[k]] * a.value[k];
    row.insert(row.end(), y.begin(), y.end());
    // What is known exactly: B^-1 B is the identity.
    for (const VarIndex j : simplex.basisHead()) row[j] = 0;
    row[simplex.basisHead()[position]] = 1;
    work.charge(3 * static_cast<double>(a.numNz()));
  });
  writeVector(model.env(), row, x);
}

void getBasisHead(Model &model, int *head) {
  requirePointer(head, "bhead");
  withBasis(model, [&](Simplex &simplex, WorkMeter &) {
    std::copy(simplex.basisHead().begin(), simplex.basisHead().end(), head);
  });
}

void getSingularVectors(Model &model, TVKsvec **u, TVKsvec **v) {
  if (u) *u = nullptr;
  if (v) *v = nullptr;
  const int rows = model.data().numConstrs();
  SvecBlock right = u ? makeBlock(rows) : nullptr, left = v ? makeBlock(rows) : nullptr;
  withBasis(model, [&](Simplex &simplex, WorkMeter &work) {
    if (u) writeVector(model.env(), nullVector(simplex, false, work), right.get());
    if (v) writeVector(model.env(), nullVector(simplex, true, work), left.get());
  });
  if (u) *u = right.release();
  if (v) *v = left.release();
}

}  // namespace tarvik
