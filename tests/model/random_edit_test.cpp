// Random sequences of additions, deletions, changes, attribute writes, failing calls and updates,
// in both update modes, against a plain model that knows elements by identity instead of by index.
// After every update everything that can be queried is compared.
#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <memory>

#include "base/random.h"
#include "model/model_fixture.h"

namespace {

using tarvik::Random;

struct Var {
  double obj = 0, lb = 0, ub = 1e30;
  char type = 'C';
  std::string name;
  int priority = 0;
  double start = 1e101;
  std::vector<double> pwlX, pwlY;
  bool doomed = false, touched = false;
};
using VarP = std::shared_ptr<Var>;

struct Constr {
  std::map<VarP, double> coef;
  char sense = '<';
  double rhs = 0, width = -1;  // width >= 0: a range that still needs its variable
  std::string name;
  int lazy = 0;
  bool doomed = false;
};
using ConstrP = std::shared_ptr<Constr>;

struct QConstr {
  std::map<VarP, double> linear;
  std::map<std::pair<VarP, VarP>, double> quad;
  double rhs = 0;
  bool doomed = false;
};

struct Sos {
  int type = 1;
  std::vector<VarP> members;
  bool doomed = false;
};

struct GenConstr {
  int type = 0;
  VarP result;
  std::vector<VarP> operands;
  bool doomed = false;

  bool survives() const {
    if (result->doomed) return false;
    if (type == TVK_GENCONSTR_ABS) return !operands[0]->doomed;
    return std::any_of(operands.begin(), operands.end(), [](const VarP &v) { return !v->doomed; });
  }
};

struct Reference {
  std::vector<VarP> vars;
  std::vector<ConstrP> constrs;
  std::vector<QConstr> qconstrs;
  std::vector<Sos> sos;
  std::vector<GenConstr> gens;
  std::map<std::pair<VarP, VarP>, double> q;
  int sense = 1;
  bool usesPriority = false, usesLazy = false, usesStart = false;
};

template <class T>
void dropDoomed(std::vector<T> &elements) {
  std::erase_if(elements, [](const T &e) {
    if constexpr (requires { e->doomed; })
      return e->doomed;
    else
      return e.doomed;
  });
}

std::pair<VarP, VarP> unordered(const VarP &a, const VarP &b) {
  return a < b ? std::pair(a, b) : std::pair(b, a);
}

class RandomEditTest : public ModelTest {
 protected:
  // One run; failures are drawn from their own generator, so that they do not change the edits.
  void run(std::uint64_t seed, bool withFailures, int numSteps);

  int pick(std::size_t size) { return random.below(static_cast<int>(size)); }
  double number() { return random.below(19) - 9; }
  // What edits may refer to.
  std::size_t varLimit() const { return mode ? ref.vars.size() : base.vars; }
  std::size_t constrLimit() const { return mode ? ref.constrs.size() : base.constrs; }
  std::string newName(const char *prefix) { return prefix + std::to_string(nextName++); }
  std::vector<int> someVars(int atMost);

  void edit();
  void addVariables();
  void addConstraints();
  void addRange();
  void changeCoefficients();
  void deleteSome();
  void setBounds();
  void setObjectiveValues();
  void setRows();
  void setTypes();
  void setSettings();
  void addQuadratics();
  void addQuadraticConstraint();
  void addSet();
  void addGeneral();
  void setPiecewise();
  void deleteParts();
  void failSomehow();

  void updateAndCompare();
  void settle();
  void compareVars();
  void compareRows();
  void compareParts();

