// Adding variables and linear constraints, changing coefficients, marking deletions.
#include <cmath>
#include <cstring>

#include "model/edits.h"
#include "model/growth.h"
#include "model/validate.h"

namespace tarvik {

namespace {

constexpr std::size_t kVectorSlack = 50;
constexpr std::size_t kEntrySlack = 1000;

void checkBatchSize(const SparseBatch &batch, int pendingVectors, NzIndex pendingEntries) {
  constexpr double kMaxEntries = 9.2e18;
  if (batch.numNz < 0 ||
      (static_cast<double>(pendingEntries) + static_cast<double>(batch.numNz) + 1000) * 1.5 >=
          kMaxEntries ||
      (static_cast<double>(pendingVectors) + batch.count + 50) * 1.5 > 2147483647.0) {
    throw Error(TVK_ERROR_OUT_OF_MEMORY);
  }
}

void checkBatchArrays(const SparseBatch &batch) {
  if (batch.numNz < 0) throw Error(TVK_ERROR_OUT_OF_MEMORY);
  if (batch.numNz == 0) return;
  requireArgument(batch.beg && batch.ind && batch.val);
  for (int k = 0; k < batch.count; ++k) {
    if (batch.begin(k) < 0 || batch.begin(k) > batch.end(k) || batch.end(k) > batch.numNz) {
      throw Error(TVK_ERROR_INVALID_ARGUMENT, "Begin indices are not in ascending order");
    }
  }
}

void checkBatchValues(const SparseBatch &batch) {
  if (batch.numNz > 0) checkFinite(batch.val, batch.numNz);
}

// Indices within [0, limit) and unique in each vector. Returns the number of small entries.
NzIndex checkBatchIndices(const SparseBatch &batch, int limit, double tolerance,
                          Vec<unsigned> &marks, unsigned &stamp) {
  if (batch.numNz <= 0) return 0;
  if (static_cast<int>(marks.size()) < limit) marks.resize(limit);
  NzIndex numSmall = 0;
  for (int k = batch.count - 1; k >= 0; --k) {
    if (++stamp == 0) {
      std::fill(marks.begin(), marks.end(), 0u);
      stamp = 1;
    }
    for (NzIndex p = batch.begin(k); p < batch.end(k); ++p) {
      const int i = batch.ind[p];
      if (i < 0 || i >= limit) throw Error(TVK_ERROR_INDEX_OUT_OF_RANGE);
      if (marks[i] == stamp) throw Error(TVK_ERROR_DUPLICATES);
      marks[i] = stamp;
      numSmall += std::abs(batch.val[p]) < tolerance;
    }
  }
  return numSmall;
}

bool isGiven(const char *const *names, int k) { return names && names[k] && names[k][0]; }

// Checks the names of a batch and makes room for them; false when the list stays absent.
bool makeRoomForNames(NameList &list, int existing, int count, const char *const *names) {
  std::size_t bytes = 0;
  bool anyGiven = false;
  for (int k = 0; k < count; ++k) {
    if (!isGiven(names, k)) continue;
    const std::size_t length = std::strlen(names[k]);
    checkName({names[k], length});
    bytes += length;
    anyGiven = true;
  }
  if (!anyGiven && list.empty()) return false;
  list.reserve(static_cast<std::size_t>(existing) + count,
               (list.empty() ? existing : list.poolBytes()) + bytes + count);
  return true;
}

void appendNames(NameList &list, int existing, int count, const char *const *names) noexcept {
  while (list.size() < existing) list.append("");
  for (int k = 0; k < count; ++k) list.append(isGiven(names, k) ? names[k] : "");
}

void makeRoomForMatrix(SparseMatrix &a, int vectors, NzIndex entries) {
  makeRoom(a.start, vectors, kVectorSlack);
  makeRoom(a.index, entries, kEntrySlack);
  makeRoom(a.value, entries, kEntrySlack);
}

void appendMatrix(SparseMatrix &a, const SparseBatch &batch, double tolerance) noexcept {
  for (int k = 0; k < batch.count; ++k) {
    for (NzIndex p = batch.begin(k); p < batch.end(k); ++p) {
      if (std::abs(batch.val[p]) < tolerance) continue;
      a.index.push_back(batch.ind[p]);
      a.value.push_back(batch.val[p]);
    }
    a.start.push_back(static_cast<NzIndex>(a.index.size()));
  }
  a.numMajor += batch.count;
}

void appendColumnData(PendingColumns &cols, const VarBatch &batch) noexcept {
  for (int k = 0; k < batch.a.count; ++k) {
    const char type = batch.vtype ? checkedVarType(batch.vtype[k]) : 'C';
    double lb = batch.lb ? storedBound(batch.lb[k]) : 0;
    double ub = batch.ub ? storedBound(batch.ub[k]) : kInf;
    roundIntegerBounds(type, lb, ub);
    cols.obj.push_back(batch.obj ? clampToUserInf(batch.obj[k]) : 0);
    cols.lb.push_back(lb);
    cols.ub.push_back(ub);
    cols.vtype.push_back(type);
  }
}

// A range with one infinite side is an ordinary row.
void appendRange(PendingRows &rows, double lower, double upper) noexcept {
  char sense = '=';
  double rhs = clampToUserInf(upper), kept = -kUserInf;
  if (lower <= -kInfBound) {
    sense = '<';
  } else if (upper >= kInfBound) {
    sense = '>';
    rhs = clampToUserInf(lower);
  } else {
    kept = lower;
  }
  rows.sense.push_back(sense);
  rows.rhs.push_back(rhs);
  rows.lower.push_back(kept);
}

void appendRowData(PendingRows &rows, const ConstrBatch &batch) noexcept {
  for (int k = 0; k < batch.a.count; ++k) {
    const double rhs = batch.rhs ? batch.rhs[k] : 0;
    if (batch.isRange) {
      appendRange(rows, batch.lower ? batch.lower[k] : -kUserInf, rhs);
    } else {
      rows.sense.push_back(batch.sense ? checkedSense(batch.sense[k]) : '<');
      rows.rhs.push_back(clampToUserInf(rhs));
      rows.lower.push_back(-kUserInf);
    }
  }
}

}  // namespace

void addVars(Model &model, const VarBatch &batch) {
  const SparseBatch &a = batch.a;
  const double tolerance = model.env().get(Dbl::TARV_PAR_ZERO);
  const char *const *names = model.env().get(Int::IgnoreNames) ? nullptr : batch.names;
  checkBatchArrays(a);
  checkNoNan(batch.obj, a.count);
  checkNoNan(batch.lb, a.count);
  checkNoNan(batch.ub, a.count);
  checkBatchValues(a);
  for (int k = 0; batch.vtype && k < a.count; ++k) checkedVarType(batch.vtype[k]);
  model.edit([&](PendingChanges &p) {
    PendingColumns &cols = p.cols;
    const NzIndex numSmall =
        checkBatchIndices(a, p.currentConstrs(), tolerance, p.rowMarks, p.rowStamp);
    checkBatchSize(a, cols.count(), cols.a.numNz());
    makeRoomForMatrix(cols.a, a.count, a.numNz);
    for (Vec<double> *v : {&cols.obj, &cols.lb, &cols.ub}) makeRoom(*v, a.count, kVectorSlack);
    makeRoom(cols.vtype, a.count, kVectorSlack);
    const bool withNames = makeRoomForNames(cols.names, cols.count(), a.count, names);
    model.checkUpdateMode();

    if (withNames) appendNames(cols.names, cols.count(), a.count, names);
    appendMatrix(cols.a, a, tolerance);
    appendColumnData(cols, batch);
    if (numSmall > 0 && !cols.warnedSmall) {
      cols.warnedSmall = true;
      model.env().log(
          "Warning for adding variables: zero or small (< 1e-13) coefficients, ignored\n");
    }
  });
}

void addConstrs(Model &model, const ConstrBatch &batch) {
  const SparseBatch &a = batch.a;
  const double tolerance = model.env().get(Dbl::TARV_PAR_ZERO);
  const char *const *names = model.env().get(Int::IgnoreNames) ? nullptr : batch.names;
  checkBatchArrays(a);
  checkBatchValues(a);
  checkNoNan(batch.lower, a.count);
  checkNoNan(batch.rhs, a.count);
  model.edit([&](PendingChanges &p) {
    PendingRows &rows = p.rows;
    const NzIndex numSmall =
        checkBatchIndices(a, p.currentVars(), tolerance, p.colMarks, p.colStamp);
    for (int k = 0; batch.sense && k < a.count; ++k) checkedSense(batch.sense[k]);
    checkBatchSize(a, rows.count(), rows.a.numNz());
    makeRoomForMatrix(rows.a, a.count, a.numNz);
    for (Vec<double> *v : {&rows.rhs, &rows.lower}) makeRoom(*v, a.count, kVectorSlack);
    makeRoom(rows.sense, a.count, kVectorSlack);
    const bool withNames = makeRoomForNames(rows.names, rows.count(), a.count, names);
    model.checkUpdateMode();

    if (withNames) appendNames(rows.names, rows.count(), a.count, names);
    appendMatrix(rows.a, a, tolerance);
    appendRowData(rows, batch);
    if (numSmall > 0 && !rows.warnedSmall) {
      rows.warnedSmall = true;
      model.env().log(
          "Warning for adding constraints: zero or small (< 1e-13) coefficients, ignored\n");
    }
  });
}

void changeCoefs(Model &model, std::int64_t count, const int *constrs, const int *vars,
                 const double *values) {
  if (count == 0) return;
  if (count < 0) throw Error(TVK_ERROR_INDEX_OUT_OF_RANGE);
  requireArgument(constrs && vars && values);
  checkFinite(values, count);
  model.edit([&](PendingChanges &p) {
    const int numConstrs = p.currentConstrs(), numVars = p.currentVars();
    for (std::int64_t k = 0; k < count; ++k) {
      if (constrs[k] < 0 || constrs[k] >= numConstrs || vars[k] < 0 || vars[k] >= numVars)
        throw Error(TVK_ERROR_INDEX_OUT_OF_RANGE);
    }
    makeRoom(p.coefs.row, count, kEntrySlack);
    makeRoom(p.coefs.col, count, kEntrySlack);
    makeRoom(p.coefs.val, count, kEntrySlack);
    p.coefs.row.insert(p.coefs.row.end(), constrs, constrs + count);
    p.coefs.col.insert(p.coefs.col.end(), vars, vars + count);
    p.coefs.val.insert(p.coefs.val.end(), values, values + count);
  });
}

namespace {

struct DeletionTarget {
  Vec<char> &marks;
  int count;
};

DeletionTarget deletionTarget(PendingChanges &p, ElementKind kind) {
  switch (kind) {
    case ElementKind::Var:
      return {p.dropVar, p.currentVars()};
    case ElementKind::Constr:
      return {p.dropConstr, p.currentConstrs()};
    case ElementKind::Sos:
      return {p.dropSos, p.currentSos()};
    case ElementKind::QConstr:
      return {p.dropQConstr, p.currentQConstrs()};
    default:
      return {p.dropGenConstr, p.currentGenConstrs()};
  }
}

}  // namespace

void deleteElements(Model &model, ElementKind kind, int count, const int *indices) {
  if (count <= 0) return;
  requireArgument(indices);
  model.edit([&](PendingChanges &p) {
    const DeletionTarget target = deletionTarget(p, kind);
    for (int k = 0; k < count; ++k)
      if (indices[k] < 0 || indices[k] >= target.count) throw Error(TVK_ERROR_INDEX_OUT_OF_RANGE);
    if (static_cast<int>(target.marks.size()) < target.count) target.marks.resize(target.count);
    for (int k = 0; k < count; ++k) target.marks[indices[k]] = 1;
  });
}

}  // namespace tarvik
