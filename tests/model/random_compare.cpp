// Compares everything that can be queried with the plain model.
#include "model/model.h"
#include "random_edits.h"

using plain::VarP;

namespace {

template <class Key>
double valueOr(const std::map<Key, double> &values, const Key &key, double otherwise) {
  const auto it = values.find(key);
  return it == values.end() ? otherwise : it->second;
}

}  // namespace

void RandomEdits::compare() {
  compareVars();
  compareRows();
  compareQuadratics();
  compareSets();
  compareGenerals();
  compareObjectives();
  compareScenarios();
  compareStarts();
  compareBasis();
}

template <class T>
void RandomEdits::compareSettings(const std::vector<T> &elements, const char *attribute,
                                  int unset) {
  const int n = static_cast<int>(elements.size());
  if (!ref.used.count(attribute)) {
    int value = 0;
    if (n == 0) return;
    EXPECT_EQ(TVKgetintattrelement(model, attribute, 0, &value), TVK_ERROR_DATA_NOT_AVAILABLE);
    return;
  }
  const auto values = ints(attribute, n);
  for (int k = 0; k < n; ++k) {
    const auto &settings = plain::elementOf(elements[k]).settings;
    const auto it = settings.find(attribute);
    EXPECT_EQ(values[k], it == settings.end() ? unset : it->second) << attribute;
  }
}

template <class T>
void RandomEdits::compareTags(const std::vector<T> &elements, const char *attribute) {
  if (!ref.used.count(attribute)) return;
  const auto tags = texts(attribute, static_cast<int>(elements.size()));
  for (std::size_t k = 0; k < elements.size(); ++k)
    EXPECT_EQ(tags[k], plain::elementOf(elements[k]).tag) << attribute;
}

void RandomEdits::compareVars() {
  const int n = count("NumVars");
  ASSERT_EQ(n, static_cast<int>(ref.vars.size()));
  const auto obj = doubles("Obj", n), lb = doubles("LB", n), ub = doubles("UB", n);
  const std::string types = chars("VType", n);
  const auto names = texts("VarName", n);
  int numBinary = 0;
  for (int j = 0; j < n; ++j) {
    const plain::Var &v = *ref.vars[j];
    EXPECT_EQ(obj[j], v.obj);
    EXPECT_EQ(lb[j], v.lb);
    EXPECT_EQ(ub[j], v.ub);
    EXPECT_EQ(types[j], v.type);
    EXPECT_EQ(names[j], v.name);
    numBinary += v.type == 'B';
    int index = -1, numPoints = -1;
    EXPECT_EQ(TVKgetvarbyname(model, names[j].c_str(), &index), 0);
    EXPECT_EQ(index, j);
    double x[3], y[3];
    ASSERT_EQ(TVKgetpwlobj(model, j, &numPoints, x, y), 0);
    ASSERT_EQ(numPoints, static_cast<int>(v.pwlX.size()));
    EXPECT_TRUE(std::equal(v.pwlX.begin(), v.pwlX.end(), x));
    EXPECT_TRUE(std::equal(v.pwlY.begin(), v.pwlY.end(), y));
  }
  EXPECT_EQ(count("NumBinVars"), numBinary);
  for (const char *attribute : {"BranchPriority", "Partition", "PoolIgnore"})
    compareSettings(ref.vars, attribute, 0);
  for (const char *attribute : {"IISLBForce", "IISUBForce"})
    compareSettings(ref.vars, attribute, -1);
  compareTags(ref.vars, "VTag");
  if (n == 0 || (!ref.used.count("VarHintVal") && !ref.used.count("VarHintPri"))) return;
  ref.used.insert("VarHintPri");  // a hint of one kind is one of the other kind
  compareSettings(ref.vars, "VarHintPri", 0);
  const auto hints = doubles("VarHintVal", n);
  for (int j = 0; j < n; ++j) EXPECT_EQ(hints[j], ref.vars[j]->hint);
}

