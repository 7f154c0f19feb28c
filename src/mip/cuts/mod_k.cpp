// Zero-half and mod-k cuts: sums of integral rows with multipliers 1/k, ..., (k-1)/k whose
// right-hand side is fractional while all that rounding loses is small at the point. The system of
// rows is taken modulo k, with the columns that are not at a bound, and reduced by elimination; the
// rows that end up with little left on the left-hand side and a residue on the right-hand side
// tell the multipliers (Caprara, Fischetti and Letchford, 2000; Andreello, Caprara and Fischetti,
// 2007; Koster, Zymolka and Kutschka, 2009). The rounding itself is left to the kernel.
#include <algorithm>
#include <cmath>

#include "mip/cuts/mir_kernel.h"
#include "mip/cuts/separators.h"

namespace tarvik {

namespace {

constexpr int kMostRows = 600;
constexpr int kMostCols = 1500;
constexpr int kLongestRow = 1000;
constexpr int kLargestRank = 4;
constexpr int kMostCuts = 200;
// Moduli beyond two gain little: at the moderate level they get a few rounds and cuts only.
constexpr int kModerateRounds = 5, kModerateCuts = 20;
constexpr double kLargestCoef = 1e6;
constexpr double kLeastMargin = 1e-3;

using Residue = unsigned char;

class ModSystem {
 public:
  ModSystem(const SeparationPoint &point, const RowSystem &rows, int modulus)
      : point_(&point), rows_(&rows), k_(modulus) {
    chooseRows();
    chooseCols();
    fill();
  }
  // Elimination; calls found(multipliers of the chosen rows) for promising sums until it says
  // false.
  template <class F>
  void eliminate(F &&found);
  int row(int i) const { return chosen_[i]; }

 private:
  void chooseRows();
  void chooseCols();
  void fill();
  double margin(int i) const;
  int pivotColumn(int i) const;
  void addMultiple(int from, Residue factor, int to);
  int residueOf(double value) const {
    const int rest = static_cast<int>(std::fmod(std::round(value), k_));
    return rest < 0 ? rest + k_ : rest;
  }

  const SeparationPoint *point_;
  const RowSystem *rows_;
  int k_;
  Vec<int> chosen_;
  Vec<int> colOf_;        // a column of the problem: its place, -1: at a bound
  Vec<double> distance_;  // a place: from the nearer bound
  Vec<Vec<Residue>> left_, multiplier_;
  Vec<int> right_;
};

// Integral rows that are nearly tight, the tightest and shortest first.
void ModSystem::chooseRows() {
  Vec<std::pair<double, int>> order;
  for (int i = 0; i < rows_->numRows(); ++i) {
    const SlackInfo &slack = rows_->slack(i);
    const int *index = nullptr;
    const double *value = nullptr;
    int count = 0;
    point_->lp->row(i, index, value, count);
    if (slack.side == 0 || slack.upper < 0 || count > kLongestRow) continue;
    if (slack.step <= 0 || slack.value >= slack.step * (1 - 1e-6)) continue;
    if (point_->lp->rowRank(i) >= kLargestRank) continue;
    order.push_back({slack.value / slack.step + 1e-4 * count, i});
  }
  std::sort(order.begin(), order.end());
  if (static_cast<int>(order.size()) > kMostRows) order.resize(kMostRows);
  for (const auto &[weight, i] : order) chosen_.push_back(i);
}

void ModSystem::chooseCols() {
  colOf_.assign(rows_->numCols(), -1);
  for (const int i : chosen_) {
    const int *index = nullptr;
    const double *value = nullptr;
    int count = 0;
    point_->lp->row(i, index, value, count);
    for (int n = 0; n < count; ++n) {
      const int j = index[n];
      const double x = rows_->x()[j];
      const double d = std::min(x - point_->global->lower(j), point_->global->upper(j) - x);
      if (colOf_[j] >= 0 || d < 1e-6 || static_cast<int>(distance_.size()) >= kMostCols) continue;
      colOf_[j] = static_cast<int>(distance_.size());
      distance_.push_back(d);
    }
    point_->work->charge(3.0 * count);
  }
}

// Columns at a bound count from there, which only shifts the right-hand side.
void ModSystem::fill() {
  const int count = static_cast<int>(chosen_.size());
  left_.resize(count);
  multiplier_.resize(count);
  right_.assign(count, 0);
  for (int r = 0; r < count; ++r) {
    left_[r].assign(distance_.size(), 0);
    multiplier_[r].assign(count, 0);
    multiplier_[r][r] = 1;
    const int *index = nullptr;
    const double *value = nullptr;
    int length = 0;
    point_->lp->row(chosen_[r], index, value, length);
    const SlackInfo &slack = rows_->slack(chosen_[r]);
    const double scale = slack.side / slack.step;
    double rhs = std::round(scale * slack.rhs);
    for (int n = 0; n < length; ++n) {
      const int j = index[n];
      const double lower = point_->global->lower(j), upper = point_->global->upper(j);
      const double x = rows_->x()[j];
      const double bound = x - lower <= upper - x ? lower : upper;
      const double coef = std::round(scale * value[n]);
      if (std::fabs(bound) < kLargestCoef) rhs -= std::fmod(coef, k_) * bound;
      if (colOf_[j] >= 0) left_[r][colOf_[j]] = static_cast<Residue>(residueOf(coef));
    }
    right_[r] = residueOf(rhs);
  }
}

// The share of the residue that the point leaves after what rounding loses; negative: nothing.
double ModSystem::margin(int i) const {
  if (right_[i] == 0) return -1;
  double loss = 0;
  const double gain = static_cast<double>(right_[i]);
  for (std::size_t c = 0; c < distance_.size(); ++c) {
    const int residue = left_[i][c];
    if (residue != 0) loss += std::min(residue, k_ - residue) * distance_[c];
    if (loss >= gain) return -1;
  }
  for (std::size_t r = 0; r < chosen_.size(); ++r) {
    if (multiplier_[i][r] == 0) continue;
    const SlackInfo &slack = rows_->slack(chosen_[r]);
    loss += multiplier_[i][r] * slack.value / slack.step;
  }
  return 1 - loss / gain;
}

int ModSystem::pivotColumn(int i) const {
  int best = -1;
  for (std::size_t c = 0; c < distance_.size(); ++c)
    if (left_[i][c] != 0 && (best < 0 || distance_[c] > distance_[best]))
      best = static_cast<int>(c);
  return best;
}

void ModSystem::addMultiple(int from, Residue factor, int to) {
  const auto add = [&](const Vec<Residue> &source, Vec<Residue> &target) {
    for (std::size_t c = 0; c < source.size(); ++c)
      target[c] = static_cast<Residue>((target[c] + factor * source[c]) % k_);
  };
  add(left_[from], left_[to]);
  add(multiplier_[from], multiplier_[to]);
  right_[to] = (right_[to] + factor * right_[from]) % k_;
}

template <class F>
void ModSystem::eliminate(F &&found) {
  const int count = static_cast<int>(chosen_.size());
  // The margin that was told last; a row is told again when it has become better.
  Vec<double> told(count, kLeastMargin);
  const auto tell = [&](int i) {
    const double m = margin(i);
    if (m <= told[i]) return true;
    told[i] = m + kLeastMargin;
    return found(multiplier_[i]);
  };
  for (int i = 0; i < count; ++i)
    if (!tell(i)) return;
  for (int pivot = 0; pivot < count; ++pivot) {
    const int col = pivotColumn(pivot);
    if (col < 0) continue;
    int inverse = 1;
    while (inverse * left_[pivot][col] % k_ != 1) ++inverse;
    for (int i = pivot + 1; i < count; ++i) {
      if (left_[i][col] == 0) continue;
      addMultiple(pivot, static_cast<Residue>((k_ - left_[i][col]) * inverse % k_), i);
      point_->work->charge(0.3 * static_cast<double>(distance_.size() + chosen_.size()));
      if (!tell(i)) return;
    }
  }
}

class ModSeparator : public Separator {
 public:
  ModSeparator(CutFamily family, std::initializer_list<int> moduli,
               std::shared_ptr<CutContext> context)
      : family_(family), moduli_(moduli), context_(std::move(context)) {}
  CutFamily family() const override { return family_; }

