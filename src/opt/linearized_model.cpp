// Linear formulations of products with binary variables (McCormick 1976, exact when one factor is
// binary) and of piecewise-linear objective terms.
#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include "model/data_edit.h"
#include "opt/derived_models.h"

namespace tarvik {

namespace {

class ProductLinearizer {
 public:
  explicit ProductLinearizer(ModelData &data) : data_(data) {}

  void run() {
    linearizeObjective();
    Vec<char> becameLinear(data_.qconstrs.size(), 0);
    for (int k = 0; k < data_.numQConstrs(); ++k) becameLinear[k] = linearizeConstr(k);
    removeQConstrs(data_, becameLinear);
    rows_.appendTo(data_);
  }

 private:
  bool isBinary(int j) const {
    if (data_.vtype[j] != 'B' && data_.vtype[j] != 'I') return false;
    const Reach reach = reachOf(data_, j);
    return reach.least >= 0 && reach.greatest <= 1;
  }

  // The variable that stands for a product; -1 when there is none.
  int variableOf(int i, int j) {
    if (i == j) return isBinary(i) ? i : -1;
    if (!isBinary(i)) std::swap(i, j);
    if (!isBinary(i) || !reachOf(data_, j).isBounded()) return -1;
    const auto [entry, isNew] = products_.try_emplace(std::minmax(i, j), -1);
    if (isNew) entry->second = addProduct(i, j);
    return entry->second;
  }

  // w = b x for x in [l, u]:  l b <= w <= u b  and  x - u (1 - b) <= w <= x - l (1 - b).
  int addProduct(int b, int x) {
    const auto [l, u] = reachOf(data_, x);
    const std::string name = "Aux_qplin" + std::to_string(products_.size() - 1);
    NewColumn column;
    column.lb = std::min(l, 0.0);
    column.ub = std::max(u, 0.0);
    const int w = appendColumn(data_, column, name);
    const auto add = [&](double coefX, double coefB, char sense, double rhs, const char *suffix) {
      const int ind[] = {w, b, x};
      const double val[] = {1, coefB, coefX};
      rows_.add(coefX == 0 ? 2 : 3, ind, val, sense, rhs, name + suffix);
    };
    add(0, -u, '<', 0, "_ub");
    if (l != 0) add(0, -l, '>', 0, "_lb");
    add(-1, -l, '<', -l, "_xl");
    add(-1, -u, '>', -u, "_xu");
    return w;
  }

  void linearizeObjective() {
    const QuadTerms terms = std::move(data_.q);
    data_.q.clear();
    for (int k = 0; k < terms.count(); ++k) {
      const int w = variableOf(terms.row[k], terms.col[k]);
      if (w < 0)
        data_.q.append(terms.row[k], terms.col[k], terms.val[k]);
      else
        data_.obj[w] += 0.5 * terms.val[k];
    }
  }

  // True when no quadratic term is left: the constraint then is a row.
  bool linearizeConstr(int k) {
    const QuadTerms terms = data_.qconstrs[k].quad;
    std::map<int, double> linear;
    QuadTerms kept;
    for (std::size_t t = 0; t < data_.qconstrs[k].lind.size(); ++t)
      linear[data_.qconstrs[k].lind[t]] += data_.qconstrs[k].lval[t];
    for (int t = 0; t < terms.count(); ++t) {
      const int w = variableOf(terms.row[t], terms.col[t]);
      if (w < 0)
        kept.append(terms.row[t], terms.col[t], terms.val[t]);
      else
        linear[w] += terms.val[t];
    }
    QConstr &qc = data_.qconstrs[k];
    qc.quad = kept;
    qc.lind.clear();
    qc.lval.clear();
    for (const auto &[var, value] : linear) {
      if (value == 0) continue;
      qc.lind.push_back(var);
      qc.lval.push_back(value);
    }
    if (kept.count() > 0) return false;
    rows_.add(static_cast<int>(qc.lind.size()), qc.lind.data(), qc.lval.data(), qc.sense, qc.rhs,
              nameInData(data_.qconstrNames, k, "QC"));
    return true;
  }

  ModelData &data_;
  std::map<std::pair<int, int>, int> products_;
  NewRows rows_;
};

// The points that matter between the variable's bounds, the end pieces extended to them.
class PwlLinearizer {
 public:
  PwlLinearizer(ModelData &data, NewRows &rows) : data_(data), rows_(rows) {}

