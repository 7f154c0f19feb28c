// Proofs from infeasible relaxations and from relaxations beyond the cutoff: a sum of rows, cuts
// and (for the latter) the objective cutoff, weighted with the multipliers of the relaxation. All
// of these hold everywhere, and so does their sum; within the bounds of the node it leaves nothing.
//
// The sum is made in doubled precision from the rows as they are, so it is valid whatever errors
// the multipliers have. Coefficients that are noise of these are taken out at global bounds.
//
// Literature: Witzig, Berthold and Heinz (2017, 2021).
#pragma once

#include "base/compensated_sum.h"
#include "mip/relaxation.h"

namespace tarvik {

struct ProofRow {
  Vec<int> index;
  Vec<double> value;
  double rhs = 0;     // value'x <= rhs
  double margin = 0;  // a violation by more than this is one
  int rank = 0;       // the largest of the rows in it
};

class RelaxationProof {
 public:
  RelaxationProof(const Problem &problem, const Domain &domain)
      : problem_(problem),
        domain_(domain),
        sum_(problem.numCols()),
        isUsed_(problem.numCols(), 0) {}

  // The relaxation was solved last and is infeasible. False: no proof.
  bool infeasible(const Relaxation &lp, ProofRow &proof, WorkMeter &work);
  // Its dual objective is at or above the cutoff.
  bool cutOff(Relaxation &lp, double cutoff, ProofRow &proof, WorkMeter &work);

 private:
  void addColumn(int col, double coef);
  // y'Ax >= y'b, with the bounds of the rows on the side of the signs.
  double addRows(const Relaxation &lp, const Vec<double> &y, WorkMeter &work);
  bool finish(double scale, ProofRow &proof, WorkMeter &work);

  const Problem &problem_;
  const Domain &domain_;
  Vec<CompensatedSum> sum_;
  Vec<char> isUsed_;
  Vec<int> cols_;
  CompensatedSum rhs_;
  int rank_ = 0;
  Vec<double> multipliers_;
};

}  // namespace tarvik
