// Random models go through files: MPS loses nothing, LP texts stay the same, and what
// stands around a model (starts, hints, priorities, bases, attributes) comes back as it was.
#include <algorithm>

#include "file_fixture.h"
#include "random_model.h"

namespace tarvik {
namespace {

class RoundTrip : public FileTest {
 protected:
  static constexpr unsigned kModels = 400;

  TVKmodel *random(unsigned seed, bool cones = false) {
    const RandomModel random(env_, seed, cones);
    EXPECT_EQ(random.failures(), 0) << "seed " << seed << TVKgeterrormsg(TVKgetenv(random.model()));
    models_.push_back(random.model());
    return random.model();
  }
  void forget() {
    for (TVKmodel *model : models_) TVKfreemodel(model);
    models_.clear();
    log_.clear();
  }

  // Indicators are written among the rows and so read before the other general constraints.
  static std::vector<int> generalOrder(const ModelData &data) {
    std::vector<int> order;
    for (const bool indicators : {true, false})
      for (int k = 0; k < data.numGenConstrs(); ++k)
        if ((data.genConstrs[k].type == TVK_GENCONSTR_INDICATOR) == indicators) order.push_back(k);
    return order;
  }

  // The pairs of a quadratic form have no order, nor have the two of a pair.
  using PairTerms = std::vector<std::pair<std::pair<int, int>, double>>;
  static PairTerms pairTerms(const QuadTerms &q) {
    PairTerms terms;
    for (int k = 0; k < q.count(); ++k)
      terms.emplace_back(std::minmax<int>({q.row[k], q.col[k]}), q.val[k]);
    std::sort(terms.begin(), terms.end());
    return terms;
  }
  static void expectSame(const QuadTerms &a, const QuadTerms &b) {
    EXPECT_EQ(pairTerms(a), pairTerms(b));
  }
  static void expectSame(const GenConstr &a, const GenConstr &b) {
    EXPECT_EQ(a.type, b.type);
    EXPECT_EQ(a.resVar, b.resVar);
    EXPECT_EQ(a.binVal, b.binVal);
    EXPECT_EQ(a.sense, b.sense);
    EXPECT_EQ(a.constant, b.constant);
    EXPECT_EQ(a.vars, b.vars);
    EXPECT_EQ(a.coef, b.coef);
    EXPECT_EQ(a.pwlY, b.pwlY);
    EXPECT_EQ(a.options.pieces, b.options.pieces);
    EXPECT_EQ(a.options.length, b.options.length);
    EXPECT_EQ(a.options.error, b.options.error);
    EXPECT_EQ(a.options.ratio, b.options.ratio);
    EXPECT_EQ(a.options.nonlinear, b.options.nonlinear);
  }
  static void expectSame(const SparseChanges &a, const SparseChanges &b) {
    EXPECT_EQ(a.index(), b.index());
    EXPECT_EQ(a.value(), b.value());
  }

  static void expectSameLinear(TVKmodel *first, TVKmodel *second) {
    const ModelData &a = first->data(), &b = second->data();
    ASSERT_EQ(a.numVars(), b.numVars());
    ASSERT_EQ(a.numConstrs(), b.numConstrs());
    EXPECT_EQ(a.name, b.name);
    EXPECT_EQ(a.objSense, b.objSense);
    EXPECT_EQ(a.a.start, b.a.start);
    EXPECT_EQ(a.a.index, b.a.index);
    EXPECT_EQ(a.a.value, b.a.value);
    // Several objectives take the place of the one.
    if (a.objectives.empty()) {
      EXPECT_EQ(a.objCon, b.objCon);
      EXPECT_EQ(a.obj, b.obj);
    }
    EXPECT_EQ(a.lb, b.lb);
    EXPECT_EQ(a.ub, b.ub);
    EXPECT_EQ(a.vtype, b.vtype);
    EXPECT_EQ(a.rhs, b.rhs);
    EXPECT_EQ(a.sense, b.sense);
    for (int j = 0; j < a.numVars(); ++j) EXPECT_STREQ(first->varName(j), second->varName(j));
    for (int i = 0; i < a.numConstrs(); ++i) {
      EXPECT_STREQ(first->constrName(i), second->constrName(i));
      EXPECT_EQ(a.lazy.empty() ? 0 : a.lazy[i], b.lazy.empty() ? 0 : b.lazy[i]);
    }
  }

