#include "mip/conflict/relaxation_proof.h"

#include <algorithm>
#include <cmath>

namespace tarvik {

namespace {
// Multipliers and coefficients of this size, relative to the largest multiplier, are noise.
constexpr double kNoise = 1e-10;
}  // namespace

void RelaxationProof::addColumn(int col, double coef) {
  if (!isUsed_[col]) {
    isUsed_[col] = 1;
    cols_.push_back(col);
  }
  sum_[col].add(coef);
}

double RelaxationProof::addRows(const Relaxation &lp, const Vec<double> &y, WorkMeter &work) {
  double largest = 0, entries = 0;
  for (const double v : y) largest = std::max(largest, std::fabs(v));
  for (int i = 0; i < lp.numRows(); ++i) {
    if (std::fabs(y[i]) <= kNoise * largest) continue;
    const double side = y[i] > 0 ? lp.rowLower(i) : lp.rowUpper(i);
    if (isInf(side)) continue;
    const int *index = nullptr;
    const double *value = nullptr;
    int count = 0;
    lp.row(i, index, value, count);
    for (int k = 0; k < count; ++k) {
      addColumn(index[k], 0);
      sum_[index[k]].addProduct(-y[i], value[k]);
    }
    rhs_.addProduct(-y[i], side);
    rank_ = std::max(rank_, lp.rowRank(i));
    entries += count;
  }
  work.charge(static_cast<double>(lp.numRows()) + 3 * entries);
  return largest;
}

bool RelaxationProof::finish(double scale, ProofRow &proof, WorkMeter &work) {
  proof.index.clear();
  proof.value.clear();
  bool valid = std::isfinite(scale);
  for (const int j : cols_) {
    const double a = sum_[j].value();
    sum_[j] = CompensatedSum();
    isUsed_[j] = 0;
    if (!std::isfinite(a)) valid = false;
    if (a == 0) continue;
    if (std::fabs(a) > kNoise * scale) {
      proof.index.push_back(j);
      proof.value.push_back(a);
      continue;
    }
    const BoundSide side = a > 0 ? BoundSide::Lower : BoundSide::Upper;
    const double bound =
        domain_.boundSince(j, side, domain_.positionAt(j, side, domain_.globalEnd()));
    if (!isInf(bound)) rhs_.addProduct(-a, bound);
  }
  work.charge(3.0 * static_cast<double>(cols_.size()));
  cols_.clear();
  proof.rhs = rhs_.value();
  proof.margin = problem_.tolerances().primal * std::max({1.0, scale, std::fabs(proof.rhs)});
  proof.rank = rank_;
  rhs_ = CompensatedSum();
  rank_ = 0;
  return valid && std::isfinite(proof.rhs);
}

bool RelaxationProof::infeasible(const Relaxation &lp, ProofRow &proof, WorkMeter &work) {
  const Vec<double> &farkas = lp.solution().farkas;
  if (farkas.empty()) return false;
  double largest = 0;
  for (const double v : farkas) largest = std::max(largest, std::fabs(v));
  if (!(largest > 0)) return false;
  multipliers_.resize(farkas.size());
  for (std::size_t i = 0; i < farkas.size(); ++i) multipliers_[i] = -farkas[i] / largest;
  return finish(addRows(lp, multipliers_, work), proof, work);
}

bool RelaxationProof::cutOff(Relaxation &lp, double cutoff, ProofRow &proof, WorkMeter &work) {
  if (cutoff >= kUserInf) return false;
  // The multipliers of the basis at the true costs.
  const Vec<VarIndex> &head = lp.simplex().basisHead();
  multipliers_.assign(head.size(), 0);
  for (std::size_t i = 0; i < head.size(); ++i)
    if (head[i] < problem_.numCols()) multipliers_[i] = problem_.lp().cost[head[i]];
  lp.simplex().btran(multipliers_, work);
  for (std::size_t k = 0; k < domain_.objectiveCols().size(); ++k)
    addColumn(domain_.objectiveCols()[k], domain_.objectiveCoefs()[k]);
  rhs_.add(cutoff);
  rhs_.add(-problem_.lp().offset);
  const double largest = addRows(lp, multipliers_, work);
  return finish(std::max(1.0, largest), proof, work);
}

}  // namespace tarvik
