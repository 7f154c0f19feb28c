#include "opt/mip_from_model.h"

#include <algorithm>
#include <numeric>

#include "opt/lp_from_model.h"
#include "tarvik.h"

namespace tarvik {

namespace {

VarKind kindOf(char type) {
  switch (type) {
    case TVK_CONTINUOUS:
      return VarKind::Continuous;
    case TVK_SEMICONT:
      return VarKind::SemiContinuous;
    case TVK_SEMIINT:
      return VarKind::SemiInteger;
    default:
      return VarKind::Integer;
  }
}

SosSet setOf(const Sos &sos) {
  Vec<int> order(sos.ind.size());
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(),
                   [&](int a, int b) { return sos.weight[a] < sos.weight[b]; });
  SosSet set;
  set.type = sos.type;
  for (const int k : order) {
    set.cols.push_back(sos.ind[k]);
    set.weights.push_back(sos.weight[k]);
  }
  return set;
}

// Zero is possible besides the range between the bounds: they are opened to it, and what lies
// between is the hole. A range around zero has none.
void makeHole(MipModel &model, int col) {
  double &lower = model.lp.colLower[col], &upper = model.lp.colUpper[col];
  if (lower <= 0 && upper >= 0) {
    model.kind[col] = withoutHole(model.kind[col]);
    return;
  }
  if (model.holeLower.empty()) {
    model.holeLower.assign(model.lp.numCols, 0);
    model.holeUpper.assign(model.lp.numCols, 0);
  }
  model.holeLower[col] = std::min(upper, 0.0);
  model.holeUpper[col] = std::max(lower, 0.0);
  lower = std::min(lower, 0.0);
  upper = std::max(upper, 0.0);
}

}  // namespace

MipModel mipFromModel(const ModelData &data) {
  MipModel model;
  model.lp = lpFromModel(data);
  const int n = data.numVars();
  model.kind.resize(n);
  for (int j = 0; j < n; ++j) {
    model.kind[j] = kindOf(data.vtype[j]);
    if (isSemi(model.kind[j])) makeHole(model, j);
  }
  for (const Sos &sos : data.sos) model.sos.push_back(setOf(sos));
  if (std::any_of(data.branchPriority.begin(), data.branchPriority.end(),
                  [](int priority) { return priority != 0; }))
    model.branchPriority.assign(data.branchPriority.begin(), data.branchPriority.end());
  if (std::any_of(data.partition.begin(), data.partition.end(),
                  [](int partition) { return partition > 0; }))
    model.partition.assign(data.partition.begin(), data.partition.end());
  return model;
}

}  // namespace tarvik
