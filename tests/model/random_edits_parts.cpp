// The random edits of everything beside variables and linear constraints.
#include "random_edits.h"

using plain::VarP;

void RandomEdits::addQuadraticConstraint() {
  if (varLimit() == 0) return;
  plain::QConstr qc;
  qc.rhs = number();
  qc.sense = "<>="[pick(3)];
  qc.name = newName("q");
  const std::vector<int> lind = someVars(3), qrow = someVars(3);
  std::vector<int> qcol;
  std::vector<double> lval, qval;
  for (const int j : lind) {
    lval.push_back(1 + pick(4));
    qc.linear[ref.vars[j]] = lval.back();
  }
  for (const int i : qrow) {
    qcol.push_back(pick(varLimit()));
    qval.push_back(1 + pick(4));
    qc.quad[plain::unordered(ref.vars[i], ref.vars[qcol.back()])] += qval.back();
  }
  expectOk([&] {
    return TVKaddqconstr(model, static_cast<int>(lind.size()), lind.data(), lval.data(),
                         static_cast<int>(qrow.size()), qrow.data(), qcol.data(), qval.data(),
                         qc.sense, qc.rhs, qc.name.c_str());
  });
  ref.qconstrs.push_back(qc);
}

void RandomEdits::setQuadraticConstraint() {
  if (ref.qconstrs.empty()) return;
  const int k = pick(ref.qconstrs.size());
  plain::QConstr &qc = ref.qconstrs[k];
  qc.rhs = number();
  qc.sense = "<>="[pick(3)];
  qc.name = newName("p");
  expectOk([&] { return TVKsetdblattrelement(model, "QCRHS", k, qc.rhs); });
  expectOk([&] { return TVKsetcharattrelement(model, "QCSense", k, qc.sense); });
  expectOk([&] { return TVKsetstrattrelement(model, "QCName", k, qc.name.c_str()); });
}

void RandomEdits::addSet() {
  const std::vector<int> ind = someVars(4);
  if (ind.empty()) return;
  plain::Sos sos;
  sos.type = 1 + pick(2);
  std::vector<double> weight;
  for (const int j : ind) {
    double w = number();
    while (std::find(weight.begin(), weight.end(), w) != weight.end()) ++w;
    weight.push_back(w);
    sos.members.emplace_back(w, ref.vars[j]);
  }
  std::sort(sos.members.begin(), sos.members.end());
  const int beg = 0;
  expectOk([&] {
    return TVKaddsos(model, 1, static_cast<int>(ind.size()), &sos.type, &beg, ind.data(),
                     weight.data());
  });
  ref.sos.push_back(sos);
}

void RandomEdits::addCone() {
  const std::vector<int> ind = someVars(4);
  if (ind.empty()) return;
  plain::Cone cone;
  for (const int j : ind) cone.members.push_back(ref.vars[j]);
  expectOk([&] { return TVKaddcone(model, static_cast<int>(ind.size()), ind.data()); });
  ref.cones.push_back(cone);
}

void RandomEdits::addGeneral() {
  const std::vector<int> ind = someVars(3);
  if (ind.empty()) return;
  plain::GenConstr g;
  const int n = static_cast<int>(ind.size()), result = pick(varLimit());
  g.result = ref.vars[result];
  g.name = newName("g");
  g.constant = number();
  g.type = std::vector{TVK_GENCONSTR_ABS, TVK_GENCONSTR_AND, TVK_GENCONSTR_MAX, TVK_GENCONSTR_EXPA,
                       TVK_GENCONSTR_INDICATOR}[pick(5)];
  const bool one = g.type == TVK_GENCONSTR_ABS || g.type == TVK_GENCONSTR_EXPA;
  for (const int j : ind) {
    if (one && !g.operands.empty()) break;
    g.operands.push_back(ref.vars[j]);
    if (g.type == TVK_GENCONSTR_INDICATOR) g.values.push_back(1 + pick(5));
  }
  const char *name = g.name.c_str();
  if (g.type == TVK_GENCONSTR_ABS)
    expectOk([&] { return TVKaddgenconstrAbs(model, name, result, ind[0]); });
  else if (g.type == TVK_GENCONSTR_AND)
    expectOk([&] { return TVKaddgenconstrAnd(model, name, result, n, ind.data()); });
  else if (g.type == TVK_GENCONSTR_MAX)
    expectOk([&] { return TVKaddgenconstrMax(model, name, result, n, ind.data(), g.constant); });
  else if (g.type == TVK_GENCONSTR_INDICATOR)
    expectOk([&] {
      return TVKaddgenconstrIndicator(model, name, result, 1, n, ind.data(), g.values.data(), '>',
                                      g.constant);
    });
  else
    expectOk([&] { return TVKaddgenconstrExpA(model, name, ind[0], result, 2, "FuncPieces=7"); });
  ref.gens.push_back(g);
}

