// Parts of a model that no row and no set joins. All but the largest are solved by searches of
// their own, the small ones first, within limits. A part that is solved to proven optimality goes
// with its rows; one that is infeasible makes the model so; whatever else comes of a part says
// nothing, and it stays.
#pragma once

#include "base/compensated_sum.h"
#include "mip/mip_options.h"

namespace tarvik {

class Components {
 public:
  enum class Result { Unchanged, Reduced, Infeasible };

  Result run(MipModel &model, const MipOptions &options, SolveControl &control);

  // Columns of the old model that are left, and a point of the old model from one of those.
  const Vec<int> &left() const { return left_; }
  void restore(Vec<double> &point) const;
  // A row over the old columns as one over those left, the others at their values.
  void crushRow(LinearRow &row) const;
  int solved() const { return solved_; }

 private:
  struct Part {
    Vec<int> cols;
    double size = 0;  // entries
  };

  Vec<Part> split(const MipModel &model) const;
  bool solve(const Part &part, const MipModel &model, const MipOptions &options,
             SolveControl &control);

  Vec<int> left_;
  Vec<double> values_;  // by old column
  int solved_ = 0;
  bool infeasible_ = false;
};

}  // namespace tarvik
