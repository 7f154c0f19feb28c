// A mixed-integer linear program as the MIP kernel takes it: a linear program, what its columns
// may be, and ordered sets. The values of semi-continuous and semi-integer columns have a hole with
// zero at one of its ends: they are never strictly between holeLower and holeUpper.
#pragma once

#include "lp/lp_model.h"

namespace tarvik {

enum class VarKind : char { Continuous, Integer, SemiContinuous, SemiInteger };

inline bool isIntegral(VarKind kind) {
  return kind == VarKind::Integer || kind == VarKind::SemiInteger;
}
inline bool isSemi(VarKind kind) {
  return kind == VarKind::SemiContinuous || kind == VarKind::SemiInteger;
}

// The kind of a column whose hole is decided or gone.
inline VarKind withoutHole(VarKind kind) {
  return isIntegral(kind) ? VarKind::Integer : VarKind::Continuous;
}

// At most `type` (1 or 2) members are nonzero; with 2 they are neighbours in the order given.
struct SosSet {
  int type = 1;
  Vec<int> cols;        // in ascending order of their weights
  Vec<double> weights;  // strictly ascending
};

struct MipModel {
  LpModel lp;
  Vec<VarKind> kind;                 // a column
  Vec<double> holeLower, holeUpper;  // a column; empty without semi columns
  Vec<SosSet> sos;
  Vec<int> branchPriority;  // a column; empty: all equal
  // A column: the number of its partition, 0 for all of them, negative for none; empty: unused.
  Vec<int> partition;
};

}  // namespace tarvik