void RandomEdits::compareRows() {
  const int m = count("NumConstrs");
  ASSERT_EQ(m, static_cast<int>(ref.constrs.size()));
  const auto rhs = doubles("RHS", m);
  const auto names = texts("ConstrName", m);
  const std::string senses = chars("Sense", m);
  std::vector<int> ind(ref.vars.size()), beg(1);
  std::vector<double> val(ref.vars.size());
  std::size_t total = 0;
  for (int i = 0; i < m; ++i) {
    const plain::Constr &c = *ref.constrs[i];
    EXPECT_EQ(rhs[i], c.rhs);
    EXPECT_EQ(senses[i], c.sense);
    EXPECT_EQ(names[i], c.name);
    int nz = -1, index = -1;
    ASSERT_EQ(TVKgetconstrs(model, &nz, beg.data(), ind.data(), val.data(), i, 1), 0);
    ASSERT_EQ(nz, static_cast<int>(c.coef.size()));
    EXPECT_TRUE(std::is_sorted(ind.begin(), ind.begin() + nz));
    for (int k = 0; k < nz; ++k) EXPECT_EQ(valueOr(c.coef, ref.vars[ind[k]], 0), val[k]);
    EXPECT_EQ(TVKgetconstrbyname(model, names[i].c_str(), &index), 0);
    EXPECT_EQ(index, i);
    total += c.coef.size();
  }
  EXPECT_EQ(count("NumNZs"), static_cast<int>(total));
  compareSettings(ref.constrs, "Lazy", 0);
  compareSettings(ref.constrs, "IISConstrForce", -1);
  compareTags(ref.constrs, "CTag");
}

void RandomEdits::compareQuadratics() {
  EXPECT_EQ(count("ModelSense"), ref.sense);
  EXPECT_EQ(scalar("ObjCon"), ref.objCon);
  int numQ = -1;
  ASSERT_EQ(TVKgetq(model, &numQ, nullptr, nullptr, nullptr), 0);
  ASSERT_EQ(numQ, static_cast<int>(ref.q.size()));
  std::vector<int> row(numQ), col(numQ);
  std::vector<double> val(numQ);
  ASSERT_EQ(TVKgetq(model, &numQ, row.data(), col.data(), val.data()), 0);
  for (int k = 0; k < numQ; ++k)
    EXPECT_EQ((ref.q[plain::unordered(ref.vars[row[k]], ref.vars[col[k]])]), val[k]);

  const int count = static_cast<int>(ref.qconstrs.size());
  ASSERT_EQ(this->count("NumQConstrs"), count);
  const auto rhs = doubles("QCRHS", count);
  const auto names = texts("QCName", count);
  const std::string senses = chars("QCSense", count);
  for (int i = 0; i < count; ++i) {
    const plain::QConstr &qc = ref.qconstrs[i];
    int numL = -1, lind[8], qrow[8], qcol[8];
    double lval[8], qval[8];
    ASSERT_EQ(TVKgetqconstr(model, i, &numL, lind, lval, &numQ, qrow, qcol, qval), 0);
    ASSERT_EQ(numL, static_cast<int>(qc.linear.size()));
    ASSERT_EQ(numQ, static_cast<int>(qc.quad.size()));
    for (int k = 0; k < numL; ++k) EXPECT_EQ(valueOr(qc.linear, ref.vars[lind[k]], 0), lval[k]);
    for (int k = 0; k < numQ; ++k) {
      EXPECT_LE(qrow[k], qcol[k]);
      EXPECT_EQ(valueOr(qc.quad, plain::unordered(ref.vars[qrow[k]], ref.vars[qcol[k]]), 0),
                qval[k]);
    }
    EXPECT_EQ(rhs[i], qc.rhs);
    EXPECT_EQ(senses[i], qc.sense);
    EXPECT_EQ(names[i], qc.name);
  }
  compareSettings(ref.qconstrs, "IISQConstrForce", -1);
  compareTags(ref.qconstrs, "QCTag");
}

