#include "io/attribute_file.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "base/number_format.h"
#include "io/attributes.h"
#include "io/element_lookup.h"
#include "io/file_streams.h"
#include "io/value_files.h"
#include "io/value_lines.h"

namespace tarvik {

namespace {

enum class Element { Var, Constr, QConstr, Sos, GenConstr };
enum class Value { Int, Dbl, Tag };

// A section whose lines are one element and one value.
struct PlainSection {
  const char *name;
  const char *attribute;
  Element element;
  Value value;
  int standard;  // integer values that need no line
};

constexpr PlainSection kPlainSections[] = {
    {"PI", "Pi", Element::Constr, Value::Dbl, 0},
    {"PARTITION", "Partition", Element::Var, Value::Int, 0},
    {"BRANCHPRIORITY", "BranchPriority", Element::Var, Value::Int, 0},
    {"POOLIGNORE", "PoolIgnore", Element::Var, Value::Int, 0},
    {"IISLBFORCE", "IISLBForce", Element::Var, Value::Int, -1},
    {"IISUBFORCE", "IISUBForce", Element::Var, Value::Int, -1},
    {"IISCONSTRFORCE", "IISConstrForce", Element::Constr, Value::Int, -1},
    {"IISSOSFORCE", "IISSOSForce", Element::Sos, Value::Int, -1},
    {"IISQCONSTRFORCE", "IISQConstrForce", Element::QConstr, Value::Int, -1},
    {"IISGENCONSTRFORCE", "IISGenConstrForce", Element::GenConstr, Value::Int, -1},
    {"LAZYCONSTRS", "Lazy", Element::Constr, Value::Int, 0},
    {"PSTART", "PStart", Element::Var, Value::Dbl, 0},
    {"DSTART", "DStart", Element::Constr, Value::Dbl, 0},
    {"VTAG", "VTag", Element::Var, Value::Tag, 0},
    {"CTAG", "CTag", Element::Constr, Value::Tag, 0},
    {"QCTAG", "QCTag", Element::QConstr, Value::Tag, 0}};

const PlainSection *plainSection(std::string_view name) {
  for (const PlainSection &section : kPlainSections)
    if (name == section.name) return &section;
  return nullptr;
}

int countOf(const ModelData &data, Element element) {
  switch (element) {
    case Element::Var:
      return data.numVars();
    case Element::Constr:
      return data.numConstrs();
    case Element::QConstr:
      return data.numQConstrs();
    case Element::Sos:
      return data.numSos();
    default:
      return data.numGenConstrs();
  }
}

constexpr const char *kElementWords[] = {"Variable", "Constraint", "Quadratic constraint",
                                         "SOS constraint", "General constraint"};

// What a line of a section is expected to look like.
const char *lineFormat(Element element, Value value) {
  switch (element) {
    case Element::Var:
      return value == Value::Int   ? "[var_name] [integer]"
             : value == Value::Dbl ? "[var_name] [double]"
                                   : "[var_name] \"[tag]\"";
    case Element::Constr:
      return value == Value::Int   ? "[constr_name] [integer]"
             : value == Value::Dbl ? "[constr_name] [double]"
                                   : "[constr_name] \"[tag]\"";
    case Element::QConstr:
      return value == Value::Int ? "[qconstr_name] [integer]" : "[qconstr_name] \"[tag]\"";
    case Element::Sos:
      return "[sos_idx] [integer]";
    default:
      return "[genconstr_idx] [integer]";
  }
}

class Writer {
 public:
  Writer(Model &model, TextWriter &out)
      : model_(model), data_(model.data()), out_(out), names_(model, false) {
    names_.announce("attributes");
  }

  void write() {
    out_.put("# Attribute file for model ").put(data_.name.empty() ? "[noname]" : data_.name);
    out_.format("\nTVK_ATTR_FILE_VERSION %02d%02d%02d\n", 11, 0, 3);
    int fingerprint = 0;
    checkCall(model_, TVKgetintattr(handleOf(model_), "Fingerprint", &fingerprint));
    out_.format("SECTION FINGERPRINT\n0x%08x\n", static_cast<unsigned>(fingerprint));
    int solutions = 0;
    if (tryInt(model_, "SolCount", solutions) && solutions > 0) writeSolution();
    for (const char *name : {"PI"}) writePlain(name);
    for (const Vec<double> &start : data_.starts) {
      out_.put("SECTION MIPSTART\n");
      putValueLines(out_, names_, start);
    }
    writePlain("PARTITION");
    writeHints();
    for (const char *name :
         {"BRANCHPRIORITY", "POOLIGNORE", "IISLBFORCE", "IISUBFORCE", "IISCONSTRFORCE",
          "IISSOSFORCE", "IISQCONSTRFORCE", "IISGENCONSTRFORCE", "LAZYCONSTRS"})
      writePlain(name);
    writeBasis();
    for (const char *name : {"PSTART", "DSTART", "VTAG", "CTAG", "QCTAG"}) writePlain(name);
  }

