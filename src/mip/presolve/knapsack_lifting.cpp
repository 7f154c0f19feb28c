#include "mip/presolve/knapsack_lifting.h"

#include <algorithm>
#include <cmath>

#include "mip/cliques.h"

namespace tarvik {

namespace {

// Work in all, and for each entry of the matrix.
constexpr double kWork = 1e6;
constexpr double kWorkShare = 30;
constexpr int kLongestRow = 300;
// Smaller gains, relative to the coefficient, are not worth the rounding.
constexpr double kLeastGain = 1e-3;
constexpr double kRounding = 1e-9;
constexpr double kLargestSide = 1e7;

class KnapsackLifter {
 public:
  KnapsackLifter(MipModel &model, const Problem &problem, const Domain &domain, WorkMeter &work)
      : model_(model),
        domain_(domain),
        work_(work),
        table_(problem, domain, work),
        rows_(problem.rows()),
        place_(2 * static_cast<std::size_t>(problem.numCols()), -1) {}

  int run(int maxLength) {
    const double limit = work_.counted() + kWork + kWorkShare * static_cast<double>(rows_.numNz());
    LpModel &lp = model_.lp;
    for (int i = 0; i < lp.numRows && work_.counted() < limit; ++i) {
      double &lower = lp.rowLower[i], &upper = lp.rowUpper[i];
      if (isInf(lower) == isInf(upper) || rows_.length(i) > maxLength) continue;
      isInf(lower) ? treat(i, 1, upper) : treat(i, -1, lower);
    }
    if (lifted_ > 0) lp.a = transpose(rows_);
    return lifted_;
  }

 private:
  struct Item {
    Literal literal;
    NzIndex entry;
    double weight;
    int group;  // of items that exclude each other
  };

  bool read(int row, double sign, double side);
  void groupItems();
  double mostBeside(std::size_t item);
  void treat(int row, double sign, double &side);

  MipModel &model_;
  const Domain &domain_;
  WorkMeter &work_;
  CliqueTable table_;
  SparseMatrix rows_;
  Vec<int> place_;  // by literal: its item, else -1
  Vec<Item> items_;
  int groups_ = 0;
  Vec<char> excluded_;     // by item: scratch
  Vec<double> groupMost_;  // scratch
  double capacity_ = 0;    // left to the items
  int lifted_ = 0;
};

// sign x row <= sign x side as weights of literals; what is no binary takes as much as it can.
bool KnapsackLifter::read(int row, double sign, double side) {
  items_.clear();
  CompensatedSum capacity(sign * side);
  for (NzIndex k = rows_.start[row]; k < rows_.start[row + 1]; ++k) {
    const int j = rows_.index[k];
    const double a = sign * rows_.value[k];
    if (domain_.isBinary(j)) {
      items_.push_back({literalOf(j, a < 0), k, std::fabs(a), -1});
      if (a < 0) capacity.add(-a);
      continue;
    }
    const double most = a > 0 ? domain_.upper(j) : domain_.lower(j);
    if (isInf(most)) return false;
    capacity.addProduct(-a, most);
  }
  capacity_ = capacity.value();
  return items_.size() > 1 && capacity_ > 0 && std::fabs(capacity_) < kLargestSide;
}

// Cliques of the table that cover the items, heavy items first.
void KnapsackLifter::groupItems() {
  std::sort(items_.begin(), items_.end(), [](const Item &a, const Item &b) {
    return a.weight != b.weight ? a.weight > b.weight : a.literal < b.literal;
  });
  for (std::size_t k = 0; k < items_.size(); ++k) place_[items_[k].literal] = static_cast<int>(k);
  groups_ = 0;
  const auto isFree = [this](Literal literal) {
    return place_[literal] >= 0 && items_[place_[literal]].group < 0;
  };
  for (Item &item : items_) {
    if (item.group >= 0) continue;
    int best = -1;
    std::ptrdiff_t most = 1;
    for (const int clique : table_.cliquesOf(item.literal)) {
      const Literal *members = table_.members(clique);
      const std::ptrdiff_t count = std::count_if(members, members + table_.size(clique), isFree);
      work_.charge(table_.size(clique));
      if (count > most) best = clique, most = count;
    }
    if (best >= 0)
      for (const Literal *m = table_.members(best); m != table_.members(best) + table_.size(best);
           ++m)
        if (isFree(*m)) items_[place_[*m]].group = groups_;
    item.group = groups_++;
  }
}

// The most that the others can weigh when this one is true.
double KnapsackLifter::mostBeside(std::size_t chosen) {
  excluded_.assign(items_.size(), 0);
  excluded_[chosen] = 1;
  table_.forNeighbours(items_[chosen].literal, [this](Literal other) {
    if (place_[other] >= 0) excluded_[place_[other]] = 1;
  });
  work_.charge(table_.neighbourWork(items_[chosen].literal) + static_cast<double>(items_.size()));
  groupMost_.assign(groups_, 0);
  for (std::size_t k = 0; k < items_.size(); ++k)
    if (!excluded_[k]) {
      double &most = groupMost_[items_[k].group];
      most = std::max(most, items_[k].weight);
    }
  CompensatedSum sum;
  for (const double most : groupMost_) sum.add(most);
  return sum.value();
}

void KnapsackLifter::treat(int row, double sign, double &side) {
  if (!read(row, sign, side)) return;
  groupItems();
  for (std::size_t k = 0; k < items_.size(); ++k) {
    Item &item = items_[k];
    const double most = mostBeside(k);
    const double gain = capacity_ - most - item.weight - kRounding * std::max(1.0, capacity_);
    if (gain <= kLeastGain * item.weight) continue;
    double weight = item.weight + gain;
    const double whole = std::round(weight);
    if (std::fabs(weight - whole) <= 2 * kRounding * std::max(1.0, capacity_)) weight = whole;
    const bool complemented = isComplemented(item.literal);
    if (complemented) side -= sign * (weight - item.weight);
    rows_.value[item.entry] = sign * (complemented ? -weight : weight);
    item.weight = weight;
    ++lifted_;
  }
  for (const Item &item : items_) place_[item.literal] = -1;
}

// Rows that are no packing rows, with binaries that have something to exclude each other.
bool hasKnapsack(const Problem &problem, int maxLength) {
  const SparseMatrix &rows = problem.rows();
  for (int i = 0; i < problem.numRows(); ++i) {
    if (isInf(problem.lp().rowLower[i]) == isInf(problem.lp().rowUpper[i])) continue;
    if (rows.length(i) < 2 || rows.length(i) > maxLength) continue;
    int binary = 0;
    for (NzIndex k = rows.start[i]; k < rows.start[i + 1]; ++k)
      binary += problem.isBinary(rows.index[k]);
    if (binary > 1) return true;
  }
  return false;
}

}  // namespace

int liftKnapsacks(MipModel &model, const MipTolerances &tolerances, int maxLength,
                  WorkMeter &work) {
  if (maxLength < 0) maxLength = kLongestRow;
  const Problem problem(MipModel(model), tolerances);
  if (!hasKnapsack(problem, maxLength)) return 0;
  Domain domain(problem);
  if (!domain.propagate(work)) return 0;
  return KnapsackLifter(model, problem, domain, work).run(maxLength);
}

}  // namespace tarvik
