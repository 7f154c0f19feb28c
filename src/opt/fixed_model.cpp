// A model with its discrete decisions fixed as a solution made them.
#include <algorithm>
#include <cmath>

#include "model/data_edit.h"
#include "opt/derived_models.h"
#include "tarvik.h"

namespace tarvik {

namespace {

void fixAt(ModelData &data, int j, double value) { data.lb[j] = data.ub[j] = value; }

void fixVariable(ModelData &data, int j, double x) {
  const char type = data.vtype[j];
  const bool mustChoose = data.lb[j] > 0 || data.ub[j] < 0;
  const double nearest = data.lb[j] > 0 ? data.lb[j] : data.ub[j];
  if (type == 'B' || type == 'I' || type == 'N')
    fixAt(data, j, std::round(x));
  else if (type == 'S' && mustChoose && std::abs(x) < 0.5 * std::abs(nearest))
    fixAt(data, j, 0);
  data.vtype[j] = 'C';
}

// The members next to each other that hold most of the sum stay free, as many as the type allows.
void fixSos(ModelData &data, const Sos &sos, const Vec<double> &x) {
  const int size = static_cast<int>(sos.ind.size());
  int best = 0;
  double bestSum = -1;
  for (int first = 0; first + sos.type <= size || first == 0; ++first) {
    double sum = 0;
    for (int k = first; k < std::min(size, first + sos.type); ++k) sum += std::abs(x[sos.ind[k]]);
    if (sum > bestSum) {
      best = first;
      bestSum = sum;
    }
  }
  for (int k = 0; k < size; ++k)
    if (k < best || k >= best + sos.type) fixAt(data, sos.ind[k], 0);
}

// True when the fixed variables decide the constraint; what it still demands is added to rows.
bool resolve(const ModelData &data, int k, const Vec<double> &x, NewRows &rows) {
  const GenConstr &g = data.genConstrs[k];
  if (g.type == TVK_GENCONSTR_AND || g.type == TVK_GENCONSTR_OR) return true;
  if (g.type != TVK_GENCONSTR_INDICATOR) return false;
  if (std::lround(x[g.resVar]) == g.binVal)
    rows.add(static_cast<int>(g.vars.size()), g.vars.data(), g.coef.data(), g.sense, g.constant,
             nameInData(data.genConstrNames, k, "GC"));
  return true;
}

}  // namespace

void fixDiscreteParts(ModelData &data, const Vec<double> &x) {
  // The variables of logical constraints are binary, whatever type they were declared with.
  for (const GenConstr &g : data.genConstrs) {
    const bool isLogical = g.type == TVK_GENCONSTR_AND || g.type == TVK_GENCONSTR_OR;
    if (isLogical)
      for (const int j : g.vars) fixAt(data, j, std::round(x[j]));
    if (isLogical || g.type == TVK_GENCONSTR_INDICATOR)
      fixAt(data, g.resVar, std::round(x[g.resVar]));
  }
  for (int j = 0; j < data.numVars(); ++j) fixVariable(data, j, x[j]);
  for (const Sos &sos : data.sos) fixSos(data, sos, x);
  NewRows rows;
  Vec<char> resolved(data.genConstrs.size(), 0);
  for (int k = 0; k < data.numGenConstrs(); ++k) resolved[k] = resolve(data, k, x, rows);
  removeGenConstrs(data, resolved);
  rows.appendTo(data);
  removeAllSos(data);
  countTypes(data);
  data.starts.clear();
  data.scenarios.clear();
}

}  // namespace tarvik
