// Mixing cuts for columns with several variable bounds (Gunluk and Pochet, 2001; with binaries
// Atamturk, Nemhauser and Savelsbergh, 2000): of x - l >= h_i z_i with binary literals z_i and
// h_1 > h_2 > ... > h_k, h_{k+1} = 0 follows x - l >= sum (h_i - h_{i+1}) z_i, for whichever is the
// first literal that is true, the sum is at most its h. The most violated choice keeps, in that
// order, the literals of growing value. Upper bounds mirror this.
#include <algorithm>
#include <cmath>

#include "mip/cuts/cut_assembler.h"
#include "mip/cuts/separators.h"

namespace tarvik {

namespace {

constexpr double kLeastViolation = 1e-4;
constexpr double kLargestBound = 1e7;
constexpr double kTiny = 1e-7;

class MixingSeparator : public Separator {
 public:
  explicit MixingSeparator(std::shared_ptr<CutContext> context) : context_(std::move(context)) {}
  CutFamily family() const override { return CutFamily::Mixing; }

  void separate(const SeparationPoint &point, int, Vec<Cut> &cuts) override {
    const VariableBounds &bounds = context_->variableBounds(point);
    CutAssembler out(point, context_->rows(point));
    point.work->charge(static_cast<double>(point.problem->numCols()));
    for (int j = 0; j < point.problem->numCols(); ++j) {
      if (point.work->counted() > point.workLimit) return;
      for (const bool below : {true, false}) {
        const Vec<VariableBound> &all = below ? bounds.lower(j) : bounds.upper(j);
        if (all.size() > 1) fromColumn(point, out, j, below, all, cuts);
      }
    }
  }

 private:
  // distance from the plain bound >= height when the literal is true.
  struct Step {
    double height;
    double value;  // of the literal at the point
    int binary;
    bool complemented;
  };

  static void collect(const SeparationPoint &point, int col, bool below,
                      const Vec<VariableBound> &all, Vec<Step> &steps) {
    const double plain = below ? point.global->lower(col) : point.global->upper(col);
    for (const VariableBound &bound : all) {
      if (!point.global->isBinary(bound.binary)) continue;
      const bool strongAtOne = below == (bound.coef > 0);
      const double strong = bound.constant + (strongAtOne ? bound.coef : 0);
      const double height = below ? strong - plain : plain - strong;
      const double x = (*point.x)[bound.binary];
      if (height > kTiny)
        steps.push_back({height, strongAtOne ? x : 1 - x, bound.binary, !strongAtOne});
    }
    std::sort(steps.begin(), steps.end(), [](const Step &a, const Step &b) {
      return a.height != b.height ? a.height > b.height
             : a.value != b.value ? a.value > b.value
                                  : a.binary < b.binary;
    });
  }

  static void fromColumn(const SeparationPoint &point, CutAssembler &out, int col, bool below,
                         const Vec<VariableBound> &all, Vec<Cut> &cuts) {
    const double plain = below ? point.global->lower(col) : point.global->upper(col);
    if (std::fabs(plain) > kLargestBound) return;
    Vec<Step> steps;
    collect(point, col, below, all, steps);
    point.work->charge(20.0 * static_cast<double>(all.size()));
    Vec<Step> chosen;
    for (const Step &step : steps)
      if (step.value > (chosen.empty() ? 0 : chosen.back().value) + kTiny) chosen.push_back(step);
    if (chosen.size() < 2) return;
    const double distance = below ? (*point.x)[col] - plain : plain - (*point.x)[col];
    double violation = -distance;
    for (std::size_t k = 0; k < chosen.size(); ++k) violation += drop(chosen, k) * chosen[k].value;
    if (violation < kLeastViolation * std::max(1.0, chosen.front().height)) return;
    out.addColumn(col, below ? -1 : 1);
    out.addRhs(below ? -plain : plain);
    for (std::size_t k = 0; k < chosen.size(); ++k) {
      out.addColumn(chosen[k].binary, chosen[k].complemented ? -drop(chosen, k) : drop(chosen, k));
      if (chosen[k].complemented) out.addRhs(-drop(chosen, k));
    }
    Cut cut;
    cut.family = CutFamily::Mixing;
    cut.rank = 1;
    if (out.finish(cut)) cuts.push_back(std::move(cut));
  }

  static double drop(const Vec<Step> &steps, std::size_t k) {
    return steps[k].height - (k + 1 < steps.size() ? steps[k + 1].height : 0);
  }

  std::shared_ptr<CutContext> context_;
};

}  // namespace

std::unique_ptr<Separator> makeMixingSeparator(std::shared_ptr<CutContext> context) {
  return std::make_unique<MixingSeparator>(std::move(context));
}

}  // namespace tarvik