  struct Sizes {
    std::size_t vars = 0, constrs = 0, qconstrs = 0, sos = 0, gens = 0;
  };
  Random random{0}, failures{0};
  Reference ref;
  Sizes base;
  int mode = 1, nextName = 0;
};

std::vector<int> RandomEditTest::someVars(int atMost) {
  std::vector<int> chosen;
  for (int k = pick(atMost + 1); k > 0 && varLimit() > 0; --k) {
    const int j = pick(varLimit());
    if (std::find(chosen.begin(), chosen.end(), j) == chosen.end()) chosen.push_back(j);
  }
  return chosen;
}

void RandomEditTest::addVariables() {
  const int n = 1 + pick(4);
  std::vector<size_t> beg;
  std::vector<int> ind;
  std::vector<double> val, obj, lb, ub;
  std::string types;
  std::vector<std::string> names;
  std::vector<const char *> namePointers;
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
    names.push_back(v->name);
    ref.vars.push_back(v);
  }
  for (const std::string &name : names) namePointers.push_back(name.c_str());
  ASSERT_EQ(TVKXaddvars(model, n, ind.size(), beg.data(), ind.data(), val.data(), obj.data(),
                        lb.data(), ub.data(), types.c_str(), namePointers.data()),
            0)
      << error();
}

void RandomEditTest::addConstraints() {
  const int n = 1 + pick(3);
  std::vector<int> beg, ind;
  std::vector<double> val, rhs;
  std::string senses;
  std::vector<std::string> names;
  std::vector<const char *> namePointers;
  for (int k = 0; k < n; ++k) {
    auto c = std::make_shared<Constr>();
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
    names.push_back(c->name);
    ref.constrs.push_back(c);
  }
  for (const std::string &name : names) namePointers.push_back(name.c_str());
  ASSERT_EQ(TVKaddconstrs(model, n, static_cast<int>(ind.size()), beg.data(), ind.data(),
                          val.data(), senses.c_str(), rhs.data(), namePointers.data()),
            0)
      << error();
}

void RandomEditTest::addRange() {
  auto c = std::make_shared<Constr>();
  std::vector<int> ind = someVars(4);
  std::vector<double> val;
  for (const int j : ind) {
    val.push_back(1 + pick(5));
    c->coef[ref.vars[j]] = val.back();
  }
  c->width = pick(5);
  c->rhs = number();
  c->sense = '=';
  c->name = newName("r");
  ASSERT_EQ(TVKaddrangeconstr(model, static_cast<int>(ind.size()), ind.data(), val.data(),
                              c->rhs - c->width, c->rhs, c->name.c_str()),
            0);
  ref.constrs.push_back(c);
}

void RandomEditTest::changeCoefficients() {
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
  ASSERT_EQ(
      TVKchgcoeffs(model, static_cast<int>(rows.size()), rows.data(), cols.data(), val.data()), 0);
}

void RandomEditTest::deleteSome() {
  if (pick(2) == 0) {
    const std::vector<int> ind = someVars(3);
    ASSERT_EQ(TVKdelvars(model, static_cast<int>(ind.size()), ind.data()), 0);
    for (const int j : ind) ref.vars[j]->doomed = true;
  } else if (constrLimit() > 0) {
    const int i = pick(constrLimit());
    ASSERT_EQ(TVKdelconstrs(model, 1, &i), 0);
    ref.constrs[i]->doomed = true;
  }
}

void RandomEditTest::setBounds() {
  if (ref.vars.empty()) return;
  const int j = pick(ref.vars.size());
  Var &v = *ref.vars[j];
  v.touched = true;
  if (pick(2) == 0) {
    v.lb = pick(8) == 0 ? -1e30 : -pick(7);
    ASSERT_EQ(TVKsetdblattrelement(model, "LB", j, v.lb), 0);
  } else {
    v.ub = pick(8) == 0 ? 1e30 : pick(7);
    ASSERT_EQ(TVKsetdblattrlist(model, "UB", 1, &j, &v.ub), 0);
  }
}

