// Presolve for mixed-integer models: rounds of the linear reductions, which know which columns are
// integral, and of tightening that keeps the dimensions, while they help each other.
#pragma once

#include <memory>

#include "mip/mip_options.h"
#include "presolve/presolve.h"

namespace tarvik {

// How often each reduction succeeded.
struct MipPresolveStats {
  int restrictions = 0, bounds = 0, coefficients = 0, sets = 0;
  int cliques = 0, dominated = 0, twoRows = 0, lifted = 0, impliedIntegers = 0, components = 0;
  NzIndex sparsified = 0, sparsifiedFrom = 0;  // see PresolveStats
};

class MipPresolve {
 public:
  MipPresolve(const MipModel &model, const MipOptions &options, SolveControl &control)
      : reduced_(model), options_(options), control_(control) {}

  // Unchanged, Reduced and Solved leave a reduced model to be searched.
  PresolveStatus run();
  const MipModel &reduced() const { return reduced_; }
  const MipPresolveStats &stats() const { return stats_; }
  bool solved() const { return reduced_.lp.numCols == 0; }
  // A point of the reduced model in the space of the model that was given.
  Vec<double> postsolve(const Vec<double> &x) const;
  // The columns of the reduced model as a point of the model that was given has them. It need not
  // be feasible: reductions may have decided for other solutions.
  Vec<double> imageOf(const Vec<double> &x) const;
  // A row over the columns of the model that was given as one over those of the reduced model; see
  // Presolve::crushRow.
  bool crushRow(LinearRow &row) const;

 private:
  // What changed the columns, in order: a point goes back through the stages to the last column.
  class Stage {
   public:
    virtual ~Stage() = default;
    virtual void postsolve(Vec<double> &point) const = 0;
    virtual void image(Vec<double> &point) const = 0;
    virtual bool crushRow(LinearRow &row) const = 0;
  };
  class LinearStage;
  class SosStage;
  class ComponentStage;

  PresolveStatus reduceInRounds();
  PresolveStatus reduceLinear(bool &changed);
  void keepColumns(const Vec<int> &cols);
  bool reduceIntegers(bool &infeasible);
  bool rewriteSets();
  PresolveStatus solveComponents();

  MipModel reduced_;
  const MipOptions &options_;
  SolveControl &control_;
  Vec<std::unique_ptr<Stage>> stages_;
  MipPresolveStats stats_;
};

}  // namespace tarvik
