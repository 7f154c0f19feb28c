#include "random_edits.h"

using plain::Var;
using plain::VarP;

void RandomEdits::begin(std::uint64_t seed) {
  random = tarvik::Random(seed);
  failures = tarvik::Random(seed + 1000000);
  ref = plain::Model();
  base = Sizes();
  nextName = 0;
  mode = 1;
  TearDown();
  SetUp();
}

void RandomEdits::changeMode() {
  mode = pick(2);
  ASSERT_EQ(TVKsetintparam(modelEnv(), "UpdateMode", mode), 0);
}

void RandomEdits::thinOut() {
  if (ref.vars.size() <= 40) return;
  std::vector<int> half(base.vars / 2);
  for (std::size_t k = 0; k < half.size(); ++k) half[k] = static_cast<int>(2 * k);
  expectOk([&] { return TVKdelvars(model, static_cast<int>(half.size()), half.data()); });
  for (const int j : half) ref.vars[j]->doomed = true;
}

std::vector<int> RandomEdits::someVars(int atMost) {
  std::vector<int> chosen;
  for (int k = pick(atMost + 1); k > 0 && varLimit() > 0; --k) {
    const int j = pick(varLimit());
    if (std::find(chosen.begin(), chosen.end(), j) == chosen.end()) chosen.push_back(j);
  }
  return chosen;
}

void RandomEdits::edit() {
  static constexpr void (RandomEdits::*kEdits[])() = {
      &RandomEdits::addVariables,
      &RandomEdits::addVariables,
      &RandomEdits::addVariables,
      &RandomEdits::addConstraints,
      &RandomEdits::addConstraints,
      &RandomEdits::addRange,
      &RandomEdits::changeCoefficients,
      &RandomEdits::changeCoefficients,
      &RandomEdits::deleteSome,
      &RandomEdits::deleteSome,
      &RandomEdits::setBounds,
      &RandomEdits::setObjectiveValues,
      &RandomEdits::setRows,
      &RandomEdits::setTypes,
      &RandomEdits::addQuadratics,
      &RandomEdits::setPiecewise,
      &RandomEdits::setSettings,
      &RandomEdits::setSettings,
      &RandomEdits::setTags,
      &RandomEdits::setStarts,
      &RandomEdits::setObjectives,
      &RandomEdits::setScenarios,
      &RandomEdits::addSet,
      &RandomEdits::addCone,
      &RandomEdits::addGeneral,
      &RandomEdits::addGeneral,
      &RandomEdits::deleteParts,
      &RandomEdits::addQuadraticConstraint,
      &RandomEdits::setQuadraticConstraint,
  };
  (this->*kEdits[pick(std::size(kEdits))])();
}

void RandomEdits::addVariables() {
  const int n = 1 + pick(4);
  std::vector<size_t> beg;
  std::vector<int> ind;
  std::vector<double> val, obj, lb, ub;
  std::string types;
  std::vector<VarP> added;
  std::vector<const char *> names;
  for (int k = 0; k < n; ++k) {
    auto v = std::make_shared<Var>();
    v->obj = number();
    v->lb = -pick(5);
    v->ub = pick(6);
    v->type = "CCIB"[pick(4)];
    v->name = newName("x");
    beg.push_back(ind.size());
    for (std::size_t i = 0; i < constrLimit(); ++i) {
      if (pick(4) != 0) continue;
      const double value = number();
      ind.push_back(static_cast<int>(i));
      val.push_back(value);
      if (value != 0) ref.constrs[i]->coef[v] = value;
    }
    obj.push_back(v->obj);
    lb.push_back(v->lb);
    ub.push_back(v->ub);
    types += v->type;
    if (v->type == 'B' && v->lb != v->ub) {
      v->lb = std::max(v->lb, 0.0);
      v->ub = std::min(v->ub, 1.0);
    }
    added.push_back(v);
  }
  for (const VarP &v : added) names.push_back(v->name.c_str());
  expectOk([&] {
    return TVKXaddvars(model, n, ind.size(), beg.data(), ind.data(), val.data(), obj.data(),
                       lb.data(), ub.data(), types.c_str(), names.data());
  });
  ref.vars.insert(ref.vars.end(), added.begin(), added.end());
}