void RandomEditTest::setObjectiveValues() {
  switch (pick(3)) {
    case 0:
      if (!ref.vars.empty()) {
        const int j = pick(ref.vars.size());
        ref.vars[j]->obj = number();
        ASSERT_EQ(TVKsetdblattrelement(model, "Obj", j, ref.vars[j]->obj), 0);
      }
      break;
    case 1:
      ref.sense = -ref.sense;
      ASSERT_EQ(TVKsetintattr(model, "ModelSense", ref.sense), 0);
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
      ASSERT_EQ(TVKsetobjective(model, 0, 0, static_cast<int>(ind.size()), ind.data(), val.data(),
                                0, nullptr, nullptr, nullptr),
                0);
    }
  }
}

void RandomEditTest::setRows() {
  if (ref.constrs.empty()) return;
  const int i = pick(ref.constrs.size());
  Constr &c = *ref.constrs[i];
  if (c.width >= 0) return;
  c.rhs = number();
  c.sense = "<>="[pick(3)];
  ASSERT_EQ(TVKsetdblattrelement(model, "RHS", i, c.rhs), 0);
  ASSERT_EQ(TVKsetcharattrelement(model, "Sense", i, c.sense), 0);
}

void RandomEditTest::setTypes() {
  if (ref.vars.empty()) return;
  const int j = pick(ref.vars.size());
  ref.vars[j]->type = "CIB"[pick(3)];
  ref.vars[j]->touched = true;
  ASSERT_EQ(TVKsetcharattrelement(model, "VType", j, ref.vars[j]->type), 0);
}

void RandomEditTest::setSettings() {
  if (ref.vars.empty() || ref.constrs.empty()) return;
  const int j = pick(ref.vars.size()), i = pick(ref.constrs.size());
  switch (pick(4)) {
    case 0:
      ref.usesPriority = true;
      ref.vars[j]->priority = pick(100);
      ASSERT_EQ(TVKsetintattrelement(model, "BranchPriority", j, ref.vars[j]->priority), 0);
      break;
    case 1:
      ref.usesLazy = true;
      ref.constrs[i]->lazy = pick(4);
      ASSERT_EQ(TVKsetintattrelement(model, "Lazy", i, ref.constrs[i]->lazy), 0);
      break;
    case 2:
      ref.usesStart = true;
      ref.vars[j]->start = number();
      ASSERT_EQ(TVKsetdblattrelement(model, "Start", j, ref.vars[j]->start), 0);
      break;
    default:
      ref.vars[j]->name = newName("named");
      ASSERT_EQ(TVKsetstrattrelement(model, "VarName", j, ref.vars[j]->name.c_str()), 0);
  }
}

void RandomEditTest::addQuadratics() {
  if (varLimit() == 0) return;
  if (pick(5) == 0) {
    ref.q.clear();
    ASSERT_EQ(TVKdelq(model), 0);
  }
  const int i = pick(varLimit()), j = pick(varLimit());
  const double value = number();
  ref.q[unordered(ref.vars[i], ref.vars[j])] += value;
  ASSERT_EQ(TVKaddqpterms(model, 1, &i, &j, &value), 0);
}

void RandomEditTest::addQuadraticConstraint() {
  if (varLimit() == 0) return;
  QConstr qc;
  qc.rhs = number();
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
    qc.quad[unordered(ref.vars[i], ref.vars[qcol.back()])] += qval.back();
  }
  ASSERT_EQ(TVKaddqconstr(model, static_cast<int>(lind.size()), lind.data(), lval.data(),
                          static_cast<int>(qrow.size()), qrow.data(), qcol.data(), qval.data(), '<',
                          qc.rhs, nullptr),
            0);
  ref.qconstrs.push_back(qc);
}

void RandomEditTest::addSet() {
  Sos sos;
  sos.type = 1 + pick(2);
  const std::vector<int> ind = someVars(4);
  if (ind.empty()) return;
  std::vector<double> weight;
  for (std::size_t k = 0; k < ind.size(); ++k) weight.push_back(static_cast<double>(10 - k));
  for (auto it = ind.rbegin(); it != ind.rend(); ++it) sos.members.push_back(ref.vars[*it]);
  const int beg = 0;
  ASSERT_EQ(
      TVKaddsos(model, 1, static_cast<int>(ind.size()), &sos.type, &beg, ind.data(), weight.data()),
      0);
  ref.sos.push_back(sos);
}

