#include "io/lp/lp_writer.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "io/general_keywords.h"
#include "io/lp/lp_keywords.h"
#include "io/lp/lp_lines.h"
#include "io/lp/lp_order.h"
#include "io/numbered.h"
#include "io/written_names.h"

namespace tarvik {

namespace {

constexpr const char *senseText(char sense) {
  return sense == '<' ? "<=" : sense == '>' ? ">=" : "=";
}

constexpr const char *kLazyHeadings[] = {"Lazy Constraints\n", "Lazy Constraints 2\n",
                                         "Lazy Constraints 3\n", "User Cuts\n"};

class LpWriter {
 public:
  LpWriter(Model &model, TextWriter &out, int type)
      : model_(model),
        data_(model.data()),
        sign_(model.data().objSense),
        out_(out),
        lines_(out),
        names_(model, type == TVK_FILETYPE_RLP || type == TVK_FILETYPE_DLP) {
    rejectOddNames();
    const bool replaced = names_.replacesVars() || names_.replacesConstrs() ||
                          names_.replacesQConstrs() || names_.replacesGenConstrs();
    if (replaced && type == TVK_FILETYPE_LP)
      model.env().log("Warning: to let Tarvik read it back, use rlp format\n");
  }

  void write() {
    rows_ = transpose(data_.a);
    findLazyRows();
    findUnmentioned();
    order_.settle(data_, rows_, lazy_, unmentioned_);
    out_.put("\\ Model ").put(oneLine(data_.name)).put('\n');
    out_.put("\\ LP format - for model browsing. Use MPS format to capture full model detail.\n");
    if (data_.objectives.empty())
      writeObjective();
    else
      writeObjectives();
    out_.put("Subject To\n");
    writeRows(0);
    writeQuadraticRows();
    writeIndicators();
    for (std::size_t k = 0; k < std::size(LpOrder::kLazyLevels); ++k)
      if (const int level = LpOrder::kLazyLevels[k];
          std::find(lazy_.begin(), lazy_.end(), level) != lazy_.end()) {
        out_.put(kLazyHeadings[k]);
        writeRows(level);
      }
    writeBounds();
    writeTypes("Binaries\n", [](char type) { return type == 'B'; });
    writeTypes("Generals\n", [](char type) { return type == 'I' || type == 'N'; });
    writeTypes("Semi-continuous\n", [](char type) { return type == 'S' || type == 'N'; });
    writeSos();
    writePwlObjectives();
    writeGeneralConstraints();
    for (std::size_t k = 0; k < data_.scenarios.size(); ++k)
      writeScenario(data_.scenarios[k], static_cast<int>(k));
    out_.put("End\n");
  }

 private:
  // Names that would not be read back as names give way to generic ones.
  void rejectOddNames() {
    const bool linear = data_.q.count() == 0 && data_.qconstrs.empty() && data_.cones.empty();
    const bool plain =
        linear && data_.genConstrs.empty() && data_.pwl.empty() && data_.scenarios.empty();
    for (int j = 0; j < data_.numVars() && !names_.replacesVars(); ++j) {
      const std::string_view name = names_.var(j);
      const bool kept =
          (isLpName(name) && (linear || isLpFactor(name))) || (plain && isNumericLpName(name));
      if (!kept || standsForConstant(j)) names_.rejectVars("variable", name);
    }
    const auto check = [&](const char *kind, int count, auto &&nameOf) {
      for (int k = 0; k < count && !names_.replacesConstrs(); ++k)
        if (const std::string_view name = nameOf(k); !isLpLabel(name))
          names_.rejectConstrs(kind, name);
    };
    check("constraint", data_.numConstrs(), [&](int i) { return names_.constr(i); });
    check("Q constraint", data_.numQConstrs(), [&](int k) { return names_.qconstr(k); });
    check("general constraint", data_.numGenConstrs(), [&](int k) { return names_.genConstr(k); });
  }

  // True for a variable that a reader would fold into the objective's constant.
  bool standsForConstant(int j) {
    return data_.lb[j] == 1 && data_.ub[j] == 1 && data_.a.length(j) == 0 &&
           names_.var(j).substr(0, 8) == "Constant";
  }

  static std::string oneLine(std::string text) {
    for (char &c : text)
      if (isBlank(c)) c = ' ';
    return text;
  }

  std::string_view number(double value) { return formatLpNumber(value, number_); }
  const char *heading() const { return sign_ < 0 ? "Maximize" : "Minimize"; }

