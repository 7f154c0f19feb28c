#include "io/parsed_model.h"

#include "base/number_format.h"

namespace tarvik {

namespace {

// Builds through the exported functions; the first failure becomes an Error of the reader.
class Builder {
 public:
  explicit Builder(TVKmodel *model) : model_(model) {}

  void build(const ParsedModel &parsed) {
    addQuadratics(parsed);
    addSos(parsed.sos);
    for (int k = 0; k < static_cast<int>(parsed.genConstrs.size()); ++k)
      check(addGenConstr(parsed.genConstrs[k], parsed.genConstrNames.get(k)));
    for (const PwlObjective &pwl : parsed.pwl)
      check(TVKsetpwlobj(model_, pwl.var, static_cast<int>(pwl.x.size()), pwl.x.data(),
                         pwl.y.data()));
    if (!parsed.lazy.empty())
      check(TVKsetintattrarray(model_, "Lazy", 0, static_cast<int>(parsed.lazy.size()),
                               parsed.lazy.data()));
    addObjectives(parsed.objectives);
    addScenarios(parsed.scenarios);
    check(TVKupdatemodel(model_));
  }

 private:
  void check(int code) const {
    if (code == 0) return;
    throw Error(code, "%s", model_->env().errorMessage());
  }

  void addQuadratics(const ParsedModel &parsed) {
    const QuadTerms &q = parsed.qobj;
    if (q.count() > 0)
      check(TVKaddqpterms(model_, q.count(), q.row.data(), q.col.data(), q.val.data()));
    for (int k = 0; k < static_cast<int>(parsed.qconstrs.size()); ++k) {
      const QConstr &c = parsed.qconstrs[k];
      check(TVKaddqconstr(model_, static_cast<int>(c.lind.size()), c.lind.data(), c.lval.data(),
                          c.quad.count(), c.quad.row.data(), c.quad.col.data(), c.quad.val.data(),
                          c.sense, c.rhs, parsed.qconstrNames.get(k)));
    }
  }

  void addSos(const Vec<Sos> &sets) {
    for (const Sos &set : sets) {
      const int start = 0;
      check(TVKaddsos(model_, 1, static_cast<int>(set.ind.size()), &set.type, &start,
                      set.ind.data(), set.weight.data()));
    }
  }

  int addGenConstr(const GenConstr &g, const char *name) {
    const int n = static_cast<int>(g.vars.size());
    const int y = g.resVar;
    const int *vars = g.vars.data();
    if (g.isFunction()) return addFunction(g, name);
    switch (g.type) {
      case TVK_GENCONSTR_MAX:
        return TVKaddgenconstrMax(model_, name, y, n, vars, g.constant);
      case TVK_GENCONSTR_MIN:
        return TVKaddgenconstrMin(model_, name, y, n, vars, g.constant);
      case TVK_GENCONSTR_ABS:
        return TVKaddgenconstrAbs(model_, name, y, vars[0]);
      case TVK_GENCONSTR_AND:
        return TVKaddgenconstrAnd(model_, name, y, n, vars);
      case TVK_GENCONSTR_OR:
        return TVKaddgenconstrOr(model_, name, y, n, vars);
      case TVK_GENCONSTR_NORM:
        return TVKaddgenconstrNorm(model_, name, y, n, vars, g.constant);
      case TVK_GENCONSTR_INDICATOR:
        return TVKaddgenconstrIndicator(model_, name, y, g.binVal, n, vars, g.coef.data(), g.sense,
                                        g.constant);
      default:
        return TVKaddgenconstrPWL(model_, name, vars[0], y, static_cast<int>(g.coef.size()),
                                  g.coef.data(), g.pwlY.data());
    }
  }