void RandomEditTest::addGeneral() {
  const std::vector<int> ind = someVars(3);
  if (ind.empty()) return;
  GenConstr g;
  const int result = pick(varLimit());
  g.result = ref.vars[result];
  if (pick(2) == 0) {
    g.type = TVK_GENCONSTR_ABS;
    g.operands = {ref.vars[ind[0]]};
    ASSERT_EQ(TVKaddgenconstrAbs(model, nullptr, result, ind[0]), 0);
  } else {
    g.type = TVK_GENCONSTR_AND;
    for (const int j : ind) g.operands.push_back(ref.vars[j]);
    ASSERT_EQ(TVKaddgenconstrAnd(model, nullptr, result, static_cast<int>(ind.size()), ind.data()),
              0);
  }
  ref.gens.push_back(g);
}

void RandomEditTest::setPiecewise() {
  if (varLimit() == 0) return;
  const int j = pick(varLimit());
  Var &v = *ref.vars[j];
  v.pwlX = {0, 1.0 + pick(3), 5};
  v.pwlY = {number(), number(), number()};
  ASSERT_EQ(TVKsetpwlobj(model, j, 3, v.pwlX.data(), v.pwlY.data()), 0);
}

void RandomEditTest::deleteParts() {
  const auto doom = [&](auto &elements, std::size_t limit, auto remove) {
    if (limit == 0) return;
    const int k = pick(limit);
    ASSERT_EQ(remove(model, 1, &k), 0);
    elements[k].doomed = true;
  };
  switch (pick(3)) {
    case 0:
      doom(ref.qconstrs, mode ? ref.qconstrs.size() : base.qconstrs, TVKdelqconstrs);
      break;
    case 1:
      doom(ref.sos, mode ? ref.sos.size() : base.sos, TVKdelsos);
      break;
    default:
      doom(ref.gens, mode ? ref.gens.size() : base.gens, TVKdelgenconstrs);
  }
}

void RandomEditTest::failSomehow() {
  const int outside = 1 << 30, twice[] = {0, 0};
  const double val[] = {1, 1}, nan = std::numeric_limits<double>::quiet_NaN();
  const bool hasVars = varLimit() > 0;
  const std::string longName(300, 'x');
  switch (failures.below(10)) {
    case 0:
      EXPECT_NE(TVKaddconstr(model, 1, &outside, val, '<', 0, "bad"), 0);
      break;
    case 1:
      if (hasVars) {
        EXPECT_NE(TVKaddconstr(model, 2, twice, val, '<', 0, "bad"), 0);
      } else {
        EXPECT_NE(TVKaddconstrs(model, 1, 2, nullptr, twice, val, "<", val, nullptr), 0);
      }
      break;
    case 2:
      EXPECT_NE(TVKaddvar(model, 0, nullptr, nullptr, nan, 0, 1, 'C', "bad"), 0);
      break;
    case 3:
      EXPECT_NE(TVKaddvar(model, 0, nullptr, nullptr, 0, 0, 1, 'C', longName.c_str()), 0);
      break;
    case 4:
      EXPECT_NE(TVKdelvars(model, 1, &outside), 0);
      break;
    case 5:
      EXPECT_NE(TVKchgcoeffs(model, 1, &outside, &outside, val), 0);
      break;
    case 6:
      EXPECT_NE(TVKsetdblattrelement(model, "UB", outside, 1), 0);
      break;
    case 7:
      EXPECT_NE(TVKaddqconstr(model, 1, &outside, val, 0, nullptr, nullptr, nullptr, '<', 0, "bad"),
                0);
      break;
    case 8:
      EXPECT_NE(TVKaddgenconstrAbs(model, longName.c_str(), 0, 0), 0);
      break;
    default:
      EXPECT_NE(TVKsetobjective(model, 1, 0, 1, &outside, val, 0, nullptr, nullptr, nullptr), 0);
  }
  EXPECT_NE(error(), "");
}