  static void expectSameParts(TVKmodel *first, TVKmodel *second) {
    const ModelData &a = first->data(), &b = second->data();
    expectSame(a.q, b.q);
    ASSERT_EQ(a.qconstrs.size(), b.qconstrs.size());
    for (int k = 0; k < a.numQConstrs(); ++k) {
      const QConstr &x = a.qconstrs[k], &y = b.qconstrs[k];
      EXPECT_STREQ(first->qconstrName(k), second->qconstrName(k));
      EXPECT_EQ(x.sense, y.sense);
      EXPECT_EQ(x.rhs, y.rhs);
      expectSame(x.quad, y.quad);
      EXPECT_EQ(sortedTerms(x), sortedTerms(y));
    }
    ASSERT_EQ(a.numSos(), b.numSos());
    for (int k = 0; k < a.numSos(); ++k) {
      EXPECT_EQ(a.sos[k].type, b.sos[k].type);
      EXPECT_EQ(a.sos[k].ind, b.sos[k].ind);
      EXPECT_EQ(a.sos[k].weight, b.sos[k].weight);
    }
    ASSERT_EQ(a.numGenConstrs(), b.numGenConstrs());
    const std::vector<int> order = generalOrder(a);
    for (int k = 0; k < b.numGenConstrs(); ++k) {
      expectSame(sortedIndicator(a.genConstrs[order[k]]), sortedIndicator(b.genConstrs[k]));
      EXPECT_STREQ(first->genConstrName(order[k]), second->genConstrName(k));
    }
  }
  // The linear terms of quadratic constraints and of indicators come back by columns.
  static std::vector<std::pair<int, double>> sortedTerms(const QConstr &c) {
    std::vector<std::pair<int, double>> terms;
    for (std::size_t k = 0; k < c.lind.size(); ++k) terms.emplace_back(c.lind[k], c.lval[k]);
    std::sort(terms.begin(), terms.end());
    return terms;
  }
  static GenConstr sortedIndicator(GenConstr g) {
    if (g.type != TVK_GENCONSTR_INDICATOR) return g;
    QConstr row;
    row.lind = g.vars;
    row.lval = g.coef;
    const auto terms = sortedTerms(row);
    for (std::size_t k = 0; k < terms.size(); ++k) {
      g.vars[k] = terms[k].first;
      g.coef[k] = terms[k].second;
    }
    return g;
  }