void RandomEdits::compareSets() {
  ASSERT_EQ(count("NumSOS"), static_cast<int>(ref.sos.size()));
  for (std::size_t i = 0; i < ref.sos.size(); ++i) {
    int members = -1, type = -1, beg = -1, ind[8];
    double weight[8];
    ASSERT_EQ(TVKgetsos(model, &members, &type, &beg, ind, weight, static_cast<int>(i), 1), 0);
    EXPECT_EQ(type, ref.sos[i].type);
    ASSERT_EQ(members, static_cast<int>(ref.sos[i].members.size()));
    for (int k = 0; k < members; ++k)
      EXPECT_EQ((std::pair(weight[k], ref.vars[ind[k]])), ref.sos[i].members[k]);
  }
  compareSettings(ref.sos, "IISSOSForce", -1);
  const auto &cones = model->data().cones;  // no query shows them
  ASSERT_EQ(cones.size(), ref.cones.size());
  for (std::size_t i = 0; i < cones.size(); ++i) {
    ASSERT_EQ(cones[i].members.size(), ref.cones[i].members.size());
    for (std::size_t k = 0; k < cones[i].members.size(); ++k)
      EXPECT_EQ(ref.vars[cones[i].members[k]], ref.cones[i].members[k]);
  }
}

void RandomEdits::compareGenerals() {
  const int count = static_cast<int>(ref.gens.size());
  ASSERT_EQ(this->count("NumGenConstrs"), count);
  const auto types = ints("GenConstrType", count), pieces = ints("FuncPieces", count);
  const auto names = texts("GenConstrName", count);
  for (int id = 0; id < count; ++id) {
    const plain::GenConstr &g = ref.gens[id];
    int result = -1, n = 1, value = -1, ind[8];
    double constant = g.constant, val[8];
    char sense = '?', *options = nullptr;
    int code = -1;
    if (g.type == TVK_GENCONSTR_ABS)
      code = TVKgetgenconstrAbs(model, id, &result, ind);
    else if (g.type == TVK_GENCONSTR_AND)
      code = TVKgetgenconstrAnd(model, id, &result, &n, ind);
    else if (g.type == TVK_GENCONSTR_MAX)
      code = TVKgetgenconstrMax(model, id, &result, &n, ind, &constant);
    else if (g.type == TVK_GENCONSTR_INDICATOR)
      code = TVKgetgenconstrIndicator(model, id, &result, &value, &n, ind, val, &sense, &constant);
    else
      code = TVKgetgenconstrExpA(model, id, ind, &result, nullptr, &options);
    ASSERT_EQ(code, 0) << error();
    EXPECT_EQ(types[id], g.type);
    EXPECT_EQ(names[id], g.name);
    EXPECT_EQ(ref.vars[result], g.result);
    EXPECT_EQ(constant, g.constant);
    ASSERT_EQ(n, static_cast<int>(g.operands.size()));
    for (int k = 0; k < n; ++k) {
      EXPECT_EQ(ref.vars[ind[k]], g.operands[k]);
      EXPECT_TRUE(g.type != TVK_GENCONSTR_INDICATOR || val[k] == g.values[k]);
    }
    if (g.type == TVK_GENCONSTR_EXPA) {
      EXPECT_STREQ(options, "FuncPieces=7");
      EXPECT_EQ(pieces[id], 7);
    }
  }
  compareSettings(ref.gens, "IISGenConstrForce", -1);
}