  void separate(const SeparationPoint &point, int level, Vec<Cut> &cuts) override {
    const bool modest = family_ == CutFamily::ModK && level < 2;
    if (modest && point.round >= kModerateRounds) return;
    const int most = modest ? kModerateCuts : kMostCuts;
    const RowSystem &rows = context_->rows(point);
    MirKernel kernel(point, rows, nullptr);
    RowCombiner combiner(*point.lp, rows);
    const double workEnd = std::min(point.workLimit, point.work->counted() + 3e7 * level);
    for (const int modulus : moduli_) {
      ModSystem system(point, rows, modulus);
      int made = 0;
      system.eliminate([&](const Vec<Residue> &multipliers) {
        combiner.clear();
        for (std::size_t r = 0; r < multipliers.size(); ++r) {
          if (multipliers[r] == 0) continue;
          const SlackInfo &slack = rows.slack(system.row(static_cast<int>(r)));
          combiner.add(system.row(static_cast<int>(r)),
                       slack.side * multipliers[r] / (modulus * slack.step));
        }
        made += cutFrom(point, kernel, combiner, cuts);
        return made < most && point.work->counted() < workEnd;
      });
    }
  }

 private:
  int cutFrom(const SeparationPoint &point, MirKernel &kernel, const RowCombiner &combiner,
              Vec<Cut> &cuts) {
    BaseRow base;
    combiner.get(base);
    point.work->charge(10.0 * combiner.entries());
    Cut cut;
    cut.family = family_;
    if (!kernel.load(base, 1, Rounding::MixedInteger) || !kernel.cutWith(1, cut)) return 0;
    cuts.push_back(std::move(cut));
    return 1;
  }

  CutFamily family_;
  Vec<int> moduli_;
  std::shared_ptr<CutContext> context_;
};

}  // namespace

std::unique_ptr<Separator> makeZeroHalfSeparator(std::shared_ptr<CutContext> context) {
  return std::make_unique<ModSeparator>(CutFamily::ZeroHalf, std::initializer_list<int>{2},
                                        std::move(context));
}

std::unique_ptr<Separator> makeModKSeparator(std::shared_ptr<CutContext> context) {
  return std::make_unique<ModSeparator>(CutFamily::ModK, std::initializer_list<int>{3, 5, 7},
                                        std::move(context));
}

}  // namespace tarvik
