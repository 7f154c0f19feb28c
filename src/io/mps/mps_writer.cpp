#include "io/mps/mps_writer.h"
#include "io/numbered.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>

#include "io/general_keywords.h"
#include "io/written_names.h"

namespace tarvik {

namespace {

char senseLetter(char sense) { return sense == '<' ? 'L' : sense == '>' ? 'G' : 'E'; }

class MpsWriter {
 public:
  MpsWriter(Model &model, TextWriter &out, bool generic)
      : model_(model),
        data_(model.data()),
        sign_(model.data().objSense),
        out_(out),
        names_(model, generic) {}

  void write() {
    names_.announce("mps");
    if (data_.objectives.size() > 1 && !data_.scenarios.empty())
      model_.env().log(
          "Warning: mps files hold scenarios or several objectives, a file with both is not read "
          "back\n");
    collectExtraRows();
    writeHeader();
    writeRows();
    writeColumns();
    writeRhs();
    writeBounds();
    writeSos();
    writeQuadratics();
    writeIndicators();
    writePwlObjectives();
    writeGeneralConstraints();
    writeScenarios();
    out_.put("ENDATA\n");
  }

 private:
  // A row beside the linear constraints: of a quadratic constraint, a cone or an indicator.
  struct ExtraRow {
    std::string name;
    char sense;
    double rhs;
    const Vec<int> *ind;
    const Vec<double> *val;
  };

  // --- pieces of lines ---
  void entry(std::string_view first, std::string_view second, double value) {
    out_.put("    ").putPadded(first).put("  ").putPadded(second).put("  ").putNumber(value).put(
        '\n');
  }
  void bound(const char *code, std::string_view name) {
    out_.put(' ').put(code).put(" BND1      ").putPadded(name).put('\n');
  }
  void bound(const char *code, std::string_view name, double value) {
    out_.put(' ').put(code).put(" BND1      ").putPadded(name).put("  ").putNumber(value).put('\n');
  }
  bool isMultiObjective() const { return !data_.objectives.empty(); }

  void collectExtraRows() {
    for (int k = 0; k < data_.numQConstrs(); ++k) {
      const QConstr &c = data_.qconstrs[k];
      extra_.push_back({std::string(names_.qconstr(k)), c.sense, c.rhs, &c.lind, &c.lval});
    }
    if (!data_.cones.empty() || isMultiObjective()) freeNames_.emplace(data_, names_);
    for (std::size_t k = 0; k < data_.cones.size(); ++k)
      extra_.push_back({freeNames_->take(numbered("cone", k)), '<', 0, nullptr, nullptr});
    for (int k = 0; k < data_.numGenConstrs(); ++k) {
      const GenConstr &g = data_.genConstrs[k];
      if (g.type != TVK_GENCONSTR_INDICATOR) continue;
      extra_.push_back({std::string(names_.genConstr(k)), g.sense, g.constant, &g.vars, &g.coef});
    }
  }

  void writeHeader() {
    std::string title = data_.name;
    for (char &c : title)
      if (isBlank(c)) c = ' ';
    out_.put("NAME ").put(title).put('\n');
    if (sign_ < 0) out_.put("OBJSENSE MAX\n");
  }

  void writeRow(char sense, std::string_view name) {
    out_.put(' ').put(senseLetter(sense)).put("  ").putPadded(name).put('\n');
  }

  void writeRows() {
    out_.put("ROWS\n");
    if (isMultiObjective()) {
      int n = 0;
      for (const Objective &o : data_.objectives) {
        objNames_.push_back(freeNames_->take(breaksFields(o.name) ? numbered("OBJ", n) : o.name));
        out_.put(" N  ").put(objNames_.back()).format("       %d", o.priority);
        for (const double value : {o.weight, o.absTol, o.relTol}) out_.put("  ").putNumber(value);
        out_.put('\n');
        ++n;
      }
    } else {
      objNames_.push_back(freeConstraintName(data_, names_, "OBJ"));
      out_.put(" N  ").put(objNames_.front()).put('\n');
    }
    const auto lazyOf = [&](int i) { return data_.lazy.empty() ? 0 : data_.lazy[i]; };
    for (int i = 0; i < data_.numConstrs(); ++i)
      if (lazyOf(i) == 0) writeRow(data_.sense[i], names_.constr(i));
    for (const ExtraRow &row : extra_) writeRow(row.sense, row.name);
    constexpr std::pair<int, const char *> kLazySections[] = {
        {1, "LAZYCONS\n"}, {2, "LAZYCONS 2\n"}, {3, "LAZYCONS 3\n"}, {-1, "USERCUTS\n"}};
    for (const auto &[level, heading] : kLazySections) {
      bool any = false;
      for (int i = 0; i < data_.numConstrs(); ++i) {
        if (lazyOf(i) != level) continue;
        if (!any) out_.put(heading);
        any = true;
        writeRow(data_.sense[i], names_.constr(i));
      }
    }
  }

