#include "io/opb/opb_writer.h"
#include "io/numbered.h"

#include <cmath>

#include "io/file_streams.h"
#include "io/writer_names.h"

namespace tarvik {

namespace {

std::string_view opbNumber(double value, NumberText &text) {
  if (value == std::trunc(value) && std::fabs(value) < 9e15) {
    const int size = std::snprintf(text.data, sizeof text.data, "%.0f", value);
    return {text.data, static_cast<std::size_t>(size)};
  }
  double back = 0;
  const std::string_view brief = formatShort(value, text);
  if (parseNumber(brief, back) && back == value) return brief;
  return formatLpNumber(value, text);
}

class OpbWriter {
 public:
  OpbWriter(Model &model, TextWriter &out)
      : model_(model), data_(model.data()), out_(out), names_(model, false, false) {}

  void write() {
    rejectOddNames();
    if (names_.replacesVars())
      model_.env().log("Warning: default variable names used to write opb file\n");
    const SparseMatrix rows = transpose(data_.a);
    const bool constant = data_.objCon != 0;
    out_.format("* #variable= %d #constraint= %d\n", data_.numVars() + constant,
                data_.numConstrs() + constant);
    writeObjective();
    for (int i = 0; i < data_.numConstrs(); ++i) writeRow(rows, i);
    if (constant) out_.put(" 1 Constant = 1 ;\n");
  }

 private:
  // Names that would not be read back as names give way to generic ones.
  void rejectOddNames() {
    for (int j = 0; j < data_.numVars() && !names_.replacesVars(); ++j) {
      const std::string_view name = names_.var(j);
      double number = 0;
      const bool odd = name.empty() || name.find_first_of(";<>=") != std::string_view::npos ||
                       std::string_view("+-~*").find(name.front()) != std::string_view::npos ||
                       parseNumber(name, number) || (data_.objCon != 0 && name == "Constant");
      if (odd) names_.rejectVars("variable", name);
    }
  }

  std::string name(int j) {
    if (names_.replacesVars()) return numbered("x", j);
    return std::string(names_.var(j));
  }

  void begin(std::string_view text) {
    out_.put(text);
    length_ = text.size();
    first_ = true;
  }

  void term(double value, const std::string &variable) {
    NumberText text;
    const std::string_view number = opbNumber(std::fabs(value), text);
    const std::string_view sign = value < 0 ? " -" : first_ ? "" : " +";
    const std::size_t size = sign.size() + number.size() + variable.size() + 2;
    if (length_ >= 3 && length_ + size >= 76) {
      out_.put("\n  ");
      length_ = 2;
    }
    out_.put(sign).put(' ').put(number).put(' ').put(variable);
    length_ += size;
    first_ = false;
  }

  // Minimization as it is stored: a maximized objective appears negated.
  void writeObjective() {
    bool integral = data_.objCon == std::trunc(data_.objCon);
    begin("min:");
    for (int j = 0; j < data_.numVars(); ++j) {
      if (data_.obj[j] == 0) continue;
      integral = integral && data_.obj[j] == std::trunc(data_.obj[j]);
      term(data_.obj[j], name(j));
    }
    // Variables that occur nowhere are kept by a term of their own.
    for (int j = 0; j < data_.numVars(); ++j)
      if (data_.obj[j] == 0 && data_.a.length(j) == 0) term(0, name(j));
    if (data_.objCon != 0) term(data_.objCon, "Constant");
    out_.put(" ;\n");
    if (!integral)
      model_.env().log("Warning: printing non-integral value in objective in opb format\n");
  }

  void writeRow(const SparseMatrix &rows, int i) {
    const double sign = data_.sense[i] == '<' ? -1 : 1;
    begin("");
    bool integral = true;
    for (NzIndex e = rows.start[i]; e < rows.start[i + 1]; ++e) {
      integral = integral && rows.value[e] == std::trunc(rows.value[e]);
      term(sign * rows.value[e], name(rows.index[e]));
    }
    if (rows.length(i) == 0 && data_.numVars() > 0) term(0, name(0));
    NumberText text;
    const double rhs = data_.rhs[i] == 0 ? 0.0 : sign * data_.rhs[i];
    out_.put(data_.sense[i] == '=' ? " = " : " >= ").put(opbNumber(rhs, text)).put(" ;\n");
    if (!integral)
      model_.env().log("Warning: printing non-integral value in constraint in opb format\n");
    if (rhs != std::trunc(rhs))
      model_.env().log(
          "Warning: printing non-integral right hand side in constraint in opb format\n");
  }

  Model &model_;
  const ModelData &data_;
  TextWriter &out_;
  WriterNames names_;
  std::size_t length_ = 0;
  bool first_ = true;
};

}  // namespace

void writeOpb(Model &model, const char *filename) {
  const ModelData &data = model.data();
  const bool nonlinear = data.q.count() > 0 || data.numQConstrs() > 0 || !data.cones.empty() ||
                         data.numSos() > 0 || data.numGenConstrs() > 0 || !data.pwl.empty() ||
                         !data.objectives.empty() || !data.scenarios.empty();
  if (nonlinear)
    throw Error(TVK_ERROR_INVALID_ARGUMENT, "Unable to write nonlinear data in OPB format");
  for (int j = 0; j < data.numVars(); ++j)
    if (data.vtype[j] != 'B' || data.lb[j] > 0 || data.ub[j] < 1)
      throw Error(TVK_ERROR_INVALID_ARGUMENT, "Unable to write non-binary variables in OPB format");
  WriteStream stream(filename, kCannotWrite);
  OpbWriter(model, stream.text()).write();
  stream.close();
}

}  // namespace tarvik
