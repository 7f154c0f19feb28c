#include "simplex/sensitivity.h"

#include <algorithm>
#include <cmath>

namespace tarvik {

namespace {

// Smaller pivot row entries (in the scaled model) are rounding noise and limit nothing.
constexpr double kNoise = 1e-9;
constexpr double kNoLimit = kRealInf<double>;

void lower(double &limit, double value) { limit = std::min(limit, std::max(0.0, value)); }

// Within what callers take for infinite; a zero has no sign.
double infinite(double value) { return std::clamp(value, -kInf, kInf) + 0.0; }

// Which bound holds a nonbasic variable. A fixed one is held by the bound its reduced cost
// presses against; a free or superbasic one by none.
enum class Held { None, Lower, Upper };

class Ranging {
 public:
  Ranging(Engine<double> &engine, SolveControl &control)
      : e_(engine), n_(engine.lp.n), m_(engine.lp.m) {
    e_.control = &control;
    const int total = n_ + m_;
    fall_.assign(total, kNoLimit);
    rise_.assign(total, kNoLimit);
    reduced_.resize(total);
    for (int j = 0; j < total; ++j) reduced_[j] = reducedCost(j);
  }

  SensitivityRanges run() {
    SensitivityRanges &r = result_;
    for (Vec<double> *v : {&r.objLow, &r.objUp, &r.lbLow, &r.lbUp, &r.ubLow, &r.ubUp})
      v->resize(n_);
    for (Vec<double> *v : {&r.rhsLow, &r.rhsUp}) v->resize(m_);
    for (int p = 0; p < m_; ++p) passRow(p);
    for (int j = 0; j < n_; ++j)
      if (e_.position[j] < 0 && e_.lower[j] == e_.upper[j]) passFixed(j);
    for (int j = 0; j < n_; ++j) {
      if (e_.position[j] < 0) nonbasicCost(j);
      columnBounds(j);
    }
    for (int i = 0; i < m_; ++i) rightHandSide(i);
    return std::move(result_);
  }

 private:
  // The engine keeps no reduced costs of fixed columns.
  double reducedCost(VarIndex j) const {
    if (e_.position[j] >= 0) return 0;
    if (j >= n_) return e_.dual[j];
    double d = e_.lp.cost[j];
    e_.lp.forColumn(j, [&](int i, double a) {
      if (e_.position[n_ + i] < 0) d += a * e_.dual[n_ + i];
    });
    return d;
  }

  Held held(VarIndex j) const {
    if (e_.lower[j] == e_.upper[j]) return reduced_[j] >= 0 ? Held::Lower : Held::Upper;
    return e_.move[j] > 0 ? Held::Lower : e_.move[j] < 0 ? Held::Upper : Held::None;
  }

  // What the pivot row of position p says: limits of the moves of nonbasic variables, and of the
  // cost of the basic variable.
  void passRow(BasisPos p) {
    e_.unitBtran(p);
    e_.priceRow();
    double costFall = kNoLimit, costRise = kNoLimit;
    const auto visit = [&](VarIndex k, double alpha) {
      if (e_.position[k] >= 0 || std::fabs(alpha) <= kNoise) return;
      limitMove(k, p, alpha);
      if (e_.lower[k] == e_.upper[k]) return;
      const Held side = held(k);
      const double ratio = std::fabs(reduced_[k] / alpha);
      if (side == Held::None)
        costRise = costFall = 0;
      else
        lower((side == Held::Lower) == (alpha > 0) ? costRise : costFall, ratio);
    };
    const SparseVec<double> &row = e_.pivotRow;
    const int count = row.valid() ? row.count : n_;
    for (int k = 0; k < count; ++k) {
      const int j = row.valid() ? row.index[k] : k;
      visit(j, row.value[j]);
    }
    for (int k = 0; k < e_.rho.count; ++k)
      visit(n_ + e_.rho.index[k], e_.rho.value[e_.rho.index[k]]);
    const VarIndex j = e_.head[p];
    if (j >= n_) return;
    const double scale = e_.lp.colScale[j], cost = e_.lp.cost[j];
    result_.objLow[j] = infinite((cost - costFall) / scale);
    result_.objUp[j] = infinite((cost + costRise) / scale);
  }

