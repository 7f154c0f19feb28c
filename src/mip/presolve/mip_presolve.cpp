#include "mip/presolve/mip_presolve.h"

#include <algorithm>

#include "mip/domain.h"
#include "mip/presolve/clique_merging.h"
#include "mip/presolve/coefficient_tightening.h"
#include "mip/presolve/components.h"
#include "mip/presolve/dominated_binaries.h"
#include "mip/presolve/implied_integers.h"
#include "mip/presolve/knapsack_lifting.h"
#include "mip/presolve/restrictions.h"
#include "mip/presolve/sos_big_m.h"
#include "mip/presolve/two_rows.h"

namespace tarvik {

namespace {
constexpr int kMaxRounds = 4;
}

// A run of the linear reductions.
class MipPresolve::LinearStage : public Stage {
 public:
  void postsolve(Vec<double> &point) const override {
    LpSolution reduced, full;
    reduced.status = LpStatus::Optimal;
    reduced.colValue.swap(point);
    presolve.postsolve(reduced, full);
    point.swap(full.colValue);
  }
  void image(Vec<double> &point) const override {
    Vec<double> kept;
    for (const int j : presolve.originalCol()) kept.push_back(point[j]);
    point.swap(kept);
  }

  bool crushRow(LinearRow &row) const override { return presolve.crushRow(row); }

  LpModel input;  // postsolve reads it again
  Vec<char> integer, restricted;
  Presolve presolve;
};

class MipPresolve::SosStage : public Stage {
 public:
  void postsolve(Vec<double> &point) const override { point.resize(bigM.numOldCols()); }
  void image(Vec<double> &point) const override { bigM.extend(point); }
  // The new columns stand behind the others.
  bool crushRow(LinearRow &) const override { return true; }

  SosBigM bigM;
};

// What is told of columns besides the linear program, for those that are left.
void MipPresolve::keepColumns(const Vec<int> &cols) {
  const auto keep = [&](auto &values) {
    if (values.empty()) return;
    std::remove_reference_t<decltype(values)> kept;
    for (const int j : cols) kept.push_back(values[j]);
    values.swap(kept);
  };
  Vec<int> place(reduced_.kind.size(), -1);
  for (std::size_t k = 0; k < cols.size(); ++k) place[cols[k]] = static_cast<int>(k);
  keep(reduced_.kind);
  keep(reduced_.holeLower);
  keep(reduced_.holeUpper);
  keep(reduced_.branchPriority);
  keep(reduced_.partition);
  for (SosSet &set : reduced_.sos)
    for (int &j : set.cols) j = place[j];
}

PresolveStatus MipPresolve::reduceLinear(bool &changed) {
  auto stage = std::make_unique<LinearStage>();
  stage->input = std::move(reduced_.lp);
  for (const VarKind kind : reduced_.kind) stage->integer.push_back(isIntegral(kind));
  stage->restricted = restrictedColumns(reduced_);
  PresolveOptions options = options_.presolve;
  options.integer = &stage->integer;
  options.restricted = &stage->restricted;
  options.logging = false;
  const PresolveStatus status = stage->presolve.run(stage->input, options, control_);
  changed = status == PresolveStatus::Reduced || status == PresolveStatus::Solved;
  if (status != PresolveStatus::Unchanged && !changed) return status;
  if (!changed) {
    reduced_.lp = std::move(stage->input);
    return status;
  }
  const PresolveStats &linear = stage->presolve.stats();
  stats_.sparsified += linear.sparsified;
  stats_.sparsifiedFrom = std::max(stats_.sparsifiedFrom, linear.sparsifiedFrom);
  keepColumns(stage->presolve.originalCol());
  reduced_.lp = stage->presolve.reduced();
  stages_.push_back(std::move(stage));
  return status;
}

class MipPresolve::ComponentStage : public Stage {
 public:
  void postsolve(Vec<double> &point) const override { components.restore(point); }
  void image(Vec<double> &point) const override {
    Vec<double> kept;
    for (const int j : components.left()) kept.push_back(point[j]);
    point.swap(kept);
  }
  bool crushRow(LinearRow &row) const override {
    components.crushRow(row);
    return true;
  }

