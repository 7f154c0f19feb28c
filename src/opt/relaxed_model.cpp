// Continuous relaxation, feasibility version and single scenarios of a model.
#include <algorithm>

#include "model/data_edit.h"
#include "opt/derived_models.h"

namespace tarvik {

void relaxDiscreteParts(ModelData &data) {
  const auto isSemi = [&](int j) { return data.vtype[j] == 'S' || data.vtype[j] == 'N'; };
  for (Scenario &scenario : data.scenarios) {
    scenario.lb.update([&](int j, double v) { return isSemi(j) ? std::min(v, 0.0) : v; });
    scenario.ub.update([&](int j, double v) { return isSemi(j) ? std::max(v, 0.0) : v; });
  }
  for (int j = 0; j < data.numVars(); ++j) {
    if (isSemi(j)) {
      data.lb[j] = std::min(data.lb[j], 0.0);
      data.ub[j] = std::max(data.ub[j], 0.0);
    }
    data.vtype[j] = 'C';
  }
  countTypes(data);
  removeAllSos(data);
  removeGenConstrs(data, Vec<char>(data.genConstrs.size(), 1));
}

void dropObjective(ModelData &data) {
  std::fill(data.obj.begin(), data.obj.end(), 0.0);
  data.objCon = 0;
  data.q.clear();
  data.pwl.clear();
  data.objectives.clear();
  for (Scenario &scenario : data.scenarios) scenario.obj = {};
}

namespace {

void apply(const SparseChanges &changes, Vec<double> &values) {
  for (std::size_t k = 0; k < changes.index().size(); ++k)
    values[changes.index()[k]] = changes.value()[k];
}

}  // namespace

void applyScenario(ModelData &data, int number) {
  const Scenario scenario = data.scenarios[number];
  apply(scenario.obj, data.obj);
  apply(scenario.lb, data.lb);
  apply(scenario.ub, data.ub);
  apply(scenario.rhs, data.rhs);
  if (!scenario.name.empty()) data.name = scenario.name;
  data.scenarios.clear();
}

}  // namespace tarvik