void RandomEditTest::edit() {
  switch (pick(20)) {
    case 0:
    case 1:
    case 2:
      return addVariables();
    case 3:
    case 4:
      return addConstraints();
    case 5:
      return addRange();
    case 6:
    case 7:
      return changeCoefficients();
    case 8:
    case 9:
      return deleteSome();
    case 10:
      return setBounds();
    case 11:
      return setObjectiveValues();
    case 12:
      return setRows();
    case 13:
      return setTypes();
    case 14:
      return setSettings();
    case 15:
      return addQuadratics();
    case 16:
      return addQuadraticConstraint();
    case 17:
      return pick(2) ? addSet() : setPiecewise();
    case 18:
      return addGeneral();
    default:
      return deleteParts();
  }
}

// Brings the reference to the state after an update.
void RandomEditTest::settle() {
  for (const ConstrP &c : ref.constrs) {
    if (c->width < 0 || c->doomed) continue;
    auto r = std::make_shared<Var>();
    r->ub = c->width;
    r->name = "Rg" + c->name;
    c->coef[r] = 1;
    c->width = -1;
    ref.vars.push_back(r);
  }
  for (const VarP &v : ref.vars) {
    if (v->touched && v->type == 'B' && v->lb != v->ub) {
      v->lb = std::max(v->lb, 0.0);
      v->ub = std::min(v->ub, 1.0);
    }
    v->touched = false;
  }
  const auto gone = [](const auto &entry) {
    return entry.second == 0 || entry.first.first->doomed || entry.first.second->doomed;
  };
  std::erase_if(ref.q, gone);
  for (QConstr &qc : ref.qconstrs) {
    std::erase_if(qc.quad, gone);
    std::erase_if(qc.linear, [](const auto &entry) { return entry.first->doomed; });
  }
  for (const ConstrP &c : ref.constrs)
    std::erase_if(c->coef, [](const auto &entry) { return entry.first->doomed; });
  for (Sos &sos : ref.sos) dropDoomed(sos.members);
  for (GenConstr &g : ref.gens) dropDoomed(g.operands);
  dropDoomed(ref.vars);
  dropDoomed(ref.constrs);
  dropDoomed(ref.qconstrs);
  dropDoomed(ref.sos);
  dropDoomed(ref.gens);
  // Settings that no element carries any more are as if never made.
  ref.usesPriority = ref.usesPriority && !ref.vars.empty();
  ref.usesLazy = ref.usesLazy && !ref.constrs.empty();
  base = {ref.vars.size(), ref.constrs.size(), ref.qconstrs.size(), ref.sos.size(),
          ref.gens.size()};
}

