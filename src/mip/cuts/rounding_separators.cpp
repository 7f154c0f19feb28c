// Cuts by rounding sums of rows: mixed-integer rounding, strong Chvatal-Gomory.
#include "mip/cuts/aggregation.h"
#include "mip/cuts/separators.h"

namespace tarvik {

namespace {

class RoundingSeparator : public Separator {
 public:
  RoundingSeparator(CutFamily family, Rounding rounding, std::shared_ptr<CutContext> context)
      : family_(family), rounding_(rounding), context_(std::move(context)) {}
  CutFamily family() const override { return family_; }

  void separate(const SeparationPoint &point, int level, Vec<Cut> &cuts) override {
    const RowSystem &rows = context_->rows(point);
    MirKernel kernel(point, rows, &context_->variableBounds(point));
    Aggregation aggregation(point, rows, kernel);
    aggregation.run(aggregationLimits(point, level), [&](const BaseRow &base) {
      bool found = false;
      for (const double sign : {1.0, -1.0}) {
        Cut cut;
        cut.family = family_;
        if (!kernel.load(base, sign, rounding_) || !kernel.bestCut(cut)) continue;
        cuts.push_back(std::move(cut));
        found = true;
      }
      return found;
    });
  }

 private:
  CutFamily family_;
  Rounding rounding_;
  std::shared_ptr<CutContext> context_;
};

}  // namespace

std::unique_ptr<Separator> makeMirSeparator(std::shared_ptr<CutContext> context) {
  return std::make_unique<RoundingSeparator>(CutFamily::Mir, Rounding::MixedInteger,
                                             std::move(context));
}

std::unique_ptr<Separator> makeStrongCgSeparator(std::shared_ptr<CutContext> context) {
  return std::make_unique<RoundingSeparator>(CutFamily::StrongCg, Rounding::StrongCg,
                                             std::move(context));
}

}  // namespace tarvik
