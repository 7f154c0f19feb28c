#include "io/basis_file.h"

#include <string>

#include "base/number_format.h"
#include "io/attributes.h"
#include "io/element_lookup.h"
#include "io/file_streams.h"
#include "io/writer_names.h"

namespace tarvik {

namespace {

constexpr std::size_t kMaxLine = 2000;

struct Statuses {
  Vec<int> vars, constrs;
};

// Pairs each basic variable with the next constraint whose slack is nonbasic, on the side that
// the slack rests on.
void putStatuses(Model &model, WriterNames &names, const Statuses &basis, TextWriter &out) {
  const int numVars = static_cast<int>(basis.vars.size());
  const int numConstrs = static_cast<int>(basis.constrs.size());
  int next = 0;
  for (int j = 0; j < numVars; ++j) {
    if (basis.vars[j] < 0) continue;
    while (next < numConstrs && basis.constrs[next] >= 0) ++next;
    if (next < numConstrs) {
      out.put(" XL ").putPadded(names.var(j)).put("  ").putPadded(names.constr(next++)).put('\n');
    } else if (model.data().q.count() > 0) {
      out.put(" BS ").putPadded(names.var(j)).put('\n');
    } else {
      break;
    }
  }
  for (int j = 0; j < numVars; ++j)
    if (basis.vars[j] == TVK_NONBASIC_UPPER) out.put(" UL ").putPadded(names.var(j)).put('\n');
}

class BasisReader {
 public:
  explicit BasisReader(Model &model)
      : model_(model), variables_(model, NameKind::Var), constraints_(model, NameKind::Constr) {
    const ModelData &data = model.data();
    basis_.constrs.assign(data.numConstrs(), TVK_BASIC);
    basis_.vars.resize(data.numVars());
    for (int j = 0; j < data.numVars(); ++j)
      basis_.vars[j] =
          data.lb[j] <= -kInf && data.ub[j] >= kInf ? TVK_SUPERBASIC : TVK_NONBASIC_LOWER;
  }

  void readHeader(std::string_view line) {
    std::string_view field;
    std::string_view words[64];
    int count = 0;
    while (nextField(line, field)) {
      words[count % 64] = field;
      ++count;
    }
    // NAME model n Variables m Constraints; the model name may hold blanks.
    int cols = 0, rows = 0;
    const auto last = [&](int k) { return words[(count - k) % 64]; };
    if (count < 5 || last(1) != "Constraints" || last(3) != "Variables" ||
        !parseInteger(last(2), rows) || !parseInteger(last(4), cols))
      return;
    if (cols != model_.data().numVars() || rows != model_.data().numConstrs())
      throw Error(TVK_ERROR_FILE_READ, "Cannot read a basis for a model with %d cols and %d rows",
                  cols, rows);
  }

  void readLine(std::string_view line) {
    std::string_view code, name, rowName;
    if (!isBlank(line.front()) || !nextField(line, code)) return;
    const bool exchange = equalIgnoringCase(code, "XU") || equalIgnoringCase(code, "XL");
    const bool upper = equalIgnoringCase(code, "UL"), lower = equalIgnoringCase(code, "LL");
    const bool basic = equalIgnoringCase(code, "BS");
    if (!exchange && !upper && !lower && !basic) return;
    nextField(line, name);
    const int j = findVar(name);
    basis_.vars[j] = upper ? TVK_NONBASIC_UPPER : lower ? TVK_NONBASIC_LOWER : TVK_BASIC;
    if (!exchange) return;
    nextField(line, rowName);
    basis_.constrs[findConstr(rowName)] =
        (code[1] | 0x20) == 'u' ? TVK_NONBASIC_UPPER : TVK_NONBASIC_LOWER;
  }

