// The parts of a model beside variables and linear rows: quadratic terms, quadratic constraints,
// cones, special ordered sets, general constraints, further objectives and scenarios. Plain
// records; indices are those of the model's variables.
#pragma once

#include <string>
#include <utility>

#include "base/memory.h"
#include "base/types.h"

namespace tarvik {

// Terms val[k] x[row[k]] x[col[k]]; a pair occurs once.
struct QuadTerms {
  Vec<int> row, col;
  Vec<double> val;

  int count() const { return static_cast<int>(row.size()); }
  void clear() {
    row.clear();
    col.clear();
    val.clear();
  }
  void append(int i, int j, double v) {
    row.push_back(i);
    col.push_back(j);
    val.push_back(v);
  }
};

// Linear part + quadratic part (row <= col, sorted) against rhs; values as the caller gave them.
struct QConstr {
  Vec<int> lind;
  Vec<double> lval;
  QuadTerms quad;
  char sense = '<';
  double rhs = 0;
};

// x[members[0]] >= norm2 of the others.
struct Cone {
  Vec<int> members;
};

// Members by increasing weight.
struct Sos {
  int type = 1;
  Vec<int> ind;
  Vec<double> weight;
};

// A constraint's own options for its piecewise-linear approximation; the defaults leave the
// decision to the parameters of the same names.
struct FuncOptions {
  int pieces = 0;
  double length = 0.01;
  double error = 0.001;
  double ratio = -1;
  int nonlinear = -1;
};

// A general constraint; which fields mean something follows from type (TVK_GENCONSTR_...):
//   MAX MIN        resVar, vars, constant
//   ABS            resVar, vars[0]
//   AND OR         resVar, vars
//   NORM           resVar, vars, constant = order (0, 1, 2, 1e100)
//   INDICATOR      resVar = binary, binVal, vars and coef = linear part, sense, constant = rhs
//   PWL            vars[0] = x, resVar = y, coef = x points, pwlY = y points
//   POLY           vars[0] = x, resVar = y, coef = coefficients, highest power first
//   EXP ... TAN    vars[0] = x, resVar = y, constant = base or exponent
struct GenConstr {
  int type = 0;
  int resVar = -1;
  int binVal = 0;
  char sense = '<';
  double constant = 0;
  Vec<int> vars;
  Vec<double> coef, pwlY;
  FuncOptions options;
  std::string optionsText;  // made when asked for

  bool isFunction() const { return type >= 8; }
};

// Breakpoints of a variable's piecewise-linear objective; y in the stored sense.
struct PwlObjective {
  int var = -1;
  Vec<double> x, y;
};

// One of several objectives; coefficients and constant in the stored sense.
struct Objective {
  Vec<double> coef;  // per variable
  double con = 0;
  int priority = 0;
  double weight = 1;
  double absTol = 1e-6;
  double relTol = 0;
  std::string name;
};

// Values that differ from the base model, by ascending index.
class SparseChanges {
 public:
  const Vec<int> &index() const { return index_; }
  const Vec<double> &value() const { return value_; }
  bool empty() const { return index_.empty(); }
  // The changed value of element i, null when it keeps the base model's.
  const double *find(int i) const;
  // Takes over changes in order, the last one of an element wins; each times factor.
  void merge(const Vec<int> &index, const Vec<double> &value, double factor);
  void scale(double factor) {
    for (double &v : value_) v *= factor;
  }
  // Replaces every value by change(element, value).
  template <class Change>
  void update(Change &&change) {
    for (std::size_t k = 0; k < index_.size(); ++k) value_[k] = change(index_[k], value_[k]);
  }
  // Renumbers; newIndex is -1 for deleted elements.
  void renumber(const Vec<int> &newIndex) noexcept;

 private:
  Vec<int> index_;
  Vec<double> value_;
};

// What a scenario changes; objective coefficients in the stored sense.
struct Scenario {
  std::string name;
  SparseChanges obj, lb, ub, rhs;
};

}  // namespace tarvik
