// The edits behind the building functions. Each checks its arguments at once and queues the
// change; a throwing edit leaves the model and its pending record as they were.
#pragma once

#include <cstddef>

#include "model/elements.h"
#include "model/model.h"

namespace tarvik {

// Sparse vectors as a caller hands them in: vector k holds the entries beg[k] .. beg[k+1] - 1,
// the last one ends at numNz.
struct SparseBatch {
  int count = 0;
  std::int64_t numNz = 0;
  const std::size_t *beg = nullptr;
  const int *ind = nullptr;
  const double *val = nullptr;

  NzIndex begin(int k) const { return numNz > 0 ? static_cast<NzIndex>(beg[k]) : 0; }
  NzIndex end(int k) const {
    return numNz > 0 && k + 1 < count ? static_cast<NzIndex>(beg[k + 1]) : numNz;
  }
};

struct VarBatch {
  SparseBatch a;
  const double *obj = nullptr, *lb = nullptr, *ub = nullptr;
  const char *vtype = nullptr;
  const char *const *names = nullptr;
};

struct ConstrBatch {
  SparseBatch a;
  const char *sense = nullptr;
  bool isRange = false;
  const double *lower = nullptr;  // ranges only
  const double *rhs = nullptr;    // the upper values of ranges
  const char *const *names = nullptr;
};

void addVars(Model &model, const VarBatch &batch);
void addConstrs(Model &model, const ConstrBatch &batch);
void changeCoefs(Model &model, std::int64_t count, const int *constrs, const int *vars,
                 const double *values);

enum class ElementKind { Var, Constr, Sos, QConstr, GenConstr };
void deleteElements(Model &model, ElementKind kind, int count, const int *indices);

void addQuadTerms(Model &model, int count, const int *rows, const int *cols, const double *values);
void deleteQuadTerms(Model &model);

// Appends values set for elements to a queue; limit is the number of elements of the kind.
template <class T>
void queueValues(ValueQueue<T> &queue, const Elements &elements, const T *values, int limit);
void queueTexts(TextQueue &queue, const Elements &elements, const char *const *texts, int limit);

}  // namespace tarvik