  // The entries of extra rows by columns: starts, then (row, value).
  void groupExtraEntries() {
    extraStart_.assign(static_cast<std::size_t>(data_.numVars()) + 1, 0);
    for (const ExtraRow &row : extra_)
      if (row.ind)
        for (const int j : *row.ind) ++extraStart_[j + 1];
    for (int j = 0; j < data_.numVars(); ++j) extraStart_[j + 1] += extraStart_[j];
    extraEntries_.resize(extraStart_.back());
    Vec<NzIndex> next(extraStart_.begin(), extraStart_.end() - 1);
    for (std::size_t r = 0; r < extra_.size(); ++r) {
      if (!extra_[r].ind) continue;
      for (std::size_t k = 0; k < extra_[r].ind->size(); ++k)
        extraEntries_[next[(*extra_[r].ind)[k]]++] = {static_cast<int>(r), (*extra_[r].val)[k]};
    }
  }

  static bool isMarked(char type) { return type == 'B' || type == 'I' || type == 'N'; }

  void writeColumns() {
    out_.put("COLUMNS\n");
    groupExtraEntries();
    bool marked = false;
    const auto marker = [&](const char *word) {
      out_.put("    MARKER    'MARKER'                 ").put(word).put('\n');
    };
    for (int j = 0; j < data_.numVars(); ++j) {
      if (isMarked(data_.vtype[j]) != marked) {
        marker(marked ? "'INTEND'" : "'INTORG'");
        marked = !marked;
      }
      writeColumn(j);
    }
    if (marked) marker("'INTEND'");
  }

  void writeColumn(int j) {
    const std::string_view name = names_.var(j);
    bool any = false;
    const auto put = [&](std::string_view row, double value) {
      entry(name, row, value);
      any = true;
    };
    if (isMultiObjective()) {
      for (std::size_t n = 0; n < data_.objectives.size(); ++n) {
        const Vec<double> &coef = data_.objectives[n].coef;
        if (!coef.empty() && coef[j] != 0) put(objNames_[n], sign_ * coef[j]);
      }
    } else if (data_.obj[j] != 0) {
      put(objNames_.front(), sign_ * data_.obj[j]);
    }
    for (NzIndex e = data_.a.start[j]; e < data_.a.start[j + 1]; ++e)
      put(names_.constr(data_.a.index[e]), data_.a.value[e]);
    for (NzIndex e = extraStart_[j]; e < extraStart_[j + 1]; ++e)
      put(extra_[extraEntries_[e].first].name, extraEntries_[e].second);
    // A column that occurs nowhere must still be listed.
    if (!any) put(objNames_.front(), 0);
  }

  void writeRhs() {
    out_.put("RHS\n");
    const auto put = [&](std::string_view row, double value) {
      if (value != 0)
        out_.put("    RHS1      ").putPadded(row).put("  ").putNumber(value).put('\n');
    };
    if (isMultiObjective())
      for (std::size_t n = 0; n < data_.objectives.size(); ++n)
        put(objNames_[n], -sign_ * data_.objectives[n].con);
    else
      put(objNames_.front(), -sign_ * data_.objCon);
    for (int i = 0; i < data_.numConstrs(); ++i) put(names_.constr(i), data_.rhs[i]);
    for (const ExtraRow &row : extra_) put(row.name, row.rhs);
  }

  void writeBounds() {
    out_.put("BOUNDS\n");
    const bool typed =
        std::any_of(data_.vtype.begin(), data_.vtype.end(), [](char t) { return t != 'C'; });
    for (int j = 0; j < data_.numVars(); ++j) writeBound(j, typed);
  }

  void writeBound(int j, bool typed) {
    const char type = data_.vtype[j];
    const bool semi = type == 'S' || type == 'N';
    double lower = data_.lb[j], upper = data_.ub[j];
    if (type == 'B' && lower <= 0 && lower != upper) {
      lower = 0;
      upper = std::min(upper, 1.0);
    }
    if (type == 'C' && lower == 0 && upper >= kInf) return;
    const std::string_view name = names_.var(j);
    if (lower <= -kInf) {
      if (semi) {
        bound("MI", name);
        bound("SC", name, upper);
      } else if (upper >= kInf) {
        bound("FR", name);
      } else {
        bound("MI", name);
        bound("UP", name, upper);
      }
      return;
    }
    if (lower == upper && !semi) {
      bound("FX", name, lower);
      // Readers refuse binary columns beyond [0, 1]: one that is fixed there stays integral by its
      // markers.
      if (type == 'B' && lower >= 0 && lower <= 1) bound("BV", name);
      return;
    }
    if (typed && type == 'B') {
      bound("BV", name);
      if (lower == 0 && upper == 1) return;
      if (lower != 0) bound("LO", name, lower);
    } else if (typed && type == 'I' && upper >= kInf) {
      bound("LI", name, lower);
    } else if (lower != 0) {
      bound("LO", name, lower);
    }
    if (semi) {
      bound("SC", name, upper);
    } else if (upper < kInf) {
      if (upper < 0 && lower == 0) bound("LO", name, 0);
      bound("UP", name, upper);
    }
  }

