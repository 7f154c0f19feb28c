// Network cuts: cut-set inequalities (Bienstock and Gunluk, 1996; Achterberg and Raack, 2010). The
// balances of a set of nodes are summed up, for the commodities that the set demands or supplies,
// and what flows across is replaced by its joint or variable capacities: open enough of them, says
// the mixed-integer rounding of the sum. Sets are the nodes, what grows from them by contracting
// flows that are far from their capacities, and the unions of the few clusters left in the end.
#include <algorithm>
#include <cmath>
#include <numeric>

#include "mip/cuts/aggregation.h"
#include "mip/cuts/separators.h"

namespace tarvik {

namespace {

constexpr int kFewClusters = 5, kManyClusters = 8;  // moderate, aggressive
constexpr int kMostCuts = 300;
constexpr int kLongestSum = 2000;
// Share of what separators of rows may work; calls without a cut after which there is no other.
constexpr double kWorkShare = 0.2;
constexpr int kMostFailures = 2;
constexpr double kTiny = 1e-9;
// Contracted first are flows with much capacity left, then those whose opening is decided.
constexpr double kOpeningWeight = 0.2;
constexpr double kLargestWeight = 1e4;

class CutSets {
 public:
  CutSets(const SeparationPoint &point, const RowSystem &rows, const FlowNetwork &network,
          const VariableBounds &bounds, double workEnd, Vec<Cut> &cuts)
      : point_(point),
        rows_(rows),
        network_(network),
        bounds_(bounds),
        sum_(*point.lp, rows),
        kernel_(point, rows, &bounds),
        workEnd_(workEnd),
        cuts_(cuts),
        mostCuts_(cuts.size() + kMostCuts),
        balances_(network.numNodes()) {
    for (std::size_t b = 0; b < network.balances().size(); ++b)
      if (network.balances()[b].node >= 0)
        balances_[network.balances()[b].node].push_back(static_cast<int>(b));
  }

  void run(int mostClusters);

 private:
  struct Edge {
    double slack;
    int from, to;
  };

  bool isOver() const { return point_.work->counted() > workEnd_ || cuts_.size() >= mostCuts_; }
  Vec<Edge> edges() const;
  double slackOf(int col) const;
  double capacitySlack(int row) const;
  void merge(int from, int to);
  void tryUnions();
  void trySet(const Vec<int> &nodes);
  void addBalances(const Vec<int> &nodes, int direction, const Vec<double> &demand);
  void addCapacities(int direction);
  void addRow(int row, double weight);
  bool round();

