// Reading the structure of a model as it was entered: columns and rows of the matrix, SOS, the
// quadratic parts, piecewise-linear objectives and general constraints. Outputs may be null; a
// count alone is the first half of the two-call protocol.
#pragma once

#include "model/model.h"

namespace tarvik {

double getCoef(const Model &model, int constr, int var);

// Where compressed vectors go; filled only when all three are given. Offsets are std::size_t or
// int.
template <class Offset>
struct SparseOutput {
  Offset *beg = nullptr;
  int *ind = nullptr;
  double *val = nullptr;

  bool wanted() const { return beg && ind && val; }
};

// Return the number of entries of the range; throw for a range outside the model.
template <class Offset>
NzIndex getVars(const Model &model, int start, int len, const SparseOutput<Offset> &out);
template <class Offset>
NzIndex getConstrs(Model &model, int start, int len, const SparseOutput<Offset> &out);

// The general constraint of an index, which must be of the type asked for.
GenConstr &getGenConstr(Model &model, int id, int type);

}  // namespace tarvik