  // --- objectives ---
  void writeObjective() {
    out_.put(heading()).put('\n');
    lines_.begin(" ");
    for (const int j : order_.vars())
      if (data_.obj[j] != 0) lines_.term(sign_ * data_.obj[j], names_.var(j));
    if (data_.objCon != 0) writeConstant(sign_ * data_.objCon, "Constant");
    for (const PwlObjective &pwl : data_.pwl) {
      const std::string mark = "__pwl(" + std::string(names_.var(pwl.var)) + ")";
      lines_.term(1, mark);
    }
    writeUnmentioned();
    if (data_.q.count() > 0) {
      lines_.openBracket();
      // The stored matrix is twice the objective's coefficients already.
      for (const Product &p : order_.products(data_.q))
        quadraticTerm(sign_ * p.value, p.first, p.second);
      out_.put(" ] / 2 ");
    }
    out_.put('\n');
  }

  // A constant is a term on a variable that the bounds fix at 1, unless a variable of the model
  // has its name already; then it stands as a number.
  void writeConstant(double value, const std::string &name) {
    for (int j = 0; j < data_.numVars(); ++j)
      if (names_.var(j) == name) {
        out_.put(value < 0 ? " - " : " + ").put(number(std::fabs(value)));
        return;
      }
    lines_.term(value, name);
    constants_.push_back(name);
  }

  void quadraticTerm(double value, int i, int j) {
    std::string product(names_.var(i));
    if (i == j) {
      product += " ^2";
    } else {
      product += " * ";
      product += names_.var(j);
    }
    lines_.term(value, product);
  }

  // Variables that would not be mentioned before the bounds are, so that they are not lost.
  void findUnmentioned() {
    Vec<char> mentioned(data_.numVars());
    const auto mark = [&](const Vec<int> &vars) {
      for (const int j : vars) mentioned[j] = 1;
    };
    for (int j = 0; j < data_.numVars(); ++j)
      mentioned[j] = data_.a.length(j) > 0 || (data_.objectives.empty() && data_.obj[j] != 0);
    for (const Objective &o : data_.objectives)
      for (int j = 0; j < static_cast<int>(o.coef.size()); ++j)
        if (o.coef[j] != 0) mentioned[j] = 1;
    if (data_.objectives.empty()) {
      mark(data_.q.row);
      mark(data_.q.col);
      for (const PwlObjective &pwl : data_.pwl) mentioned[pwl.var] = 1;
    }
    for (const QConstr &c : data_.qconstrs) {
      mark(c.lind);
      mark(c.quad.row);
      mark(c.quad.col);
    }
    for (const Cone &cone : data_.cones) mark(cone.members);
    for (const GenConstr &g : data_.genConstrs)
      if (g.type == TVK_GENCONSTR_INDICATOR) {
        mark(g.vars);
        mentioned[g.resVar] = 1;
      }
    for (int j = 0; j < data_.numVars(); ++j)
      if (!mentioned[j]) unmentioned_.push_back(j);
  }
  void writeUnmentioned() {
    for (const int j : unmentioned_) lines_.term(0, names_.var(j));
  }

  void writeObjectives() {
    out_.put(heading()).put(" multi-objectives\n");
    for (std::size_t n = 0; n < data_.objectives.size(); ++n) {
      const Objective &o = data_.objectives[n];
      out_.put("  ").put(!isLpLabel(o.name) ? numbered("OBJ", n) : o.name).put(": ");
      out_.format("Priority=%d ", o.priority);
      out_.put("Weight=").put(number(o.weight)).put(' ');
      out_.put("AbsTol=").put(number(o.absTol)).put(' ');
      out_.put("RelTol=").put(number(o.relTol)).put('\n');
      lines_.begin("  ");
      if (!o.coef.empty())
        for (const int j : order_.vars())
          if (o.coef[j] != 0) lines_.term(sign_ * o.coef[j], names_.var(j));
      if (o.con != 0) writeConstant(sign_ * o.con, numbered("Constant", n));
      if (n == 0) writeUnmentioned();
      out_.put('\n');
    }
  }

