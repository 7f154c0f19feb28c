// Building blocks of attribute handlers: storage in a vector of the model data or of the solution
// store, values turned back into the caller's objective sense, and setters that queue.
#pragma once

#include "attr/attr_table.h"
#include "model/edits.h"

namespace tarvik {

[[noreturn]] inline void attrNotAvailable() { throw Error(TVK_ERROR_DATA_NOT_AVAILABLE); }

// Whole vectors; empty ones are not available.
template <auto Member>
auto dataVector(Model &m) {
  const auto &v = m.data().*Member;
  return v.empty() ? nullptr : v.data();
}
template <auto Member>
auto resultVector(Model &m) {
  const auto &v = m.solution().*Member;
  return v.empty() ? nullptr : v.data();
}
template <auto Member>
auto resultScalar(Model &m) {
  return &(std::as_const(m.solution()).*Member);
}

// A vector of the stored sense in the caller's sense.
inline void copySigned(const Model &m, const Vec<double> &values, const Elements &e, double *out) {
  if (values.empty()) attrNotAvailable();
  for (int k = 0; k < e.len; ++k) out[k] = m.data().inCallersSense(values[e[k]]);
}
template <auto Member>
void signedResultVector(Model &m, const Elements &e, double *out) {
  copySigned(m, m.solution().*Member, e, out);
}
// A scalar of the stored sense in the caller's sense; kUndefined stays.
template <auto Member>
void signedResultScalar(Model &m, const Elements &, double *out) {
  const double value = m.solution().*Member;
  *out = value == kUndefined ? value : m.data().inCallersSense(value);
}

inline int elementLimit(const PendingChanges &p, ElementKind kind) {
  switch (kind) {
    case ElementKind::Var:
      return p.allVars();
    case ElementKind::Constr:
      return p.allConstrs();
    case ElementKind::Sos:
      return p.allSos();
    case ElementKind::QConstr:
      return p.allQConstrs();
    default:
      return p.allGenConstrs();
  }
}

template <auto Queue, ElementKind kind, class T>
void queueSet(Model &m, const Elements &e, const T *values) {
  m.edit([&](PendingChanges &p) { queueValues(p.*Queue, e, values, elementLimit(p, kind)); });
}

// Letters are checked and normalised before they are queued.
template <auto Queue, ElementKind kind, char (*Check)(char)>
void queueLetters(Model &m, const Elements &e, const char *letters) {
  Vec<char> checked(e.len);
  for (int k = 0; k < e.len; ++k) checked[k] = Check(letters[k]);
  queueSet<Queue, kind>(m, e, static_cast<const char *>(checked.data()));
}

}  // namespace tarvik
