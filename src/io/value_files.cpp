#include "io/value_files.h"

#include <cmath>

#include "io/attributes.h"
#include "io/element_lookup.h"
#include "io/file_streams.h"

namespace tarvik {

namespace {

constexpr const char *kValueFormat = "[var_name] [float_value]";
constexpr const char *kHintFormat = "[var_name] [float_value] [integer_value]";

// Runs read(lines) over a file; failures that left no message of their own get `context`.
template <class Read>
void readValueFile(const char *filename, const char *context, Read &&read) {
  ReadStream stream(filename);
  try {
    ValueLines lines(stream.text());
    read(lines);
    stream.close();
  } catch (const Error &error) {
    if (!error.message().empty()) throw;
    throw Error(error.code(), "%s", context);
  }
}

// Fetches what a writer needs; a failure becomes `message`.
template <class Fetch>
auto fetchOr(Model &model, const char *message, Fetch &&fetch) {
  try {
    return fetch();
  } catch (const Error &error) {
    failInstead(model, error.code(), message);
  }
}

int nameLength(std::string_view name) { return static_cast<int>(name.size()); }

struct StartValues {
  Vec<int> index;
  Vec<double> value;

  void flush(Model &model) {
    if (index.empty()) return;
    const IntParamScope newStart(model.env(), Int::StartNumber, -1);
    checkCall(model, TVKsetdblattrlist(handleOf(model), "Start", static_cast<int>(index.size()),
                                       index.data(), value.data()));
    index.clear();
    value.clear();
  }
};

}  // namespace

void putValueLines(TextWriter &out, WriterNames &names, const Vec<double> &values) {
  for (int j = 0; j < static_cast<int>(values.size()); ++j)
    if (values[j] != kUndefined)
      putFirstName(out, names.var(j)).put(' ').putNumber(values[j]).put('\n');
}

void writeSolutionFile(Model &model, const char *filename) {
  const bool fromPool = model.data().isMip() && model.env().get(Int::SolutionNumber) != 0;
  double objective = 0;
  checkCall(model, TVKgetdblattr(handleOf(model), fromPool ? "PoolObjVal" : "ObjVal", &objective));
  const Vec<double> x = getDoubles(model, fromPool ? "Xn" : "X", model.data().numVars());
  WriteStream stream(filename, kCannotOpenForOutput);
  WriterNames names(model, false, false);
  names.announce("solution", false);
  TextWriter &out = stream.text();
  out.put("# Solution for model ").put(model.data().name).put('\n');
  out.put("# Objective value = ").putNumber(objective).put('\n');
  putValueLines(out, names, x);
  stream.close();
}

// Several stored starts are written as they are; otherwise the current solution, or else the one
// stored start.
void writeStartFile(Model &model, const char *filename) {
  const Vec<Vec<double>> &starts = model.data().starts;
  Vec<double> x(model.data().numVars());
  const bool solved = starts.size() < 2 && tryDoubles(model, "X", x);
  if (!solved && starts.empty())
    throw Error(TVK_ERROR_DATA_NOT_AVAILABLE, "No MIP start available");
  WriteStream stream(filename, kCannotOpenForOutput);
  WriterNames names(model, false, false);
  names.announce("MIP start", false);
  const auto block = [&](const Vec<double> &values) {
    stream.text().put("# MIP start\n");
    putValueLines(stream.text(), names, values);
  };
  if (solved)
    block(x);
  else
    for (const Vec<double> &start : starts) block(start);
  stream.close();
}

void writeHintFile(Model &model, const char *filename) {
  const int count = model.data().numVars();
  const auto [values, priorities] = fetchOr(model, "No MIP hints available", [&] {
    return std::pair(
        getDoubles(model, "VarHintVal", count),
        model.data().hintPri.empty() ? Vec<int>(count) : getInts(model, "VarHintPri", count));
  });
  WriteStream stream(filename, kCannotOpenForOutput);
  WriterNames names(model, false, false);
  names.announce("MIP hint", false);
  TextWriter &out = stream.text();
  out.put("# MIP variable hints\n");
  for (int j = 0; j < count; ++j)
    if (values[j] != kUndefined)
      putFirstName(out, names.var(j)).put(' ').putNumber(values[j]).format(" %d\n", priorities[j]);
  stream.close();
}

void writePriorityFile(Model &model, const char *filename) {
  const int count = model.data().numVars();
  const Vec<int> priorities = fetchOr(model, "No priorities available",
                                      [&] { return getInts(model, "BranchPriority", count); });
  WriteStream stream(filename, kCannotOpenForOutput);
  WriterNames names(model, false, false);
  names.announce("MIP branching priority", false);
  TextWriter &out = stream.text();
  out.put("# MIP branch priorities\n");
  for (int j = 0; j < count; ++j) putFirstName(out, names.var(j)).format(" %d\n", priorities[j]);
  stream.close();
}

void writeSummaryFile(Model &model, const char *filename) {
  WriteStream stream(filename, kCannotOpenForOutput);
  TextWriter &out = stream.text();
  const auto putInt = [&](const char *key, const char *attribute) {
    int value = 0;
    if (tryInt(model, attribute, value)) out.format("%s=%d\n", key, value);
  };
  const auto putDouble = [&](const char *format, const char *attribute) {
    double value = 0;
    if (tryDouble(model, attribute, value)) out.format(format, value);
  };
  const auto putExact = [&](const char *key, const char *attribute) {
    double value = 0;
    if (tryDouble(model, attribute, value)) out.put(key).putNumber(value).put('\n');
  };
  putInt("STATUS", "Status");
  putInt("SOLCOUNT", "SolCount");
  putExact("OBJVAL=", "ObjVal");
  putExact("OBJBOUND=", "ObjBound");
  putDouble("RUNTIME=%.2f\n", "Runtime");
  putDouble("WORK=%.2f\n", "Work");
  putDouble("ITERCOUNT=%.0f\n", "IterCount");
  putDouble("NODECOUNT=%.0f\n", "NodeCount");
  stream.close();
}

void readStartFile(Model &model, const char *filename) {
  readValueFile(filename, "Problem reading MIP start", [&](ValueLines &lines) {
    ElementLookup variables(model, NameKind::Var);
    StartValues start;
    int number = static_cast<int>(model.data().starts.size());
    while (lines.next()) {
      if (lines.sawTitle("# MIP start") && !start.index.empty()) {
        start.flush(model);
        ++number;
      }
      const double value = lines.number(1, kValueFormat);
      if (lines.count() != 2) lines.failFormat(kValueFormat);
      const std::string_view name = lines.field(0);
      const int j = variables.find(name);
      if (j < 0) {
        model.env().log("Unknown variable '%.*s' in MIP start %d - ignored\n", nameLength(name),
                        name.data(), number);
        continue;
      }
      start.index.push_back(j);
      start.value.push_back(value);
    }
    start.flush(model);
  });
}

void readHintFile(Model &model, const char *filename) {
  readValueFile(filename, "Problem reading MIP hints", [&](ValueLines &lines) {
    ElementLookup variables(model, NameKind::Var);
    Vec<int> index, priorityIndex, priority;
    Vec<double> value;
    while (lines.next()) {
      const double hint = lines.number(1, kHintFormat);
      const bool hasPriority = lines.count() > 2;
      const int level = hasPriority ? lines.integer(2, kHintFormat) : 0;
      if (lines.count() > 3) lines.failFormat(kHintFormat);
      const std::string_view name = lines.field(0);
      const int j = variables.find(name);
      if (j < 0) {
        model.env().log("Unknown variable '%.*s' in MIP hint - ignored\n", nameLength(name),
                        name.data());
        continue;
      }
      index.push_back(j);
      value.push_back(hint);
      if (!hasPriority) continue;
      priorityIndex.push_back(j);
      priority.push_back(level);
    }
    if (!index.empty())
      checkCall(model,
                TVKsetdblattrlist(handleOf(model), "VarHintVal", static_cast<int>(index.size()),
                                  index.data(), value.data()));
    if (!priority.empty())
      checkCall(model,
                TVKsetintattrlist(handleOf(model), "VarHintPri", static_cast<int>(priority.size()),
                                  priorityIndex.data(), priority.data()));
  });
}

void readPriorityFile(Model &model, const char *filename) {
  readValueFile(filename, "Problem reading priority file", [&](ValueLines &lines) {
    ElementLookup variables(model, NameKind::Var);
    Vec<int> index, priority;
    while (lines.next()) {
      const double value = lines.number(1, kValueFormat);
      if (lines.count() != 2) lines.failFormat(kValueFormat);
      const std::string_view name = lines.field(0);
      const int j = variables.find(name);
      if (j < 0) {
        model.env().log("Unknown variable '%.*s' in priority file - ignored\n", nameLength(name),
                        name.data());
      } else if (value != std::trunc(value) || std::fabs(value) > kMaxInt) {
        model.env().log("Warning: Branch priority must be integral - ignoring value '%g'\n", value);
      } else {
        index.push_back(j);
        priority.push_back(static_cast<int>(value));
      }
    }
    if (!index.empty())
      checkCall(model,
                TVKsetintattrlist(handleOf(model), "BranchPriority", static_cast<int>(index.size()),
                                  index.data(), priority.data()));
  });
}

}  // namespace tarvik