  const SeparationPoint &point_;
  const RowSystem &rows_;
  const FlowNetwork &network_;
  const VariableBounds &bounds_;
  RowCombiner sum_;
  MirKernel kernel_;
  double workEnd_;
  Vec<Cut> &cuts_;
  std::size_t mostCuts_;
  Vec<Vec<int>> balances_;  // by node
  Vec<int> clusterOf_;
  Vec<Vec<int>> clusters_;  // nodes
};

// How far a joint capacity is from its limit, and its openings from being fractional.
double CutSets::capacitySlack(int row) const {
  const Problem &problem = *point_.problem;
  const SparseMatrix &rows = problem.rows();
  double activity = 0, norm = 0, fraction = 0;
  for (NzIndex k = rows.start[row]; k < rows.start[row + 1]; ++k) {
    const double x = (*point_.x)[rows.index[k]];
    activity += rows.value[k] * x;
    norm = std::max(norm, std::fabs(rows.value[k]));
    if (point_.global->isBinary(rows.index[k]))
      fraction = std::max(fraction, std::fabs(x - std::round(x)));
  }
  point_.work->charge(2.0 * rows.length(row));
  const double room =
      std::min(problem.lp().rowUpper[row] - activity, activity - problem.lp().rowLower[row]);
  return room / norm - kOpeningWeight * fraction;
}

double CutSets::slackOf(int col) const {
  const Vec<double> &x = *point_.x;
  if (network_.capacity(col) >= 0) return capacitySlack(network_.capacity(col));
  const VariableBound *bound = bounds_.leastUpper(col, x);
  if (!bound) return point_.global->upper(col) - x[col];
  const double fraction = std::fabs(x[bound->binary] - std::round(x[bound->binary]));
  return (bound->at(x) - x[col]) / std::max(kTiny, std::fabs(bound->coef)) -
         kOpeningWeight * fraction;
}

Vec<CutSets::Edge> CutSets::edges() const {
  Vec<Edge> result;
  for (int j = 0; j < point_.problem->numCols(); ++j) {
    int from = -1, to = -1;
    if (!network_.joins(j, from, to)) continue;
    from = network_.balances()[from].node;
    to = network_.balances()[to].node;
    if (from != to) result.push_back({slackOf(j), from, to});
  }
  std::stable_sort(result.begin(), result.end(),
                   [](const Edge &a, const Edge &b) { return a.slack > b.slack; });
  return result;
}

void CutSets::merge(int from, int to) {
  if (clusters_[from].size() > clusters_[to].size()) std::swap(from, to);
  for (const int node : clusters_[from]) {
    clusterOf_[node] = to;
    clusters_[to].push_back(node);
  }
  clusters_[from].clear();
}

void CutSets::run(int mostClusters) {
  const int nodes = network_.numNodes();
  clusterOf_.resize(nodes);
  std::iota(clusterOf_.begin(), clusterOf_.end(), 0);
  for (int v = 0; v < nodes; ++v) clusters_.push_back({v});
  for (int v = 0; v < nodes && !isOver(); ++v) trySet(clusters_[v]);
  int left = nodes;
  for (const Edge &edge : edges()) {
    if (left <= mostClusters || isOver()) break;
    const int from = clusterOf_[edge.from], to = clusterOf_[edge.to];
    if (from == to) continue;
    merge(from, to);
    trySet(clusters_[clusterOf_[edge.from]]);
    --left;
  }
  if (left <= mostClusters) tryUnions();
}

// Of two clusters at least; the last one stays outside: a set and the rest make the same cuts.
void CutSets::tryUnions() {
  Vec<int> some;
  for (std::size_t c = 0; c < clusters_.size(); ++c)
    if (!clusters_[c].empty()) some.push_back(static_cast<int>(c));
  const int count = static_cast<int>(some.size()) - 1;
  for (int subset = 1; subset < (1 << std::max(count, 0)) && !isOver(); ++subset) {
    if ((subset & (subset - 1)) == 0) continue;
    Vec<int> nodes;
    for (int c = 0; c < count; ++c)
      if (subset >> c & 1)
        nodes.insert(nodes.end(), clusters_[some[c]].begin(), clusters_[some[c]].end());
    trySet(nodes);
  }
}

// For the commodities of which the set takes in, then for those of which it gives off.
void CutSets::trySet(const Vec<int> &nodes) {
  Vec<double> demand(network_.numCommodities(), 0.0);
  for (const int node : nodes)
    for (const int b : balances_[node]) {
      const FlowNetwork::Balance &balance = network_.balances()[b];
      demand[balance.commodity] += balance.weight * rows_.slack(balance.row).rhs;
    }
  for (const int direction : {1, -1}) {
    sum_.clear();
    addBalances(nodes, direction, demand);
    addCapacities(direction);
    if (sum_.entries() > 0 && sum_.entries() <= kLongestSum && round()) return;
  }
}

void CutSets::addBalances(const Vec<int> &nodes, int direction, const Vec<double> &demand) {
  for (const int node : nodes)
    for (const int b : balances_[node]) {
      const FlowNetwork::Balance &balance = network_.balances()[b];
      if (direction * demand[balance.commodity] > kTiny) addRow(balance.row, balance.weight);
    }
}

// Of what flows across in this direction.
void CutSets::addCapacities(int direction) {
  const Vec<int> flows(sum_.columns());
  Vec<int> added;
  for (const int j : flows) {
    const int row = network_.capacity(j);
    if (row < 0 || direction * sum_.coef(j) <= kTiny) continue;
    if (std::find(added.begin(), added.end(), row) != added.end()) continue;
    const SparseMatrix &cols = point_.problem->cols();
    for (NzIndex k = cols.start[j]; k < cols.start[j + 1]; ++k) {
      if (cols.index[k] != row) continue;
      const double weight = -sum_.coef(j) / cols.value[k];
      if (std::fabs(weight) <= kLargestWeight) addRow(row, weight);
    }
    added.push_back(row);
  }
  point_.work->charge(static_cast<double>(flows.size() * (1 + added.size())));
}

void CutSets::addRow(int row, double weight) {
  sum_.add(row, weight);
  point_.work->charge(3.0 * point_.problem->rows().length(row));
}

bool CutSets::round() {
  BaseRow base;
  sum_.get(base);
  bool found = false;
  for (const double sign : {1.0, -1.0}) {
    Cut cut;
    cut.family = CutFamily::Network;
    if (!kernel_.load(base, sign, Rounding::MixedInteger) || !kernel_.bestCut(cut)) continue;
    cuts_.push_back(std::move(cut));
    found = true;
  }
  return found;
}

class NetworkSeparator : public Separator {
 public:
  explicit NetworkSeparator(std::shared_ptr<CutContext> context) : context_(std::move(context)) {}
  CutFamily family() const override { return CutFamily::Network; }

  void separate(const SeparationPoint &point, int level, Vec<Cut> &cuts) override {
    const FlowNetwork &network = context_->network(point);
    if (network.numNodes() < 2 || failures_ >= kMostFailures) return;
    const std::size_t before = cuts.size();
    const double now = point.work->counted();
    CutSets sets(point, context_->rows(point), network, context_->variableBounds(point),
                 now + kWorkShare * (workEnd(point, level) - now), cuts);
    sets.run(level > 1 ? kManyClusters : kFewClusters);
    failures_ = cuts.size() > before ? 0 : failures_ + 1;
  }

 private:
  int failures_ = 0;
  std::shared_ptr<CutContext> context_;
};

}  // namespace

std::unique_ptr<Separator> makeNetworkSeparator(std::shared_ptr<CutContext> context) {
  return std::make_unique<NetworkSeparator>(std::move(context));
}

}  // namespace tarvik
