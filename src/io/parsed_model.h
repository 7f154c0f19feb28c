// A model as a file states it: plain data in the file's own sense and scale, collected by the
// readers and turned into a model through the building functions.
#pragma once

#include <string>

#include "model/model.h"
#include "model/model_input.h"
#include "model/model_parts.h"

namespace tarvik {

struct SparseValues {
  Vec<int> index;
  Vec<double> value;

  int count() const { return static_cast<int>(index.size()); }
  void append(int i, double v) {
    index.push_back(i);
    value.push_back(v);
  }
};

struct ParsedObjective {
  std::string name;
  int priority = 0;
  double weight = 1, absTol = 0, relTol = 0, constant = 0;
  SparseValues terms;
};

struct ParsedScenario {
  std::string name;
  SparseValues obj, rhs, lb, ub;
};

struct ParsedModel {
  ModelInput linear;
  Vec<int> lazy;   // per constraint, or empty
  QuadTerms qobj;  // coefficients of the products themselves
  Vec<QConstr> qconstrs;
  NameList qconstrNames;  // one a quadratic constraint
  Vec<Sos> sos;
  Vec<GenConstr> genConstrs;
  NameList genConstrNames;  // one a general constraint, empty for the default name
  Vec<PwlObjective> pwl;
  Vec<ParsedObjective> objectives;  // empty for a single objective
  Vec<ParsedScenario> scenarios;
};

// Builds the model in a copy of env; throws Error.
TVKmodel *buildModel(Env &env, ParsedModel &&parsed);

// The options of a function constraint as the text that the building functions take.
std::string optionsText(const FuncOptions &options);

}  // namespace tarvik
