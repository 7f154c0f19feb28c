// A whole linear model as plain data, in the caller's own sense and scale: what the loading
// functions and the file readers collect before they build a model. The quadratic, SOS and
// general parts of a file are added to the built model through its ordinary building functions.
#pragma once

#include <string>

#include "base/sparse_matrix.h"
#include "model/name_list.h"

namespace tarvik {

struct ModelInput {
  std::string name;
  int objSense = 1;  // +1 minimize, -1 maximize
  double objCon = 0;
  int numVars = 0;
  int numConstrs = 0;
  SparseMatrix a;                  // by columns, no repeated entries
  Vec<double> obj, lb, ub;         // numVars entries each, or empty for the defaults 0, 0, infinity
  Vec<char> vtype;                 // numVars entries, or empty for all 'C'
  Vec<double> rhs;                 // numConstrs entries
  Vec<char> sense;                 // numConstrs entries
  NameList varNames, constrNames;  // empty, or complete with empty texts for default names
  // Ranges: rangeLower[i] > -1e100 turns row i into rangeLower <= expression <= rhs with an
  // auxiliary variable appended after the others. Empty when there are none.
  Vec<double> rangeLower;
};

}  // namespace tarvik