  void writeSos() {
    if (data_.sos.empty()) return;
    out_.put("SOS\n");
    for (int s = 0; s < data_.numSos(); ++s) {
      const Sos &set = data_.sos[s];
      out_.format(" S%d s%d\n", set.type, s);
      for (std::size_t k = 0; k < set.ind.size(); ++k)
        out_.put("    ")
            .putPadded(names_.var(set.ind[k]))
            .put("     ")
            .putNumber(set.weight[k])
            .put('\n');
    }
  }

  void quadraticEntry(int i, int j, double value) {
    const std::string first(names_.var(i));
    entry(first, names_.var(j), value);
  }

  void writeQuadratics() {
    const QuadTerms &q = data_.q;
    if (q.count() > 0) out_.put("QUADOBJ\n");
    for (int k = 0; k < q.count(); ++k)
      quadraticEntry(q.row[k], q.col[k], sign_ * q.val[k] / (q.row[k] == q.col[k] ? 1 : 2));
    for (int c = 0; c < data_.numQConstrs(); ++c) {
      const QuadTerms &terms = data_.qconstrs[c].quad;
      out_.put("QCMATRIX   ").putPadded(extra_[c].name).put('\n');
      for (int k = 0; k < terms.count(); ++k) {
        const int i = terms.row[k], j = terms.col[k];
        quadraticEntry(i, j, i == j ? terms.val[k] : terms.val[k] / 2);
        if (i != j) quadraticEntry(j, i, terms.val[k] / 2);
      }
    }
    for (std::size_t c = 0; c < data_.cones.size(); ++c) {
      out_.put("QCMATRIX   ").putPadded(extra_[data_.numQConstrs() + c].name).put('\n');
      double value = -1;
      for (const int j : data_.cones[c].members) {
        quadraticEntry(j, j, value);
        value = 1;
      }
    }
  }

  void writeIndicators() {
    std::size_t row = data_.numQConstrs() + data_.cones.size();
    bool any = false;
    for (const GenConstr &g : data_.genConstrs) {
      if (g.type != TVK_GENCONSTR_INDICATOR) continue;
      if (!any) out_.put("INDICATORS\n");
      any = true;
      out_.put(" IF ").putPadded(extra_[row++].name).put("  ").putPadded(names_.var(g.resVar));
      out_.format("  %d\n", g.binVal);
    }
  }

  void writePwlObjectives() {
    if (data_.pwl.empty()) return;
    out_.put("PWLOBJ\n");
    for (const PwlObjective &pwl : data_.pwl)
      for (std::size_t k = 0; k < pwl.x.size(); ++k)
        out_.put("    ")
            .putPadded(names_.var(pwl.var))
            .put("  ")
            .putNumber(pwl.x[k])
            .put("  ")
            .putNumber(sign_ * pwl.y[k])
            .put('\n');
  }

  void writeGeneralConstraints() {
    bool any = false;
    for (int k = 0; k < data_.numGenConstrs(); ++k) {
      const GenConstr &g = data_.genConstrs[k];
      if (g.type == TVK_GENCONSTR_INDICATOR) continue;
      if (g.type < 0 || g.type > TVK_GENCONSTR_LOGISTIC) throw Error(TVK_ERROR_INVALID_ARGUMENT);
      if (!any) out_.put("GENCONS\n");
      any = true;
      out_.put(' ').put(generalConstraintKeyword(g.type));
      if (g.type == TVK_GENCONSTR_NORM) {
        if (g.constant >= kUserInf)
          out_.put(" INF");
        else
          out_.format(" %.0f", g.constant);
      }
      if (names_.genConstrHasName(k)) out_.put(' ').put(names_.genConstr(k));
      out_.put('\n');
      if (g.isFunction())
        writeFunction(g);
      else if (g.type == TVK_GENCONSTR_PWL)
        writePwl(g);
      else
        writeOperands(g);
    }
  }

