// Gomory mixed-integer cuts (Gomory, 1960; Balas, Ceria, Cornuejols and Natraj, 1996): rows of
// the simplex tableau of basic integral columns with fractional values, rounded. Errors in a
// tableau row do no harm to validity: it is a sum of rows with whatever weights came out.
#include <algorithm>
#include <cmath>

#include "mip/cuts/mir_kernel.h"
#include "mip/cuts/separators.h"

namespace tarvik {

namespace {
constexpr double kLeastFraction = 0.01;
constexpr double kTinyWeight = 1e-11;  // relative to the largest
constexpr double kLargestWeightRange = 1e8;
constexpr int kLargestRank = 10;
constexpr int kRowsAtRoot = 300, kRowsInTree = 40;

class GomorySeparator : public Separator {
 public:
  explicit GomorySeparator(std::shared_ptr<CutContext> context) : context_(std::move(context)) {}
  CutFamily family() const override { return CutFamily::Gomory; }

  void separate(const SeparationPoint &point, int level, Vec<Cut> &cuts) override {
    const RowSystem &rows = context_->rows(point);
    MirKernel kernel(point, rows, nullptr);
    RowCombiner combiner(*point.lp, rows);
    BaseRow base;
    const double budget =
        (3e7 + 100.0 * static_cast<double>(point.problem->rows().numNz())) * std::max(1, level);
    const double workEnd = std::min(point.workLimit, point.work->counted() + budget);
    Vec<double> *told = point.gomoryEfficacy;
    if (told) told->assign(point.problem->numCols(), 0.0);
    for (const int position : fractionalPositions(point)) {
      if (point.work->counted() > workEnd) return;
      if (!tableauRow(point, rows, position, combiner)) continue;
      combiner.get(base);
      if (base.rank >= kLargestRank) continue;
      const std::size_t before = cuts.size();
      cutsFrom(kernel, base, cuts);
      if (!told) continue;
      double &best = (*told)[point.lp->simplex().basisHead()[position]];
      for (std::size_t k = before; k < cuts.size(); ++k)
        best = std::max(best, efficacy(cuts[k], *point.x));
    }
  }

 private:
  // Positions of the basis with fractional integral columns, the most fractional first.
  static Vec<int> fractionalPositions(const SeparationPoint &point) {
    const Vec<VarIndex> &head = point.lp->simplex().basisHead();
    Vec<std::pair<double, int>> order;
    for (std::size_t k = 0; k < head.size(); ++k) {
      const int j = head[k];
      if (j >= point.problem->numCols() || !point.problem->isIntegral(j)) continue;
      const double x = (*point.x)[j];
      const double distance = std::fabs(x - std::round(x));
      if (distance >= kLeastFraction) order.push_back({-distance, static_cast<int>(k)});
    }
    std::sort(order.begin(), order.end());
    const std::size_t limit = point.root ? kRowsAtRoot : kRowsInTree;
    if (order.size() > limit) order.resize(limit);
    Vec<int> positions;
    for (const auto &[distance, k] : order) positions.push_back(k);
    return positions;
  }

  // The row of the tableau as a sum of rows; false when its weights differ too much in size.
  bool tableauRow(const SeparationPoint &point, const RowSystem &rows, int position,
                  RowCombiner &combiner) {
    weights_.assign(rows.numRows(), 0.0);
    weights_[position] = 1;
    point.lp->simplex().btran(weights_, *point.work);
    point.work->charge(2.0 * rows.numRows());
    double largest = 0, smallest = kInf;
    for (const double w : weights_) largest = std::max(largest, std::fabs(w));
    combiner.clear();
    double entries = 0;
    for (int i = 0; i < rows.numRows(); ++i) {
      if (std::fabs(weights_[i]) <= kTinyWeight * largest || rows.slack(i).side == 0) continue;
      smallest = std::min(smallest, std::fabs(weights_[i]));
      combiner.add(i, weights_[i]);
      entries += i < point.problem->numRows() ? point.problem->rows().length(i) : 50;
    }
    point.work->charge(5.0 * entries);
    return largest > 0 && largest <= kLargestWeightRange * smallest;
  }

  static void cutsFrom(MirKernel &kernel, const BaseRow &base, Vec<Cut> &cuts) {
    for (const double sign : {1.0, -1.0}) {
      if (!kernel.load(base, sign, Rounding::MixedInteger)) continue;
      Cut cut;
      cut.family = CutFamily::Gomory;
      if (kernel.cutWith(1.0, cut)) cuts.push_back(std::move(cut));
    }
  }

  std::shared_ptr<CutContext> context_;
  Vec<double> weights_;
};

}  // namespace

std::unique_ptr<Separator> makeGomorySeparator(std::shared_ptr<CutContext> context) {
  return std::make_unique<GomorySeparator>(std::move(context));
}

}  // namespace tarvik