void RandomEditTest::compareVars() {
  const int n = count("NumVars");
  ASSERT_EQ(n, static_cast<int>(ref.vars.size()));
  const auto obj = doubles("Obj", n), lb = doubles("LB", n), ub = doubles("UB", n);
  const std::string types = chars("VType", n);
  const auto names = texts("VarName", n);
  const auto priority = ref.usesPriority && n > 0 ? ints("BranchPriority", n) : std::vector<int>(n);
  int numBinary = 0;
  for (int j = 0; j < n; ++j) {
    const Var &v = *ref.vars[j];
    EXPECT_EQ(obj[j], v.obj);
    EXPECT_EQ(lb[j], v.lb);
    EXPECT_EQ(ub[j], v.ub);
    EXPECT_EQ(types[j], v.type);
    EXPECT_EQ(names[j], v.name);
    EXPECT_EQ(priority[j], v.priority);
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
  if (!ref.usesStart || n == 0) return;
  const auto start = doubles("Start", n);
  for (int j = 0; j < n; ++j) EXPECT_EQ(start[j], ref.vars[j]->start);
}

void RandomEditTest::compareRows() {
  const int m = count("NumConstrs");
  ASSERT_EQ(m, static_cast<int>(ref.constrs.size()));
  const auto rhs = doubles("RHS", m);
  const auto names = texts("ConstrName", m);
  const std::string senses = chars("Sense", m);
  const auto lazy = ref.usesLazy && m > 0 ? ints("Lazy", m) : std::vector<int>(m);
  std::vector<int> ind(ref.vars.size()), beg(1);
  std::vector<double> val(ref.vars.size());
  std::size_t total = 0;
  for (int i = 0; i < m; ++i) {
    const Constr &c = *ref.constrs[i];
    EXPECT_EQ(rhs[i], c.rhs);
    EXPECT_EQ(senses[i], c.sense);
    EXPECT_EQ(names[i], c.name);
    EXPECT_EQ(lazy[i], c.lazy);
    int nz = -1;
    ASSERT_EQ(TVKgetconstrs(model, &nz, beg.data(), ind.data(), val.data(), i, 1), 0);
    ASSERT_EQ(nz, static_cast<int>(c.coef.size()));
    for (int k = 0; k < nz; ++k) {
      const auto it = c.coef.find(ref.vars[ind[k]]);
      ASSERT_NE(it, c.coef.end());
      EXPECT_EQ(it->second, val[k]);
    }
    total += c.coef.size();
  }
  EXPECT_EQ(count("NumNZs"), static_cast<int>(total));
}

void RandomEditTest::compareParts() {
  EXPECT_EQ(count("ModelSense"), ref.sense);
  int numQ = -1;
  std::vector<int> row(ref.q.size() + 50), col(row.size());
  std::vector<double> val(row.size());
  ASSERT_EQ(TVKgetq(model, &numQ, nullptr, nullptr, nullptr), 0);
  ASSERT_EQ(numQ, static_cast<int>(ref.q.size()));
  ASSERT_EQ(TVKgetq(model, &numQ, row.data(), col.data(), val.data()), 0);
  for (int k = 0; k < numQ; ++k)
    EXPECT_EQ((ref.q[unordered(ref.vars[row[k]], ref.vars[col[k]])]), val[k]);

  ASSERT_EQ(count("NumQConstrs"), static_cast<int>(ref.qconstrs.size()));
  for (std::size_t i = 0; i < ref.qconstrs.size(); ++i) {
    const QConstr &qc = ref.qconstrs[i];
    int numL = -1, lind[8], qrow[8], qcol[8];
    double lval[8], qval[8];
    ASSERT_EQ(TVKgetqconstr(model, static_cast<int>(i), &numL, lind, lval, &numQ, qrow, qcol, qval),
              0);
    ASSERT_EQ(numL, static_cast<int>(qc.linear.size()));
    ASSERT_EQ(numQ, static_cast<int>(qc.quad.size()));
    for (int k = 0; k < numL; ++k) EXPECT_EQ(qc.linear.at(ref.vars[lind[k]]), lval[k]);
    for (int k = 0; k < numQ; ++k)
      EXPECT_EQ(qc.quad.at(unordered(ref.vars[qrow[k]], ref.vars[qcol[k]])), qval[k]);
  }
  ASSERT_EQ(count("NumSOS"), static_cast<int>(ref.sos.size()));
  for (std::size_t i = 0; i < ref.sos.size(); ++i) {
    int members = -1, type = -1, beg = -1, ind[8];
    double weight[8];
    ASSERT_EQ(TVKgetsos(model, &members, &type, &beg, ind, weight, static_cast<int>(i), 1), 0);
    EXPECT_EQ(type, ref.sos[i].type);
    ASSERT_EQ(members, static_cast<int>(ref.sos[i].members.size()));
    for (int k = 0; k < members; ++k) EXPECT_EQ(ref.vars[ind[k]], ref.sos[i].members[k]);
  }
  ASSERT_EQ(count("NumGenConstrs"), static_cast<int>(ref.gens.size()));
  for (std::size_t i = 0; i < ref.gens.size(); ++i) {
    const GenConstr &g = ref.gens[i];
    int result = -1, n = 1, ind[8];
    const int id = static_cast<int>(i);
    ASSERT_EQ(g.type == TVK_GENCONSTR_ABS ? TVKgetgenconstrAbs(model, id, &result, ind)
                                          : TVKgetgenconstrAnd(model, id, &result, &n, ind),
              0)
        << error();
    EXPECT_EQ(ref.vars[result], g.result);
    ASSERT_EQ(n, static_cast<int>(g.operands.size()));
    for (int k = 0; k < n; ++k) EXPECT_EQ(ref.vars[ind[k]], g.operands[k]);
  }
}

void RandomEditTest::updateAndCompare() {
  ASSERT_EQ(count("NumVars"), static_cast<int>(base.vars));
  // General constraints that lose what they need make the update fail until they go too.
  const auto invalid = [](const GenConstr &g) { return !g.doomed && !g.survives(); };
  while (std::any_of(ref.gens.begin(), ref.gens.end(), invalid)) {
    ASSERT_EQ(TVKupdatemodel(model), TVK_ERROR_MODEL_MODIFICATION);
    const auto it = std::find_if(ref.gens.begin(), ref.gens.end(), invalid);
    const int k = static_cast<int>(it - ref.gens.begin());
    if (!mode && k >= static_cast<int>(base.gens)) {
      // Not addressable before the update: start over with a model that has nothing pending.
      return TearDown(), SetUp(), void((ref = Reference(), base = Sizes()));
    }
    ASSERT_EQ(TVKdelgenconstrs(model, 1, &k), 0);
    it->doomed = true;
  }
  ASSERT_EQ(TVKupdatemodel(model), 0) << error();
  settle();
  compareVars();
  compareRows();
  compareParts();
}

void RandomEditTest::run(std::uint64_t seed, bool withFailures, int numSteps) {
  random = Random(seed);
  failures = Random(seed + 1000000);
  ref = Reference();
  base = Sizes();
  nextName = 0;
  for (int step = 0; step < numSteps && !HasFatalFailure() && !HasNonfatalFailure(); ++step) {
    if (pick(8) == 0) {
      updateAndCompare();
      mode = pick(2);
      ASSERT_EQ(TVKsetintparam(modelEnv(), "UpdateMode", mode), 0);
      if (ref.vars.size() > 60) {
        std::vector<int> all(base.vars / 2);
        for (std::size_t k = 0; k < all.size(); ++k) all[k] = static_cast<int>(2 * k);
        ASSERT_EQ(TVKdelvars(model, static_cast<int>(all.size()), all.data()), 0);
        for (const int j : all) ref.vars[j]->doomed = true;
      }
      continue;
    }
    edit();
    if (withFailures && failures.below(3) == 0) failSomehow();
  }
  updateAndCompare();
}

TEST_F(RandomEditTest, AgreesWithThePlainModel) {
  for (std::uint64_t seed = 1; seed <= 150 && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    run(seed, true, 120);
    TearDown();
    SetUp();
    mode = 1;
  }
}

TEST_F(RandomEditTest, FailingCallsLeaveTheModelAsItWouldBe) {
  for (std::uint64_t seed = 500; seed < 540 && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    std::vector<int> fingerprints;
    for (const bool withFailures : {false, true}) {
      mode = 1;
      run(seed, withFailures, 100);
      fingerprints.push_back(count("Fingerprint"));
      TearDown();
      SetUp();
    }
    EXPECT_EQ(fingerprints[0], fingerprints[1]);
  }
}

}  // namespace
