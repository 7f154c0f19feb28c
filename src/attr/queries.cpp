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

// The rows of the range are transposed out of the columns, which are visited in order, so that
// each row lists its columns in ascending order.
template <class Offset>
NzIndex getConstrs(const Model &model, int start, int len, const SparseOutput<Offset> &out) {
  const SparseMatrix &a = model.data().a;
  checkRange(start, len, a.numMinor, "constraint");
  Vec<NzIndex> next(static_cast<std::size_t>(len) + 1, 0);
  const unsigned range = static_cast<unsigned>(len);
  for (const int i : a.index) {
    const unsigned row = static_cast<unsigned>(i - start);
    if (row < range) ++next[row + 1];
  }
  for (int i = 0; i < len; ++i) next[i + 1] += next[i];
  const NzIndex count = next[len];
  checkCount<Offset>(count);
  if (!out.wanted()) return count;
  for (int i = 0; i < len; ++i) out.beg[i] = static_cast<Offset>(next[i]);
  for (int j = 0; j < a.numMajor; ++j) {
    for (NzIndex k = a.start[j]; k < a.start[j + 1]; ++k) {
      const unsigned row = static_cast<unsigned>(a.index[k] - start);
      if (row >= range) continue;
      const NzIndex at = next[row]++;
      out.ind[at] = j;
      out.val[at] = a.value[k];
    }
  }
  return count;
}

template NzIndex getVars(const Model &, int, int, const SparseOutput<int> &);
template NzIndex getVars(const Model &, int, int, const SparseOutput<std::size_t> &);
template NzIndex getConstrs(const Model &, int, int, const SparseOutput<int> &);
template NzIndex getConstrs(const Model &, int, int, const SparseOutput<std::size_t> &);

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