  // --- constraints ---
  // No scenario of the format changes a lazy constraint or a user cut; those that one changes are
  // written like the others, which means the same.
  void findLazyRows() {
    lazy_ = data_.lazy;
    if (lazy_.empty()) return;
    for (const Scenario &s : data_.scenarios)
      for (const int i : s.rhs.index()) {
        if (lazy_[i] != 0)
          model_.env().log(
              "Warning: constraint %s is changed by a scenario, written without its laziness\n",
              std::string(names_.constr(i)).c_str());
        lazy_[i] = 0;
      }
  }

  void writeRows(int lazy) {
    for (int i = 0; i < data_.numConstrs(); ++i) {
      if ((lazy_.empty() ? 0 : lazy_[i]) != lazy) continue;
      lines_.beginLabel(names_.constr(i));
      entries_.clear();
      for (NzIndex e = rows_.start[i]; e < rows_.start[i + 1]; ++e)
        entries_.emplace_back(order_.rank(rows_.index[e]), rows_.value[e]);
      std::sort(entries_.begin(), entries_.end());
      for (const auto &[rank, value] : entries_)
        lines_.term(value, names_.var(order_.vars()[rank]));
      if (rows_.length(i) == 0) writeEmptyRow();
      endRow(data_.sense[i], data_.rhs[i]);
    }
  }

  // A row without entries needs a term to be read as a row.
  void writeEmptyRow() {
    if (data_.numVars() > 0)
      lines_.term(0, names_.var(order_.vars()[0]));
    else
      out_.put(" 0");
  }

  void endRow(char sense, double rhs) {
    out_.put(' ').put(senseText(sense)).put(' ').put(number(rhs)).put('\n');
  }

  void writeQuadraticRows() {
    for (int k = 0; k < data_.numQConstrs(); ++k) {
      const QConstr &c = data_.qconstrs[k];
      lines_.beginLabel(names_.qconstr(k));
      for (std::size_t e = 0; e < c.lind.size(); ++e) lines_.term(c.lval[e], names_.var(c.lind[e]));
      lines_.openBracket();
      for (const Product &p : order_.products(c.quad)) quadraticTerm(p.value, p.first, p.second);
      out_.put(" ]");
      endRow(c.sense, c.rhs);
    }
    if (data_.cones.empty()) return;
    FreeConstraintNames freeNames(data_, names_);
    for (std::size_t k = 0; k < data_.cones.size(); ++k) {
      lines_.beginLabel(freeNames.take(numbered("cone", k)));
      lines_.openBracket();
      const int head = data_.cones[k].members[0];
      QuadTerms squares;
      for (const int j : data_.cones[k].members) squares.append(j, j, j == head ? -1 : 1);
      for (const Product &p : order_.products(squares)) quadraticTerm(p.value, p.first, p.second);
      out_.put(" ] <= 0\n");
    }
  }

  void writeIndicators() {
    for (int k = 0; k < data_.numGenConstrs(); ++k) {
      const GenConstr &g = data_.genConstrs[k];
      if (g.type != TVK_GENCONSTR_INDICATOR) continue;
      lines_.beginLabel(names_.genConstr(k));
      out_.put(' ').put(names_.var(g.resVar)).put(" = ").put(g.binVal ? "1 ->" : "0 ->");
      for (std::size_t e = 0; e < g.vars.size(); ++e) lines_.term(g.coef[e], names_.var(g.vars[e]));
      if (g.vars.empty()) lines_.term(0, names_.var(g.resVar));
      endRow(g.sense, g.constant);
    }
  }

  // --- bounds and types ---
  void writeBounds() {
    out_.put("Bounds\n");
    for (const int j : order_.vars()) writeBound(j);
    for (const std::string &name : constants_) out_.put(' ').put(name).put(" = 1\n");
  }

  void writeBound(int j) {
    const double lower = data_.lb[j], upper = data_.ub[j];
    const bool lowerInf = lower <= -kInf, upperInf = upper >= kInf;
    if (lower == 0 &&
        ((upperInf && data_.vtype[j] != 'B') || (data_.vtype[j] == 'B' && upper == 1)))
      return;
    const std::string_view name = names_.var(j);
    out_.put(' ');
    if (lowerInf && upperInf) {
      out_.put(name).put(" free");
    } else if (lower == upper) {
      out_.put(name).put(" = ").put(number(lower));
    } else if (lower == 0) {
      out_.put(name).put(" <= ").put(upperInf ? "infinity" : number(upper));
    } else if (lowerInf) {
      out_.put("-infinity <= ").put(name).put(" <= ").put(number(upper));
    } else if (!upperInf) {
      out_.put(number(lower)).put(" <= ").put(name).put(" <= ");
      out_.put(number(upper));
    } else {
      out_.put(name).put(" >= ").put(number(lower));
    }
    out_.put('\n');
  }

