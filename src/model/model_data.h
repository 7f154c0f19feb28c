// The model data: what the last update left. Always a minimization: for ModelSense -1 the
// objective, its constant and the quadratic values are stored negated.
#pragma once

#include <string>

#include "base/sparse_matrix.h"
#include "model/name_list.h"

namespace tarvik {

struct ModelData {
  int objSense = 1;
  double objCon = 0;
  std::string name;
  SparseMatrix a;  // by columns
  Vec<double> obj, lb, ub;
  Vec<char> vtype;
  Vec<double> rhs;
  Vec<char> sense;  // '<', '>' or '='
  NameList varNames, constrNames;
  int numNonContinuous = 0;
  int numBinary = 0;

  int numVars() const { return a.numMajor; }
  int numConstrs() const { return a.numMinor; }
};

}  // namespace tarvik
