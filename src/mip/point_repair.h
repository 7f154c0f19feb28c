// Continuous values for given values of the discrete columns: the linear program in which
// integral columns, zeros of semi-continuous columns and zeros of sets are fixed.
#pragma once

#include <memory>

#include "mip/domain.h"
#include "mip/relaxation.h"

namespace tarvik {

class PointRepair {
 public:
  PointRepair(const Problem &problem, const SimplexOptions &options)
      : problem_(problem), options_(options) {
    options_.logging = false;
    options_.cutoff = kUserInf;
  }

  // False when there is nothing continuous to choose, or no feasible choice within the limits.
  bool run(const Vec<double> &point, SolveControl &control, Vec<double> &repaired);
  double iterations() const { return relaxation_ ? relaxation_->iterations() : 0; }

 private:
  Vec<BoundChange> discretePart(const Vec<double> &point) const;

  const Problem &problem_;
  SimplexOptions options_;
  std::unique_ptr<Relaxation> relaxation_;
};

}  // namespace tarvik
