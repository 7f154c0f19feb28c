// A tiny dense bounded-variable simplex in extended precision with Bland's rule: plain enough to
// be believed, slow enough to be used on a few dozen rows and columns only. It is the
// independent answer that kernels are compared with.
//
// Phase 1 minimises the sum of infeasibilities: the bound that a basic variable violates is
// taken as its other bound until it is reached. The number of violated variables never grows,
// and between two changes of it Bland's rule terminates.
#pragma once

#include <cmath>
#include <limits>
#include <vector>

#include "lp/lp_model.h"

namespace tarvik::test {

class ReferenceSimplex {
 public:
  using Real = long double;

  explicit ReferenceSimplex(const LpModel &lp) : lp_(lp), m_(lp.numRows), n_(lp.numCols) {
    for (int v = 0; v < n_ + m_; ++v) {
      status_.push_back(v >= n_ ? VarStatus::Basic : startStatus(v));
      if (v >= n_) head_.push_back(v);
    }
  }

  LpSolution solve() {
    LpSolution solution;
    computeValues();
    while (infeasibility() > 0) {
      const Step step = iterate(true);
      if (step == Step::Optimal) {
        solution.status = LpStatus::Infeasible;
        solution.farkas.assign(y_.begin(), y_.end());
        return solution;
      }
    }
    Step step = Step::Moved;
    while (step == Step::Moved) step = iterate(false);
    solution.status = step == Step::Optimal ? LpStatus::Optimal : LpStatus::Unbounded;
    if (step == Step::Unbounded) {
      solution.ray.assign(direction_.begin(), direction_.begin() + n_);
      return solution;
    }
    extract(solution);
    return solution;
  }

 private:
  enum class Step { Moved, Optimal, Unbounded };
  static constexpr Real kTol = 1e-11L;
  static constexpr Real kPivot = 1e-10L;
  static constexpr Real kInfinite = std::numeric_limits<Real>::infinity();

  Real lower(int v) const {
    const double bound = v < n_ ? lp_.colLower[v] : lp_.rowLower[v - n_];
    return bound <= -kInfBound ? -kInfinite : static_cast<Real>(bound);
  }
  Real upper(int v) const {
    const double bound = v < n_ ? lp_.colUpper[v] : lp_.rowUpper[v - n_];
    return bound >= kInfBound ? kInfinite : static_cast<Real>(bound);
  }
  VarStatus startStatus(int v) const {
    if (std::isfinite(lower(v))) return VarStatus::AtLower;
    return std::isfinite(upper(v)) ? VarStatus::AtUpper : VarStatus::Free;
  }
  Real nonbasicValue(int v) const {
    if (status_[v] == VarStatus::AtLower) return lower(v);
    return status_[v] == VarStatus::AtUpper ? upper(v) : 0;
  }
  // The column of [A, -I] of a variable.
  std::vector<Real> column(int v) const {
    std::vector<Real> result(m_, 0);
    if (v >= n_) {
      result[v - n_] = -1;
    } else {
      for (NzIndex k = lp_.a.start[v]; k < lp_.a.start[v + 1]; ++k)
        result[lp_.a.index[k]] += lp_.a.value[k];
    }
    return result;
  }

  // Solves with the basis matrix (or its transpose) by elimination with full row pivoting.
  std::vector<Real> solveBasis(std::vector<Real> rhs, bool transposed) const {
    std::vector<std::vector<Real>> mat(m_, std::vector<Real>(m_));
    for (int p = 0; p < m_; ++p) {
      const std::vector<Real> col = column(head_[p]);
      for (int i = 0; i < m_; ++i) (transposed ? mat[p][i] : mat[i][p]) = col[i];
    }
    for (int k = 0; k < m_; ++k) {
      int best = k;
      for (int i = k + 1; i < m_; ++i)
        if (std::fabs(mat[i][k]) > std::fabs(mat[best][k])) best = i;
      std::swap(mat[k], mat[best]);
      std::swap(rhs[k], rhs[best]);
      for (int i = k + 1; i < m_; ++i) {
        const Real factor = mat[i][k] / mat[k][k];
        if (factor == 0) continue;
        for (int j = k; j < m_; ++j) mat[i][j] -= factor * mat[k][j];
        rhs[i] -= factor * rhs[k];
      }
    }
    for (int k = m_ - 1; k >= 0; --k) {
      for (int j = k + 1; j < m_; ++j) rhs[k] -= mat[k][j] * rhs[j];
      rhs[k] /= mat[k][k];
    }
    return rhs;
  }

  void computeValues() {
    value_.assign(n_ + m_, 0);
    std::vector<Real> rhs(m_, 0);
    for (int v = 0; v < n_ + m_; ++v) {
      if (status_[v] == VarStatus::Basic) continue;
      value_[v] = nonbasicValue(v);
      if (value_[v] == 0) continue;
      const std::vector<Real> col = column(v);
      for (int i = 0; i < m_; ++i) rhs[i] -= col[i] * value_[v];
    }
    const std::vector<Real> basic = solveBasis(rhs, false);
    for (int p = 0; p < m_; ++p) value_[head_[p]] = basic[p];
  }

