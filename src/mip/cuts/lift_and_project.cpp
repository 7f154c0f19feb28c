// Lift-and-project cuts (Balas, Ceria and Cornuejols, 1993) from the membership linear program of
// Bonami (2012). The relaxation A x >= b, bounds included, has the point x; a binary column k has
// the fraction f there. The point is a mean of points with x_k = 0 and x_k = 1 exactly if
//   max y_k,   f b <= A y <= A x - (1 - f) b
// reaches f: y is f times the part with x_k = 1. This program has the rows of the relaxation with
// other sides, and the relaxation's basis is feasible for it. Where it falls short of f, its duals
// combine the rows to one whose mixed-integer rounding is the strengthened cut (Balas and
// Perregaard, 2003); as a sum of rows it is valid however exact the duals are.
#include <algorithm>
#include <cmath>

#include "mip/cuts/mir_kernel.h"
#include "mip/cuts/separators.h"

namespace tarvik {

namespace {

constexpr double kLeastFraction = 0.05;
constexpr double kLeastShortfall = 1e-3;
constexpr double kTinyWeight = 1e-9;  // relative to the largest
constexpr double kLargestWeightRange = 1e6;
constexpr int kLargestRank = 5;
constexpr int kMostRows = 3000, kMostCols = 10000;
constexpr int kCandidates = 15;
constexpr int kRounds = 10;
constexpr double kIterations = 200;  // for one candidate

class LiftAndProject {
 public:
  LiftAndProject(const SeparationPoint &point, const RowSystem &rows)
      : point_(&point), rows_(&rows), engine_(engineOptions()), activity_(rows.numRows(), 0.0) {
    control_.log = &log_;
    for (int i = 0; i < rows.numRows(); ++i) activity_[i] = activityOf(i);
    load();
  }
  ~LiftAndProject() { point_->work->charge(control_.work.counted()); }
  LiftAndProject(const LiftAndProject &) = delete;
  LiftAndProject &operator=(const LiftAndProject &) = delete;

  // Weights of the rows for a cut; false: the point is in the hull, or nobody knows.
  bool weightsFor(int col, Vec<double> &weights);
  double work() const { return control_.work.counted(); }

 private:
  static SimplexOptions engineOptions() {
    SimplexOptions options;
    options.polish = false;
    options.logging = false;
    options.wantCertificates = false;
    return options;
  }
  double activityOf(int row) const;
  void load();
  void setSides(double f);
  // The side that a bound of the relaxation gives y, as part of f and of the rest.
  static double ownSide(double bound, double f) { return isInf(bound) ? bound : f * bound; }
  static double otherSide(double bound, double value, double f) {
    return isInf(bound) ? -bound : value - (1 - f) * bound;
  }

