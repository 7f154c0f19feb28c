// Generalised upper bound cover cuts (Wolsey, 1990): the literals of a knapsack are partitioned
// into cliques, and a cover takes one literal of each at most. As at most one member of a clique is
// true, all of its members that are as heavy as the one in the cover join the inequality; so do
// members of other cliques that are as heavy as all of the cover.
#include <algorithm>
#include <cmath>

#include "mip/cuts/cut_assembler.h"
#include "mip/cuts/knapsack.h"
#include "mip/cuts/separators.h"

namespace tarvik {

namespace {

constexpr double kLeastViolation = 1e-4;
constexpr int kLargestRank = 2;
constexpr std::size_t kMostCliques = 30;  // looked at for one literal

class GubCover {
 public:
  GubCover(const SeparationPoint &point, const RowSystem &rows, const VariableBounds &bounds,
           const CliqueTable &cliques)
      : point_(&point),
        cliques_(&cliques),
        knapsack_(point, rows, bounds),
        place_(2 * static_cast<std::size_t>(rows.numCols()), -1),
        out_(point, rows) {}

  bool cutFrom(int row, double sign, double rhs, Cut &cut) {
    if (!knapsack_.take(row, sign, rhs)) return false;
    if (!partition() || !findCover()) return false;
    return build(cut);
  }

 private:
  // Members of one clique, and the one that the cover would take.
  struct Group {
    Vec<int> members;  // items
    double weight = 0;
    double value = 0;  // of all members of that weight or more, at the point
    bool inCover = false;
  };

  bool partition();
  void fillGroup(Literal literal, Group &group);
  void chooseMember(Group &group) const;
  bool findCover();
  bool build(Cut &cut);

  const SeparationPoint *point_;
  const CliqueTable *cliques_;
  Knapsack knapsack_;
  Vec<int> place_;  // a literal: its item while that has no group, else -1
  Vec<Group> groups_;
  CutAssembler out_;
};

// False when there is nothing but single literals.
bool GubCover::partition() {
  const Vec<KnapsackItem> &items = knapsack_.items();
  Vec<int> order(items.size());
  for (std::size_t k = 0; k < order.size(); ++k) {
    order[k] = static_cast<int>(k);
    place_[literalOf(items[k].col, items[k].complemented)] = static_cast<int>(k);
  }
  std::sort(order.begin(), order.end(), [&](int a, int b) {
    return items[a].x != items[b].x ? items[a].x > items[b].x : a < b;
  });
  groups_.clear();
  bool joined = false;
  for (const int k : order) {
    const Literal literal = literalOf(items[k].col, items[k].complemented);
    if (place_[literal] < 0) continue;
    groups_.emplace_back();
    fillGroup(literal, groups_.back());
    joined |= groups_.back().members.size() > 1;
    chooseMember(groups_.back());
  }
  return joined;
}

// The clique of the largest value among the literals that are still free.
void GubCover::fillGroup(Literal literal, Group &group) {
  const Vec<int> &all = cliques_->cliquesOf(literal);
  int best = -1;
  double bestValue = 0;
  for (std::size_t c = 0; c < std::min(all.size(), kMostCliques); ++c) {
    double value = 0;
    const Literal *members = cliques_->members(all[c]);
    for (int k = 0; k < cliques_->size(all[c]); ++k)
      if (place_[members[k]] >= 0) value += 1e-3 + knapsack_.items()[place_[members[k]]].x;
    point_->work->charge(cliques_->size(all[c]));
    if (value <= bestValue) continue;
    bestValue = value;
    best = all[c];
  }
  const auto take = [&](Literal member) {
    if (place_[member] < 0) return;
    group.members.push_back(place_[member]);
    place_[member] = -1;
  };
  take(literal);
  if (best < 0) return;
  for (int k = 0; k < cliques_->size(best); ++k) take(cliques_->members(best)[k]);
}

void GubCover::chooseMember(Group &group) const {
  const Vec<KnapsackItem> &items = knapsack_.items();
  std::sort(group.members.begin(), group.members.end(), [&](int a, int b) {
    return items[a].weight != items[b].weight ? items[a].weight > items[b].weight : a < b;
  });
  double value = 0, bestLoss = kInf;
  for (const int k : group.members) {
    value += items[k].x;
    const double loss = std::max(0.0, 1 - value) / items[k].weight;
    if (loss >= bestLoss) continue;
    bestLoss = loss;
    group.weight = items[k].weight;
    group.value = value;
  }
}

bool GubCover::findCover() {
  Vec<int> order(groups_.size());
  for (std::size_t g = 0; g < order.size(); ++g) order[g] = static_cast<int>(g);
  std::sort(order.begin(), order.end(), [&](int a, int b) {
    const double la = std::max(0.0, 1 - groups_[a].value) / groups_[a].weight;
    const double lb = std::max(0.0, 1 - groups_[b].value) / groups_[b].weight;
    return la != lb ? la < lb : a < b;
  });
  point_->work->charge(20.0 * static_cast<double>(knapsack_.items().size()));
  double weight = 0;
  Vec<int> cover;
  for (const int g : order) {
    if (weight > knapsack_.capacity()) break;
    weight += groups_[g].weight;
    cover.push_back(g);
  }
  if (weight <= knapsack_.capacity()) return false;
  std::sort(cover.begin(), cover.end(), [&](int a, int b) {
    return groups_[a].value != groups_[b].value ? groups_[a].value < groups_[b].value : a < b;
  });
  double violation = 1;
  for (const int g : cover) {
    if (weight - groups_[g].weight > knapsack_.capacity()) {
      weight -= groups_[g].weight;
      continue;
    }
    groups_[g].inCover = true;
    violation -= 1 - groups_[g].value;
  }
  return violation > kLeastViolation;
}

bool GubCover::build(Cut &cut) {
  double heaviest = 0;
  int count = 0;
  for (const Group &group : groups_) {
    if (!group.inCover) continue;
    heaviest = std::max(heaviest, group.weight);
    ++count;
  }
  out_.addRhs(count - 1);
  for (const Group &group : groups_) {
    const double least = group.inCover ? group.weight : heaviest;
    for (const int k : group.members) {
      const KnapsackItem &item = knapsack_.items()[k];
      if (item.weight < least) continue;
      out_.addColumn(item.col, item.complemented ? -1 : 1);
      if (item.complemented) out_.addRhs(-1);
    }
  }
  return out_.finish(cut);
}

class GubCoverSeparator : public Separator {
 public:
  explicit GubCoverSeparator(std::shared_ptr<CutContext> context) : context_(std::move(context)) {}
  CutFamily family() const override { return CutFamily::GubCover; }

  void separate(const SeparationPoint &point, int level, Vec<Cut> &cuts) override {
    const CliqueTable &cliques = context_->cliques(point);
    if (cliques.numCliques() == 0) return;
    const RowSystem &rows = context_->rows(point);
    GubCover cover(point, rows, context_->variableBounds(point), cliques);
    const auto cutFrom = [&](int row, double sign, double bound, Cut &cut) {
      return cover.cutFrom(row, sign, bound, cut);
    };
    cutsFromKnapsacks(point, rows, family(), level, kLargestRank, cutFrom, cuts);
  }

 private:
  std::shared_ptr<CutContext> context_;
};

}  // namespace

std::unique_ptr<Separator> makeGubCoverSeparator(std::shared_ptr<CutContext> context) {
  return std::make_unique<GubCoverSeparator>(std::move(context));
}

}  // namespace tarvik
