// Flow path cuts (Van Roy and Wolsey, 1985; Barany, Van Roy and Wolsey, 1984). A path of balance
// rows t = 1, ..., p,
//   sum_{N+_t} x_j - sum_{N-_t} x_j + s_{t-1} - s_t <= b_t,   0 <= x_j <= u_j y_j for some of N+,
// is followed along its flows s_t. For any set S of arcs with binaries,
//   sum_S x_j <= sum_t sum_{S and N+_t} max(0, b_t + ... + b_p) y_j + s_p + sum_t sum_{N-_t} x_j:
// let t be the first row with an open arc of S; the rows t, ..., p bound what flows in S by the
// coefficient of that arc and by what leaves.
#include <algorithm>
#include <cmath>

#include "mip/cuts/cut_assembler.h"
#include "mip/cuts/separators.h"

namespace tarvik {

namespace {

constexpr double kTiny = 1e-9;
constexpr double kLeastViolation = 1e-4;
constexpr int kLongestPath = 20;
constexpr int kLongestRow = 500;
constexpr double kLargestWeight = 1e4;
constexpr double kLargestTotal = 1e7;

class FlowPath {
 public:
  FlowPath(const SeparationPoint &point, const RowSystem &rows, const VariableBounds &bounds)
      : point_(&point),
        rows_(&rows),
        bounds_(&bounds),
        onPath_(point.problem->numRows(), 0),
        isInner_(rows.numCols(), 0),
        out_(point, rows) {}

  // Follows the path that begins with sign * row <= rhs and cuts after every row.
  void run(int row, double sign, Vec<Cut> &cuts) {
    nodes_.clear();
    bool found = false;
    for (double weight = sign; !found && addRow(row, weight);) {
      found = separate(cuts);
      if (found || static_cast<int>(nodes_.size()) >= kLongestPath || !next(row, weight)) break;
    }
    for (const Node &node : nodes_) {
      onPath_[node.row] = 0;
      if (node.leaving >= 0) isInner_[node.leaving] = 0;
    }
  }

 private:
  struct Node {
    int row;
    double weight, rhs;
    int leaving = -1;  // the inner flow to the next row
  };

  bool addRow(int row, double weight);
  bool next(int &row, double &weight);
  bool separate(Vec<Cut> &cuts);
  const VariableBound *opening(int col) const;
  template <class F>
  void forEntries(const Node &node, F &&f) const;

