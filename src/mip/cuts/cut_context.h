// What the separators of one search share: the row system of the current point and facts of the
// problem that are derived once.
#pragma once

#include <memory>

#include "mip/cliques.h"
#include "mip/cuts/flow_network.h"
#include "mip/cuts/row_system.h"
#include "mip/cuts/variable_bounds.h"

namespace tarvik {

class CutContext {
 public:
  const RowSystem &rows(const SeparationPoint &point) {
    if (!rows_ || !rows_->describes(point)) rows_ = std::make_unique<RowSystem>(point);
    return *rows_;
  }
  const VariableBounds &variableBounds(const SeparationPoint &point) {
    if (!bounds_) bounds_ = std::make_unique<VariableBounds>(*point.problem, *point.global);
    return *bounds_;
  }
  const FlowNetwork &network(const SeparationPoint &point) {
    if (!network_) {
      network_ = std::make_unique<FlowNetwork>(*point.problem, *point.global);
      point.work->charge(10.0 * static_cast<double>(point.problem->rows().numNz()));
    }
    return *network_;
  }
  const CliqueTable &cliques(const SeparationPoint &point) {
    if (point.cliques) return *point.cliques;
    if (!cliques_)
      cliques_ = std::make_unique<CliqueTable>(*point.problem, *point.global, *point.work);
    return *cliques_;
  }

 private:
  std::unique_ptr<CliqueTable> cliques_;
  std::unique_ptr<RowSystem> rows_;
  std::unique_ptr<VariableBounds> bounds_;
  std::unique_ptr<FlowNetwork> network_;
};

}  // namespace tarvik
