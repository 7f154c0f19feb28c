#include "mip/cuts/flow_network.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

namespace tarvik {

namespace {
constexpr double kSameSize = 1e-9;
constexpr double kSmallestCoef = 1e-6;
constexpr int kLongestRow = 10000;
}  // namespace

FlowNetwork::FlowNetwork(const Problem &problem, const Domain &global)
    : problem_(&problem),
      global_(&global),
      ends_(problem.numCols()),
      capacity_(problem.numCols(), -1),
      places_(problem.numRows()) {
  chooseBalances();
  numberCommodities();
  findCapacities();
  matchNodes();
  global_ = nullptr;  // may be gone later
}

bool FlowNetwork::joins(int col, int &first, int &second) const {
  first = ends_[col].balance[0];
  second = ends_[col].balance[1];
  return second >= 0;
}

template <class F>
void FlowNetwork::forFlows(int row, F &&f) const {
  const SparseMatrix &rows = problem_->rows();
  for (NzIndex k = rows.start[row]; k < rows.start[row + 1]; ++k)
    if (isFlow(rows.index[k])) f(rows.index[k], rows.value[k]);
}

bool FlowNetwork::isFree(int row) const {
  return isInf(problem_->lp().rowLower[row]) && isInf(problem_->lp().rowUpper[row]);
}

// The size that all flows of the row have in common; 0: there is none.
double FlowNetwork::flowCoef(int row, int &flows) const {
  double largest = 0, smallest = kInf;
  flows = 0;
  if (isFree(row)) return 0;
  forFlows(row, [&](int, double value) {
    largest = std::max(largest, std::fabs(value));
    smallest = std::min(smallest, std::fabs(value));
    ++flows;
  });
  return flows > 1 && smallest > kSmallestCoef && largest - smallest <= kSameSize * largest
             ? largest
             : 0;
}

void FlowNetwork::chooseBalances() {
  const LpModel &lp = problem_->lp();
  Vec<std::tuple<bool, int, int, double>> order;
  for (int i = 0; i < problem_->numRows(); ++i) {
    int flows = 0;
    const double size = problem_->rows().length(i) <= kLongestRow ? flowCoef(i, flows) : 0;
    if (size > 0) order.push_back({lp.rowLower[i] != lp.rowUpper[i], -flows, i, size});
  }
  std::sort(order.begin(), order.end());
  for (const auto &[isInequality, flows, row, size] : order) addBalance(row, size);
}

// The sign of a flow in its balance.
int FlowNetwork::signAt(int col, int end) const {
  const Ends &ends = ends_[col];
  return (balances_[ends.balance[end]].weight > 0) == ends.positive[end] ? 1 : -1;
}

// For each component that the row touches, whether its signs fit the row's (1) or have to be
// reversed (-1). False: the row fits to none or both.
bool FlowNetwork::findFlips(int row, Vec<std::pair<int, int>> &flips) const {
  bool fits = true;
  forFlows(row, [&](int j, double value) {
    if (ends_[j].balance[0] < 0 || !fits) return;
    if (ends_[j].balance[1] >= 0) {
      fits = false;
      return;
    }
    const int component = balances_[ends_[j].balance[0]].commodity;
    const int wanted = (signAt(j, 0) > 0) == (value > 0) ? -1 : 1;
    const auto known = std::find_if(flips.begin(), flips.end(),
                                    [&](const auto &flip) { return flip.first == component; });
    if (known == flips.end())
      flips.push_back({component, wanted});
    else
      fits = known->second == wanted;
  });
  return fits;
}

// The smaller components join the largest one that the row touches, with their signs reversed where
// necessary.
void FlowNetwork::addBalance(int row, double size) {
  Vec<std::pair<int, int>> flips;
  if (!findFlips(row, flips)) return;
  const int added = static_cast<int>(balances_.size());
  std::pair<int, int> target(static_cast<int>(members_.size()), 1);
  if (flips.empty()) {
    members_.emplace_back();
  } else {
    target = *std::max_element(flips.begin(), flips.end(), [&](const auto &a, const auto &b) {
      return members_[a.first].size() < members_[b.first].size();
    });
  }
  for (const auto &[component, flip] : flips) {
    if (component == target.first) continue;
    for (const int b : members_[component]) {
      balances_[b].commodity = target.first;
      if (flip != target.second) balances_[b].weight = -balances_[b].weight;
      members_[target.first].push_back(b);
    }
    members_[component].clear();
  }
  balances_.push_back({row, target.second / size, target.first, -1});
  members_[target.first].push_back(added);
  forFlows(row, [&](int j, double value) {
    const int end = ends_[j].balance[0] < 0 ? 0 : 1;
    ends_[j].balance[end] = added;
    ends_[j].positive[end] = value > 0;
  });
}

// Balances that no other is connected with are none.
void FlowNetwork::numberCommodities() {
  Vec<Vec<int>> kept;
  for (Balance &balance : balances_) balance.commodity = -1;
  for (Vec<int> &members : members_) {
    if (members.size() < 2) continue;
    for (const int b : members) balances_[b].commodity = static_cast<int>(kept.size());
    kept.push_back(std::move(members));
  }
  members_.swap(kept);
}

bool FlowNetwork::isOfNetwork(int col) const {
  const int first = ends_[col].balance[0];
  return first >= 0 && balances_[first].commodity >= 0;
}

// Other rows with several flows of networks that are in none so far.
void FlowNetwork::findCapacities() {
  const SparseMatrix &rows = problem_->rows();
  Vec<char> isBalance(problem_->numRows(), 0);
  for (const Balance &balance : balances_) isBalance[balance.row] = balance.commodity >= 0;
  for (int i = 0; i < problem_->numRows(); ++i) {
    if (isBalance[i] || isFree(i) || rows.length(i) > kLongestRow) continue;
    int flows = 0;
    forFlows(i, [&](int j, double) { flows += isOfNetwork(j) && capacity_[j] < 0; });
    if (flows < 2) continue;
    forFlows(i, [&](int j, double) {
      if (isOfNetwork(j) && capacity_[j] < 0) capacity_[j] = i;
    });
  }
}

// The nodes of a commodity's balances by what is known of other commodities, -1 where nothing fits,
// with all signs times flip. How well it fits.
int FlowNetwork::findNodes(const Vec<int> &members, int flip, Vec<int> &nodes) const {
  Vec<int> votes(nodes_, 0), voted;
  Vec<char> isTaken(nodes_, 0);
  int total = 0;
  nodes.assign(members.size(), -1);
  for (std::size_t m = 0; m < members.size(); ++m) {
    forFlows(balances_[members[m]].row, [&](int j, double) {
      if (capacity_[j] < 0) return;
      const int sign = flip * signAt(j, ends_[j].balance[0] == members[m] ? 0 : 1);
      for (const Place &place : places_[capacity_[j]]) {
        if (place.sign != sign || isTaken[place.node]) continue;
        if (votes[place.node]++ == 0) voted.push_back(place.node);
      }
    });
    int best = 0;
    for (const int node : voted) {
      if (votes[node] > best || (votes[node] == best && node < nodes[m])) {
        best = votes[node];
        nodes[m] = node;
      }
      votes[node] = 0;
    }
    voted.clear();
    if (nodes[m] >= 0) isTaken[nodes[m]] = 1;
    total += best;
  }
  return total;
}

// The largest commodity first; each tells the others where the flows of joint capacities begin and
// end.
void FlowNetwork::matchNodes() {
  std::stable_sort(members_.begin(), members_.end(),
                   [](const auto &a, const auto &b) { return a.size() > b.size(); });
  for (const Vec<int> &members : members_) {
    Vec<int> nodes, reversed;
    const bool reverses = findNodes(members, 1, nodes) < findNodes(members, -1, reversed);
    if (reverses) nodes.swap(reversed);
    for (std::size_t m = 0; m < members.size(); ++m) {
      Balance &balance = balances_[members[m]];
      if (reverses) balance.weight = -balance.weight;
      balance.node = nodes[m] >= 0 ? nodes[m] : nodes_++;
    }
    for (const int b : members) notePlaces(b);
  }
}

void FlowNetwork::notePlaces(int balance) {
  forFlows(balances_[balance].row, [&](int j, double) {
    if (capacity_[j] < 0) return;
    const Place place{balances_[balance].node, signAt(j, ends_[j].balance[0] == balance ? 0 : 1)};
    Vec<Place> &known = places_[capacity_[j]];
    const bool isKnown = std::any_of(known.begin(), known.end(), [&](const Place &other) {
      return other.node == place.node && other.sign == place.sign;
    });
    if (!isKnown) known.push_back(place);
  });
}

}  // namespace tarvik
