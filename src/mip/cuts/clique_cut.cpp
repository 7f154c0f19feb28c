// Clique cuts: sets of literals that exclude one another pairwise, found greedily in the conflict
// graph from each fractional literal; the sum of their values is at most one (Padberg, 1973;
// Atamturk, Nemhauser and Savelsbergh, 2000). Literals at zero that fit extend a violated clique.
#include <algorithm>

#include "mip/cuts/cut_assembler.h"
#include "mip/cuts/separators.h"

namespace tarvik {

namespace {

constexpr double kFractional = 1e-4;
constexpr double kLeastViolation = 1e-3;
constexpr int kMostStarts = 2000;
constexpr int kMostCuts = 500;
constexpr int kLargestCut = 500;

class CliqueSeparator : public Separator {
 public:
  explicit CliqueSeparator(std::shared_ptr<CutContext> context) : context_(std::move(context)) {}
  CutFamily family() const override { return CutFamily::Clique; }

  void separate(const SeparationPoint &point, int level, Vec<Cut> &cuts) override {
    const CliqueTable &table = context_->cliques(point);
    if (table.numCliques() < 2) return;
    x_ = point.x;
    mark_.assign(2 * static_cast<std::size_t>(point.problem->numCols()), 0);
    CutAssembler out(point, context_->rows(point));
    const double end = workEnd(point, level);
    const Vec<Literal> starts = fractionalLiterals(point, table);
    Vec<char> covered(mark_.size(), 0);
    const std::size_t most = cuts.size() + kMostCuts;
    for (const Literal start : starts) {
      if (point.work->counted() > end || cuts.size() >= most) return;
      if (covered[start]) continue;
      const Vec<Literal> clique = grow(table, start, *point.work);
      double sum = 0;
      for (const Literal literal : clique) sum += valueOf(literal);
      if (sum < 1 + kLeastViolation) continue;
      for (const Literal literal : clique) covered[literal] = 1;
      emit(clique, out, cuts);
    }
  }

 private:
  double valueOf(Literal literal) const {
    const double x = (*x_)[columnOf(literal)];
    return isComplemented(literal) ? 1 - x : x;
  }

  // In the order of their values, the largest first.
  Vec<Literal> fractionalLiterals(const SeparationPoint &point, const CliqueTable &table) const {
    Vec<std::pair<double, Literal>> order;
    for (int j = 0; j < point.problem->numCols(); ++j) {
      const double x = (*x_)[j];
      if (!point.global->isBinary(j) || x < kFractional || x > 1 - kFractional) continue;
      for (const bool complemented : {false, true}) {
        const Literal literal = literalOf(j, complemented);
        if (table.cliquesOf(literal).size() > 1)
          order.push_back({complemented ? x - 1 : -x, literal});
      }
    }
    std::sort(order.begin(), order.end());
    if (order.size() > kMostStarts) order.resize(kMostStarts);
    Vec<Literal> starts;
    for (const auto &[value, literal] : order) starts.push_back(literal);
    return starts;
  }

  // Marks of a literal count the members that it excludes; whoever excludes all of them may join.
  Vec<Literal> grow(const CliqueTable &table, Literal start, WorkMeter &work) {
    Vec<Literal> clique{start}, touched;
    int members = 1;
    const auto countNeighbours = [&](Literal literal) {
      table.forNeighbours(literal, [&](Literal other) {
        if (mark_[other] != members - 1) return;
        if (members == 1) touched.push_back(other);
        mark_[other] = members;
      });
      work.charge(2 * table.neighbourWork(literal));
    };
    countNeighbours(start);
    while (static_cast<int>(clique.size()) < kLargestCut) {
      Literal best = -1;
      for (const Literal other : touched)
        if (mark_[other] == members && (best < 0 || valueOf(other) > valueOf(best))) best = other;
      work.charge(static_cast<double>(touched.size()));
      if (best < 0) break;
      clique.push_back(best);
      mark_[best] = -1;
      ++members;
      countNeighbours(best);
    }
    for (const Literal other : touched) mark_[other] = 0;
    return clique;
  }

  static void emit(const Vec<Literal> &clique, CutAssembler &out, Vec<Cut> &cuts) {
    out.addRhs(1);
    for (const Literal literal : clique) {
      out.addColumn(columnOf(literal), isComplemented(literal) ? -1 : 1);
      if (isComplemented(literal)) out.addRhs(-1);
    }
    Cut cut;
    cut.family = CutFamily::Clique;
    cut.rank = 1;
    if (out.finish(cut)) cuts.push_back(std::move(cut));
  }

  std::shared_ptr<CutContext> context_;
  const Vec<double> *x_ = nullptr;
  Vec<int> mark_;
};

}  // namespace

std::unique_ptr<Separator> makeCliqueSeparator(std::shared_ptr<CutContext> context) {
  return std::make_unique<CliqueSeparator>(std::move(context));
}

}  // namespace tarvik
