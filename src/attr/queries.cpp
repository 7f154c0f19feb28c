#include "attr/queries.h"

#include <algorithm>

namespace tarvik {

double getCoef(const Model &model, int constr, int var) {
  const SparseMatrix &a = model.data().a;
  if (constr < 0 || constr >= a.numMinor) {
    throw Error(TVK_ERROR_INDEX_OUT_OF_RANGE, "Row index %d out of range in coefficient query",
                constr);
  }
  if (var < 0 || var >= a.numMajor) {
    throw Error(TVK_ERROR_INDEX_OUT_OF_RANGE, "Column index %d out of range in coefficient query",
                var);
  }
  for (NzIndex k = a.start[var]; k < a.start[var + 1]; ++k)
    if (a.index[k] == constr) return a.value[k];
  return 0;
}

namespace {

// Narrow offsets hold at most 2e9 entries.
template <class Offset>
void checkCount(NzIndex count) {
  if (sizeof(Offset) < 8 && count > kMaxInt) throw Error(TVK_ERROR_EXCEED_2B_NONZEROS);
}

void checkRange(int start, int len, int size, const char *kind) {
  if (start >= 0 && len >= 1 && len <= size && start <= size - len) return;
  throw Error(TVK_ERROR_INDEX_OUT_OF_RANGE, "Invalid index range for %s query: [%d, %d]", kind,
              start, static_cast<int>(static_cast<unsigned>(start) + static_cast<unsigned>(len)));
}

}  // namespace

template <class Offset>
NzIndex getVars(const Model &model, int start, int len, const SparseOutput<Offset> &out) {
  const SparseMatrix &a = model.data().a;
  checkRange(start, len, a.numMajor, "variable");
  const NzIndex first = a.start[start], count = a.start[start + len] - first;
  checkCount<Offset>(count);
  if (!out.wanted()) return count;
  for (int j = 0; j < len; ++j) out.beg[j] = static_cast<Offset>(a.start[start + j] - first);
  std::copy_n(a.index.begin() + first, count, out.ind);
  std::copy_n(a.value.begin() + first, count, out.val);
  return count;
}

namespace {

// A caller that asks for a part of the rows asks for the others too: the entries are then kept by
// rows, so that reading a model row by row costs no more than reading it at once.
void keepRows(const SparseMatrix &a, RowEntries &rows) {
  if (!rows.index.empty()) return;
  Vec<int> index(a.index.size());
  Vec<double> value(a.value.size());
  transposeEntries(a, rows.start, index.data(), value.data());
  rows.index = std::move(index);
  rows.value = std::move(value);
}

}  // namespace

template <class Offset>
NzIndex getConstrs(Model &model, int start, int len, const SparseOutput<Offset> &out) {
  const SparseMatrix &a = model.data().a;
  checkRange(start, len, a.numMinor, "constraint");
  RowEntries &rows = model.derived().rows;
  if (rows.start.empty()) {
    Vec<NzIndex> rowStart;
    transposedStarts(a, rowStart);
    rows.start = std::move(rowStart);
  }
  const NzIndex first = rows.start[start], count = rows.start[start + len] - first;
  checkCount<Offset>(count);
  if (!out.wanted()) return count;
  for (int i = 0; i < len; ++i) out.beg[i] = static_cast<Offset>(rows.start[start + i] - first);
  if (len == a.numMinor && rows.index.empty()) {
    transposeEntries(a, rows.start, out.ind, out.val);
    return count;
  }
  keepRows(a, rows);
  std::copy_n(rows.index.begin() + first, count, out.ind);
  std::copy_n(rows.value.begin() + first, count, out.val);
  return count;
}

template NzIndex getVars(const Model &, int, int, const SparseOutput<int> &);
template NzIndex getVars(const Model &, int, int, const SparseOutput<std::size_t> &);
template NzIndex getConstrs(Model &, int, int, const SparseOutput<int> &);
template NzIndex getConstrs(Model &, int, int, const SparseOutput<std::size_t> &);

GenConstr &getGenConstr(Model &model, int id, int type) {
  if (id < 0 || id >= model.data().numGenConstrs()) {
    throw Error(TVK_ERROR_INDEX_OUT_OF_RANGE,
                "Invalid index range for general constraint query: %d", id);
  }
  GenConstr &g = model.data().genConstrs[id];
  if (g.type != type) {
    throw Error(TVK_ERROR_INVALID_ARGUMENT,
                "General constraint has type %d, but called get method for type %d", g.type, type);
  }
  return g;
}

}  // namespace tarvik
