// The independent answer for tiny mixed-integer programs: every discrete choice is enumerated and
// the rest solved by the reference simplex. Tolerances make it the optimum of everything that
// passes within them, which no accepted point may be better than.
#pragma once

#include <algorithm>
#include <functional>

#include "mip/mip_model.h"
#include "support/reference_lp.h"

namespace tarvik::test {

class ReferenceMip {
 public:
  explicit ReferenceMip(const MipModel &model, double feasibility = 0, double integrality = 0)
      : model_(model), lp_(model.lp), feasibility_(feasibility), integrality_(integrality) {
    for (double &lower : lp_.colLower) lower -= feasibility;
    for (double &upper : lp_.colUpper) upper += feasibility;
    for (double &lower : lp_.rowLower) lower -= feasibility;
    for (double &upper : lp_.rowUpper) upper += feasibility;
  }

  // status, and objective where it is Optimal.
  LpSolution solve() {
    best_.status = LpStatus::Infeasible;
    best_.objective = kUserInf;
    chooseColumn(0);
    return best_;
  }

 private:
  void withBounds(int col, double lower, double upper, const std::function<void()> &next) {
    const double oldLower = lp_.colLower[col], oldUpper = lp_.colUpper[col];
    lp_.colLower[col] = std::max(lower, oldLower);
    lp_.colUpper[col] = std::min(upper, oldUpper);
    if (lp_.colLower[col] <= lp_.colUpper[col]) next();
    lp_.colLower[col] = oldLower;
    lp_.colUpper[col] = oldUpper;
  }

  void chooseColumn(int j) {
    if (j == lp_.numCols) return chooseSet(0);
    const auto next = [this, j] { chooseColumn(j + 1); };
    const auto integral = [&] {
      if (!isIntegral(model_.kind[j])) return next();
      const double lower = lp_.colLower[j], upper = lp_.colUpper[j];
      for (double v = std::ceil(lower - integrality_); v <= upper + integrality_; ++v)
        withBounds(j, v - integrality_, v + integrality_, next);
    };
    if (!isSemi(model_.kind[j])) return integral();
    withBounds(j, -kInf, model_.holeLower[j] + feasibility_, integral);
    withBounds(j, model_.holeUpper[j] - feasibility_, kInf, integral);
  }

  void chooseSet(std::size_t s) {
    if (s == model_.sos.size()) return solveRest();
    const SosSet &set = model_.sos[s];
    const int count = static_cast<int>(set.cols.size());
    for (int first = 0; first < count; ++first) zeroOutside(set, first, 0, s);
  }

  void zeroOutside(const SosSet &set, int first, int k, std::size_t s) {
    if (k == static_cast<int>(set.cols.size())) return chooseSet(s + 1);
    const auto next = [&] { zeroOutside(set, first, k + 1, s); };
    if (k >= first && k < first + set.type) return next();
    withBounds(set.cols[k], -feasibility_, feasibility_, next);
  }

  void solveRest() {
    const LpSolution solution = solveReference(lp_);
    if (solution.status == LpStatus::Unbounded) best_.status = LpStatus::Unbounded;
    if (solution.status != LpStatus::Optimal || best_.status == LpStatus::Unbounded) return;
    best_.status = LpStatus::Optimal;
    best_.objective = std::min(best_.objective, solution.objective);
  }

  const MipModel &model_;
  LpModel lp_;
  double feasibility_, integrality_;
  LpSolution best_;
};

}  // namespace tarvik::test
