// Additions to complete model data, as models derived from others need them: what is appended
// takes part in every list that has an entry per variable or per constraint.
#pragma once

#include <string>

#include "model/model_data.h"

namespace tarvik {

// The name of an element as attributes show it: the stored one or the default.
std::string nameInData(const NameList &names, int k, const char *prefix);

// The values that a variable may take in the base model or in some scenario.
struct Reach {
  double least, greatest;
  bool isBounded() const { return least > -kInfBound && greatest < kInfBound; }
};
Reach reachOf(const ModelData &data, int var);

// A column with its entries in the rows that exist, by name when the model stores names.
struct NewColumn {
  double obj = 0;  // stored sense
  double lb = 0, ub = kInf;
  char type = 'C';
  int numNz = 0;
  const int *ind = nullptr;
  const double *val = nullptr;
};
int appendColumn(ModelData &data, const NewColumn &column, const std::string &name);

// Rows to be appended together. Entries of the same variable are added up, zeros are dropped.
class NewRows {
 public:
  void add(int numNz, const int *ind, const double *val, char sense, double rhs,
           const std::string &name);
  int count() const { return rows_.numMajor; }
  void appendTo(ModelData &data) const;

 private:
  SparseMatrix rows_;
  Vec<char> sense_;
  Vec<double> rhs_;
  NameList names_;
};

// Removes quadratic (general) constraints with everything that is kept for them; one mark each.
void removeQConstrs(ModelData &data, const Vec<char> &drop);
void removeGenConstrs(ModelData &data, const Vec<char> &drop);
void removeAllSos(ModelData &data);

// Counts the variable types again after types were changed.
void countTypes(ModelData &data);

}  // namespace tarvik
