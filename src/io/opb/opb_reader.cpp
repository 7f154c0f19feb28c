// A weighted sum may hold negated literals (~x) and products of literals. A product of two becomes
// quadratic terms; a longer one a new binary variable that general constraints tie to its factors.
#include "io/opb/opb_reader.h"
#include "io/numbered.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>

#include "base/number_format.h"
#include "io/name_table.h"

namespace tarvik {

namespace {

constexpr std::size_t kPiece = 1000;
constexpr std::size_t kMaxToken = 255;

class OpbParser {
 public:
  OpbParser(Env &env, TextReader &reader, const std::string &name)
      : env_(env), reader_(reader), fileName_(name) {}

  ParsedModel parse() {
    take();
    if (token_ == "min:" || token_ == "max:") {
      model_.linear.objSense = token_ == "max:" ? -1 : 1;
      take();
      parseObjective();
    }
    while (!token_.empty()) parseConstraint();
    finish();
    return std::move(model_);
  }

 private:
  struct Sum {
    SparseValues terms;
    QuadTerms quad;
    double constant = 0;
    int count = 0;
  };

  [[noreturn]] void fail(const char *format, ...) __attribute__((format(printf, 2, 3))) {
    char text[600];
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    env_.log("Error reading OPB format file %s at line %d\n", fileName_.c_str(),
             reader_.lineNumber());
    env_.log("%s\n", text);
    env_.log("Neighboring tokens: \" %s %s\"\n", previous_.c_str(), token_.c_str());
    throw Error(TVK_ERROR_FILE_READ, "%s", text);
  }

  // --- tokens: white space separates, ';' and relations stand alone ---
  void take() {
    previous_ = token_;
    token_.clear();
    while (!skipBlanks()) {
      if (!nextLine()) return;
    }
    const auto isRelation = [](char c) { return c == '<' || c == '>' || c == '='; };
    std::size_t size = 1;
    if (isRelation(rest_.front())) {
      while (size < rest_.size() && isRelation(rest_[size])) ++size;
    } else if (rest_.front() != ';') {
      while (size < rest_.size() && !isBlank(rest_[size]) && rest_[size] != ';' &&
             !isRelation(rest_[size]))
        ++size;
    }
    if (size >= kPiece) fail("unreadable line (line to long without any space)");
    if (size > kMaxToken)
      fail("Token contains more than %d characters", static_cast<int>(kMaxToken));
    token_ = rest_.substr(0, size);
    rest_.remove_prefix(size);
  }

  bool skipBlanks() {
    while (!rest_.empty() && isBlank(rest_.front())) rest_.remove_prefix(1);
    return !rest_.empty();
  }

  bool nextLine() {
    while (reader_.nextLine(rest_)) {
      const std::string_view text = trimmed(rest_);
      if (text.empty() || text.front() != '*') return true;
      if (!sawComment_ && !isHeader(text))
        env_.log("Warning: skipping invalid initial commit line\n");
      sawComment_ = true;
    }
    rest_ = {};
    return false;
  }

  // "* #variable= n #constraint= m", perhaps with more.
  static bool isHeader(std::string_view text) {
    std::string_view field;
    int numbers = 0, value = 0;
    for (std::string_view rest = text.substr(1); nextField(rest, field);) {
      if (field != "#variable=" && field != "#constraint=") continue;
      if (!nextField(rest, field) || !parseInteger(field, value) || value < 0) return false;
      ++numbers;
    }
    return numbers == 2;
  }

  // --- sums ---
  bool endsSum() const {
    return token_.empty() || token_ == ";" || token_ == ">=" || token_ == "=" || token_ == "<=";
  }

  static bool isLiteral(std::string_view text) {
    if (!text.empty() && text.front() == '~') text.remove_prefix(1);
    double value = 0;
    return !text.empty() && text != "+" && text != "-" && text.front() != '~' &&
           !parseNumber(text, value);
  }

  int variable(std::string_view name) {
    const int known = names_.size();
    const int j = names_.findOrAdd(name);
    if (j == known && name.front() >= '0' && name.front() <= '9')
      env_.log("Warning: variable name <%s> starts with a number\n", names_.get(j));
    return j;
  }