void RandomEdits::compareObjectives() {
  const int n = count("NumVars");
  EXPECT_EQ(count("NumObj"), std::max<int>(1, ref.objectives.size()));
  for (std::size_t k = 0; k < ref.objectives.size(); ++k) {
    const plain::Objective &o = ref.objectives[k];
    ASSERT_EQ(TVKsetintparam(modelEnv(), "ObjNumber", static_cast<int>(k)), 0);
    char *name = nullptr;
    ASSERT_EQ(TVKgetstrattr(model, "ObjNName", &name), 0);
    EXPECT_EQ(name, o.name);
    EXPECT_EQ(scalar("ObjNCon"), o.con);
    EXPECT_EQ(scalar("ObjNWeight"), o.weight);
    EXPECT_EQ(scalar("ObjNAbsTol"), o.absTol);
    EXPECT_EQ(scalar("ObjNRelTol"), o.relTol);
    EXPECT_EQ(count("ObjNPriority"), o.priority);
    const auto coef = doubles("ObjN", n);
    for (int j = 0; j < n; ++j) EXPECT_EQ(coef[j], valueOr(o.coef, ref.vars[j], 0));
  }
}

void RandomEdits::compareScenarios() {
  const int n = count("NumVars"), m = count("NumConstrs");
  ASSERT_EQ(count("NumScenarios"), static_cast<int>(ref.scenarios.size()));
  for (std::size_t k = 0; k < ref.scenarios.size(); ++k) {
    const plain::Scenario &s = ref.scenarios[k];
    ASSERT_EQ(TVKsetintparam(modelEnv(), "ScenarioNumber", static_cast<int>(k)), 0);
    char *name = nullptr;
    ASSERT_EQ(TVKgetstrattr(model, "ScenNName", &name), 0);
    EXPECT_EQ(name, s.name);
    const auto obj = doubles("ScenNObj", n), lb = doubles("ScenNLB", n), ub = doubles("ScenNUB", n);
    const auto rhs = doubles("ScenNRHS", m);
    for (int j = 0; j < n; ++j) {
      const VarP &v = ref.vars[j];
      EXPECT_EQ(obj[j], valueOr(s.obj, v, v->obj));
      EXPECT_EQ(lb[j], valueOr(s.lb, v, v->lb));
      EXPECT_EQ(ub[j], valueOr(s.ub, v, v->ub));
    }
    for (int i = 0; i < m; ++i)
      EXPECT_EQ(rhs[i], valueOr(s.rhs, ref.constrs[i], ref.constrs[i]->rhs));
  }
}

void RandomEdits::compareStarts() {
  const int n = count("NumVars");
  ASSERT_EQ(count("NumStart"), static_cast<int>(ref.starts.size()));
  for (std::size_t k = 0; k < ref.starts.size(); ++k) {
    ASSERT_EQ(TVKsetintparam(modelEnv(), "StartNumber", static_cast<int>(k)), 0);
    const auto start = doubles("Start", n);
    for (int j = 0; j < n; ++j)
      EXPECT_EQ(start[j], valueOr(ref.starts[k], ref.vars[j], plain::kUndefined));
  }
}

// What is new is nonbasic as a variable and basic as a constraint. Deletions may leave too few or
// too many basic entries: constraints become basic then, or variables nonbasic.
void RandomEdits::compareBasis() {
  const int n = count("NumVars"), m = count("NumConstrs");
  ref.hasBasis = ref.hasBasis && n > 0 && m > 0;
  if (!ref.hasBasis) return;
  const auto vbasis = ints("VBasis", n), cbasis = ints("CBasis", m);
  for (int j = 0; j < n; ++j) {
    std::optional<int> &last = ref.vars[j]->basis;
    EXPECT_TRUE(last == TVK_BASIC || (last ? vbasis[j] == *last : vbasis[j] < TVK_BASIC)) << j;
    last = vbasis[j];
  }
  for (int i = 0; i < m; ++i) {
    std::optional<int> &last = ref.constrs[i]->basis;
    EXPECT_TRUE((last && *last < TVK_BASIC) || cbasis[i] == TVK_BASIC) << i;
    last = cbasis[i];
  }
  if (!ref.q.empty()) return;
  EXPECT_EQ(std::count(vbasis.begin(), vbasis.end(), TVK_BASIC) +
                std::count(cbasis.begin(), cbasis.end(), TVK_BASIC),
            m);
}