 private:
  void putElement(Element element, int k) {
    switch (element) {
      case Element::Var:
        putFirstName(out_, names_.var(k));
        break;
      case Element::Constr:
        putFirstName(out_, names_.constr(k));
        break;
      case Element::QConstr:
        putFirstName(out_, names_.qconstr(k));
        break;
      default:
        out_.format("%d", k);
    }
  }

  void writeSolution() {
    Vec<double> x(data_.numVars());
    if (!tryDoubles(model_, "X", x)) return;
    out_.put("SECTION SOLUTION\n");
    putValueLines(out_, names_, x);
  }

  void writePlain(const char *name) {
    const PlainSection &section = *plainSection(name);
    const int count = countOf(data_, section.element);
    if (count == 0) return;
    if (section.value == Value::Int) {
      Vec<int> values(count);
      if (!tryInts(model_, section.attribute, values)) return;
      putLines(
          section, count, [&](int k) { return values[k] != section.standard; },
          [&](int k) { out_.format(" %d\n", values[k]); });
    } else if (section.value == Value::Dbl) {
      Vec<double> values(count);
      if (!tryDoubles(model_, section.attribute, values)) return;
      putLines(
          section, count, [&](int k) { return values[k] < kUserInf; },
          [&](int k) { out_.put(' ').putNumber(values[k]).put('\n'); });
    } else {
      Vec<char *> values(count);
      if (TVKgetstrattrarray(handleOf(model_), section.attribute, 0, count, values.data())) return;
      putLines(
          section, count, [&](int k) { return values[k] && *values[k]; },
          [&](int k) { out_.put(" \"").put(oneLine(values[k])).put("\"\n"); });
    }
  }

  template <class Wanted, class Put>
  void putLines(const PlainSection &section, int count, Wanted &&wanted, Put &&put) {
    bool any = false;
    for (int k = 0; k < count; ++k) {
      if (!wanted(k)) continue;
      if (!any) out_.put("SECTION ").put(section.name).put('\n');
      any = true;
      putElement(section.element, k);
      put(k);
    }
  }

  // A tag ends with its line; breaks of lines within it turn into blanks.
  static std::string oneLine(std::string tag) {
    for (char &c : tag)
      if (c == '\n' || c == '\r') c = ' ';
    return tag;
  }

  void writeHints() {
    if (data_.hintVal.empty()) return;
    out_.put("SECTION VARHINTS\n");
    for (int j = 0; j < data_.numVars(); ++j)
      if (data_.hintVal[j] != kUndefined)
        putFirstName(out_, names_.var(j))
            .put(' ')
            .putNumber(data_.hintVal[j])
            .format(" %d\n", data_.hintPri.empty() ? 0 : data_.hintPri[j]);
  }

  // Variables first, then constraints, each with its status; the kind leads the line.
  void writeBasis() {
    Vec<int> vars(data_.numVars()), constrs(data_.numConstrs());
    if (!tryInts(model_, "VBasis", vars) || !tryInts(model_, "CBasis", constrs)) return;
    out_.put("SECTION BASIS\n");
    for (int j = 0; j < data_.numVars(); ++j)
      putFirstName(out_.put("V "), names_.var(j)).format(" %d\n", vars[j]);
    for (int i = 0; i < data_.numConstrs(); ++i)
      putFirstName(out_.put("C "), names_.constr(i)).format(" %d\n", constrs[i]);
  }

  Model &model_;
  const ModelData &data_;
  TextWriter &out_;
  WriterNames names_;
};

class Reader {
 public:
  Reader(Model &model, const char *filename, ValueLines &lines)
      : model_(model), filename_(filename), lines_(lines) {}