void RandomEdits::deleteParts() {
  const auto doom = [&](auto &elements, std::size_t limit, auto remove) {
    if (limit == 0) return;
    const int k = pick(limit);
    expectOk([&] { return remove(model, 1, &k); });
    elements[k].doomed = true;
  };
  switch (pick(3)) {
    case 0:
      return doom(ref.qconstrs, mode ? ref.qconstrs.size() : base.qconstrs, TVKdelqconstrs);
    case 1:
      return doom(ref.sos, mode ? ref.sos.size() : base.sos, TVKdelsos);
    default:
      return doom(ref.gens, mode ? ref.gens.size() : base.gens, TVKdelgenconstrs);
  }
}

template <class T>
void RandomEdits::setOneOf(std::vector<T> &elements, const char *attribute, int value) {
  if (elements.empty()) return;
  const int k = pick(elements.size());
  expectOk([&] { return TVKsetintattrelement(model, attribute, k, value); });
  const_cast<plain::Element &>(plain::elementOf(elements[k])).settings[attribute] = value;
  ref.used.insert(attribute);
}

void RandomEdits::setSettings() {
  const int value = pick(100), force = pick(3) - 1;
  switch (pick(12)) {
    case 0:
      return setOneOf(ref.vars, "BranchPriority", value);
    case 1:
      return setOneOf(ref.vars, "VarHintPri", value);
    case 2:
      return setOneOf(ref.vars, "Partition", value);
    case 3:
      return setOneOf(ref.vars, "PoolIgnore", value % 2);
    case 4:
      return setOneOf(ref.vars, "IISLBForce", force);
    case 5:
      return setOneOf(ref.vars, "IISUBForce", force);
    case 6:
      return setOneOf(ref.constrs, "Lazy", value % 4);
    case 7:
      return setOneOf(ref.constrs, "IISConstrForce", force);
    case 8:
      return setOneOf(ref.qconstrs, "IISQConstrForce", force);
    case 9:
      return setOneOf(ref.sos, "IISSOSForce", force);
    case 10:
      return setOneOf(ref.gens, "IISGenConstrForce", force);
    default: {
      if (ref.vars.empty()) return;
      const int j = pick(ref.vars.size());
      ref.vars[j]->hint = value;
      expectOk([&] { return TVKsetdblattrelement(model, "VarHintVal", j, value); });
      ref.used.insert("VarHintVal");
    }
  }
}

void RandomEdits::setTags() {
  const auto set = [&](auto &elements, const char *attribute) {
    if (elements.empty()) return;
    const int k = pick(elements.size());
    const std::string tag = pick(5) == 0 ? "" : newName("tag");
    expectOk([&] { return TVKsetstrattrelement(model, attribute, k, tag.c_str()); });
    const_cast<plain::Element &>(plain::elementOf(elements[k])).tag = tag;
    ref.used.insert(attribute);
  };
  switch (pick(3)) {
    case 0:
      return set(ref.vars, "VTag");
    case 1:
      return set(ref.constrs, "CTag");
    default:
      return set(ref.qconstrs, "QCTag");
  }
}

void RandomEdits::setStarts() {
  const int count = static_cast<int>(ref.starts.size());
  if (pick(5) == 0) {
    const int wanted = pick(4);
    expectOk([&] { return TVKsetintattr(model, "NumStart", wanted); });
    ref.starts.resize(wanted);
    return;
  }
  if (ref.vars.empty()) return;
  const int j = pick(ref.vars.size()), number = pick(count + 1);
  const double value = this->number();
  if (number == count) ref.starts.emplace_back();
  ref.starts[number][ref.vars[j]] = value;
  // -1 makes a new start and then stands for it.
  ASSERT_EQ(TVKsetintparam(modelEnv(), "StartNumber", number == count ? -1 : number), 0);
  expectOk([&] { return TVKsetdblattrelement(model, "Start", j, value); });
  int selected = -2;
  ASSERT_EQ(TVKgetintparam(modelEnv(), "StartNumber", &selected), 0);
  ASSERT_EQ(selected, number);
}

