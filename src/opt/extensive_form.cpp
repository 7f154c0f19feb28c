// All scenarios of a model side by side in one model: a block of variables and constraints for
// each, and the sum of their objectives. Every optimal solution of it is one of every scenario.
#include "model/data_edit.h"
#include "opt/derived_models.h"

namespace tarvik {

namespace {

void appendNames(NameList &names, const NameList &block, int count, const char *prefix,
                 const std::string &suffix) {
  for (int k = 0; k < count; ++k) {
    std::string name = nameInData(block, k, prefix);
    name.resize(std::min<std::size_t>(name.size(), 255 - suffix.size()));
    names.append(name + suffix);
  }
}

void shift(Vec<int> &indices, int by) {
  for (int &j : indices) j += by;
}

void appendMatrix(ModelData &all, const ModelData &block) {
  for (int j = 0; j < block.numVars(); ++j) {
    Vec<int> rows(block.a.index.begin() + block.a.start[j],
                  block.a.index.begin() + block.a.start[j + 1]);
    shift(rows, all.a.numMinor);
    all.a.append(block.a.length(j), rows.data(), block.a.value.data() + block.a.start[j]);
  }
  all.a.numMinor += block.numConstrs();
}

template <class T>
void appendAll(Vec<T> &all, const Vec<T> &block) {
  all.insert(all.end(), block.begin(), block.end());
}

void appendParts(ModelData &all, ModelData &block, int firstVar) {
  for (int k = 0; k < block.q.count(); ++k)
    all.q.append(block.q.row[k] + firstVar, block.q.col[k] + firstVar, block.q.val[k]);
  for (QConstr &qc : block.qconstrs) {
    shift(qc.lind, firstVar);
    shift(qc.quad.row, firstVar);
    shift(qc.quad.col, firstVar);
  }
  for (Cone &cone : block.cones) shift(cone.members, firstVar);
  for (Sos &sos : block.sos) shift(sos.ind, firstVar);
  for (GenConstr &g : block.genConstrs) {
    g.resVar += firstVar;
    shift(g.vars, firstVar);
  }
  for (PwlObjective &pwl : block.pwl) pwl.var += firstVar;
  appendAll(all.qconstrs, block.qconstrs);
  appendAll(all.cones, block.cones);
  appendAll(all.sos, block.sos);
  appendAll(all.genConstrs, block.genConstrs);
  appendAll(all.pwl, block.pwl);
}

}  // namespace

ModelData extensiveForm(const ModelData &data) {
  ModelData all;
  all.objSense = data.objSense;
  all.name = data.name;
  for (int s = 0; s < static_cast<int>(data.scenarios.size()); ++s) {
    ModelData block = data;
    applyScenario(block, s);
    const std::string suffix = "_S" + std::to_string(s);
    if (data.storesNames()) {
      appendNames(all.varNames, block.varNames, block.numVars(), "C", suffix);
      appendNames(all.constrNames, block.constrNames, block.numConstrs(), "R", suffix);
      appendNames(all.qconstrNames, block.qconstrNames, block.numQConstrs(), "QC", suffix);
      appendNames(all.genConstrNames, block.genConstrNames, block.numGenConstrs(), "GC", suffix);
    }
    const int firstVar = all.numVars();
    appendMatrix(all, block);
    all.objCon += block.objCon;
    appendAll(all.obj, block.obj);
    appendAll(all.lb, block.lb);
    appendAll(all.ub, block.ub);
    appendAll(all.vtype, block.vtype);
    appendAll(all.rhs, block.rhs);
    appendAll(all.sense, block.sense);
    appendParts(all, block, firstVar);
  }
  all.varNamesIssued = all.numVars();
  all.constrNamesIssued = all.numConstrs();
  countTypes(all);
  return all;
}

}  // namespace tarvik