  const SeparationPoint *point_;
  const RowSystem *rows_;
  SilentLog log_;
  SolveControl control_;
  Simplex engine_;
  Vec<double> activity_;
};

double LiftAndProject::activityOf(int row) const {
  const int *index = nullptr;
  const double *value = nullptr;
  int count = 0;
  point_->lp->row(row, index, value, count);
  CompensatedSum sum;
  for (int k = 0; k < count; ++k) sum.addProduct(value[k], rows_->x()[index[k]]);
  return sum.value();
}

void LiftAndProject::load() {
  LpModel lp = point_->problem->lp();
  std::fill(lp.cost.begin(), lp.cost.end(), 0.0);
  lp.offset = 0;
  engine_.load(lp);
  Vec<NzIndex> start{0};
  Vec<int> index;
  Vec<double> value, lower, upper;
  for (int k = 0; k < point_->lp->numCuts(); ++k) {
    const Cut &cut = point_->lp->cut(k);
    index.insert(index.end(), cut.index.begin(), cut.index.end());
    value.insert(value.end(), cut.value.begin(), cut.value.end());
    start.push_back(static_cast<NzIndex>(index.size()));
    lower.push_back(-kInf);
    upper.push_back(cut.rhs);
  }
  if (!lower.empty())
    engine_.addRows(static_cast<int>(lower.size()), start.data(), index.data(), value.data(),
                    lower.data(), upper.data());
}

void LiftAndProject::setSides(double f) {
  const auto sides = [f](double low, double up, double value) {
    const double lower = std::max(ownSide(low, f), otherSide(up, value, f));
    const double upper = std::min(ownSide(up, f), otherSide(low, value, f));
    // They can cross by what the point violates its bounds.
    return std::pair<double, double>(std::min(lower, upper), std::max(lower, upper));
  };
  for (int i = 0; i < rows_->numRows(); ++i) {
    const auto [low, up] = sides(point_->lp->rowLower(i), point_->lp->rowUpper(i), activity_[i]);
    engine_.setRowBounds(i, low, up);
  }
  for (int j = 0; j < rows_->numCols(); ++j) {
    const auto [low, up] = sides(point_->global->lower(j), point_->global->upper(j), rows_->x()[j]);
    engine_.setColBounds(j, low, up);
  }
}

bool LiftAndProject::weightsFor(int col, Vec<double> &weights) {
  const double f = rows_->x()[col];
  setSides(f);
  engine_.setBasis(point_->lp->simplex().basis());
  engine_.setCost(col, -1);
  engine_.setIterationCap(engine_.iterations() + kIterations);
  const LpStatus status = engine_.solve(SimplexMethod::Primal, control_);
  engine_.setCost(col, 0);
  if (status != LpStatus::Optimal || -engine_.objective() > f - kLeastShortfall) return false;
  LpSolution solution;
  engine_.getSolution(solution);
  weights.swap(solution.rowDual);
  double largest = 0, smallest = kInf;
  for (const double w : weights) largest = std::max(largest, std::fabs(w));
  for (int i = 0; i < rows_->numRows(); ++i) {
    weights[i] = -weights[i];
    if (std::fabs(weights[i]) <= kTinyWeight * largest || rows_->slack(i).side == 0) weights[i] = 0;
    if (weights[i] != 0) smallest = std::min(smallest, std::fabs(weights[i]));
  }
  return largest > 0 && largest <= kLargestWeightRange * smallest;
}

class LiftAndProjectSeparator : public Separator {
 public:
  explicit LiftAndProjectSeparator(std::shared_ptr<CutContext> context)
      : context_(std::move(context)) {}
  CutFamily family() const override { return CutFamily::LiftProject; }

  void separate(const SeparationPoint &point, int level, Vec<Cut> &cuts) override {
    if (!point.root || point.round >= kRounds * std::max(1, level)) return;
    if (point.lp->numRows() > kMostRows || point.problem->numCols() > kMostCols) return;
    const Vec<int> candidates = fractionalBinaries(point, level);
    if (candidates.empty()) return;
    const RowSystem &rows = context_->rows(point);
    LiftAndProject program(point, rows);
    MirKernel kernel(point, rows, nullptr);
    RowCombiner combiner(*point.lp, rows);
    const double workEnd =
        (3e7 + 100.0 * static_cast<double>(point.problem->rows().numNz())) * std::max(1, level);
    Vec<double> weights;
    BaseRow base;
    for (const int col : candidates) {
      if (program.work() > workEnd) return;
      if (!program.weightsFor(col, weights)) continue;
      combiner.clear();
      for (int i = 0; i < rows.numRows(); ++i)
        if (weights[i] != 0) combiner.add(i, weights[i]);
      combiner.get(base);
      if (base.rank < kLargestRank) cutsFrom(kernel, base, cuts);
    }
  }

 private:
  // The most fractional ones first.
  static Vec<int> fractionalBinaries(const SeparationPoint &point, int level) {
    Vec<std::pair<double, int>> order;
    for (const int j : point.problem->integers()) {
      const double x = (*point.x)[j];
      if (point.global->isBinary(j) && x > kLeastFraction && x < 1 - kLeastFraction)
        order.push_back({std::fabs(x - 0.5), j});
    }
    std::sort(order.begin(), order.end());
    const std::size_t most = static_cast<std::size_t>(kCandidates) * std::max(1, level);
    if (order.size() > most) order.resize(most);
    Vec<int> cols;
    for (const auto &[distance, j] : order) cols.push_back(j);
    return cols;
  }

  static void cutsFrom(MirKernel &kernel, const BaseRow &base, Vec<Cut> &cuts) {
    for (const double sign : {1.0, -1.0}) {
      Cut cut;
      cut.family = CutFamily::LiftProject;
      if (kernel.load(base, sign, Rounding::MixedInteger) && kernel.cutWith(1.0, cut))
        cuts.push_back(std::move(cut));
    }
  }

  std::shared_ptr<CutContext> context_;
};

}  // namespace

std::unique_ptr<Separator> makeLiftAndProjectSeparator(std::shared_ptr<CutContext> context) {
  return std::make_unique<LiftAndProjectSeparator>(std::move(context));
}

}  // namespace tarvik
