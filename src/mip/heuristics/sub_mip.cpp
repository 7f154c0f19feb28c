#include "mip/heuristics/sub_mip.h"

#include <algorithm>

namespace tarvik {

namespace {
constexpr int kCutPasses = 10;

// The bounds of level 0: decisions of the current node are taken back.
void globalBounds(const Domain &domain, Vec<double> &lower, Vec<double> &upper) {
  lower = domain.lower();
  upper = domain.upper();
  if (domain.level() == 0) return;
  const Vec<TrailEntry> &trail = domain.trail();
  for (int k = static_cast<int>(trail.size()) - 1; k >= domain.levelStart(1); --k)
    (trail[k].side == BoundSide::Lower ? lower : upper)[trail[k].col] = trail[k].old;
}

}  // namespace

class SubMip::Watch : public MipObserver {
 public:
  explicit Watch(SubMip &owner) : owner_(owner) {}
  bool onSolution(const MipProgress &, const Vec<double> &x, double objective) override {
    if (owner_.onSolution) owner_.onSolution({objective, x});
    return true;
  }
  void onProgress(const MipProgress &progress) override { owner_.onNode(progress); }

 private:
  SubMip &owner_;
};

SubMip::SubMip(HeuristicContext &context, SolutionSource source)
    : context_(context),
      model_(context.problem->model()),
      options_(nestedOptions(*context.options)) {
  globalBounds(*context.domain, model_.lp.colLower, model_.lp.colUpper);
  options_.nodeLimit = options_.subMipNodes;
  options_.solutionLimit = kMaxInt;
  options_.cutoff = context.sink->cutoff();
  if (options_.cuts.passes < 0 || options_.cuts.passes > kCutPasses)
    options_.cuts.passes = kCutPasses;
  onSolution = [this, source](const MipSolution &solution) {
    Vec<double> x(solution.x.begin(), solution.x.begin() + context_.problem->numCols());
    accepted_ += context_.sink->submit(x, source);
  };
  onNode = [this](const MipProgress &) { context_.sink->alive(); };
}

void SubMip::fix(int col, double value) {
  model_.lp.colLower[col] = model_.lp.colUpper[col] = value;
}

void SubMip::useOriginalBounds() {
  const LpModel &original = context_.problem->lp();
  std::copy(original.colLower.begin(), original.colLower.end(), model_.lp.colLower.begin());
  std::copy(original.colUpper.begin(), original.colUpper.end(), model_.lp.colUpper.begin());
}

const MipOutcome &SubMip::run() {
  Limits &limits = context_.control->limits;
  const double workLimit = limits.workLimit;
  if (limitsWork_) limits.workLimit = std::min(workLimit, context_.workLimit * 1e-9);
  Watch watch(*this);
  MipSolve solve(model_, options_, *context_.control);
  solve.observer = &watch;
  outcome_ = solve.run();
  limits.workLimit = workLimit;
  return outcome_;
}

void addColumn(MipModel &model, int row, double coefficient, double cost) {
  LpModel &lp = model.lp;
  lp.a.append(1, &row, &coefficient);
  ++lp.numCols;
  lp.cost.push_back(cost);
  lp.colLower.push_back(0);
  lp.colUpper.push_back(kInf);
  model.kind.push_back(VarKind::Continuous);
  if (!model.holeLower.empty()) {
    model.holeLower.push_back(0);
    model.holeUpper.push_back(0);
  }
  if (!model.branchPriority.empty()) model.branchPriority.push_back(0);
}

}  // namespace tarvik