  template <class Belongs>
  void writeTypes(const char *section, Belongs &&belongs) {
    bool any = false;
    for (const int j : order_.vars()) {
      if (!belongs(data_.vtype[j])) continue;
      if (!any) {
        out_.put(section);
        lines_.begin("");
      }
      any = true;
      lines_.name(names_.var(j));
    }
    if (any) out_.put('\n');
  }

  // --- SOS and piecewise-linear objectives ---
  void writeSos() {
    if (data_.sos.empty()) return;
    out_.put("SOS\n");
    for (int s = 0; s < data_.numSos(); ++s) {
      const Sos &set = data_.sos[s];
      out_.format(" s%d: S%d ::", s, set.type);
      lines_.begin("", 12);
      for (std::size_t k = 0; k < set.ind.size(); ++k) {
        std::string member(names_.var(set.ind[k]));
        member += ':';
        member += formatNumber(set.weight[k], number_);
        lines_.item(member, "\n    ", 4);
      }
      out_.put('\n');
    }
  }

  void writePoints(const Vec<double> &x, const Vec<double> &y, double factor) {
    for (std::size_t k = 0; k < x.size(); ++k) {
      out_.put(k > 0 ? " (" : "(").put(number(x[k])).put(", ");
      out_.put(number(factor * y[k])).put(")");
    }
    out_.put('\n');
  }

  void writePwlObjectives() {
    if (data_.pwl.empty()) return;
    out_.put("PWLObj\n");
    for (const PwlObjective &pwl : data_.pwl) {
      out_.put(' ').put(names_.var(pwl.var)).put(": ");
      writePoints(pwl.x, pwl.y, sign_);
    }
  }

  // --- general constraints ---
  void writeGeneralConstraints() {
    bool any = false;
    for (int k = 0; k < data_.numGenConstrs(); ++k) {
      const GenConstr &g = data_.genConstrs[k];
      if (g.type == TVK_GENCONSTR_INDICATOR) continue;
      if (!any) out_.put("General Constraints\n");
      any = true;
      if (names_.genConstrHasName(k))
        out_.put(' ').put(names_.genConstr(k)).put(':');
      else
        out_.format(g.isFunction() ? " GFC%d:" : " GC%d:", k);
      out_.put(' ').put(names_.var(g.resVar)).put(" =");
      if (g.isFunction())
        writeFunction(g);
      else
        writeOperands(g);
    }
  }

  void writeOperands(const GenConstr &g) {
    out_.put(' ').put(generalConstraintKeyword(g.type));
    if (g.type == TVK_GENCONSTR_PWL) {
      out_.put(" ( ").put(names_.var(g.vars[0])).put(" ) : ");
      writePoints(g.coef, g.pwlY, 1);
      return;
    }
    if (g.type == TVK_GENCONSTR_NORM) {
      if (g.constant >= kUserInf)
        out_.put(" ( Inf )");
      else
        out_.format(" ( %.0f )", g.constant);
    }
    out_.put(" (");
    bool first = true;
    lines_.begin("", 30);
    const auto put = [&](std::string_view operand) {
      lines_.item(first ? std::string(operand) : ", " + std::string(operand), "\n  ", 2);
      first = false;
    };
    for (const int j : g.vars) put(names_.var(j));
    const bool hasConstant = (g.type == TVK_GENCONSTR_MAX && g.constant > -kInf) ||
                             (g.type == TVK_GENCONSTR_MIN && g.constant < kInf);
    if (hasConstant) put(number(g.constant));
    out_.put(" )\n");
  }

  void writeFunction(const GenConstr &g) {
    const std::string_view x = names_.var(g.vars[0]);
    out_.put(' ');
    switch (g.type) {
      case TVK_GENCONSTR_EXPA:
        out_.put("EXPA ( ").put(number(g.constant)).put(" ^ ").put(x).put(" )");
        break;
      case TVK_GENCONSTR_POW:
        out_.put("POW ( ").put(x).put(" ^ ").put(number(g.constant)).put(" )");
        break;
      case TVK_GENCONSTR_LOGA:
        out_.put("LOG_").put(number(g.constant)).put(" ( ").put(x).put(" )");
        break;
      case TVK_GENCONSTR_POLY:
        writePolynomial(g, x);
        break;
      default:
        out_.put(generalConstraintKeyword(g.type)).put(" ( ").put(x).put(" )");
    }
    const std::string options = functionOptions(g.options);
    if (!options.empty()) out_.put(" (").put(options).put(" )");
    out_.put('\n');
  }

