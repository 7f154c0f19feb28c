// The model data: what the last update left. Always a minimization: for ModelSense -1 every
// objective-like value (objective and constant, quadratic objective, piecewise-linear objective
// values, further objectives, scenario objectives) is stored negated. Infinite bounds are 1e30
// in magnitude. Per-element settings are empty until the first one of their kind is set, then
// hold one entry an element.
#pragma once

#include <string>

#include "base/sparse_matrix.h"
#include "model/model_parts.h"
#include "model/name_list.h"

namespace tarvik {

struct ModelData {
  int objSense = 1;
  double objCon = 0;
  std::string name;
  SparseMatrix a;  // by columns
  // Differs after every change of the matrix but entries that appended rows add.
  std::int64_t matrixEdition = 0;
  Vec<double> obj, lb, ub;
  Vec<char> vtype;
  Vec<double> rhs;
  Vec<char> sense;  // '<', '>' or '='
  NameList varNames, constrNames;
  // How many default names ("C%d", "R%d") have been given out, so that numbers do not repeat.
  int varNamesIssued = 0, constrNamesIssued = 0;
  int numNonContinuous = 0;
  int numBinary = 0;

  QuadTerms q;  // stored doubled: the Q of one half of x'Qx
  Vec<QConstr> qconstrs;
  NameList qconstrNames;
  Vec<Cone> cones;
  Vec<Sos> sos;
  Vec<GenConstr> genConstrs;
  NameList genConstrNames;
  Vec<PwlObjective> pwl;      // by ascending variable
  Vec<Objective> objectives;  // empty for a model with one objective
  Vec<Scenario> scenarios;

  // Settings per variable.
  Vec<Vec<double>> starts;  // kUndefined where no value is given
  Vec<double> hintVal;
  Vec<int> hintPri, branchPriority, partition, poolIgnore, iisLBForce, iisUBForce;
  NameList varTags;
  // Settings per constraint of each kind.
  Vec<int> lazy, iisConstrForce, iisSosForce, iisQConstrForce, iisGenConstrForce;
  NameList constrTags, qconstrTags;

  // Data moved by updates since the last optimization, in entries.
  double updateWork = 0;

  // An objective or dual value in the sense that the caller gave; no zero comes out negative.
  double inCallersSense(double stored) const { return objSense * stored + 0.0; }
  int numVars() const { return a.numMajor; }
  int numConstrs() const { return a.numMinor; }
  // Constraints, variables and quadratic constraints that carry a tag.
  int numTagged() const {
    int count = 0;
    for (const NameList *tags : {&constrTags, &varTags, &qconstrTags})
      for (int k = 0; k < tags->size(); ++k) count += !tags->isBlank(k);
    return count;
  }
  int numSos() const { return static_cast<int>(sos.size()); }
  int numQConstrs() const { return static_cast<int>(qconstrs.size()); }
  int numGenConstrs() const { return static_cast<int>(genConstrs.size()); }
  bool storesNames() const { return !varNames.empty() || !constrNames.empty(); }
  bool isMip() const { return numNonContinuous > 0 || !sos.empty() || !genConstrs.empty(); }
  const PwlObjective *pwlOf(int var) const;
};

}  // namespace tarvik