void RandomEdits::addConstraints() {
  const int n = 1 + pick(3);
  std::vector<int> beg, ind;
  std::vector<double> val, rhs;
  std::string senses;
  std::vector<plain::ConstrP> added;
  std::vector<const char *> names;
  for (int k = 0; k < n; ++k) {
    auto c = std::make_shared<plain::Constr>();
    c->rhs = number();
    c->sense = "<>="[pick(3)];
    c->name = newName("r");
    beg.push_back(static_cast<int>(ind.size()));
    for (const int j : someVars(5)) {
      const double value = number();
      ind.push_back(j);
      val.push_back(value);
      if (value != 0) c->coef[ref.vars[j]] = value;
    }
    rhs.push_back(c->rhs);
    senses += c->sense;
    added.push_back(c);
  }
  for (const plain::ConstrP &c : added) names.push_back(c->name.c_str());
  expectOk([&] {
    return TVKaddconstrs(model, n, static_cast<int>(ind.size()), beg.data(), ind.data(), val.data(),
                         senses.c_str(), rhs.data(), names.data());
  });
  ref.constrs.insert(ref.constrs.end(), added.begin(), added.end());
}

void RandomEdits::addRange() {
  auto c = std::make_shared<plain::Constr>();
  const std::vector<int> ind = someVars(4);
  std::vector<double> val;
  for (const int j : ind) {
    val.push_back(1 + pick(5));
    c->coef[ref.vars[j]] = val.back();
  }
  c->width = pick(5);
  c->rhs = number();
  c->sense = '=';
  c->name = newName("r");
  expectOk([&] {
    return TVKaddrangeconstr(model, static_cast<int>(ind.size()), ind.data(), val.data(),
                             c->rhs - c->width, c->rhs, c->name.c_str());
  });
  ref.constrs.push_back(c);
}

void RandomEdits::changeCoefficients() {
  if (varLimit() == 0 || constrLimit() == 0) return;
  std::vector<int> rows, cols;
  std::vector<double> val;
  for (int k = 1 + pick(8); k > 0; --k) {
    rows.push_back(pick(constrLimit()));
    cols.push_back(pick(varLimit()));
    val.push_back(pick(3) == 0 ? 0 : number());
    auto &coef = ref.constrs[rows.back()]->coef;
    if (val.back() != 0)
      coef[ref.vars[cols.back()]] = val.back();
    else
      coef.erase(ref.vars[cols.back()]);
  }
  expectOk([&] {
    return TVKchgcoeffs(model, static_cast<int>(rows.size()), rows.data(), cols.data(), val.data());
  });
}

void RandomEdits::deleteSome() {
  if (pick(2) == 0) {
    const std::vector<int> ind = someVars(3);
    expectOk([&] { return TVKdelvars(model, static_cast<int>(ind.size()), ind.data()); });
    for (const int j : ind) ref.vars[j]->doomed = true;
  } else if (constrLimit() > 0) {
    const int i = pick(constrLimit());
    expectOk([&] { return TVKdelconstrs(model, 1, &i); });
    ref.constrs[i]->doomed = true;
  }
}

void RandomEdits::setBounds() {
  if (ref.vars.empty()) return;
  const int j = pick(ref.vars.size());
  Var &v = *ref.vars[j];
  v.touched = true;
  if (pick(2) == 0) {
    v.lb = pick(8) == 0 ? -1e30 : -pick(7);
    expectOk([&] { return TVKsetdblattrelement(model, "LB", j, v.lb); });
  } else {
    v.ub = pick(8) == 0 ? 1e30 : pick(7);
    expectOk([&] { return TVKsetdblattrlist(model, "UB", 1, &j, &v.ub); });
  }
}