  int addFunction(const GenConstr &g, const char *name) {
    const int x = g.vars[0], y = g.resVar;
    const std::string text = optionsText(g.options);
    const char *options = text.c_str();
    switch (g.type) {
      case TVK_GENCONSTR_POLY:
        return TVKaddgenconstrPoly(model_, name, x, y, static_cast<int>(g.coef.size()),
                                   g.coef.data(), options);
      case TVK_GENCONSTR_EXP:
        return TVKaddgenconstrExp(model_, name, x, y, options);
      case TVK_GENCONSTR_EXPA:
        return TVKaddgenconstrExpA(model_, name, x, y, g.constant, options);
      case TVK_GENCONSTR_LOG:
        return TVKaddgenconstrLog(model_, name, x, y, options);
      case TVK_GENCONSTR_LOGA:
        return TVKaddgenconstrLogA(model_, name, x, y, g.constant, options);
      case TVK_GENCONSTR_POW:
        return TVKaddgenconstrPow(model_, name, x, y, g.constant, options);
      case TVK_GENCONSTR_SIN:
        return TVKaddgenconstrSin(model_, name, x, y, options);
      case TVK_GENCONSTR_COS:
        return TVKaddgenconstrCos(model_, name, x, y, options);
      case TVK_GENCONSTR_TAN:
        return TVKaddgenconstrTan(model_, name, x, y, options);
      default:
        return TVKaddgenconstrLogistic(model_, name, x, y, options);
    }
  }

  void addObjectives(const Vec<ParsedObjective> &objectives) {
    int index = 0;
    for (const ParsedObjective &o : objectives)
      check(TVKsetobjectiven(model_, index++, o.priority, o.weight, o.absTol, o.relTol,
                             o.name.c_str(), o.constant, o.terms.count(), o.terms.index.data(),
                             o.terms.value.data()));
  }

  void addScenarios(const Vec<ParsedScenario> &scenarios) {
    if (scenarios.empty()) return;
    check(TVKsetintattr(model_, "NumScenarios", static_cast<int>(scenarios.size())));
    Env &env = model_->env();
    const int selected = env.get(Int::ScenarioNumber);
    int number = 0;
    for (const ParsedScenario &s : scenarios) {
      env.setSilently(Int::ScenarioNumber, number++);
      if (!s.name.empty()) check(TVKsetstrattr(model_, "ScenNName", s.name.c_str()));
      setList("ScenNObj", s.obj);
      setList("ScenNRHS", s.rhs);
      setList("ScenNLB", s.lb);
      setList("ScenNUB", s.ub);
    }
    env.setSilently(Int::ScenarioNumber, selected);
  }
  void setList(const char *attribute, const SparseValues &values) {
    if (values.count() > 0)
      check(TVKsetdblattrlist(model_, attribute, values.count(), values.index.data(),
                              values.value.data()));
  }

  TVKmodel *model_;
};

bool isPlain(const ParsedModel &parsed) {
  return parsed.qobj.count() == 0 && parsed.qconstrs.empty() && parsed.sos.empty() &&
         parsed.genConstrs.empty() && parsed.pwl.empty() && parsed.lazy.empty() &&
         parsed.objectives.empty() && parsed.scenarios.empty();
}

}  // namespace

std::string optionsText(const FuncOptions &options) {
  const FuncOptions defaults;
  std::string text;
  NumberText number;
  const auto add = [&](const char *keyword, double value, double standard) {
    if (value == standard) return;
    if (!text.empty()) text += ' ';
    text += keyword;
    text += '=';
    text += formatNumber(value, number);
  };
  add("FuncPieces", options.pieces, defaults.pieces);
  add("FuncPieceLength", options.length, defaults.length);
  add("FuncPieceError", options.error, defaults.error);
  add("FuncPieceRatio", options.ratio, defaults.ratio);
  add("FuncNonlinear", options.nonlinear, defaults.nonlinear);
  return text;
}

TVKmodel *buildModel(Env &env, ParsedModel &&parsed) {
  const bool plain = isPlain(parsed);
  TVKmodel *model = Model::create(env, std::move(parsed.linear), false);
  if (plain) return model;
  try {
    Builder(model).build(parsed);
  } catch (...) {
    TVKfreemodel(model);
    throw;
  }
  return model;
}

}  // namespace tarvik