  void apply() {
    Env &env = model_.env();
    if (defaultVars_) env.log("Warning: default variable names used to read basis file\n");
    if (defaultConstrs_) env.log("Warning: default constraint names used to read basis file\n");
    const auto set = [&](const char *attribute, const Vec<int> &values) {
      if (!values.empty())
        checkCall(model_, TVKsetintattrarray(handleOf(model_), attribute, 0,
                                             static_cast<int>(values.size()), values.data()));
    };
    set("VBasis", basis_.vars);
    set("CBasis", basis_.constrs);
  }

 private:
  // One of the letters, then digits up to the end or an opening parenthesis.
  static int defaultIndex(std::string_view name, std::string_view letters, int count) {
    int index = -1;
    if (name.size() < 2 || letters.find(name.front()) == std::string_view::npos) return -1;
    if (!parseInteger(name.substr(1, name.find('(') - 1), index)) return -1;
    return index >= 0 && index < count ? index : -1;
  }

  int findVar(std::string_view name) {
    int j = variables_.find(name);
    if (j < 0 && model_.data().varNames.empty())
      j = defaultIndex(name, "BCIx", model_.data().numVars());
    if (j < 0) failName("variable", name);
    defaultVars_ = defaultVars_ || model_.data().varNames.empty();
    return j;
  }
  int findConstr(std::string_view name) {
    int i = constraints_.find(name);
    if (i < 0 && model_.data().constrNames.empty())
      i = defaultIndex(name, "Rc", model_.data().numConstrs());
    if (i < 0) failName("row", name);
    defaultConstrs_ = defaultConstrs_ || model_.data().constrNames.empty();
    return i;
  }
  [[noreturn]] void failName(const char *kind, std::string_view name) {
    const std::string text(name.substr(0, 300));
    model_.env().log("Error: %s name %s doesn't exist\n", kind, text.c_str());
    throw Error(TVK_ERROR_INVALID_ARGUMENT, "MPS reader: %s name %s doesn't exist", kind,
                text.c_str());
  }

  Model &model_;
  ElementLookup variables_, constraints_;
  Statuses basis_;
  bool defaultVars_ = false, defaultConstrs_ = false;
};

}  // namespace

void writeBasisFile(Model &model, const char *filename) {
  const ModelData &data = model.data();
  Statuses basis;
  try {
    basis.vars = getInts(model, "VBasis", data.numVars());
    basis.constrs = getInts(model, "CBasis", data.numConstrs());
  } catch (const Error &error) {
    failInstead(model, error.code(), "Unable to retrieve basis for current model");
  }
  WriteStream stream(filename, kCannotOpenForOutput);
  WriterNames names(model, false);
  names.announce("basis");
  TextWriter &out = stream.text();
  out.put("NAME ").put(data.name).format(" %d Variables %d Constraints\n", data.numVars(),
                                         data.numConstrs());
  putStatuses(model, names, basis, out);
  out.put("ENDATA\n");
  stream.close();
}

void readBasisFile(Model &model, const char *filename) {
  InputFile file;
  if (!file.open(filename)) {
    model.env().log("Error: Unable to open file %s\n", filename);
    if (!file.error().empty()) throw Error(TVK_ERROR_FILE_READ, "%s", file.error().c_str());
    throw Error(TVK_ERROR_FILE_READ, "Unable to open file %s", filename);
  }
  TextReader reader(file);
  BasisReader basis(model);
  for (std::string_view line; reader.nextLine(line);) {
    if (line.size() > kMaxLine)
      throw Error(TVK_ERROR_FILE_READ, "Unable to parse long line (length %d > limit %d)",
                  static_cast<int>(line.size()), static_cast<int>(kMaxLine));
    if (trimmed(line).empty()) continue;
    if (line.front() == 'E') break;
    if (line.substr(0, 4) == "NAME") basis.readHeader(line);
    basis.readLine(line);
  }
  if (!file.close()) throw Error(TVK_ERROR_FILE_READ, "Unable to read file '%s'", filename);
  basis.apply();
}

}  // namespace tarvik