  Real tolerance(Real bound) const { return kTol * std::max<Real>(1, std::fabs(bound)); }
  // -1 below its lower bound, 1 above its upper bound, 0 feasible.
  int violated(int v) const {
    if (value_[v] < lower(v) - tolerance(lower(v))) return -1;
    return value_[v] > upper(v) + tolerance(upper(v)) ? 1 : 0;
  }
  Real infeasibility() const {
    Real sum = 0;
    for (const int v : head_) {
      const int side = violated(v);
      if (side < 0) sum += lower(v) - value_[v];
      if (side > 0) sum += value_[v] - upper(v);
    }
    return sum;
  }

  Real phaseCost(int v, bool phase1) const {
    if (!phase1) return v < n_ ? static_cast<Real>(lp_.cost[v]) : 0;
    return status_[v] == VarStatus::Basic ? violated(v) : 0;
  }

  Step iterate(bool phase1) {
    std::vector<Real> costs(m_);
    for (int p = 0; p < m_; ++p) costs[p] = phaseCost(head_[p], phase1);
    y_ = solveBasis(costs, true);
    for (int v = 0; v < n_ + m_; ++v) {
      if (status_[v] == VarStatus::Basic || lower(v) == upper(v)) continue;
      const std::vector<Real> col = column(v);
      Real d = phase1 ? 0 : phaseCost(v, false);
      Real size = std::fabs(d);
      for (int i = 0; i < m_; ++i) {
        d -= y_[i] * col[i];
        size = std::max(size, std::fabs(y_[i] * col[i]));
      }
      if (std::fabs(d) <= kTol * std::max<Real>(1, size)) continue;
      const bool canRise = status_[v] != VarStatus::AtUpper;
      const bool canFall = status_[v] != VarStatus::AtLower;
      if ((d < 0 && canRise) || (d > 0 && canFall)) return move(v, d < 0 ? 1 : -1, phase1);
    }
    return Step::Optimal;
  }

  Step move(int entering, int sign, bool phase1) {
    std::vector<Real> rate = solveBasis(column(entering), false);
    direction_.assign(n_ + m_, 0);
    direction_[entering] = sign;
    for (int p = 0; p < m_; ++p) direction_[head_[p]] = -sign * rate[p];

    Real best = upper(entering) - lower(entering);
    int leaving = -1;
    bool toUpper = false;
    for (int p = 0; p < m_; ++p) {
      const int v = head_[p];
      const Real slope = direction_[v];
      if (std::fabs(slope) <= kPivot) continue;
      const int side = phase1 ? violated(v) : 0;
      // A violated variable blocks at the bound it violates, when it moves towards it.
      if ((side < 0 && slope < 0) || (side > 0 && slope > 0)) continue;
      const bool hitsUpper = side == 0 ? slope > 0 : side > 0;
      const Real bound = hitsUpper ? upper(v) : lower(v);
      if (!std::isfinite(bound)) continue;
      const Real step = std::max<Real>(0, (bound - value_[v]) / slope);
      const Real tie = kTol * std::max<Real>(1, step);
      if (step < best - tie || (leaving >= 0 && step <= best + tie && v < head_[leaving])) {
        best = leaving >= 0 && step > best ? best : step;
        leaving = p;
        toUpper = hitsUpper;
      }
    }
    if (!std::isfinite(best)) return Step::Unbounded;
    if (leaving < 0) {
      status_[entering] =
          status_[entering] == VarStatus::AtLower ? VarStatus::AtUpper : VarStatus::AtLower;
    } else {
      status_[head_[leaving]] = toUpper ? VarStatus::AtUpper : VarStatus::AtLower;
      status_[entering] = VarStatus::Basic;
      head_[leaving] = entering;
    }
    computeValues();
    return Step::Moved;
  }

  void extract(LpSolution &solution) const {
    Real objective = lp_.offset;
    for (int j = 0; j < n_; ++j) {
      solution.colValue.push_back(static_cast<double>(value_[j]));
      solution.basis.col.push_back(status_[j]);
      Real d = lp_.cost[j];
      const std::vector<Real> col = column(j);
      for (int i = 0; i < m_; ++i) d -= y_[i] * col[i];
      if (status_[j] == VarStatus::Basic) d = 0;
      solution.colDual.push_back(static_cast<double>(d));
      objective += value_[j] * lp_.cost[j];
    }
    for (int i = 0; i < m_; ++i) {
      solution.rowActivity.push_back(static_cast<double>(value_[n_ + i]));
      solution.rowDual.push_back(static_cast<double>(y_[i]));
      solution.basis.row.push_back(status_[n_ + i]);
    }
    solution.objective = static_cast<double>(objective);
  }

  const LpModel &lp_;
  int m_, n_;
  std::vector<VarStatus> status_;
  std::vector<int> head_;
  std::vector<Real> value_, y_, direction_;
};

inline LpSolution solveReference(const LpModel &lp) { return ReferenceSimplex(lp).solve(); }

}  // namespace tarvik::test