void RandomEdits::setObjectiveValues() {
  switch (pick(4)) {
    case 0:
      if (!ref.vars.empty()) {
        const int j = pick(ref.vars.size());
        ref.vars[j]->obj = number();
        expectOk([&] { return TVKsetdblattrelement(model, "Obj", j, ref.vars[j]->obj); });
      }
      break;
    case 1:
      ref.sense = -ref.sense;
      expectOk([&] { return TVKsetintattr(model, "ModelSense", ref.sense); });
      break;
    case 2:
      ref.objCon = number();
      expectOk([&] { return TVKsetdblattr(model, "ObjCon", ref.objCon); });
      break;
    default: {
      if (pick(4) != 0) break;
      const std::vector<int> ind = someVars(4);
      std::vector<double> val;
      for (std::size_t j = 0; j < varLimit(); ++j) ref.vars[j]->obj = 0;
      for (const int j : ind) {
        val.push_back(number());
        ref.vars[j]->obj = val.back();
      }
      ref.q.clear();
      ref.objCon = number();
      expectOk([&] {
        return TVKsetobjective(model, 0, ref.objCon, static_cast<int>(ind.size()), ind.data(),
                               val.data(), 0, nullptr, nullptr, nullptr);
      });
    }
  }
}

void RandomEdits::setRows() {
  if (ref.constrs.empty()) return;
  const int i = pick(ref.constrs.size());
  plain::Constr &c = *ref.constrs[i];
  if (c.width >= 0) return;
  c.rhs = number();
  c.sense = "<>="[pick(3)];
  c.name = newName("s");
  expectOk([&] { return TVKsetdblattrelement(model, "RHS", i, c.rhs); });
  expectOk([&] { return TVKsetcharattrelement(model, "Sense", i, c.sense); });
  expectOk([&] { return TVKsetstrattrelement(model, "ConstrName", i, c.name.c_str()); });
}

void RandomEdits::setTypes() {
  if (ref.vars.empty()) return;
  const int j = pick(ref.vars.size());
  Var &v = *ref.vars[j];
  v.type = "CIB"[pick(3)];
  v.touched = true;
  v.name = newName("y");
  expectOk([&] { return TVKsetcharattrelement(model, "VType", j, v.type); });
  expectOk([&] { return TVKsetstrattrelement(model, "VarName", j, v.name.c_str()); });
}

void RandomEdits::addQuadratics() {
  if (varLimit() == 0) return;
  if (pick(5) == 0) {
    ref.q.clear();
    expectOk([&] { return TVKdelq(model); });
  }
  const int i = pick(varLimit()), j = pick(varLimit());
  const double value = number();
  ref.q[plain::unordered(ref.vars[i], ref.vars[j])] += value;
  expectOk([&] { return TVKaddqpterms(model, 1, &i, &j, &value); });
}

void RandomEdits::setPiecewise() {
  if (varLimit() == 0) return;
  const int j = pick(varLimit());
  Var &v = *ref.vars[j];
  v.pwlX = v.pwlY = {};
  if (pick(4) != 0) {
    v.pwlX = {0, 1.0 + pick(3), 5};
    v.pwlY = {number(), number(), number()};
  }
  expectOk([&] {
    return TVKsetpwlobj(model, j, static_cast<int>(v.pwlX.size()), v.pwlX.data(), v.pwlY.data());
  });
}

void RandomEdits::update() {
  ASSERT_EQ(count("NumVars"), static_cast<int>(base.vars));  // nothing is seen before
  const auto invalid = [](const plain::GenConstr &g) { return !g.doomed && !g.survives(); };
  while (std::any_of(ref.gens.begin(), ref.gens.end(), invalid)) {
    const auto it = std::find_if(ref.gens.begin(), ref.gens.end(), invalid);
    const int k = static_cast<int>(it - ref.gens.begin());
    ASSERT_EQ(TVKupdatemodel(model), TVK_ERROR_MODEL_MODIFICATION);
    EXPECT_EQ(error(), "General constraint " + std::to_string(k) +
                           " became invalid after removal of variable");
    // Without update mode 1 a pending constraint has no index yet: the variable stays the reason.
    if (!mode && k >= static_cast<int>(base.gens)) return begin(random.next());
    expectOk([&] { return TVKdelgenconstrs(model, 1, &k); });
    it->doomed = true;
  }
  for (int budget = 0; starving && budget < 400; budget += 1 + failures.below(40)) {
    heap.budget = budget;
    const int code = TVKupdatemodel(model);
    heap.budget = -1;
    if (code == 0) break;
    ASSERT_EQ(code, TVK_ERROR_OUT_OF_MEMORY) << error();
  }
  ASSERT_EQ(TVKupdatemodel(model), 0) << error();
  ref.settle();
  base = {ref.vars.size(), ref.constrs.size(), ref.qconstrs.size(), ref.sos.size(),
          ref.gens.size()};
}