  void read() {
    if (!lines_.next()) throw Error(TVK_ERROR_FILE_READ, "Attribute file lacks fingerprint");
    readVersion();
    if (lines_.count() < 2 || !lines_.begins("SECTION") || lines_.field(1) != "FINGERPRINT")
      throw Error(TVK_ERROR_FILE_READ, "Attribute file lacks fingerprint");
    readFingerprint();
    bool more = lines_.next();
    while (more) {
      if (!lines_.begins("SECTION") || lines_.count() != 2)
        lines_.failFormat("SECTION [section_name]");
      more = readSection(std::string(lines_.field(1)));
    }
  }

 private:
  void readVersion() {
    if (lines_.field(0) != "TVK_ATTR_FILE_VERSION") {
      model_.env().log(
          "Warning: no TVK_ATTR_FILE_VERSION header in file %s, assuming version %02d%02d%02d\n",
          filename_, 11, 0, 3);
      return;
    }
    int version = 0;
    if (lines_.count() != 2 || !parseInteger(lines_.field(1), version) || version > 119999)
      throw Error(TVK_ERROR_FILE_READ, "Version %s of attribute file unsupported",
                  lines_.count() > 1 ? std::string(lines_.field(1)).c_str() : "");
    if (!lines_.next()) throw Error(TVK_ERROR_FILE_READ, "Attribute file lacks fingerprint");
  }

  void readFingerprint() {
    if (!lines_.next()) lines_.failFormat("hex_number");
    const std::string text(lines_.field(0));
    char *end = nullptr;
    const unsigned long value = std::strtoul(text.c_str(), &end, 16);
    if (text.size() < 3 || text.compare(0, 2, "0x") != 0 || *end != '\0' || value > 0xffffffffUL)
      lines_.failFormat("hex_number");
    int fingerprint = 0;
    checkCall(model_, TVKgetintattr(handleOf(model_), "Fingerprint", &fingerprint));
    if (static_cast<unsigned>(fingerprint) != value)
      throw Error(TVK_ERROR_FILE_READ,
                  "Attribute file fingerprint 0x%08x and model fingerprint 0x%08x mismatch",
                  static_cast<unsigned>(value), static_cast<unsigned>(fingerprint));
    model_.env().log("Fingerprint check OK\n");
  }

  // Reads up to the next section; false at the end of the file.
  template <class Line>
  bool eachLine(Line &&line, int limit = ValueLines::kMaxFields + 1) {
    while (lines_.next(limit)) {
      if (lines_.begins("SECTION")) return true;
      line();
    }
    return false;
  }

  bool readSection(const std::string &name) {
    if (const PlainSection *section = plainSection(name)) return readPlain(*section);
    if (name == "SOLUTION" || name == "MIPSTART") return readStart(name == "SOLUTION");
    if (name == "VARHINTS") return readHints();
    if (name == "BASIS") return readBasis();
    throw Error(TVK_ERROR_FILE_READ, "Unrecognized SECTION type `%s`", name.c_str());
  }

  // The element a line is about, -1 when the model has none of that name.
  int element(Element kind, std::string_view name) {
    int k = -1;
    if (kind == Element::Sos || kind == Element::GenConstr) {
      if (!parseInteger(name, k) || k < 0 || k >= countOf(model_.data(), kind)) k = -1;
    } else {
      std::optional<ElementLookup> &lookup = lookups_[static_cast<int>(kind)];
      if (!lookup)
        lookup.emplace(model_, kind == Element::Var      ? NameKind::Var
                               : kind == Element::Constr ? NameKind::Constr
                                                         : NameKind::QConstr);
      k = lookup->find(name);
    }
    if (k < 0)
      model_.env().log("%s %.*s not found in model, ignoring\n",
                       kElementWords[static_cast<int>(kind)], static_cast<int>(name.size()),
                       name.data());
    return k;
  }

  void check(int code) {
    if (code == 0) return;
    failInstead(model_, code, "Problem reading problem attribute");
  }

