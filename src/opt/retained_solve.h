// What a linear model keeps from one solve to the next: the LpModel that was solved and a simplex
// engine with its factorized basis. Before the next solve follow() brings both up to the model
// data: changed bounds, costs and appended rows are handed to the engine one by one, any other
// change of the matrix drops it. The same engine answers later what is asked about the final
// basis: solves with the basis matrix, ranges, condition numbers.
//
// Invariant: the engine, when loaded, holds exactly lp(). An exception on the way leaves neither
// in a usable state; whoever catches one drops the whole object.
#pragma once

#include "model/model.h"
#include "opt/lp_from_model.h"
#include "opt/warm_engine.h"

namespace tarvik {

class RetainedSolve final : public SolverState, public AccountAllocated {
 public:
  // The model's own one, made when there is none. Only for linear models.
  static RetainedSolve &of(SolutionStore &store);

  const LpModel &lp() const { return lp_; }
  WarmEngine &engine() { return engine_; }
  void follow(const ModelData &data, const BoundRules &rules);
  // What the last solve of these columns to the optimum without a start has taken, else 0.
  double coldIterations() const { return coldIterations_; }
  void noteColdSolve(double iterations) { coldIterations_ = iterations; }

  // The model's own one when the last solve left a basis that it can factor, else null.
  static RetainedSolve *withBasis(Model &model);
  // The engine with the factors of the basis that the store holds, as the last solve left it or
  // made anew. `changed` says that the stored basis is singular and had to be repaired.
  Simplex &factoredBasis(Model &model, SolveControl &control, bool &changed);

  void computeRanges(Model &model) override;
  double conditionEstimate(Model &model) override;
  double conditionExact(Model &model) override;
  double conditionTwoNorm(Model &model) override;

 private:
  struct Entry {
    int row, col;
    double value;
  };

  bool sameColumns(const ModelData &data);
  void followVectors(const ModelData &data);
  void followColumns(const ModelData &data, int begin, int end);
  void followRowBounds(const ModelData &data);
  void followRows(const ModelData &data);

  LpModel lp_;
  BoundRules rules_;  // that lp_ was made by
  bool filled_ = false;
  std::int64_t matrixEdition_ = 0;  // of the data that lp_ agrees with
  Vec<Entry> added_;                // entries of rows that the model has and lp_ has not
  double coldIterations_ = 0;
  WarmEngine engine_;
};

}  // namespace tarvik