  Components components;
};

// Reductions that look at pairs of rows or columns.
bool MipPresolve::reduceIntegers(bool &infeasible) {
  int found = 0;
  if (options_.reductions.cliques) {
    const CliqueMergingResult merged = mergeCliques(reduced_, options_.tolerances, control_.work);
    stats_.cliques += merged.rowsRemoved + merged.fixed;
    found += merged.rowsRemoved + merged.fixed;
  }
  if (options_.reductions.dominated && !options_.presolve.keepPoints) {
    const int fixed = fixDominatedBinaries(reduced_, control_.work);
    stats_.dominated += fixed;
    found += fixed;
  }
  if (options_.reductions.twoRows) {
    const TwoRowResult pairs = reduceTwoRows(reduced_, options_.tolerances, control_.work);
    infeasible = pairs.infeasible;
    stats_.twoRows += pairs.bounds + pairs.sides;
    found += pairs.bounds + pairs.sides;
  }
  if (options_.reductions.knapsackLifting != 0 && !infeasible) {
    const int lifted = liftKnapsacks(reduced_, options_.tolerances,
                                     options_.reductions.knapsackLifting, control_.work);
    stats_.lifted += lifted;
    found += lifted;
  }
  return found > 0;
}

PresolveStatus MipPresolve::solveComponents() {
  auto stage = std::make_unique<ComponentStage>();
  const Components::Result result = stage->components.run(reduced_, options_, control_);
  if (result == Components::Result::Infeasible) return PresolveStatus::Infeasible;
  if (result == Components::Result::Unchanged) return PresolveStatus::Unchanged;
  stats_.components += stage->components.solved();
  stages_.push_back(std::move(stage));
  return PresolveStatus::Reduced;
}

bool MipPresolve::rewriteSets() {
  if (reduced_.sos.empty()) return false;
  auto stage = std::make_unique<SosStage>();
  const Problem problem(MipModel(reduced_), options_.tolerances);
  Domain domain(problem);
  if (!domain.propagate(control_.work)) return false;
  const int sets = stage->bigM.run(reduced_, options_.sosBigM, domain.lower(), domain.upper());
  if (sets == 0) return false;
  stats_.sets += sets;
  stages_.push_back(std::move(stage));
  return true;
}

PresolveStatus MipPresolve::run() {
  if (options_.presolve.level == 0) return PresolveStatus::Unchanged;
  const auto goesOn = [](PresolveStatus status) {
    return status == PresolveStatus::Unchanged || status == PresolveStatus::Reduced;
  };
  PresolveStatus status = reduceInRounds();
  // With the bounds that presolve has found.
  if (goesOn(status) && rewriteSets()) status = reduceInRounds();
  // What follows decides between solutions by the objective and the rows that there are.
  if (!goesOn(status) || !options_.presolveMip || options_.presolve.keepPoints) return status;
  if (options_.reductions.components && !options_.subMip &&
      solveComponents() == PresolveStatus::Infeasible)
    return PresolveStatus::Infeasible;
  if (options_.reductions.impliedIntegers)
    stats_.impliedIntegers += declareImpliedIntegers(reduced_);
  return stages_.empty() ? PresolveStatus::Unchanged : PresolveStatus::Reduced;
}

PresolveStatus MipPresolve::reduceInRounds() {
  for (int round = 0; round < kMaxRounds; ++round) {
    const RestrictionResult restrictions =
        simplifyRestrictions(reduced_, options_.tolerances, options_.presolve.keepPoints);
    if (restrictions.infeasible) return PresolveStatus::Infeasible;
    stats_.restrictions += restrictions.changes;
    bool changed = false;
    const PresolveStatus status = reduceLinear(changed);
    if (status != PresolveStatus::Unchanged && !changed) return status;
    if (status == PresolveStatus::Solved || (round > 0 && !changed && restrictions.changes == 0))
      break;
    const TighteningResult tightened =
        tightenMip(reduced_, options_.tolerances, options_.reductions.coefficients, control_.work);
    if (tightened.infeasible) return PresolveStatus::Infeasible;
    stats_.bounds += tightened.bounds;
    stats_.coefficients += tightened.coefficients;
    bool infeasible = false;
    const bool paired = options_.presolveMip && reduceIntegers(infeasible);
    if (infeasible) return PresolveStatus::Infeasible;
    if (tightened.bounds + tightened.coefficients == 0 && !paired) break;
  }
  return stages_.empty() ? PresolveStatus::Unchanged : PresolveStatus::Reduced;
}

Vec<double> MipPresolve::postsolve(const Vec<double> &x) const {
  Vec<double> point(x);
  for (auto stage = stages_.rbegin(); stage != stages_.rend(); ++stage) (*stage)->postsolve(point);
  return point;
}

bool MipPresolve::crushRow(LinearRow &row) const {
  LinearRow result(row);
  for (const auto &stage : stages_)
    if (!stage->crushRow(result)) return false;
  row = std::move(result);
  return true;
}

Vec<double> MipPresolve::imageOf(const Vec<double> &x) const {
  Vec<double> point(x);
  for (const auto &stage : stages_) stage->image(point);
  return point;
}

}  // namespace tarvik