  void writeOperands(const GenConstr &g) {
    out_.put("    ").put(names_.var(g.resVar)).put('\n');
    for (const int j : g.vars) out_.put("    ").put(names_.var(j)).put('\n');
    const bool hasConstant = (g.type == TVK_GENCONSTR_MAX && g.constant > -kInf) ||
                             (g.type == TVK_GENCONSTR_MIN && g.constant < kInf);
    if (hasConstant) out_.put("    ").putNumber(g.constant).put('\n');
  }

  void writeVariablePair(const GenConstr &g) {
    out_.put("    ").put(names_.var(g.resVar));
    out_.put("  ").put(names_.var(g.vars[0])).put('\n');
  }

  void writePwl(const GenConstr &g) {
    writeVariablePair(g);
    for (std::size_t k = 0; k < g.coef.size(); ++k)
      out_.put("    ").putNumber(g.coef[k]).put("  ").putNumber(g.pwlY[k]).put('\n');
  }

  void writeFunction(const GenConstr &g) {
    const FuncOptions &o = g.options;
    out_.format("    Options  %d", o.pieces);
    for (const double value : {o.length, o.error, o.ratio}) out_.put("  ").putNumber(value);
    out_.format("  %d\n", o.nonlinear);
    writeVariablePair(g);
    if (functionTakesParameter(g.type)) out_.put("    ").putNumber(g.constant).put('\n');
    if (g.type != TVK_GENCONSTR_POLY) return;
    const int degree = static_cast<int>(g.coef.size()) - 1;
    bool any = false;
    for (int k = 0; k <= degree; ++k) {
      if (g.coef[k] == 0) continue;
      out_.format("    %d  ", degree - k).putNumber(g.coef[k]).put('\n');
      any = true;
    }
    if (!any) out_.put("    0  0\n");
  }

  void writeScenarios() {
    if (data_.scenarios.empty()) return;
    out_.format("SCENARIOS %d\n", static_cast<int>(data_.scenarios.size()));
    int number = 0;
    for (const Scenario &s : data_.scenarios) {
      out_.put(" NAME ").put(breaksFields(s.name) ? std::to_string(number) : s.name).put('\n');
      ++number;
      if (!s.obj.empty()) out_.put(" COLUMNS\n");
      for (std::size_t k = 0; k < s.obj.index().size(); ++k)
        out_.put("    ")
            .putPadded(names_.var(s.obj.index()[k]))
            .put("  ")
            .putPadded(objNames_.front())
            .put("  ")
            .putNumber(sign_ * s.obj.value()[k])
            .put('\n');
      if (!s.rhs.empty()) out_.put(" RHS\n");
      for (std::size_t k = 0; k < s.rhs.index().size(); ++k)
        out_.put("    RHS1      ")
            .putPadded(names_.constr(s.rhs.index()[k]))
            .put("  ")
            .putNumber(s.rhs.value()[k])
            .put('\n');
      writeScenarioBounds(s);
    }
  }

  void writeScenarioBounds(const Scenario &s) {
    if (s.lb.empty() && s.ub.empty()) return;
    out_.put(" BOUNDS\n");
    const auto put = [&](const char *code, int j, const double *value) {
      out_.put("    ").put(code).put(" BND1   ").putPadded(names_.var(j));
      if (value) out_.put("  ").putNumber(*value);
      out_.put('\n');
    };
    Vec<int> vars(s.lb.index());
    for (const int j : s.ub.index())
      if (!s.lb.find(j)) vars.push_back(j);
    std::sort(vars.begin(), vars.end());
    for (const int j : vars) {
      const double *lower = s.lb.find(j), *upper = s.ub.find(j);
      const bool lowerInf = lower && *lower <= -kInfBound, upperInf = upper && *upper >= kInfBound;
      if (lowerInf && upperInf) {
        put("FR", j, nullptr);
      } else if (lower && upper && *lower == *upper) {
        put("FX", j, lower);
      } else {
        if (lower) put(lowerInf ? "MI" : "LO", j, lowerInf ? nullptr : lower);
        if (upper) put(upperInf ? "PL" : "UP", j, upperInf ? nullptr : upper);
      }
    }
  }

  Model &model_;
  const ModelData &data_;
  const double sign_;
  TextWriter &out_;
  WriterNames names_;
  std::optional<FreeConstraintNames> freeNames_;  // with cones or several objectives
  Vec<std::string> objNames_;
  Vec<ExtraRow> extra_;
  Vec<NzIndex> extraStart_;
  Vec<std::pair<int, double>> extraEntries_;
};

}  // namespace

void writeMps(Model &model, TextWriter &out, bool generic) {
  MpsWriter(model, out, generic).write();
}

}  // namespace tarvik
