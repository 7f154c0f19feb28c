// Flow cover cuts. A sum of rows is relaxed to a single-node flow set
//   sum_{N+} f_j - sum_{N-} f_j <= b,   0 <= f_j <= u_j y_j,
// a generalised cover (C+, C-) with sum_{C+} u - sum_{C-} u = b + lambda, lambda > 0, is found by
// a knapsack heuristic, and the cut is the mixed-integer rounding of the row with the arcs of the
// cover written from their capacities, their binaries complemented and divided by a capacity of
// the cover above lambda: it contains the simple generalised flow cover inequality and lifts all
// other arcs (Van Roy and Wolsey, 1986; Gu, Nemhauser and Savelsbergh, 1999; Louveaux and Wolsey,
// 2003).
#include <algorithm>
#include <cmath>

#include "mip/cuts/aggregation.h"
#include "mip/cuts/separators.h"

namespace tarvik {

namespace {

constexpr double kLargestCapacity = 1e7;
constexpr double kTiny = 1e-9;
constexpr double kLeastLambda = 1e-5;
constexpr double kLeastViolation = 1e-4;
// lambda below this share of the divisor makes large multipliers.
constexpr double kLeastLambdaShare = 0.002;
constexpr int kMostDivisors = 6;
constexpr int kLargestRank = 6;

// f = coef * var + binaryCoef * binary + constant.
struct Arc {
  bool positive;    // in N+
  double capacity;  // kInf: none
  int var;          // a column or a slack; -1: none
  double coef;
  int binary;  // -1: the arc is always open
  double binaryCoef;
  double constant;
  double flow = 0, open = 1;  // at the point
  bool inCover = false;
};

class FlowCover {
 public:
  FlowCover(const SeparationPoint &point, const RowSystem &rows, const VariableBounds &bounds)
      : point_(&point),
        rows_(&rows),
        bounds_(&bounds),
        binaryCoef_(rows.numCols(), 0.0),
        out_(point, rows) {}

  bool cutFrom(const BaseRow &row, double sign, Cut &cut) {
    if (!makeArcs(row, sign) || !findCover()) return false;
    double best = kLeastViolation, divisor = 0;
    for (const double candidate : divisors()) {
      const double violation = violationWith(candidate);
      if (violation <= best) continue;
      best = violation;
      divisor = candidate;
    }
    if (divisor == 0) return false;
    cut.rank = row.rank + 1;
    return build(divisor, cut);
  }

 private:
  bool isSlack(int var) const { return var >= rows_->numCols(); }

  bool makeArcs(const BaseRow &row, double sign);
  bool addBoundedArc(int var, double coef);
  bool addVariableArc(int col, double coef);
  bool findCover();
  Vec<double> divisors() const;
  double rounded(double capacity, double divisor) const;
  double openingTerm(const Arc &arc, double divisor) const;
  double violationWith(double divisor) const;
  bool build(double divisor, Cut &cut);
  void put(const Arc &arc, double coef);

