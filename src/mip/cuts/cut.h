// A cutting plane index'x <= rhs, valid for all feasible points of the problem (global) unless its
// maker says otherwise, and the interface of those who find them.
#pragma once

#include "mip/domain.h"
#include "mip/mip_options.h"

namespace tarvik {

// Order of the summary in the log.
enum class CutFamily : int {
  User,
  Learned,
  Gomory,
  LiftProject,
  Cover,
  ImpliedBound,
  ProjImpliedBound,
  Clique,
  Mir,
  Mixing,
  StrongCg,
  FlowCover,
  FlowPath,
  GubCover,
  InfProof,
  ZeroHalf,
  ModK,
  Network,
  Rlt,
  RelaxLift,
  Bqp,
  Psd,
  Lazy,
  Count
};
inline constexpr int kCutFamilies = static_cast<int>(CutFamily::Count);

struct Cut {
  Vec<int> index;  // ascending
  Vec<double> value;
  double rhs = 0;  // value'x <= rhs
  CutFamily family = CutFamily::Mir;
  int rank = 0;  // 1 + the largest rank of the rows it was made from; problem rows have 0
};

// What separators see: the problem, global bounds, and the relaxation's optimum with its rows.
struct SeparationPoint {
  const Problem *problem;
  const Domain *global;                        // bounds that hold everywhere (at level 0)
  class Relaxation *lp;                        // its basis, rows and tableau; solved to optimality
  const Vec<double> *x;                        // the optimum, a column each
  const class CliqueTable *cliques;            // may be null
  const class ImplicationTable *implications;  // may be null
  WorkMeter *work;
  int round = 0;          // of the root loop, from 0
  bool root = true;       // false in the tree
  int aggregations = -1;  // rows added to the first of a sum at most; -1: as the level says
  Vec<double> *gomoryEfficacy = nullptr;  // by column, of its tableau row's best cut; may be null
  double workLimit = 1e100;  // on work->counted(); separators stop soon after it is reached
};

class Separator {
 public:
  virtual ~Separator() = default;
  virtual CutFamily family() const = 0;
  // Appends violated valid cuts; level is 1 moderate or 2 aggressive. Integral to all: the cuts are
  // clean (no tiny coefficients, no infinite ones, bounded dynamic range); see cleanCut().
  virtual void separate(const SeparationPoint &point, int level, Vec<Cut> &cuts) = 0;
};

// On work->counted(): where a separator that passes over the rows has had its share.
double workEnd(const SeparationPoint &point, int level);

// Violation divided by the Euclidean norm.
double efficacy(const Cut &cut, const Vec<double> &x);
// Merges equal columns, moves coefficients that are too small (relative to the largest) to the
// right hand side with the bound that keeps the cut valid, sorts, and tells whether the cut is fit
// for use: finite, not too dense, its dynamic range within limits.
bool cleanCut(const Domain &global, Cut &cut);

}  // namespace tarvik
