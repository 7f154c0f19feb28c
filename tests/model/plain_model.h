// The plain model of the random edit tests. Elements are known by identity instead of by index:
// what refers to an element keeps referring to it whatever is added, deleted or renumbered.
#pragma once

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tarvik.h"

namespace plain {

constexpr double kUndefined = 1e101;

struct Element {
  std::string name, tag;
  std::map<std::string, int> settings;  // by attribute; absent ones have their default
  std::optional<int> basis;             // as it was seen last
  bool doomed = false;
};

struct Var : Element {
  double obj = 0, lb = 0, ub = 1e30, hint = kUndefined;
  char type = 'C';
  std::vector<double> pwlX, pwlY;
  bool touched = false;  // bounds or type were set: bounds of binaries are clipped
};
using VarP = std::shared_ptr<Var>;

struct Constr : Element {
  std::map<VarP, double> coef;
  char sense = '<';
  double rhs = 0, width = -1;  // width >= 0: a range that still needs its variable
};
using ConstrP = std::shared_ptr<Constr>;

struct QConstr : Element {
  std::map<VarP, double> linear;
  std::map<std::pair<VarP, VarP>, double> quad;
  char sense = '<';
  double rhs = 0;
};

struct Sos : Element {
  int type = 1;
  std::vector<std::pair<double, VarP>> members;  // by weight
};

struct Cone {
  std::vector<VarP> members;
};

struct GenConstr : Element {
  int type = 0;
  VarP result;
  std::vector<VarP> operands;
  std::vector<double> values;  // of an indicator: one per operand
  double constant = 0;

  // What its type needs is still there.
  bool survives() const {
    if (result->doomed) return false;
    if (type == TVK_GENCONSTR_INDICATOR || type == TVK_GENCONSTR_MAX) return true;
    return std::any_of(operands.begin(), operands.end(), [](const VarP &v) { return !v->doomed; });
  }
  void dropOperands() {
    for (std::size_t k = operands.size(); k-- > 0;) {
      if (!operands[k]->doomed) continue;
      operands.erase(operands.begin() + static_cast<std::ptrdiff_t>(k));
      if (type == TVK_GENCONSTR_INDICATOR)
        values.erase(values.begin() + static_cast<std::ptrdiff_t>(k));
    }
  }
};

struct Objective {
  std::map<VarP, double> coef;
  double con = 0, weight = 1, absTol = 1e-6, relTol = 0;
  int priority = 0;
  std::string name;
};

struct Scenario {
  std::map<VarP, double> obj, lb, ub;
  std::map<ConstrP, double> rhs;
  std::string name;
};

template <class T>
const Element &elementOf(const T &element) {
  if constexpr (requires { *element; })
    return *element;
  else
    return element;
}

template <class T>
void dropDoomed(std::vector<T> &elements) {
  std::erase_if(elements, [](const T &e) { return elementOf(e).doomed; });
}
template <class Key, class T>
void dropDoomed(std::map<Key, T> &values) {
  std::erase_if(values, [](const auto &entry) { return entry.first->doomed; });
}

inline std::pair<VarP, VarP> unordered(const VarP &a, const VarP &b) {
  return a < b ? std::pair(a, b) : std::pair(b, a);
}

struct Model {
  std::vector<VarP> vars;
  std::vector<ConstrP> constrs;
  std::vector<QConstr> qconstrs;
  std::vector<Sos> sos;
  std::vector<GenConstr> gens;
  std::vector<Cone> cones;
  std::map<std::pair<VarP, VarP>, double> q;
  std::vector<Objective> objectives;
  std::vector<Scenario> scenarios;
  std::vector<std::map<VarP, double>> starts;
  int sense = 1;
  double objCon = 0;
  bool hasBasis = false;
  // Attributes that have been set; the others are not available.
  std::set<std::string> used;

  // Brings the model to the state after an update.
  void settle();

 private:
  void addRangeVariables();
  void dropFromParts();
  template <class T>
  void forgetUnused(const std::vector<T> &elements,
                    std::initializer_list<const char *> attributes) {
    if (!elements.empty()) return;
    for (const char *attribute : attributes) used.erase(attribute);
  }
};

inline void Model::addRangeVariables() {
  for (const ConstrP &c : constrs) {
    if (c->width < 0 || c->doomed) continue;
    auto r = std::make_shared<Var>();
    r->ub = c->width;
    r->name = "Rg" + c->name;
    c->coef[r] = 1;
    c->width = -1;
    vars.push_back(r);
  }
}

inline void Model::dropFromParts() {
  const auto gone = [](const auto &entry) {
    return entry.second == 0 || entry.first.first->doomed || entry.first.second->doomed;
  };
  std::erase_if(q, gone);
  for (QConstr &qc : qconstrs) {
    std::erase_if(qc.quad, gone);
    dropDoomed(qc.linear);
  }
  for (const ConstrP &c : constrs) dropDoomed(c->coef);
  for (Sos &s : sos)
    std::erase_if(s.members, [](const auto &member) { return member.second->doomed; });
  std::erase_if(cones, [](const Cone &cone) { return cone.members[0]->doomed; });
  for (Cone &cone : cones) dropDoomed(cone.members);
  for (GenConstr &g : gens)
    if (!g.doomed) g.dropOperands();
  for (Objective &o : objectives) dropDoomed(o.coef);
  for (auto &start : starts) dropDoomed(start);
  for (Scenario &s : scenarios) {
    dropDoomed(s.obj);
    dropDoomed(s.lb);
    dropDoomed(s.ub);
    dropDoomed(s.rhs);
  }
}

inline void Model::settle() {
  addRangeVariables();
  for (const VarP &v : vars) {
    if (v->touched && v->type == 'B' && v->lb != v->ub) {
      v->lb = std::max(v->lb, 0.0);
      v->ub = std::min(v->ub, 1.0);
    }
    v->touched = false;
  }
  dropFromParts();
  dropDoomed(vars);
  dropDoomed(constrs);
  dropDoomed(qconstrs);
  dropDoomed(sos);
  dropDoomed(gens);
  // Settings that no element carries any more are as if never made.
  forgetUnused(vars, {"BranchPriority", "VarHintPri", "Partition", "PoolIgnore", "IISLBForce",
                      "IISUBForce", "VarHintVal", "VTag"});
  forgetUnused(constrs, {"Lazy", "IISConstrForce", "CTag"});
  forgetUnused(qconstrs, {"IISQConstrForce", "QCTag"});
  forgetUnused(sos, {"IISSOSForce"});
  forgetUnused(gens, {"IISGenConstrForce"});
}

}  // namespace plain