void RandomEdits::setBasis() {
  const std::size_t n = base.vars, m = base.constrs;
  if (n == 0 || m == 0) return;
  std::vector<int> status(n + m, TVK_NONBASIC_LOWER);
  for (std::size_t k = 0; k < m;) {
    int &s = status[pick(n + m)];
    k += s != TVK_BASIC;
    s = TVK_BASIC;
  }
  expectOk([&] { return TVKsetintattrarray(model, "VBasis", 0, static_cast<int>(n), &status[0]); });
  expectOk([&] { return TVKsetintattrarray(model, "CBasis", 0, static_cast<int>(m), &status[n]); });
  update();
  for (std::size_t j = 0; j < n; ++j) ref.vars[j]->basis = status[j];
  for (std::size_t i = 0; i < m; ++i) ref.constrs[i]->basis = status[n + i];
  ref.hasBasis = true;
}

void RandomEdits::setObjectives() {
  const int count = static_cast<int>(ref.objectives.size());
  if (pick(4) == 0) {
    const int wanted = pick(4);
    expectOk([&] { return TVKsetintattr(model, "NumObj", wanted); });
    ref.objectives.resize(wanted);
    return;
  }
  if (pick(3) == 0) {
    const int number = pick(count + 2);
    plain::Objective o;
    o.name = newName("o");
    o.con = this->number();
    o.priority = pick(9);
    o.weight = 1 + pick(3);
    o.absTol = pick(2);
    o.relTol = pick(2);
    const std::vector<int> ind = someVars(4);
    std::vector<double> val;
    for (const int j : ind) {
      val.push_back(this->number());
      o.coef[ref.vars[j]] = val.back();
    }
    expectOk([&] {
      return TVKsetobjectiven(model, number, o.priority, o.weight, o.absTol, o.relTol,
                              o.name.c_str(), o.con, static_cast<int>(ind.size()), ind.data(),
                              val.data());
    });
    if (number >= count) ref.objectives.resize(number + 1);
    ref.objectives[number] = o;
    return;
  }
  if (count == 0 || ref.vars.empty()) return;
  const int number = pick(count), j = pick(ref.vars.size());
  plain::Objective &o = ref.objectives[number];
  o.con = this->number();
  o.coef[ref.vars[j]] = this->number();
  o.name = newName("n");
  ASSERT_EQ(TVKsetintparam(modelEnv(), "ObjNumber", number), 0);
  expectOk([&] { return TVKsetdblattr(model, "ObjNCon", o.con); });
  expectOk([&] { return TVKsetdblattrelement(model, "ObjN", j, o.coef[ref.vars[j]]); });
  expectOk([&] { return TVKsetstrattr(model, "ObjNName", o.name.c_str()); });
}

void RandomEdits::setScenarios() {
  const int count = static_cast<int>(ref.scenarios.size());
  if (count == 0 || pick(5) == 0) {
    const int wanted = pick(4);
    expectOk([&] { return TVKsetintattr(model, "NumScenarios", wanted); });
    ref.scenarios.resize(wanted);
    return;
  }
  if (ref.vars.empty() || ref.constrs.empty()) return;
  const int number = pick(count), j = pick(ref.vars.size()), i = pick(ref.constrs.size());
  const double value = this->number();
  plain::Scenario &s = ref.scenarios[number];
  const VarP &v = ref.vars[j];
  ASSERT_EQ(TVKsetintparam(modelEnv(), "ScenarioNumber", number), 0);
  const auto set = [&](const char *attribute, auto &changes, const auto &element, int index) {
    changes[element] = value;
    expectOk([&] { return TVKsetdblattrelement(model, attribute, index, value); });
  };
  switch (pick(5)) {
    case 0:
      return set("ScenNObj", s.obj, v, j);
    case 1:
      return set("ScenNLB", s.lb, v, j);
    case 2:
      return set("ScenNUB", s.ub, v, j);
    case 3:
      return set("ScenNRHS", s.rhs, ref.constrs[i], i);
    default:
      s.name = newName("scenario");
      expectOk([&] { return TVKsetstrattr(model, "ScenNName", s.name.c_str()); });
  }
}
