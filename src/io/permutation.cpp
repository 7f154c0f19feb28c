#include "io/permutation.h"

#include <numeric>

#include "base/random.h"

namespace tarvik {

namespace {

Vec<int> drawOrder(int count, bool shuffled, Random &random) {
  Vec<int> order(count);
  std::iota(order.begin(), order.end(), 0);
  if (shuffled) shuffle(order, random);
  return order;
}

template <class T>
void reorder(Vec<T> &values, const Vec<int> &order) {
  if (values.empty()) return;
  Vec<T> moved(order.size());
  for (std::size_t k = 0; k < order.size(); ++k) moved[k] = values[order[k]];
  values = std::move(moved);
}

void reorder(NameList &names, const Vec<int> &order) {
  if (names.empty()) return;
  NameList moved;
  for (const int k : order) moved.append(names.get(k));
  names = std::move(moved);
}

}  // namespace

void permuteForTest(Env &env, ParsedModel &parsed) {
  const int seed = env.get(Int::TARV_PAR_PERMUTATIONSEED);
  const bool plain = parsed.qobj.count() == 0 && parsed.qconstrs.empty() && parsed.sos.empty() &&
                     parsed.genConstrs.empty() && parsed.objectives.empty() &&
                     parsed.scenarios.empty() && parsed.pwl.empty() && parsed.lazy.empty();
  if (seed <= 0 || !plain) return;
  ModelInput &linear = parsed.linear;
  Random random(static_cast<std::uint64_t>(seed));
  const Vec<int> rows =
      drawOrder(linear.numConstrs, env.get(Int::TARV_PAR_PERMUTEROWS) == 1, random);
  const Vec<int> cols = drawOrder(linear.numVars, env.get(Int::TARV_PAR_PERMUTECOLS) == 1, random);
  Vec<int> newRow(rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) newRow[rows[i]] = static_cast<int>(i);
  SparseMatrix moved;
  moved.clear(linear.numConstrs);
  for (const int j : cols) {
    const NzIndex begin = linear.a.start[j];
    moved.append(linear.a.length(j), linear.a.index.data() + begin, linear.a.value.data() + begin);
  }
  for (int &row : moved.index) row = newRow[row];
  linear.a = std::move(moved);
  reorder(linear.obj, cols);
  reorder(linear.lb, cols);
  reorder(linear.ub, cols);
  reorder(linear.vtype, cols);
  reorder(linear.varNames, cols);
  reorder(linear.rhs, rows);
  reorder(linear.sense, rows);
  reorder(linear.rangeLower, rows);
  reorder(linear.constrNames, rows);
}

}  // namespace tarvik
