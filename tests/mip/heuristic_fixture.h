// A heuristic's surroundings without a search: a problem, its domain and relaxation, and a sink
// that checks every point by itself.
#pragma once

#include <cstdarg>
#include <cstdio>
#include <string>

#include "base/random.h"
#include "mip/heuristics/heuristic.h"
#include "mip/pseudo_costs.h"

namespace tarvik::test {

struct Row {
  double lower;
  Vec<std::pair<int, double>> entries;
  double upper;
};

// Columns are integral in [0, upper] unless `continuous` names them.
inline MipModel makeModel(const Vec<double> &cost, const Vec<double> &upper, const Vec<Row> &rows,
                          const Vec<int> &continuous = {}) {
  MipModel model;
  LpModel &lp = model.lp;
  lp.numCols = static_cast<int>(cost.size());
  lp.numRows = static_cast<int>(rows.size());
  lp.cost = cost;
  lp.colLower.assign(lp.numCols, 0);
  lp.colUpper = upper;
  SparseMatrix byRow;
  byRow.clear(lp.numCols);
  for (const Row &row : rows) {
    Vec<int> index;
    Vec<double> value;
    for (const auto &[col, coef] : row.entries) {
      index.push_back(col);
      value.push_back(coef);
    }
    byRow.append(static_cast<int>(index.size()), index.data(), value.data());
    lp.rowLower.push_back(row.lower);
    lp.rowUpper.push_back(row.upper);
  }
  lp.a = transpose(byRow);
  model.kind.assign(lp.numCols, VarKind::Integer);
  for (const int j : continuous) model.kind[j] = VarKind::Continuous;
  return model;
}

class CheckingSink : public SolutionSink {
 public:
  explicit CheckingSink(const Problem &problem) : problem_(problem) {}

  bool submit(const Vec<double> &x, SolutionSource source) override {
    Vec<double> point(x);
    for (int j = 0; j < problem_.numCols(); ++j)
      if (problem_.isIntegral(j)) point[j] = std::round(point[j]);
    if (problem_.violation(point) > problem_.tolerances().primal) return false;
    const double objective = problem_.objective(point);
    if (objective >= objective_ - 1e-9) return false;
    objective_ = objective;
    incumbent_ = point;
    source_ = source;
    return true;
  }
  bool hasIncumbent() const override { return objective_ < kUserInf; }
  double incumbentObjective() const override { return objective_; }
  const Vec<double> &incumbent() const override { return incumbent_; }
  double cutoff() const override { return objective_; }
  SolutionSource source() const { return source_; }

 private:
  const Problem &problem_;
  Vec<double> incumbent_;
  double objective_ = kUserInf;
  SolutionSource source_ = SolutionSource::Node;
};

class HeuristicFixture {
 public:
  explicit HeuristicFixture(MipModel model)
      : problem(std::move(model), {}),
        domain(problem),
        lp(problem, quiet()),
        sink(problem),
        completion(problem, quiet()),
        pseudoCosts(problem.numCols()),
        random(1) {
    control.log = &log;
    control.limits.start();
    options.simplex = quiet();
    domain.propagate(control.work);
  }

  // The relaxation at the domain's bounds.
  LpStatus solveRelaxation() {
    lp.follow(domain);
    const LpStatus status = lp.solve(control);
    x = lp.x();
    return status;
  }
  HeuristicContext context(double workLimit = 1e9) {
    HeuristicContext c{};
    c.problem = &problem;
    c.options = &options;
    c.domain = &domain;
    c.lp = &lp;
    c.x = x.empty() ? nullptr : &x;
    c.sink = &sink;
    c.completion = &completion;
    c.control = &control;
    c.pseudoCosts = &pseudoCosts;
    c.random = &random;
    c.root = domain.level() == 0;
    c.bound = -kUserInf;
    c.workLimit = control.work.counted() + workLimit;
    return c;
  }

  Problem problem;
  Domain domain;
  Relaxation lp;
  CheckingSink sink;
  PointRepair completion;
  PseudoCosts pseudoCosts;
  Random random;
  SilentLog log;
  SolveControl control;
  MipOptions options;
  Vec<double> x;

 private:
  static SimplexOptions quiet() {
    SimplexOptions options;
    options.logging = false;
    return options;
  }
};

// Keeps what was printed.
class RecordedLog : public Log {
 public:
  void print(const char *format, ...) override {
    char line[512];
    va_list args;
    va_start(args, format);
    std::vsnprintf(line, sizeof line, format, args);
    va_end(args);
    text += line;
  }
  bool says(const char *part) const { return text.find(part) != std::string::npos; }
  std::string text;
};

struct Recorded : HeuristicFixture {
  explicit Recorded(MipModel model) : HeuristicFixture(std::move(model)) { control.log = &lines; }
  RecordedLog lines;
};

// Knapsack rows over many columns with fractional relaxations; feasible at zero.
inline MipModel randomPacking(int cols, int rows, Random &random) {
  Vec<double> cost, upper;
  Vec<Row> list(rows);
  for (int j = 0; j < cols; ++j) {
    cost.push_back(-1 - random.below(30));
    upper.push_back(1 + random.below(3));
  }
  for (Row &row : list) {
    double total = 0;
    for (int j = 0; j < cols; ++j) {
      if (random.below(2) == 0) continue;
      row.entries.emplace_back(j, 1 + random.below(20));
      total += row.entries.back().second;
    }
    row.lower = -kInf;
    row.upper = std::floor(total / 3) + 1;
  }
  return makeModel(cost, upper, list);
}

// Every row a sum of few binaries that has to be exactly one, around a hidden solution.
inline MipModel randomPartitioning(int cols, int rows, Random &random) {
  Vec<char> chosen(cols, 0);
  Vec<Row> list(rows);
  Vec<double> cost(cols);
  for (double &c : cost) c = 1 + random.below(20);
  for (int j = 0; j < cols; j += 3) chosen[j] = 1;
  for (int i = 0; i < rows; ++i) {
    Row &row = list[i];
    row.lower = row.upper = 1;
    const int one = 3 * random.below((cols + 2) / 3);
    row.entries.emplace_back(one, 1);
    for (int j = 0; j < cols; ++j)
      if (!chosen[j] && random.below(cols) < 5) row.entries.emplace_back(j, 1);
  }
  return makeModel(cost, Vec<double>(cols, 1), list);
}

}  // namespace tarvik::test