  bool readPlain(const PlainSection &section) {
    Vec<int> index, ints;
    Vec<double> doubles;
    NameList tags;
    const char *format = lineFormat(section.element, section.value);
    const bool settable = std::string_view(section.name) != "PI";
    const bool more = eachLine(
        [&] {
          const int k = element(section.element, lines_.field(0));
          if (section.value == Value::Tag && lines_.count() < 2) {
            model_.env().log("%s %s no tag found, ignoring\n",
                             kElementWords[static_cast<int>(section.element)],
                             std::string(lines_.field(0)).c_str());
            return;
          }
          const int integer = section.value == Value::Int ? lines_.integer(1, format) : 0;
          const double number = section.value == Value::Dbl ? lines_.number(1, format) : 0;
          if (k < 0) return;
          index.push_back(k);
          ints.push_back(integer);
          doubles.push_back(number);
          if (section.value == Value::Tag) tags.append(lines_.rest(1));
        },
        section.value == Value::Tag ? 2 : ValueLines::kMaxFields + 1);
    if (index.empty() || !settable) return more;
    const int count = static_cast<int>(index.size());
    TVKmodel *handle = handleOf(model_);
    if (section.value == Value::Int) {
      check(TVKsetintattrlist(handle, section.attribute, count, index.data(), ints.data()));
    } else if (section.value == Value::Dbl) {
      check(TVKsetdblattrlist(handle, section.attribute, count, index.data(), doubles.data()));
    } else {
      Vec<const char *> texts;
      for (int k = 0; k < count; ++k) texts.push_back(tags.get(k));
      check(TVKsetstrattrlist(handle, section.attribute, count, index.data(), texts.data()));
    }
    return more;
  }

  // A solution is kept as a start of a mixed-integer model; a continuous one has no use for it.
  bool readStart(bool solution) {
    Vec<int> index;
    Vec<double> values;
    const bool more = eachLine([&] {
      const double value = lines_.number(1, "[var_name] [double]");
      const int j = element(Element::Var, lines_.field(0));
      if (j < 0) return;
      index.push_back(j);
      values.push_back(value);
    });
    if (index.empty() || (solution && !model_.data().isMip())) return more;
    const IntParamScope newStart(model_.env(), Int::StartNumber, -1);
    check(TVKsetdblattrlist(handleOf(model_), "Start", static_cast<int>(index.size()), index.data(),
                            values.data()));
    return more;
  }

  bool readHints() {
    constexpr const char *kFormat = "[var_name] [double] [integer]";
    Vec<int> index, priorities;
    Vec<double> values;
    const bool more = eachLine([&] {
      const double value = lines_.number(1, kFormat);
      const int priority = lines_.count() > 2 ? lines_.integer(2, kFormat) : 0;
      const int j = element(Element::Var, lines_.field(0));
      if (j < 0) return;
      index.push_back(j);
      values.push_back(value);
      priorities.push_back(priority);
    });
    if (index.empty()) return more;
    const int count = static_cast<int>(index.size());
    check(TVKsetdblattrlist(handleOf(model_), "VarHintVal", count, index.data(), values.data()));
    check(
        TVKsetintattrlist(handleOf(model_), "VarHintPri", count, index.data(), priorities.data()));
    return more;
  }

  bool readBasis() {
    constexpr const char *kFormat = "[V or C] [name] [integer]";
    Vec<int> vars, varStatus, constrs, constrStatus;
    const bool more = eachLine([&] {
      if (lines_.count() != 3 || (lines_.field(0) != "V" && lines_.field(0) != "C"))
        lines_.failFormat(kFormat);
      const bool isVar = lines_.field(0) == "V";
      const int status = lines_.integer(2, kFormat);
      const int k = element(isVar ? Element::Var : Element::Constr, lines_.field(1));
      if (k < 0) return;
      (isVar ? vars : constrs).push_back(k);
      (isVar ? varStatus : constrStatus).push_back(status);
    });
    const auto set = [&](const char *attribute, const Vec<int> &index, const Vec<int> &values) {
      if (!index.empty())
        check(TVKsetintattrlist(handleOf(model_), attribute, static_cast<int>(index.size()),
                                index.data(), values.data()));
    };
    set("VBasis", vars, varStatus);
    set("CBasis", constrs, constrStatus);
    return more;
  }

  Model &model_;
  const char *filename_;
  ValueLines &lines_;
  std::optional<ElementLookup> lookups_[3];
};

}  // namespace

void writeAttributeFile(Model &model, const char *filename) {
  WriteStream stream(filename, kCannotOpenForOutput);
  Writer(model, stream.text()).write();
  stream.closeOrTellNumber();
}

void readAttributeFile(Model &model, const char *filename) {
  ReadStream stream(filename);
  ValueLines lines(stream.text());
  Reader(model, filename, lines).read();
  stream.close();
}

}  // namespace tarvik