  void parseSum(Sum &sum, const char *where) {
    while (!endsSum()) {
      double factor = 1;
      bool hasNumber = false;
      for (; token_ == "+" || token_ == "-"; take())
        if (token_ == "-") factor = -factor;
      // A sign may stand at a name: +x1.
      if (token_.size() > 1 && (token_[0] == '+' || token_[0] == '-') &&
          isLiteral(std::string_view(token_).substr(1))) {
        if (token_[0] == '-') factor = -factor;
        token_.erase(0, 1);
      }
      double value = 0;
      if (parseNumber(token_, value)) {
        if (!std::isfinite(value)) fail("Malformed term in expression in %s", where);
        factor *= value;
        hasNumber = true;
        take();
      }
      Vec<std::pair<int, bool>> literals;
      while (!endsSum() && isLiteral(token_) && token_[0] != '+' && token_[0] != '-') {
        const bool negated = token_[0] == '~';
        literals.emplace_back(variable(std::string_view(token_).substr(negated ? 1 : 0)), negated);
        take();
        if (!hasNumber) break;  // without coefficients, every name is a term
      }
      if (literals.empty() && !hasNumber) fail("Malformed term in expression in %s", where);
      addTerm(sum, factor, literals);
    }
  }

  void addTerm(Sum &sum, double factor, Vec<std::pair<int, bool>> &literals) {
    std::sort(literals.begin(), literals.end());
    literals.erase(std::unique(literals.begin(), literals.end()), literals.end());
    ++sum.count;
    if (literals.empty()) {
      sum.constant += factor;
      --sum.count;
      return;
    }
    for (std::size_t k = 1; k < literals.size(); ++k)
      if (literals[k].first == literals[k - 1].first) return;  // x and its negation: never both
    if (literals.size() > 2) {
      sum.terms.append(productVariable(literals), factor);
      return;
    }
    // factor * a * b with a = constantA + slopeA * x and likewise b.
    const auto [x, negX] = literals.front();
    const double constantX = negX ? 1 : 0, slopeX = negX ? -1 : 1;
    if (literals.size() == 1) {
      sum.constant += factor * constantX;
      sum.terms.append(x, factor * slopeX);
      return;
    }
    const auto [y, negY] = literals.back();
    const double constantY = negY ? 1 : 0, slopeY = negY ? -1 : 1;
    sum.constant += factor * constantX * constantY;
    if (negY) sum.terms.append(x, factor * slopeX);
    if (negX) sum.terms.append(y, factor * slopeY);
    sum.quad.append(x, y, factor * slopeX * slopeY);
  }

  // A binary variable that is the conjunction of literals; the same for the same literals. Until
  // the end its name holds blanks, which no name of the file can.
  int productVariable(const Vec<std::pair<int, bool>> &literals) {
    std::string name = "prod";
    for (const auto &[j, negated] : literals) {
      name += negated ? " n" : " ";
      name += std::to_string(j);
    }
    const int known = names_.size();
    const int product = names_.findOrAdd(name);
    if (product < known) return product;
    GenConstr g;
    g.type = TVK_GENCONSTR_AND;
    g.resVar = product;
    for (const auto &[j, negated] : literals) g.vars.push_back(negated ? complement(j) : j);
    model_.genConstrs.push_back(std::move(g));
    model_.genConstrNames.append("");
    return product;
  }

  int complement(int j) {
    const int known = names_.size();
    const int other = names_.findOrAdd(numbered("not ", j));
    if (other == known) {
      SparseValues row;
      row.append(j, 1);
      row.append(other, 1);
      storeRow(row, '=', 1);
    }
    return other;
  }

  static void merge(SparseValues &terms) {
    Vec<std::pair<int, double>> sorted;
    for (int k = 0; k < terms.count(); ++k) sorted.emplace_back(terms.index[k], terms.value[k]);
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const auto &a, const auto &b) { return a.first < b.first; });
    terms = SparseValues();
    for (const auto &[j, value] : sorted) {
      if (terms.count() > 0 && terms.index.back() == j)
        terms.value.back() += value;
      else
        terms.append(j, value);
    }
  }

  // --- statements ---
  void parseObjective() {
    Sum sum;
    parseSum(sum, "the objective");
    if (token_ != ";") fail("missing end character ';' of objective");
    take();
    merge(sum.terms);
    objective_ = std::move(sum.terms);
    model_.qobj = std::move(sum.quad);
    model_.linear.objCon = sum.constant;
  }