  const SeparationPoint *point_;
  const RowSystem *rows_;
  const VariableBounds *bounds_;
  Vec<Node> nodes_;
  Vec<char> onPath_, isInner_;
  CutAssembler out_;
};

template <class F>
void FlowPath::forEntries(const Node &node, F &&f) const {
  const SparseMatrix &rows = point_->problem->rows();
  for (NzIndex k = rows.start[node.row]; k < rows.start[node.row + 1]; ++k)
    f(rows.index[k], node.weight * rows.value[k]);
  point_->work->charge(3.0 * rows.length(node.row));
}

// All columns must be nonnegative flows, and none an inner one of rows further back.
bool FlowPath::addRow(int row, double weight) {
  const Problem &problem = *point_->problem;
  if (problem.rows().length(row) > kLongestRow) return false;
  const double side = weight > 0 ? problem.lp().rowUpper[row] : -problem.lp().rowLower[row];
  if (isInf(side)) return false;
  const Node node{row, weight, std::fabs(weight) * side};
  bool fits = true;
  const int entering = nodes_.empty() ? -1 : nodes_.back().leaving;
  forEntries(node, [&](int j, double) {
    fits = fits && point_->global->lower(j) >= 0 && (!isInner_[j] || j == entering);
  });
  if (!fits) return false;
  nodes_.push_back(node);
  onPath_[row] = 1;
  return true;
}

// The largest flow that leaves the last row for another one, which becomes the next.
bool FlowPath::next(int &row, double &weight) {
  Node &last = nodes_.back();
  const SparseMatrix &cols = point_->problem->cols();
  int best = -1;
  double bestFlow = kTiny;
  forEntries(last, [&](int j, double coef) {
    const double flow = -coef * (*point_->x)[j];
    if (point_->problem->isIntegral(j) || isInner_[j] || flow <= bestFlow) return;
    for (NzIndex k = cols.start[j]; k < cols.start[j + 1]; ++k)
      if (onPath_[cols.index[k]] && cols.index[k] != last.row) return;
    for (NzIndex k = cols.start[j]; k < cols.start[j + 1]; ++k) {
      const int i = cols.index[k];
      const double factor = -coef / cols.value[k];
      if (onPath_[i] || rows_->slack(i).side == 0 || std::fabs(factor) > kLargestWeight ||
          std::fabs(factor) < 1 / kLargestWeight || point_->problem->rows().length(i) < 2)
        continue;
      const double side =
          factor > 0 ? point_->problem->lp().rowUpper[i] : point_->problem->lp().rowLower[i];
      if (isInf(side)) continue;
      best = j;
      bestFlow = flow;
      row = i;
      weight = factor;
      return;
    }
  });
  if (best < 0) return false;
  last.leaving = best;
  isInner_[best] = 1;
  return true;
}

const VariableBound *FlowPath::opening(int col) const {
  for (const VariableBound &bound : bounds_->upper(col))
    if (bound.constant == 0 && bound.coef > 0 && point_->global->isBinary(bound.binary))
      return &bound;
  return nullptr;
}

bool FlowPath::separate(Vec<Cut> &cuts) {
  const Vec<double> &x = *point_->x;
  Vec<double> rest(nodes_.size());  // b_t + ... + b_p
  double sum = 0;
  for (std::size_t t = nodes_.size(); t-- > 0;) {
    sum += nodes_[t].rhs;
    rest[t] = std::max(0.0, sum);
    if (rest[t] > kLargestTotal) return false;
  }
  struct Term {
    int col;
    double coef;
  };
  Vec<Term> terms;
  double violation = 0;
  int chosen = 0;
  for (std::size_t t = 0; t < nodes_.size(); ++t) {
    forEntries(nodes_[t], [&](int j, double coef) {
      if (isInner_[j]) return;
      if (coef < 0) {
        terms.push_back({j, coef});
        violation += coef * x[j];
        return;
      }
      const VariableBound *bound = point_->problem->isIntegral(j) ? nullptr : opening(j);
      if (!bound) return;
      const double gain = coef * x[j] - rest[t] * x[bound->binary];
      if (gain <= kTiny) return;
      terms.push_back({j, coef});
      terms.push_back({bound->binary, -rest[t]});
      violation += gain;
      ++chosen;
    });
  }
  if (chosen == 0 || violation < kLeastViolation) return false;
  for (const Term &term : terms) out_.addColumn(term.col, term.coef);
  Cut cut;
  cut.family = CutFamily::FlowPath;
  cut.rank = 1;
  if (!out_.finish(cut)) return false;
  cuts.push_back(std::move(cut));
  return true;
}

class FlowPathSeparator : public Separator {
 public:
  explicit FlowPathSeparator(std::shared_ptr<CutContext> context) : context_(std::move(context)) {}
  CutFamily family() const override { return CutFamily::FlowPath; }

  void separate(const SeparationPoint &point, int level, Vec<Cut> &cuts) override {
    const VariableBounds &bounds = context_->variableBounds(point);
    if (bounds.count() == 0) return;
    const RowSystem &rows = context_->rows(point);
    FlowPath path(point, rows, bounds);
    const double end = workEnd(point, level);
    for (int i = 0; i < point.problem->numRows() && point.work->counted() < end; ++i) {
      if (point.problem->rows().length(i) < 2) continue;
      for (const double sign : {1.0, -1.0}) path.run(i, sign, cuts);
    }
  }

 private:
  std::shared_ptr<CutContext> context_;
};

}  // namespace

std::unique_ptr<Separator> makeFlowPathSeparator(std::shared_ptr<CutContext> context) {
  return std::make_unique<FlowPathSeparator>(std::move(context));
}

}  // namespace tarvik