  const SeparationPoint *point_;
  const RowSystem *rows_;
  const VariableBounds *bounds_;
  Vec<double> binaryCoef_;  // a column: of binaries of the row that no arc has taken yet
  Vec<int> binaries_;
  Vec<Arc> arcs_;
  CompensatedSum rhs_;
  double lambda_ = 0;
  CutAssembler out_;
};

bool FlowCover::makeArcs(const BaseRow &row, double sign) {
  arcs_.clear();
  for (const int j : binaries_) binaryCoef_[j] = 0;
  binaries_.clear();
  rhs_ = CompensatedSum(sign * row.rhs);
  point_->work->charge(15.0 * static_cast<double>(row.var.size()));
  for (std::size_t k = 0; k < row.var.size(); ++k) {
    const int j = row.var[k];
    if (isSlack(j) || !point_->global->isBinary(j)) continue;
    binaryCoef_[j] = sign * row.coef[k];
    binaries_.push_back(j);
  }
  bool hasVariableArc = false;
  for (std::size_t k = 0; k < row.var.size(); ++k) {
    const int j = row.var[k];
    const double coef = sign * row.coef[k];
    if (!isSlack(j) && point_->global->isBinary(j)) continue;
    if (!isSlack(j) && std::fabs(coef) > kTiny && addVariableArc(j, coef))
      hasVariableArc = true;
    else if (!addBoundedArc(j, coef))
      return false;
  }
  for (const int j : binaries_) {
    const double c = binaryCoef_[j];
    if (c == 0) continue;
    const double size = std::fabs(c);
    arcs_.push_back({c > 0, size, -1, 0, j, size, 0, size * rows_->x()[j], rows_->x()[j]});
  }
  return hasVariableArc;
}

// 0 <= x <= U y: one arc, which takes the binary's own term along when it has the same sign.
bool FlowCover::addVariableArc(int col, double coef) {
  const Vec<double> &x = rows_->x();
  if (point_->global->lower(col) != 0) return false;
  const VariableBound *best = nullptr;
  for (const VariableBound &bound : bounds_->upper(col)) {
    if (bound.constant != 0 || bound.coef <= 0) continue;
    if (!best || bound.at(x) < best->at(x)) best = &bound;
  }
  if (!best || !point_->global->isBinary(best->binary)) return false;
  const int y = best->binary;
  double own = binaryCoef_[y];
  if (own * coef < 0) own = 0;
  const double size = std::fabs(coef), capacity = size * best->coef + std::fabs(own);
  if (capacity > kLargestCapacity) return false;
  if (own != 0) binaryCoef_[y] = 0;
  arcs_.push_back({coef > 0, capacity, col, size, y, std::fabs(own), 0,
                   std::max(0.0, size * x[col]) + std::fabs(own) * x[y], x[y]});
  return true;
}

// An arc that is always open, or nothing where the term can be dropped at its bound.
bool FlowCover::addBoundedArc(int var, double coef) {
  const bool slack = isSlack(var);
  const SlackInfo *info = slack ? &rows_->slack(var - rows_->numCols()) : nullptr;
  // Slacks count in steps here; a unit of the arc is a step.
  const double unit = slack && info->step > 0 ? info->step : 1;
  const double lower = slack ? 0 : point_->global->lower(var);
  const double upper =
      slack ? (isInf(info->upper) ? kInf : info->upper / unit) : point_->global->upper(var);
  const double value = slack ? info->value / unit : rows_->x()[var];
  const bool hasLower = std::fabs(lower) <= kLargestCapacity;
  const bool hasUpper = std::fabs(upper) <= kLargestCapacity;
  if (!hasLower && !hasUpper) return false;
  const double size = std::fabs(coef);
  const double capacity = hasLower && hasUpper && size * (upper - lower) <= kLargestCapacity
                              ? size * (upper - lower)
                              : kInf;
  if (hasLower) {
    rhs_.addProduct(-coef, lower);
    if (coef > 0 && isInf(capacity)) return true;
    arcs_.push_back({coef > 0, capacity, var, size, -1, 0, -size * lower,
                     std::max(0.0, size * (value - lower))});
  } else {
    rhs_.addProduct(-coef, upper);
    if (coef < 0) return true;
    arcs_.push_back(
        {false, kInf, var, -size, -1, 0, size * upper, std::max(0.0, size * (upper - value))});
  }
  return true;
}

// Starts with all arcs of N+ and takes capacity away where closed arcs are lost, or opened ones
// won, at least; what exceeds b in the end is lambda.
bool FlowCover::findCover() {
  double excess = -rhs_.value(), scale = std::fabs(rhs_.value());
  Vec<std::pair<double, int>> order;
  for (std::size_t k = 0; k < arcs_.size(); ++k) {
    Arc &arc = arcs_[k];
    if (isInf(arc.capacity) || arc.capacity <= kTiny) continue;
    scale = std::max(scale, arc.capacity);
    arc.inCover = arc.positive;
    if (arc.positive) excess += arc.capacity;
    const double gain = arc.positive ? 1 - arc.open : arc.open;
    if (gain > kTiny) order.push_back({-gain / arc.capacity, static_cast<int>(k)});
  }
  const double least = kLeastLambda * std::max(1.0, scale);
  if (excess <= least) return false;
  std::sort(order.begin(), order.end());
  for (const auto &[gain, k] : order) {
    Arc &arc = arcs_[k];
    if (arc.capacity >= excess - least) continue;
    excess -= arc.capacity;
    arc.inCover = !arc.positive;
  }
  // Summed anew: what was taken away must not leave its rounding errors.
  CompensatedSum lambda(-rhs_.value());
  for (const Arc &arc : arcs_)
    if (arc.inCover) lambda.add(arc.positive ? arc.capacity : -arc.capacity);
  lambda_ = lambda.value();
  point_->work->charge(10.0 * static_cast<double>(arcs_.size()));
  return lambda_ > least;
}

Vec<double> FlowCover::divisors() const {
  Vec<double> all;
  for (const Arc &arc : arcs_)
    if (!isInf(arc.capacity) && arc.capacity > lambda_ * (1 + 1e-6) &&
        lambda_ >= kLeastLambdaShare * arc.capacity)
      all.push_back(arc.capacity);
  std::sort(all.rbegin(), all.rend());
  all.erase(
      std::unique(all.begin(), all.end(), [](double a, double b) { return a - b <= 1e-6 * a; }),
      all.end());
  if (static_cast<int>(all.size()) > kMostDivisors) all.resize(kMostDivisors);
  return all;
}

// lambda times the rounding function with fraction 1 - lambda / divisor.
double FlowCover::rounded(double capacity, double divisor) const {
  const double d = capacity / divisor, whole = std::floor(d);
  const double beyond = d - whole - (1 - lambda_ / divisor);
  return lambda_ * whole + divisor * std::max(0.0, beyond);
}

// What the binary adds when the arc is written from its capacity; infinite when it is not.
double FlowCover::openingTerm(const Arc &arc, double divisor) const {
  return rounded(arc.positive ? arc.capacity : -arc.capacity, divisor);
}

double FlowCover::violationWith(double divisor) const {
  double violation = lambda_;
  for (const Arc &arc : arcs_) {
    if (arc.inCover) {
      const double closed = rounded(arc.positive ? -arc.capacity : arc.capacity, divisor);
      violation += closed * (1 - arc.open);
      if (arc.positive) violation += arc.flow - arc.capacity * arc.open;
      continue;
    }
    const double plain = arc.positive ? 0 : -arc.flow;
    double fromCapacity = -kInf;
    if (arc.binary >= 0)
      fromCapacity = openingTerm(arc, divisor) * arc.open +
                     (arc.positive ? arc.flow - arc.capacity * arc.open : 0);
    violation += std::max(plain, fromCapacity);
  }
  point_->work->charge(6.0 * static_cast<double>(arcs_.size()));
  return violation;
}

void FlowCover::put(const Arc &arc, double coef) {
  if (arc.var >= 0 && isSlack(arc.var)) {
    const int row = arc.var - rows_->numCols();
    const double step = rows_->slack(row).step;
    out_.addSlack(row, coef * arc.coef / (step > 0 ? step : 1));
  } else if (arc.var >= 0) {
    out_.addColumn(arc.var, coef * arc.coef);
  }
  if (arc.binary >= 0) out_.addColumn(arc.binary, coef * arc.binaryCoef);
  out_.addRhsProduct(-coef, arc.constant);
}

bool FlowCover::build(double divisor, Cut &cut) {
  out_.addRhs(-lambda_);
  const auto putOpening = [&](const Arc &arc, double coef) {
    if (arc.binary >= 0)
      out_.addColumn(arc.binary, coef);
    else
      out_.addRhs(-coef);
  };
  for (const Arc &arc : arcs_) {
    if (arc.inCover) {
      const double closed = rounded(arc.positive ? -arc.capacity : arc.capacity, divisor);
      out_.addRhs(-closed);
      putOpening(arc, -closed);
      if (arc.positive) {
        put(arc, 1);
        putOpening(arc, -arc.capacity);
      }
      continue;
    }
    const double plain = arc.positive ? 0 : -arc.flow;
    const double opening = arc.binary >= 0 ? openingTerm(arc, divisor) : 0;
    const double fromCapacity =
        opening * arc.open + (arc.positive ? arc.flow - arc.capacity * arc.open : 0);
    if (arc.binary >= 0 && fromCapacity > plain) {
      putOpening(arc, opening);
      if (!arc.positive) continue;
      put(arc, 1);
      putOpening(arc, -arc.capacity);
    } else if (!arc.positive) {
      put(arc, -1);
    }
  }
  return out_.finish(cut);
}

class FlowCoverSeparator : public Separator {
 public:
  explicit FlowCoverSeparator(std::shared_ptr<CutContext> context) : context_(std::move(context)) {}
  CutFamily family() const override { return CutFamily::FlowCover; }

  void separate(const SeparationPoint &point, int level, Vec<Cut> &cuts) override {
    const VariableBounds &bounds = context_->variableBounds(point);
    if (bounds.count() == 0) return;
    const RowSystem &rows = context_->rows(point);
    const MirKernel kernel(point, rows, &bounds);
    Aggregation aggregation(point, rows, kernel);
    FlowCover flowCover(point, rows, bounds);
    aggregation.run(aggregationLimits(point, level), [&](const BaseRow &base) {
      bool found = false;
      if (base.rank >= kLargestRank) return found;
      for (const double sign : {1.0, -1.0}) {
        Cut cut;
        cut.family = CutFamily::FlowCover;
        if (!flowCover.cutFrom(base, sign, cut)) continue;
        cuts.push_back(std::move(cut));
        found = true;
      }
      return found;
    });
  }

 private:
  std::shared_ptr<CutContext> context_;
};

}  // namespace

std::unique_ptr<Separator> makeFlowCoverSeparator(std::shared_ptr<CutContext> context) {
  return std::make_unique<FlowCoverSeparator>(std::move(context));
}

}  // namespace tarvik