  void parseConstraint() {
    if (token_ == ";") {
      env_.log("Warning: skipping empty constraint in inputfile\n");
      take();
      return;
    }
    Sum sum;
    parseSum(sum, "one constraint");
    if (token_.empty()) fail("Incomplete constraint");
    if (sum.count == 0)
      fail("found empty expression or single constant where a weighted sum was expected");
    if (token_ == ";") fail("Unrecognized constraint RHS");
    const char sense = token_.front();
    take();
    double sign = 1, rhs = 0;
    for (; token_ == "+" || token_ == "-"; take())
      if (token_ == "-") sign = -sign;
    if (token_.empty()) fail("Incomplete constraint");
    if (!parseNumber(token_, rhs) || !std::isfinite(rhs)) fail("Unrecognized constraint RHS");
    take();
    if (token_ != ";") fail("missing end character ';' of constraint");
    take();
    merge(sum.terms);
    storeConstraint(sum, sense, sign * rhs - sum.constant);
  }

  void storeConstraint(Sum &sum, char sense, double rhs) {
    if (sum.quad.count() == 0) {
      storeRow(sum.terms, sense, rhs);
      return;
    }
    QConstr c;
    c.lind = std::move(sum.terms.index);
    c.lval = std::move(sum.terms.value);
    c.quad = std::move(sum.quad);
    c.sense = sense;
    c.rhs = rhs;
    model_.qconstrs.push_back(std::move(c));
    model_.qconstrNames.append("");
  }

  void storeRow(const SparseValues &terms, char sense, double rhs) {
    rows_.append(terms.count(), terms.index.data(), terms.value.data());
    model_.linear.sense.push_back(sense);
    model_.linear.rhs.push_back(rhs);
    ++model_.linear.numConstrs;
  }

  void finish() {
    ModelInput &linear = model_.linear;
    const int n = linear.numVars = names_.size();
    rows_.numMinor = n;
    linear.a = transpose(rows_);
    linear.obj.assign(n, 0.0);
    for (int k = 0; k < objective_.count(); ++k)
      linear.obj[objective_.index[k]] = objective_.value[k];
    linear.lb.assign(n, 0.0);
    linear.ub.assign(n, 1.0);
    linear.vtype.assign(n, 'B');
    foldConstant();
    nameAddedVariables();
    linear.varNames = names_.take();
  }

  // Gives the variables that stand for products and complements names that no other has.
  void nameAddedVariables() {
    if (model_.genConstrs.empty()) return;
    NameTable named;
    for (int k = 0; k < names_.size(); ++k) {
      std::string name = names_.get(k);
      if (name.find(' ') != std::string::npos) {
        std::replace(name.begin(), name.end(), ' ', '_');
        while (names_.find(name) >= 0) name += '_';
      }
      named.findOrAdd(name);
    }
    names_ = std::move(named);
  }

  // The variable "Constant" of a written objective: fixed at 1 by the last row, nowhere else.
  void foldConstant() {
    ModelInput &linear = model_.linear;
    const int j = names_.find("Constant");
    const int row = linear.numConstrs - 1;
    if (j < 0 || row < 0 || linear.sense[row] != '=' || linear.rhs[row] != 1 ||
        rows_.length(row) != 1 || rows_.index.back() != j || rows_.value.back() != 1 ||
        linear.a.length(j) != 1 || model_.qobj.count() > 0 || !model_.qconstrs.empty() ||
        !model_.genConstrs.empty())
      return;
    linear.objCon += linear.obj[j];
    NameTable kept;
    for (int k = 0; k < linear.numVars; ++k)
      if (k != j) kept.findOrAdd(names_.get(k));
    names_ = std::move(kept);
    --linear.numVars;
    --linear.numConstrs;
    linear.sense.pop_back();
    linear.rhs.pop_back();
    linear.obj.erase(linear.obj.begin() + j);
    linear.lb.pop_back();
    linear.ub.pop_back();
    linear.vtype.pop_back();
    SparseMatrix &a = linear.a;
    a.index.erase(a.index.begin() + a.start[j]);
    a.value.erase(a.value.begin() + a.start[j]);
    a.start.erase(a.start.begin() + j + 1);
    for (std::size_t k = static_cast<std::size_t>(j) + 1; k < a.start.size(); ++k) --a.start[k];
    --a.numMajor;
    --a.numMinor;
  }

  Env &env_;
  TextReader &reader_;
  const std::string fileName_;
  std::string_view rest_;
  std::string token_, previous_;
  bool sawComment_ = false;
  NameTable names_;
  SparseValues objective_;
  SparseMatrix rows_;
  ParsedModel model_;
};

}  // namespace

ParsedModel readOpb(Env &env, TextReader &reader, const std::string &name) {
  return OpbParser(env, reader, name).parse();
}

}  // namespace tarvik
