#include "mip/conflict/explanation.h"

#include <algorithm>
#include <cmath>

namespace tarvik {

namespace {
// Propagation rounds bounds of integral columns with this slack.
constexpr double kRoundingSlack = 1e-6;
// Relative accuracy with which an implied bound of a continuous column is recomputed.
constexpr double kAccuracy = 1e-9;
}  // namespace

double Explainer::tolerance(double rhs) const {
  return domain_.problem().tolerances().primal * std::max(1.0, std::fabs(rhs));
}

// The row or the objective, as an upper (`above`) or a lower limit.
InequalityView Explainer::view(Reason reason, bool above) const {
  const Problem &problem = domain_.problem();
  if (reason.kind == Reason::Objective) {
    const Vec<int> &cols = domain_.objectiveCols();
    return {cols.data(), domain_.objectiveCoefs().data(), static_cast<int>(cols.size()), 1,
            above ? domain_.cutoff() - problem.lp().offset : kInf};
  }
  const SparseMatrix &rows = problem.rows();
  const NzIndex start = rows.start[reason.index];
  return {rows.index.data() + start, rows.value.data() + start, rows.length(reason.index),
          above ? 1.0 : -1.0,
          above ? problem.lp().rowUpper[reason.index] : -problem.lp().rowLower[reason.index]};
}

bool Explainer::explainActivity(const InequalityView &row, int time, int skip, double need,
                                double accuracy, Vec<int> &why, WorkMeter &work) {
  const int global = domain_.globalEnd();
  terms_.clear();
  CompensatedSum least;
  for (int k = 0; k < row.count; ++k) {
    const int j = row.index[k];
    if (j == skip) continue;
    const double a = row.sign * row.value[k];
    const BoundSide side = a > 0 ? BoundSide::Lower : BoundSide::Upper;
    const int position = domain_.positionAt(j, side, time);
    const double bound = domain_.boundSince(j, side, position);
    if (isInf(bound)) return false;
    least.addProduct(a, bound);
    if (position >= global) terms_.push_back({std::fabs(a), position});
  }
  least.add(-need);
  double slack = least.value();
  if (!(slack > -accuracy)) return false;
  std::sort(terms_.begin(), terms_.end(),
            [](const Term &a, const Term &b) { return a.position > b.position; });
  work.charge(2.0 * row.count + 8.0 * static_cast<double>(terms_.size()));
  const Vec<TrailEntry> &trail = domain_.trail();
  for (const Term &term : terms_) {
    int position = term.position;
    while (position >= global) {
      const TrailEntry &entry = trail[position];
      const double loss = term.coef * std::fabs(entry.value - entry.old);
      if (isInf(entry.old) || loss >= slack * (1 - kAccuracy)) break;
      slack -= loss;
      position = entry.previous;
    }
    if (position >= global) why.push_back(position);
  }
  return true;
}

bool Explainer::explainDisjuncts(int conflict, int col, BoundSide implied, int time,
                                 Vec<int> &why) {
  const int global = domain_.globalEnd();
  for (const Disjunct &d : conflicts_.conflict(conflict)) {
    if (d.col == col && d.side == implied) continue;
    const BoundSide side = ConflictStore::opposite(d.side);
    const auto rulesOut = [&](double bound) {
      return side == BoundSide::Upper ? bound < d.value : bound > d.value;
    };
    int position = domain_.positionAt(d.col, side, time);
    if (!rulesOut(domain_.boundSince(d.col, side, position))) return false;
    while (position >= global && rulesOut(domain_.trail()[position].old))
      position = domain_.trail()[position].previous;
    if (position >= global) why.push_back(position);
  }
  return true;
}

bool Explainer::explainBound(Reason reason, int col, BoundSide side, double value, int time,
                             Vec<int> &why, WorkMeter &work) {
  if (reason.kind == Reason::Conflict) return explainDisjuncts(reason.index, col, side, time, why);
  if (reason.kind != Reason::Row && reason.kind != Reason::Objective) return false;
  // The side of the row that bounds the column on that side.
  InequalityView row = view(reason, true);
  double a = 0;
  for (int k = 0; k < row.count; ++k)
    if (row.index[k] == col) a = row.value[k];
  if (a == 0) return false;
  if ((a > 0) != (side == BoundSide::Upper)) {
    if (reason.kind == Reason::Objective) return false;
    row = view(reason, false);
    a = -a;
  }
  if (isInf(row.rhs)) return false;
  const double need = row.rhs - a * value;
  if (domain_.problem().isIntegral(col) && !domain_.problem().isSemi(col))
    return explainActivity(row, time, col, need - std::fabs(a) * (1 - kRoundingSlack), 0, why,
                           work);
  const double accuracy = kAccuracy * std::max({1.0, std::fabs(row.rhs), std::fabs(a * value)});
  return explainActivity(row, time, col, need, accuracy, why, work);
}

bool Explainer::explainChange(int position, Vec<int> &why, WorkMeter &work) {
  const TrailEntry &entry = domain_.trail()[position];
  return explainBound(entry.reason, entry.col, entry.side, entry.value, position, why, work);
}

bool Explainer::explainViolation(const InequalityView &row, double margin, Vec<int> &why,
                                 WorkMeter &work) {
  return explainActivity(row, kMaxInt, -1, row.rhs + margin, 0, why, work);
}

bool Explainer::explainFailure(Vec<int> &why, WorkMeter &work) {
  const Failure &failure = domain_.failure();
  const Reason reason = failure.reason;
  if (failure.col < 0) {
    if (reason.kind != Reason::Row && reason.kind != Reason::Objective) return false;
    for (const bool above : {true, false}) {
      const InequalityView row = view(reason, above);
      if (!isInf(row.rhs) && explainViolation(row, tolerance(row.rhs), why, work)) return true;
      if (reason.kind == Reason::Objective) break;
    }
    return false;
  }
  // A bound beyond the other one: for integral columns one step beyond it is enough.
  const int col = failure.col;
  const bool isLower = failure.side == BoundSide::Lower;
  const BoundSide other = ConflictStore::opposite(failure.side);
  const int position = domain_.position(col, other);
  double value = failure.value;
  if (domain_.problem().isIntegral(col) && !domain_.problem().isSemi(col))
    value = domain_.boundSince(col, other, position) + (isLower ? 1 : -1);
  if (!explainBound(reason, col, failure.side, value, kMaxInt, why, work)) return false;
  if (position >= domain_.globalEnd()) why.push_back(position);
  return true;
}

}  // namespace tarvik