  void writePolynomial(const GenConstr &g, std::string_view x) {
    out_.put("POLY (");
    const int degree = static_cast<int>(g.coef.size()) - 1;
    bool any = false;
    for (int k = 0; k <= degree; ++k) {
      if (g.coef[k] == 0) continue;
      out_.put(any || g.coef[k] < 0 ? (g.coef[k] < 0 ? " - " : " + ") : " ");
      out_.put(number(std::fabs(g.coef[k]))).put(' ').put(x).format(" ^ %d", degree - k);
      any = true;
    }
    if (!any) out_.put(" 0 ").put(x).put(" ^ 0");
    out_.put(" )");
  }

  std::string functionOptions(const FuncOptions &o) {
    const FuncOptions defaults;
    std::string text;
    const auto add = [&](const char *keyword, double value, double standard) {
      if (value == standard) return;
      text += ' ';
      text += keyword;
      text += '=';
      text += formatNumber(value, number_);
    };
    add("FuncPieces", o.pieces, defaults.pieces);
    add("FuncPieceLength", o.length, defaults.length);
    add("FuncPieceError", o.error, defaults.error);
    add("FuncPieceRatio", o.ratio, defaults.ratio);
    add("FuncNonlinear", o.nonlinear, defaults.nonlinear);
    return text;
  }

  // --- scenarios ---
  std::string_view boundText(double value) {
    return value <= -kInfBound ? "-infinity" : value >= kInfBound ? "infinity" : number(value);
  }

  void writeScenario(const Scenario &s, int index) {
    out_.put("Scenario ").put(!isLpLabel(s.name) ? std::to_string(index) : s.name).put('\n');
    if (!s.obj.empty()) out_.put(heading()).put('\n');
    entries_.clear();
    for (std::size_t k = 0; k < s.obj.index().size(); ++k)
      entries_.emplace_back(order_.rank(s.obj.index()[k]), sign_ * s.obj.value()[k]);
    std::sort(entries_.begin(), entries_.end());
    for (const auto &[rank, value] : entries_)
      out_.put(' ').put(names_.var(order_.vars()[rank])).put(' ').put(number(value)).put('\n');
    if (!s.rhs.empty()) out_.put("Subject To\n");
    for (std::size_t k = 0; k < s.rhs.index().size(); ++k) {
      const int i = s.rhs.index()[k];
      out_.put(' ').put(names_.constr(i)).put(":");
      endRow(data_.sense[i], s.rhs.value()[k]);
    }
    if (!s.lb.empty() || !s.ub.empty()) out_.put("Bounds\n");
    if (s.lb.empty() && s.ub.empty()) return;
    for (const int j : order_.vars()) writeScenarioBound(s.lb.find(j), s.ub.find(j), names_.var(j));
  }

  void writeScenarioBound(const double *lower, const double *upper, std::string_view name) {
    if (!lower && !upper) return;
    out_.put(' ');
    if (lower && upper && *lower <= -kInfBound && *upper >= kInfBound)
      out_.put(name).put(" free");
    else if (lower && upper && *lower == *upper)
      out_.put(name).put(" = ").put(number(*lower));
    else if (!upper)
      out_.put(name).put(" >= ").put(boundText(*lower));
    else if (!lower)
      out_.put(name).put(" <= ").put(boundText(*upper));
    else {
      out_.put(boundText(*lower)).put(" <= ").put(name).put(" <= ");
      out_.put(boundText(*upper));
    }
    out_.put('\n');
  }

  Model &model_;
  const ModelData &data_;
  const double sign_;
  TextWriter &out_;
  LpLines lines_;
  WriterNames names_;
  SparseMatrix rows_;
  Vec<int> lazy_;
  Vec<int> unmentioned_;
  LpOrder order_;
  Vec<std::pair<int, double>> entries_;  // of one row, by rank
  Vec<std::string> constants_;           // the variables that stand for constants
  NumberText number_;
};

}  // namespace

void writeLp(Model &model, TextWriter &out, int type) { LpWriter(model, out, type).write(); }

}  // namespace tarvik
