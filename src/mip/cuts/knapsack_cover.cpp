// Lifted knapsack cover cuts (Balas, 1975; Crowder, Johnson and Padberg, 1983; Gu, Nemhauser and
// Savelsbergh, 1998). A row is relaxed to a knapsack of binary literals; a cover is found greedily;
// its members that are at one are set aside, the inequality of the rest is lifted, one variable
// after the other, with an exact dynamic program over the least weight that reaches each value of
// the left-hand side (Zemel, 1989).
#include <algorithm>
#include <cmath>

#include "mip/cuts/cut_assembler.h"
#include "mip/cuts/knapsack.h"
#include "mip/cuts/separators.h"

namespace tarvik {

namespace {

constexpr double kTolerance = 1e-9;
constexpr double kLeastEfficacy = 1e-4;
constexpr int kLargestSum = 1000;  // of the lifting coefficients
constexpr int kLargestRank = 0;    // rows of the problem only: covers of cuts crowd out better ones

struct Item : KnapsackItem {
  int lifted = 0;
};

class KnapsackCover {
 public:
  KnapsackCover(const SeparationPoint &point, const RowSystem &rows, const VariableBounds &bounds)
      : point_(&point), knapsack_(point, rows, bounds), out_(point, rows) {}

  // From sign * row <= rhs.
  bool cutFrom(int row, double sign, double rhs, Cut &cut) {
    if (!knapsack_.take(row, sign, rhs)) return false;
    items_.clear();
    for (const KnapsackItem &item : knapsack_.items()) items_.push_back({item});
    capacity_ = knapsack_.capacity();
    if (!findCover()) return false;
    lift();
    if (violation() < kLeastEfficacy) return false;
    return build(cut);
  }

 private:
  bool findCover();
  void lift();
  void startTable();
  void liftUp(Item &item);
  void liftDown(Item &item);
  void enter(const Item &item);
  int reach(double capacity) const;
  double violation() const;
  bool build(Cut &cut);