  static void expectSameObjectives(const ModelData &a, const ModelData &b) {
    ASSERT_EQ(a.pwl.size(), b.pwl.size());
    for (std::size_t k = 0; k < a.pwl.size(); ++k) {
      EXPECT_EQ(a.pwl[k].var, b.pwl[k].var);
      EXPECT_EQ(a.pwl[k].x, b.pwl[k].x);
      EXPECT_EQ(a.pwl[k].y, b.pwl[k].y);
    }
    ASSERT_EQ(a.objectives.size(), b.objectives.size());
    for (std::size_t n = 0; n < a.objectives.size(); ++n) {
      const Objective &x = a.objectives[n], &y = b.objectives[n];
      EXPECT_EQ(x.coef, y.coef);
      EXPECT_EQ(x.con, y.con);
      EXPECT_EQ(x.priority, y.priority);
      EXPECT_EQ(x.weight, y.weight);
      EXPECT_EQ(x.absTol, y.absTol);
      EXPECT_EQ(x.relTol, y.relTol);
      EXPECT_EQ(x.name.empty() ? numbered("OBJ", n) : x.name, y.name);
    }
    ASSERT_EQ(a.scenarios.size(), b.scenarios.size());
    for (std::size_t s = 0; s < a.scenarios.size(); ++s) {
      const Scenario &x = a.scenarios[s], &y = b.scenarios[s];
      EXPECT_EQ(x.name, y.name);
      expectSame(x.obj, y.obj);
      expectSame(x.rhs, y.rhs);
      expectSame(x.lb, y.lb);
      expectSame(x.ub, y.ub);
    }
  }
  static std::string numbered(const char *word, std::size_t n) { return word + std::to_string(n); }
};

TEST_F(RoundTrip, MpsLosesNothing) {
  for (unsigned seed = 0; seed < kModels && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    TVKmodel *model = random(seed);
    const std::string text = written(model, "m.mps");
    SCOPED_TRACE(text);
    TVKmodel *back = readFile(path("m.mps"));
    ASSERT_NE(back, nullptr);
    expectSameLinear(model, back);
    expectSameParts(model, back);
    expectSameObjectives(model->data(), back->data());
    EXPECT_FALSE(logged("arning")) << log_;
    forget();
  }
}

// A reader refuses binary columns beyond [0, 1]; a model may have fixed one there.
TEST_F(RoundTrip, BinariesFixedBeyondTheirRangeComeBack) {
  TVKmodel *model = read("b.lp",
                         "min\n x + y + z\nst\n c: x + y + z >= 0\n"
                         "bounds\n x = 2\n y = -1\n z = 0\nbinaries\n x y z\nend\n");
  ASSERT_NE(model, nullptr);
  ASSERT_EQ(TVKwrite(model, path("b.mps").c_str()), 0);
  TVKmodel *back = readFile(path("b.mps"));
  ASSERT_NE(back, nullptr) << log_;
  EXPECT_EQ(back->data().lb, (Vec<double>{2, -1, 0}));
  EXPECT_EQ(back->data().ub, (Vec<double>{2, -1, 0}));
  EXPECT_EQ(std::string(back->data().vtype.begin(), back->data().vtype.end()), "IIB");
}

// What the file holds of a cone is its quadratic form.
TEST_F(RoundTrip, ConesComeBackAsQuadraticConstraints) {
  for (unsigned seed = 0; seed < 20; ++seed) {
    for (const char *name : {"m.mps", "m.lp"}) {
      SCOPED_TRACE(seed);
      TVKmodel *model = random(seed, true);
      const std::string text = written(model, name);
      TVKmodel *back = readFile(path(name));
      ASSERT_NE(back, nullptr) << text;
      const int rows = model->data().numQConstrs();
      ASSERT_EQ(back->data().numQConstrs(), rows + 2);
      for (int k = 0; k < 2; ++k) {
        const QConstr &constr = back->data().qconstrs[rows + k];
        EXPECT_EQ(constr.sense, '<');
        EXPECT_EQ(constr.rhs, 0);
        ASSERT_EQ(constr.quad.count(), 2);
        EXPECT_EQ(constr.quad.row, constr.quad.col);
        EXPECT_EQ(constr.quad.val.at(0) + constr.quad.val.at(1), 0) << text;
        EXPECT_EQ(std::fabs(constr.quad.val[0]), 1) << text;
        const int head = constr.quad.row[constr.quad.val[0] < 0 ? 0 : 1];
        if (std::string(name) == "m.mps") {
          EXPECT_EQ(head, model->data().cones[k].members[0]);
        }
      }
      forget();
    }
  }
}

TEST_F(RoundTrip, LpTextsStayTheSame) {
  for (unsigned seed = 0; seed < kModels && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    const bool cones = seed % 4 == 3;
    TVKmodel *model = random(seed, cones);
    const std::string first = written(model, "m.lp");
    log_.clear();
    TVKmodel *back = readFile(path("m.lp"));
    ASSERT_NE(back, nullptr) << first;
    EXPECT_FALSE(logged("Duplicate")) << log_;
    EXPECT_EQ(back->data().name, model->data().name);
    EXPECT_EQ(back->data().numVars(), model->data().numVars()) << first;
    EXPECT_EQ(back->data().numConstrs(), model->data().numConstrs());
    EXPECT_EQ(back->data().numQConstrs(), model->data().numQConstrs() + (cones ? 2 : 0));
    EXPECT_EQ(back->data().numGenConstrs(), model->data().numGenConstrs());
    EXPECT_EQ(written(back, "n.lp"), first);
    forget();
  }
}

// Products mention most of the variables here, in long chains whose ranks depend on each other.
TEST_F(RoundTrip, LpTextsOfManyProductsStayTheSame) {
  constexpr int kVars = 300;
  std::mt19937 random_(3);
  const auto variable = [&] { return static_cast<int>(random_() % kVars); };
  for (const int products : {40, 150, 300, 900}) {
    SCOPED_TRACE(products);
    TVKmodel *model = read("m.lp", "min\nst\nend\n");
    ASSERT_EQ(TVKaddvars(model, kVars, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                         nullptr, nullptr),
              0);
    std::vector<int> rows, cols;
    for (int k = 0; k < products; ++k) {
      rows.push_back(variable());
      cols.push_back(variable());
    }
    const std::vector<double> ones(products, 1.0);
    const int half = products / 2, linear = variable();
    ASSERT_EQ(TVKaddqpterms(model, half, rows.data(), cols.data(), ones.data()), 0);
    ASSERT_EQ(TVKaddqconstr(model, 1, &linear, ones.data(), products - half, rows.data() + half,
                            cols.data() + half, ones.data(), '<', 1, nullptr),
              0);
    ASSERT_EQ(TVKupdatemodel(model), 0);
    const std::string first = written(model, "m.lp");
    TVKmodel *back = readFile(path("m.lp"));
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->data().q.count(), model->data().q.count());
    EXPECT_EQ(written(back, "n.lp"), first);
  }
}

TEST_F(RoundTrip, ValuesComeBack) {
  std::mt19937 random_(7);
  for (unsigned seed = 0; seed < 100 && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    TVKmodel *model = random(seed);
    const int n = model->data().numVars(), m = model->data().numConstrs();
    for (int start = 0; start < 2; ++start) {
      TVKsetintparam(TVKgetenv(model), "StartNumber", start - 1 < 0 ? 0 : -1);
      for (int j = 0; j < n; ++j)
        if (random_() % 2)
          TVKsetdblattrelement(model, "Start", j,
                               std::ldexp(random_(), -static_cast<int>(random_() % 40)));
    }
    for (int j = 0; j < n; ++j) {
      if (random_() % 2) TVKsetdblattrelement(model, "VarHintVal", j, random_() / 7.0);
      if (random_() % 2)
        TVKsetintattrelement(model, "VarHintPri", j, static_cast<int>(random_() % 9) - 4);
      TVKsetintattrelement(model, "BranchPriority", j, static_cast<int>(random_() % 9) - 4);
      TVKsetintattrelement(model, "Partition", j, static_cast<int>(random_() % 3));
      if (random_() % 2)
        TVKsetstrattrelement(model, "VTag", j, ("tag" + std::to_string(j)).c_str());
    }
    for (int i = 0; i < m; ++i)
      if (random_() % 2)
        TVKsetstrattrelement(model, "CTag", i, ("row tag " + std::to_string(i)).c_str());
    ASSERT_EQ(TVKupdatemodel(model), 0) << TVKgeterrormsg(TVKgetenv(model));
    written(model, "m.mps");
    for (const char *name : {"a.mst", "a.hnt", "a.ord", "a.attr"}) {
      if (std::string(name) == "a.mst" && model->data().starts.empty()) continue;
      if (std::string(name) == "a.hnt" && model->data().hintVal.empty()) continue;
      const std::string text = written(model, name);
      TVKmodel *back = readFile(path("m.mps"));
      ASSERT_NE(back, nullptr);
      EXPECT_EQ(TVKread(back, path(name).c_str()), 0) << name << TVKgeterrormsg(TVKgetenv(back));
      EXPECT_EQ(written(back, std::string("b") + (name + 1)), text) << name;
    }
    forget();
  }
}

TEST_F(RoundTrip, BasesComeBack) {
  std::mt19937 random_(11);
  for (int round = 0; round < 100; ++round) {
    const int n = 1 + static_cast<int>(random_() % 8), m = 1 + static_cast<int>(random_() % 5);
    std::string text = "min\n obj:";
    for (int j = 0; j < n; ++j) text += " + x" + std::to_string(j);
    text += "\nst\n";
    for (int i = 0; i < m; ++i)
      text += " r" + std::to_string(i) + ": x" + std::to_string(random_() % n) + " >= -1\n";
    text += "bounds\n";
    for (int j = 0; j < n; ++j) text += " x" + std::to_string(j) + " <= 9\n";
    TVKmodel *model = read("m.lp", text + "end\n");
    // A basis has as many basic elements as rows.
    Vec<int> status(n + m);
    for (int k = 0; k < n + m; ++k) status[k] = k < m ? 0 : -1;
    std::shuffle(status.begin(), status.end(), random_);
    for (int k = 0; k < n; ++k)
      if (status[k] == -1 && random_() % 2) status[k] = -2;
    ASSERT_EQ(TVKsetintattrarray(model, "VBasis", 0, n, status.data()), 0);
    ASSERT_EQ(TVKsetintattrarray(model, "CBasis", 0, m, status.data() + n), 0);
    ASSERT_EQ(TVKupdatemodel(model), 0);
    const std::string basis = written(model, "a.bas");
    TVKmodel *back = readFile(path("m.lp"));
    ASSERT_EQ(TVKread(back, path("a.bas").c_str()), 0) << TVKgeterrormsg(TVKgetenv(back)) << basis;
    Vec<int> found(n + m);
    EXPECT_EQ(TVKgetintattrarray(back, "VBasis", 0, n, found.data()), 0);
    EXPECT_EQ(TVKgetintattrarray(back, "CBasis", 0, m, found.data() + n), 0);
    EXPECT_EQ(found, status) << basis;
    EXPECT_EQ(written(back, "b.bas"), basis);
    forget();
  }
}

}  // namespace
}  // namespace tarvik