  // False when the term has no linear form.
  bool run(const PwlObjective &pwl) {
    if (pwl.x.size() == 1) {
      data_.objCon += pwl.y[0];
      return true;
    }
    if (isConvex(pwl)) {
      addEpigraph(pwl);
      return true;
    }
    return addPoints(pwl);
  }

 private:
  static double slope(const PwlObjective &pwl, std::size_t k) {
    return (pwl.y[k + 1] - pwl.y[k]) / (pwl.x[k + 1] - pwl.x[k]);
  }
  static bool isConvex(const PwlObjective &pwl) {
    for (std::size_t k = 0; k + 1 < pwl.x.size(); ++k) {
      if (pwl.x[k + 1] <= pwl.x[k]) return false;
      if (k > 0 && slope(pwl, k) < slope(pwl, k - 1)) return false;
    }
    return true;
  }
  std::string name(int var, const char *prefix) const {
    return prefix + nameInData(data_.varNames, var, "C");
  }

  // t >= y_k + s_k (x - x_k) for every piece, with t in the objective.
  void addEpigraph(const PwlObjective &pwl) {
    NewColumn column;
    column.obj = 1;
    column.lb = -kInf;
    const int t = appendColumn(data_, column, name(pwl.var, "Pwl_"));
    for (std::size_t k = 0; k + 1 < pwl.x.size(); ++k) {
      const double s = slope(pwl, k);
      const int ind[] = {t, pwl.var};
      const double val[] = {1, -s};
      rows_.add(s == 0 ? 1 : 2, ind, val, '>', pwl.y[k] - s * pwl.x[k],
                name(pwl.var, "Pwl_") + "_" + std::to_string(k));
    }
  }

  // x = sum w_k x_k, sum w_k = 1, at most two neighbouring w_k other than 0.
  bool addPoints(const PwlObjective &pwl) {
    PwlObjective points = pwl;
    if (!extend(points)) return false;
    Sos sos;
    sos.type = 2;
    Vec<int> ind;
    Vec<double> place, ones;
    for (std::size_t k = 0; k < points.x.size(); ++k) {
      NewColumn column;
      column.obj = points.y[k];
      column.ub = 1;
      const std::string text = name(pwl.var, "Pwl_") + "_" + std::to_string(k);
      ind.push_back(appendColumn(data_, column, text));
      place.push_back(points.x[k]);
      ones.push_back(1);
      sos.ind.push_back(ind.back());
      sos.weight.push_back(static_cast<double>(k + 1));
    }
    rows_.add(static_cast<int>(ind.size()), ind.data(), ones.data(), '=', 1,
              name(pwl.var, "Pwl_") + "_sum");
    ind.push_back(pwl.var);
    place.push_back(-1);
    rows_.add(static_cast<int>(ind.size()), ind.data(), place.data(), '=', 0,
              name(pwl.var, "Pwl_") + "_x");
    data_.sos.push_back(std::move(sos));
    if (!data_.iisSosForce.empty()) data_.iisSosForce.push_back(-1);
    return true;
  }

  // Adds points at the bounds beyond the end points; false for infinite bounds.
  bool extend(PwlObjective &pwl) const {
    const Reach reach = reachOf(data_, pwl.var);
    if (!reach.isBounded()) return false;
    const auto [lb, ub] = reach;
    const std::size_t last = pwl.x.size() - 1;
    if ((lb < pwl.x[0] && pwl.x[1] <= pwl.x[0]) ||
        (ub > pwl.x[last] && pwl.x[last] <= pwl.x[last - 1]))
      return false;
    if (ub > pwl.x[last]) {
      pwl.y.push_back(pwl.y[last] + slope(pwl, last - 1) * (ub - pwl.x[last]));
      pwl.x.push_back(ub);
    }
    if (lb < pwl.x[0]) {
      pwl.y.insert(pwl.y.begin(), pwl.y[0] - slope(pwl, 0) * (pwl.x[0] - lb));
      pwl.x.insert(pwl.x.begin(), lb);
    }
    return true;
  }

  ModelData &data_;
  NewRows &rows_;
};

}  // namespace

void linearizeProducts(ModelData &data) { ProductLinearizer(data).run(); }

void linearizePwlObjective(ModelData &data) {
  NewRows rows;
  Vec<PwlObjective> kept;
  const Vec<PwlObjective> terms = std::move(data.pwl);
  for (const PwlObjective &pwl : terms)
    if (!PwlLinearizer(data, rows).run(pwl)) kept.push_back(pwl);
  data.pwl = std::move(kept);
  rows.appendTo(data);
}

}  // namespace tarvik
