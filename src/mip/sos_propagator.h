// Sets: members that cannot be zero any more force others to zero.
#pragma once

#include "mip/domain.h"

namespace tarvik {

class SosPropagator : public Propagator {
 public:
  explicit SosPropagator(const Problem &problem);
  bool onChange(Domain &domain, int trailPosition) override;

 private:
  bool fixToZero(Domain &domain, int col) const;

  const Problem &problem_;
  SparseMatrix memberships_;  // by column: sets
};

}  // namespace tarvik