  const SeparationPoint *point_;
  Knapsack knapsack_;
  Vec<Item> items_;
  Vec<int> cover_, aside_, others_;
  double capacity_ = 0, room_ = 0;
  int rhs_ = 0;
  Vec<double> least_;  // the least weight of which the left-hand side is the index, or more
  CutAssembler out_;
};

// The cover of least sum (1 - x) by the greedy rule, made minimal.
bool KnapsackCover::findCover() {
  Vec<int> order(items_.size());
  for (std::size_t k = 0; k < order.size(); ++k) order[k] = static_cast<int>(k);
  std::sort(order.begin(), order.end(), [&](int a, int b) {
    const double ra = (1 - items_[a].x) / items_[a].weight;
    const double rb = (1 - items_[b].x) / items_[b].weight;
    return ra != rb ? ra < rb : a < b;
  });
  cover_.clear();
  double weight = 0;
  std::size_t next = 0;
  while (next < order.size() && weight <= capacity_) {
    weight += items_[order[next]].weight;
    cover_.push_back(order[next++]);
  }
  if (weight <= capacity_) return false;
  // Members that are not needed, those of the smallest value first.
  std::sort(cover_.begin(), cover_.end(), [&](int a, int b) {
    return items_[a].x != items_[b].x ? items_[a].x < items_[b].x : a < b;
  });
  Vec<int> kept;
  Vec<char> inCover(items_.size(), 0);
  for (const int k : cover_) {
    if (weight - items_[k].weight > capacity_) {
      weight -= items_[k].weight;
    } else {
      kept.push_back(k);
      inCover[k] = 1;
    }
  }
  cover_.swap(kept);
  others_.clear();
  for (const int k : order)
    if (!inCover[k]) others_.push_back(k);
  point_->work->charge(20.0 * static_cast<double>(items_.size()));
  return true;
}

void KnapsackCover::startTable() {
  // Members at one are set aside while at least two others remain.
  aside_.clear();
  Vec<int> rest;
  std::size_t remaining = cover_.size();
  for (const int k : cover_) {
    if (items_[k].x > 1 - 1e-6 && remaining > 2) {
      aside_.push_back(k);
      --remaining;
    } else {
      rest.push_back(k);
    }
  }
  cover_.swap(rest);
  room_ = capacity_;
  for (const int k : aside_) room_ -= items_[k].weight;
  Vec<double> weights;
  for (const int k : cover_) {
    items_[k].lifted = 1;
    weights.push_back(items_[k].weight);
  }
  std::sort(weights.begin(), weights.end());
  least_.assign(1, 0.0);
  for (const double w : weights) least_.push_back(least_.back() + w);
  rhs_ = static_cast<int>(cover_.size()) - 1;
}

// The largest left-hand side within a capacity; -1: not even the empty set fits.
int KnapsackCover::reach(double capacity) const {
  const double slack = kTolerance * std::max(1.0, std::fabs(capacity));
  return static_cast<int>(std::upper_bound(least_.begin(), least_.end(), capacity + slack) -
                          least_.begin()) -
         1;
}

void KnapsackCover::enter(const Item &item) {
  if (item.lifted == 0) return;
  const int old = static_cast<int>(least_.size()), by = item.lifted;
  least_.resize(old + by, kInf);
  for (int z = old + by - 1; z >= 0; --z)
    least_[z] = std::min(least_[z], (z >= by ? least_[z - by] : 0.0) + item.weight);
  least_[0] = 0;
  // Reaching more also reaches less.
  for (int z = old + by - 2; z >= 0; --z) least_[z] = std::min(least_[z], least_[z + 1]);
  point_->work->charge(3.0 * static_cast<double>(least_.size()));
}

void KnapsackCover::liftUp(Item &item) {
  item.lifted = rhs_ - std::max(0, std::min(rhs_, reach(room_ - item.weight)));
  enter(item);
}

void KnapsackCover::liftDown(Item &item) {
  room_ += item.weight;
  item.lifted = std::max(0, reach(room_) - rhs_);
  rhs_ += item.lifted;
  enter(item);
}

void KnapsackCover::lift() {
  for (Item &item : items_) item.lifted = 0;
  startTable();
  for (const int k : others_)
    if (items_[k].x > 1e-6 && static_cast<int>(least_.size()) < kLargestSum) liftUp(items_[k]);
  for (const int k : aside_) liftDown(items_[k]);
  if (violation() < kLeastEfficacy) return;
  for (const int k : others_)
    if (items_[k].x <= 1e-6 && static_cast<int>(least_.size()) < kLargestSum) liftUp(items_[k]);
}

double KnapsackCover::violation() const {
  double activity = 0;
  for (const Item &item : items_) activity += item.lifted * item.x;
  return activity - rhs_;
}

bool KnapsackCover::build(Cut &cut) {
  for (const Item &item : items_) {
    if (item.lifted == 0) continue;
    out_.addColumn(item.col, item.complemented ? -item.lifted : item.lifted);
    if (item.complemented) out_.addRhs(-item.lifted);
  }
  out_.addRhs(rhs_);
  return out_.finish(cut);
}

class CoverSeparator : public Separator {
 public:
  explicit CoverSeparator(std::shared_ptr<CutContext> context) : context_(std::move(context)) {}
  CutFamily family() const override { return CutFamily::Cover; }

  void separate(const SeparationPoint &point, int level, Vec<Cut> &cuts) override {
    const RowSystem &rows = context_->rows(point);
    KnapsackCover knapsack(point, rows, context_->variableBounds(point));
    const auto cutFrom = [&](int row, double sign, double bound, Cut &cut) {
      return knapsack.cutFrom(row, sign, bound, cut);
    };
    cutsFromKnapsacks(point, rows, family(), level, kLargestRank, cutFrom, cuts);
  }

 private:
  std::shared_ptr<CutContext> context_;
};

}  // namespace

std::unique_ptr<Separator> makeCoverSeparator(std::shared_ptr<CutContext> context) {
  return std::make_unique<CoverSeparator>(std::move(context));
}

}  // namespace tarvik
