#include "io/lp/lp_order.h"

#include <algorithm>

#include "tarvik.h"

namespace tarvik {

void LpOrder::settle(const ModelData &data, const SparseMatrix &rows, const Vec<int> &lazy,
                     const Vec<int> &unmentioned) {
  vars_.clear();
  rank_.assign(data.numVars(), -1);
  mentionObjectives(data, unmentioned);
  mentionRows(rows, lazy, 0);
  for (const QConstr &c : data.qconstrs) {
    mentionAll(c.lind);
    mentionProducts(c.quad);
  }
  for (const Cone &cone : data.cones) mentionAll(cone.members);
  for (const GenConstr &g : data.genConstrs) {
    if (g.type != TVK_GENCONSTR_INDICATOR) continue;
    mention(g.resVar);
    mentionAll(g.vars);
  }
  for (const int level : kLazyLevels) mentionRows(rows, lazy, level);
  for (int j = 0; j < data.numVars(); ++j) mention(j);
}

Vec<Product> LpOrder::products(const QuadTerms &q) const {
  Vec<Product> products;
  for (int k = 0; k < q.count(); ++k) {
    const auto [first, second] =
        std::minmax(q.row[k], q.col[k], [&](int a, int b) { return rank_[a] < rank_[b]; });
    products.push_back({first, second, q.val[k]});
  }
  std::stable_sort(products.begin(), products.end(), [&](const Product &a, const Product &b) {
    return std::pair(rank_[a.first], rank_[a.second]) < std::pair(rank_[b.first], rank_[b.second]);
  });
  return products;
}

void LpOrder::mention(int var) {
  if (hasRank(var)) return;
  rank_[var] = static_cast<int>(vars_.size());
  vars_.push_back(var);
}

void LpOrder::mentionAll(const Vec<int> &vars) {
  for (const int j : vars) mention(j);
}

void LpOrder::mentionTerms(const Vec<double> &coef) {
  for (int j = 0; j < static_cast<int>(coef.size()); ++j)
    if (coef[j] != 0) mention(j);
}

void LpOrder::mentionProducts(const QuadTerms &q) {
  Vec<std::pair<int, int>> partners;
  for (int k = 0; k < q.count(); ++k) {
    partners.emplace_back(q.row[k], q.col[k]);
    if (q.row[k] != q.col[k]) partners.emplace_back(q.col[k], q.row[k]);
  }
  std::sort(partners.begin(), partners.end());

  Vec<int> queue;  // of variables with a rank, and so by rank: where the partners of each begin
  const int end = static_cast<int>(partners.size());
  for (int k = 0; k < end; ++k)
    if (hasRank(partners[k].first) && (k == 0 || partners[k].first != partners[k - 1].first))
      queue.push_back(k);
  std::sort(queue.begin(), queue.end(),
            [&](int a, int b) { return rank_[partners[a].first] < rank_[partners[b].first]; });
  const auto join = [&](int var) {
    if (hasRank(var)) return;
    mention(var);
    const auto at = std::lower_bound(partners.begin(), partners.end(), std::pair(var, 0));
    queue.push_back(static_cast<int>(at - partners.begin()));
  };
  std::size_t taken = 0;
  const auto serve = [&] {
    for (; taken < queue.size(); ++taken) {
      const int begin = queue[taken];
      for (int k = begin; k < end && partners[k].first == partners[begin].first; ++k)
        join(partners[k].second);
    }
  };
  serve();
  for (int k = 0; k < end; ++k) {
    join(partners[k].first);
    serve();
  }
}

void LpOrder::mentionObjectives(const ModelData &data, const Vec<int> &unmentioned) {
  if (data.objectives.empty()) {
    mentionTerms(data.obj);
    for (const PwlObjective &pwl : data.pwl) mention(pwl.var);
    mentionAll(unmentioned);
    mentionProducts(data.q);
    return;
  }
  for (std::size_t n = 0; n < data.objectives.size(); ++n) {
    mentionTerms(data.objectives[n].coef);
    if (n == 0) mentionAll(unmentioned);
  }
}

void LpOrder::mentionRows(const SparseMatrix &rows, const Vec<int> &lazy, int level) {
  for (int i = 0; i < rows.numMajor; ++i) {
    if ((lazy.empty() ? 0 : lazy[i]) != level) continue;
    for (NzIndex e = rows.start[i]; e < rows.start[i + 1]; ++e) mention(rows.index[e]);
    // A row without entries takes the first variable for a term of zero.
    if (rows.length(i) == 0 && vars_.empty() && !rank_.empty()) mention(0);
  }
}

}  // namespace tarvik
