#include "mip/presolve/restrictions.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace tarvik {

namespace {

// Slack with which an integral bound is rounded.
constexpr double kRoundingSlack = 1e-6;

class RestrictionPresolve {
 public:
  RestrictionPresolve(MipModel &model, const MipTolerances &tolerances)
      : model_(model), lp_(model.lp), tolerances_(tolerances) {}

  RestrictionResult run(bool keepPoints) {
    for (int j = 0; j < lp_.numCols && !result_.infeasible; ++j) settleHole(j);
    // Members that one set fixes at zero may decide another.
    for (int before = -1; before != result_.changes && !result_.infeasible;) {
      before = result_.changes;
      for (SosSet &set : model_.sos)
        if (!result_.infeasible) settleSet(set);
      const auto end = std::remove_if(model_.sos.begin(), model_.sos.end(),
                                      [](const SosSet &set) { return set.cols.empty(); });
      model_.sos.erase(end, model_.sos.end());
    }
    if (!result_.infeasible && !keepPoints) fixByLocks();
    return result_;
  }

 private:
  double &lower(int col) { return lp_.colLower[col]; }
  double &upper(int col) { return lp_.colUpper[col]; }
  bool isZero(int col) { return lower(col) == 0 && upper(col) == 0; }
  bool isNonzero(int col) {
    return lower(col) > tolerances_.integral || upper(col) < -tolerances_.integral;
  }

  void settleHole(int col);
  void fixAtZero(int col);
  void settleSet(SosSet &set);
  void trim(SosSet &set);
  void fixByLocks();
  void fixByLocks(int col, int downLocks, int upLocks, bool inSet);

  MipModel &model_;
  LpModel &lp_;
  const MipTolerances &tolerances_;
  RestrictionResult result_;
};

// Bounds of integral columns are rounded. Bounds within the hole move to its ends; a hole behind
// them is gone.
void RestrictionPresolve::settleHole(int j) {
  if (!isSemi(model_.kind[j])) return;
  double &low = model_.holeLower[j], &high = model_.holeUpper[j];
  if (isIntegral(model_.kind[j])) {
    low = std::floor(low + kRoundingSlack);
    high = std::ceil(high - kRoundingSlack);
    lower(j) = std::ceil(lower(j) - kRoundingSlack);
    upper(j) = std::floor(upper(j) + kRoundingSlack);
  }
  const double tolerance = tolerances_.primal;
  if (lower(j) > low + tolerance && lower(j) < high) lower(j) = high, ++result_.changes;
  if (upper(j) < high - tolerance && upper(j) > low) upper(j) = low, ++result_.changes;
  if (lower(j) > upper(j)) {
    result_.infeasible = lower(j) - upper(j) > tolerance;
    return;
  }
  if (lower(j) < high && upper(j) > low) return;
  model_.kind[j] = withoutHole(model_.kind[j]);
  ++result_.changes;
}

void RestrictionPresolve::fixAtZero(int col) {
  if (isZero(col)) return;
  if (isNonzero(col)) {
    result_.infeasible = true;
    return;
  }
  // Bounds that miss zero by less than a tolerance keep what the rows ask for.
  lower(col) = upper(col) = std::min(std::max(0.0, lower(col)), upper(col));
  ++result_.changes;
}

void RestrictionPresolve::settleSet(SosSet &set) {
  const int count = static_cast<int>(set.cols.size());
  for (int k = 0; k < count; ++k) {
    if (!isNonzero(set.cols[k])) continue;
    const int before = result_.changes;
    for (int other = 0; other < count && !result_.infeasible; ++other) {
      const int col = set.cols[other];
      if (std::abs(other - k) >= set.type && (isNonzero(col) || lower(col) < upper(col)))
        fixAtZero(col);
    }
    if (result_.infeasible) return;
    if (result_.changes > before) break;
  }
  trim(set);
}

// Leaves out members that are zero, where that brings no others together.
void RestrictionPresolve::trim(SosSet &set) {
  const std::size_t count = set.cols.size();
  bool neighbours = false;
  for (std::size_t k = 0; k + 1 < count; ++k)
    neighbours |= !isZero(set.cols[k]) && !isZero(set.cols[k + 1]);
  SosSet rest;
  rest.type = neighbours ? set.type : 1;
  for (std::size_t k = 0; k < count; ++k) {
    const bool zero = isZero(set.cols[k]);
    if (zero && (rest.type == 1 || rest.cols.empty() || isZero(rest.cols.back()))) continue;
    rest.cols.push_back(set.cols[k]);
    rest.weights.push_back(set.weights[k]);
  }
  while (!rest.cols.empty() && isZero(rest.cols.back())) {
    rest.cols.pop_back();
    rest.weights.pop_back();
  }
  if (static_cast<int>(rest.cols.size()) <= rest.type) rest.cols.clear();
  if (rest.cols.size() == count && rest.type == set.type) return;
  set = std::move(rest);
  ++result_.changes;
}

// A bound that no row keeps the column from, and that the cost does not speak against. In a set
// it must be zero: that never asks anything of the others.
void RestrictionPresolve::fixByLocks(int j, int downLocks, int upLocks, bool inSet) {
  if (lower(j) == upper(j)) return;
  const double cost = lp_.cost[j];
  if (downLocks == 0 && cost >= 0 && !isInf(lower(j)) && (!inSet || lower(j) == 0))
    upper(j) = lower(j);
  else if (upLocks == 0 && cost <= 0 && !isInf(upper(j)) && (!inSet || upper(j) == 0))
    lower(j) = upper(j);
  else
    return;
  ++result_.changes;
}

void RestrictionPresolve::fixByLocks() {
  Vec<char> inSet(lp_.numCols, 0);
  for (const SosSet &set : model_.sos)
    for (const int j : set.cols) inSet[j] = 1;
  for (int j = 0; j < lp_.numCols; ++j) {
    if (!inSet[j] && !isSemi(model_.kind[j])) continue;
    int downLocks = 0, upLocks = 0;
    for (NzIndex k = lp_.a.start[j]; k < lp_.a.start[j + 1]; ++k) {
      const bool rises = lp_.a.value[k] > 0;
      if (!isInf(lp_.rowLower[lp_.a.index[k]])) ++(rises ? downLocks : upLocks);
      if (!isInf(lp_.rowUpper[lp_.a.index[k]])) ++(rises ? upLocks : downLocks);
    }
    fixByLocks(j, downLocks, upLocks, inSet[j] != 0);
    settleHole(j);
  }
}

}  // namespace

RestrictionResult simplifyRestrictions(MipModel &model, const MipTolerances &tolerances,
                                       bool keepPoints) {
  return RestrictionPresolve(model, tolerances).run(keepPoints);
}

Vec<char> restrictedColumns(const MipModel &model) {
  Vec<char> restricted(model.kind.size(), 0);
  for (std::size_t j = 0; j < model.kind.size(); ++j) restricted[j] = isSemi(model.kind[j]);
  for (const SosSet &set : model.sos)
    for (const int j : set.cols) restricted[j] = 1;
  return restricted;
}

}  // namespace tarvik
