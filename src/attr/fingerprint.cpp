#include "attr/fingerprint.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace tarvik {

namespace {

// Mixes words in sequence, so that order matters (the finaliser is Steele's splitmix64, 2014).
class Hash {
 public:
  void add(std::uint64_t word) {
    state_ = (state_ ^ word) * 0x9e3779b97f4a7c15u;
    state_ ^= state_ >> 29;
  }
  void add(double value) {
    if (value == 0) value = 0;  // the two zeros count as one
    std::uint64_t word;
    std::memcpy(&word, &value, sizeof word);
    add(word);
  }
  void add(int value) { add(static_cast<std::uint64_t>(static_cast<std::uint32_t>(value))); }
  void add(char value) { add(static_cast<int>(value)); }
  template <class T>
  void add(const Vec<T> &values) {
    add(static_cast<std::uint64_t>(values.size()));
    for (const T &value : values) add(value);
  }
  // Linear terms in any order.
  void addTerms(const Vec<int> &index, const Vec<double> &value) {
    Vec<std::pair<int, double>> terms;
    terms.reserve(index.size());
    for (std::size_t k = 0; k < index.size(); ++k) terms.emplace_back(index[k], value[k]);
    std::sort(terms.begin(), terms.end());
    add(static_cast<std::uint64_t>(terms.size()));
    for (const auto &[i, v] : terms) {
      add(i);
      add(v);
    }
  }
  // Neither the pairs nor the two of a pair have an order.
  void add(const QuadTerms &q) {
    Vec<std::pair<std::pair<int, int>, double>> pairs;
    pairs.reserve(q.val.size());
    for (int k = 0; k < q.count(); ++k)
      pairs.emplace_back(std::minmax<int>({q.row[k], q.col[k]}), q.val[k]);
    std::sort(pairs.begin(), pairs.end());
    add(static_cast<std::uint64_t>(pairs.size()));
    for (const auto &[pair, value] : pairs) {
      add(pair.first);
      add(pair.second);
      add(value);
    }
  }
  void add(const SparseChanges &changes) {
    add(changes.index());
    add(changes.value());
  }
  void add(const SparseMatrix &a) {
    add(a.numMajor);
    add(a.numMinor);
    for (int j = 0; j < a.numMajor; ++j) add(a.length(j));
    add(a.index);
    add(a.value);
  }
  int folded() const {
    std::uint64_t z = state_;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
    z ^= z >> 31;
    return static_cast<int>(static_cast<std::uint32_t>(z ^ (z >> 32)));
  }

 private:
  std::uint64_t state_ = 0x6a09e667f3bcc909u;
};

void addGenConstr(Hash &hash, const GenConstr &g) {
  for (const int value : {g.type, g.resVar, g.binVal}) hash.add(value);
  hash.add(g.sense);
  hash.add(g.constant);
  if (g.type == TVK_GENCONSTR_INDICATOR) {
    hash.addTerms(g.vars, g.coef);
    return;
  }
  hash.add(g.vars);
  hash.add(g.coef);
  hash.add(g.pwlY);
}

void addParts(Hash &hash, const ModelData &d) {
  hash.add(d.q);
  for (const QConstr &qc : d.qconstrs) {
    hash.addTerms(qc.lind, qc.lval);
    hash.add(qc.quad);
    hash.add(qc.sense);
    hash.add(qc.rhs);
  }
  for (const Cone &cone : d.cones) hash.add(cone.members);
  for (const Sos &sos : d.sos) {
    hash.add(sos.type);
    hash.add(sos.ind);
    hash.add(sos.weight);
  }
  // Files hold indicators before the other general constraints.
  for (const bool indicators : {true, false})
    for (const GenConstr &g : d.genConstrs)
      if ((g.type == TVK_GENCONSTR_INDICATOR) == indicators) addGenConstr(hash, g);
  for (const PwlObjective &pwl : d.pwl) {
    hash.add(pwl.var);
    hash.add(pwl.x);
    hash.add(pwl.y);
  }
}

void addObjectives(Hash &hash, const ModelData &d) {
  for (const Objective &objective : d.objectives) {
    hash.add(objective.coef);
    hash.add(objective.priority);
    for (const double v : {objective.con, objective.weight, objective.absTol, objective.relTol})
      hash.add(v);
  }
  for (const Scenario &scenario : d.scenarios)
    for (const SparseChanges *changes : {&scenario.obj, &scenario.lb, &scenario.ub, &scenario.rhs})
      hash.add(*changes);
}

}  // namespace

int fingerprint(Model &model) {
  DerivedData &derived = model.derived();
  if (derived.hasFingerprint) return derived.fingerprint;
  const ModelData &d = model.data();
  Hash hash;
  hash.add(d.objSense);
  // Several objectives take the place of the one.
  if (d.objectives.empty()) {
    hash.add(d.objCon);
    hash.add(d.obj);
  }
  hash.add(d.lb);
  hash.add(d.ub);
  hash.add(d.vtype);
  hash.add(d.rhs);
  hash.add(d.sense);
  hash.add(d.a);
  addParts(hash, d);
  addObjectives(hash, d);
  derived.fingerprint = hash.folded();
  derived.hasFingerprint = true;
  return derived.fingerprint;
}

}  // namespace tarvik