  // Fixed columns stand in no pivot row.
  void passFixed(VarIndex j) {
    e_.ftranColumn(j, e_.column, false);
    for (int p = 0; p < m_; ++p)
      if (std::fabs(e_.column.value[p]) > kNoise) limitMove(j, p, e_.column.value[p]);
  }

  // The basic value at p changes by -alpha times the move of k.
  void limitMove(VarIndex k, BasisPos p, double alpha) {
    const double below = e_.xB[p] - e_.lB[p], above = e_.uB[p] - e_.xB[p];
    lower(rise_[k], alpha > 0 ? below / alpha : above / -alpha);
    lower(fall_[k], alpha > 0 ? above / alpha : below / -alpha);
  }

  void nonbasicCost(ColIndex j) {
    const double scale = e_.lp.colScale[j], cost = e_.lp.cost[j] / scale;
    const double d = reduced_[j] / scale;
    const bool fixed = e_.lower[j] == e_.upper[j];
    const Held side = held(j);
    result_.objLow[j] = fixed || side == Held::Upper ? -kInf
                        : side == Held::Lower        ? cost - std::max(0.0, d)
                                                     : cost;
    result_.objUp[j] = fixed || side == Held::Lower ? kInf
                       : side == Held::Upper        ? cost - std::min(0.0, d)
                                                    : cost;
  }

  void columnBounds(ColIndex j) {
    const double scale = e_.lp.colScale[j];
    const bool basic = e_.position[j] >= 0;
    const double x = (basic ? e_.xB[e_.position[j]] : e_.value[j]) * scale;
    const double lb = infinite(e_.lower[j] * scale), ub = infinite(e_.upper[j] * scale);
    const Held side = basic ? Held::None : held(j);
    const double down = infinite(x - fall_[j] * scale), up = infinite(x + rise_[j] * scale);
    result_.lbLow[j] = side == Held::Lower ? down : -kInf;
    result_.lbUp[j] = side == Held::Lower ? std::min(up, ub) : std::max(x, lb);
    result_.ubLow[j] = side == Held::Upper ? std::max(down, lb) : std::min(x, ub);
    result_.ubUp[j] = side == Held::Upper ? up : kInf;
  }

  // The logical of a row is minus its activity: what it may fall, the right-hand side may rise.
  void rightHandSide(RowIndex i) {
    const VarIndex j = n_ + i;
    const double scale = e_.lp.varScale(j);
    const bool basic = e_.position[j] >= 0;
    const double activity = infinite(-(basic ? e_.xB[e_.position[j]] : e_.value[j]) * scale);
    const bool hasUpper = e_.lower[j] > -kNoLimit, hasLower = e_.upper[j] < kNoLimit;
    if (basic) {
      result_.rhsLow[i] = hasUpper ? activity : -kInf;
      result_.rhsUp[i] = hasLower ? activity : kInf;
    } else {
      result_.rhsLow[i] = infinite(activity - rise_[j] * scale);
      result_.rhsUp[i] = infinite(activity + fall_[j] * scale);
    }
  }

  Engine<double> &e_;
  const int n_, m_;
  Vec<double> fall_, rise_;  // how far a nonbasic variable can move, scaled
  Vec<double> reduced_;
  SensitivityRanges result_;
};

}  // namespace

SensitivityRanges sensitivityRanges(Engine<double> &engine, SolveControl &control) {
  return Ranging(engine, control).run();
}

SensitivityRanges rangesWithoutRows(const LpModel &lp, const Vec<double> &x) {
  SensitivityRanges r;
  for (int j = 0; j < lp.numCols; ++j) {
    const double lb = lp.colLower[j], ub = lp.colUpper[j], cost = lp.cost[j];
    const bool atLower = !isInf(lb) && (lb == ub ? cost >= 0 : x[j] <= lb);
    const bool atUpper = !atLower && !isInf(ub) && x[j] >= ub;
    const bool fixed = lb == ub;
    r.objLow.push_back(fixed || atUpper ? -kInf : 0.0);
    r.objUp.push_back(fixed || atLower ? kInf : 0.0);
    r.lbLow.push_back(-kInf);
    r.lbUp.push_back(atLower ? infinite(ub) : x[j]);
    r.ubLow.push_back(atUpper ? infinite(lb) : x[j]);
    r.ubUp.push_back(kInf);
  }
  return r;
}

}  // namespace tarvik
