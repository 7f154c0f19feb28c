#include "presolve/presolve.h"

#include "presolve/presolve_run.h"

namespace tarvik {

Presolve::Presolve() : run_(std::make_unique<PresolveRun>()) {}
Presolve::~Presolve() = default;
Presolve::Presolve(Presolve &&) noexcept = default;
Presolve &Presolve::operator=(Presolve &&) noexcept = default;

PresolveStatus Presolve::run(const LpModel &lp, const PresolveOptions &options,
                             SolveControl &control) {
  return run_->run(lp, options, control);
}

const LpModel &Presolve::reduced() const { return run_->reduced; }

bool Presolve::postsolve(const LpSolution &reducedSolution, LpSolution &full) const {
  return run_->postsolve(reducedSolution, full);
}

void Presolve::postsolveFarkas(const Vec<double> &reducedFarkas, Vec<double> &full) const {
  run_->postsolveFarkas(reducedFarkas, full);
}

Vec<double> Presolve::farkas() const { return run_->farkas(); }

bool Presolve::infeasibleMeansInfeasible() const { return !run_->ws.assumedOptimum; }

bool Presolve::crushBasis(const Basis &full, Basis &reducedBasis) const {
  return run_->crushBasis(full, reducedBasis);
}

bool Presolve::crushRow(LinearRow &row) const { return run_->crushRow(row); }

const Vec<int> &Presolve::originalCol() const { return run_->cols; }
const Vec<int> &Presolve::originalRow() const { return run_->rows; }
int Presolve::originalVar(int reducedVar) const {
  const int numCols = static_cast<int>(run_->cols.size());
  if (reducedVar < 0) return -1;
  return reducedVar < numCols ? run_->cols[reducedVar]
                              : run_->numFullCols() + run_->rows[reducedVar - numCols];
}
const PresolveStats &Presolve::stats() const { return run_->ws.stats; }

}  // namespace tarvik
