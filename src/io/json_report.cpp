#include "io/json_report.h"

#include <cmath>
#include <string>

#include "io/attributes.h"
#include "io/file_streams.h"

namespace tarvik {

namespace {

// Text with everything escaped that a JSON string may not hold as it is.
void putText(TextWriter &out, const char *text) {
  out.put('"');
  for (; *text; ++text) {
    if (*text == '"' || *text == '\\')
      out.put('\\').put(*text);
    else if (static_cast<unsigned char>(*text) < ' ')
      out.format("\\u%04x", static_cast<unsigned>(*text));
    else
      out.put(*text);
  }
  out.put('"');
}

// JSON has no infinity.
void putFinite(TextWriter &out, double value) {
  if (std::isnan(value))
    out.put("null");
  else
    out.putNumber(std::isfinite(value) ? value : std::copysign(kUserInf, value));
}

class JsonReport {
 public:
  JsonReport(Model &model, TextWriter &out)
      : model_(model),
        data_(model.data()),
        handle_(handleOf(model)),
        out_(out),
        tagged_(intAttr("NumTagged", 0) > 0),
        detail_(model.env().get(Int::JSONSolDetail) == 1) {}

  void write() {
    out_.put("{ \"SolutionInfo\": {");
    writeSummary();
    out_.put(" }, \"Vars\": [");
    writeVars();
    out_.put(" ], \"Constrs\": [");
    writeConstrs();
    out_.put(" ], \"QConstrs\": [");
    writeQConstrs();
    out_.put(" ] }\n");
  }

 private:
  int intAttr(const char *name, int otherwise) {
    int value = 0;
    return tryInt(model_, name, value) ? value : otherwise;
  }

  void key(const char *name) {
    out_.format("%s \"%s\": ", separator_, name);
    separator_ = ",";
  }
  void putInt(const char *name) {
    int value = 0;
    if (!tryInt(model_, name, value)) return;
    key(name);
    out_.format("%d", value);
  }
  void putDouble(const char *name) {
    double value = 0;
    if (!tryDouble(model_, name, value)) return;
    key(name);
    putFinite(out_, value);
  }
  // An array with the attribute's value for each setting of a parameter.
  void putSelected(const char *name, Int parameter, int count) {
    Vec<double> values(count);
    for (int k = 0; k < count; ++k) {
      const IntParamScope selected(model_.env(), parameter, k);
      if (!tryDouble(model_, name, values[k])) return;
    }
    key(name);
    putArray(values);
  }
  void putArray(const Vec<double> &values) {
    out_.put('[');
    for (std::size_t k = 0; k < values.size(); ++k) {
      if (k > 0) out_.put(", ");
      putFinite(out_, values[k]);
    }
    out_.put(']');
  }

  void writeSummary() {
    const int solutions = intAttr("SolCount", 0);
    const int objectives = static_cast<int>(data_.objectives.size());
    const int scenarios = static_cast<int>(data_.scenarios.size());
    putInt("Status");
    putDouble("Runtime");
    putDouble("Work");
    if (objectives > 0) {
      if (solutions > 0) putSelected("ObjNVal", Int::ObjNumber, objectives);
    } else if (solutions > 0) {
      putDouble("ObjVal");
      if (data_.isMip())
        for (const char *name : {"ObjBound", "ObjBoundC", "MIPGap", "IntVio"}) putDouble(name);
      putDouble("BoundVio");
      putDouble("ConstrVio");
    }
    if (scenarios > 0) {
      putSelected("ScenNObjVal", Int::ScenarioNumber, scenarios);
      putSelected("ScenNObjBound", Int::ScenarioNumber, scenarios);
    }
    putDouble("IterCount");
    putInt("BarIterCount");
    if (data_.isMip()) putDouble("NodeCount");
    putDouble("FarkasProof");
    putInt("SolCount");
    if (!data_.isMip() || solutions < 2) return;
    if (objectives > 0)
      putPoolObjectives(solutions, objectives);
    else
      putSelected("PoolObjVal", Int::SolutionNumber, solutions);
    putDouble("PoolObjBound");
  }

  void putPoolObjectives(int solutions, int objectives) {
    key("PoolObjVal");
    out_.put('[');
    for (int s = 0; s < solutions; ++s) {
      const IntParamScope solution(model_.env(), Int::SolutionNumber, s);
      Vec<double> values(objectives);
      for (int n = 0; n < objectives; ++n) {
        const IntParamScope objective(model_.env(), Int::ObjNumber, n);
        checkCall(model_, TVKgetdblattr(handle_, "ObjNVal", &values[n]));
      }
      if (s > 0) out_.put(", ");
      putArray(values);
    }
    out_.put(']');
  }

  // The vectors of an attribute for each setting of a parameter; empty when not available.
  Vec<Vec<double>> vectors(const char *name, Int parameter, int count, int size) {
    Vec<Vec<double>> all;
    for (int k = 0; k < count; ++k) {
      const IntParamScope selected(model_.env(), parameter, k);
      all.emplace_back(size);
      if (!tryDoubles(model_, name, all.back())) return {};
    }
    return all;
  }
  Vec<double> doubles(const char *name, int count) {
    Vec<double> values(count);
    if (!tryDoubles(model_, name, values)) values.clear();
    return values;
  }
  Vec<int> ints(const char *name, int count) {
    Vec<int> values(count);
    if (!tryInts(model_, name, values)) values.clear();
    return values;
  }

  static const char *tagOf(const NameList &tags, int k) { return tags.empty() ? "" : tags.get(k); }

  void valueOf(const char *name, const Vec<double> &values, int k) {
    if (values.empty()) return;
    key(name);
    putFinite(out_, values[k]);
  }
  void valueOf(const char *name, const Vec<int> &values, int k) {
    if (values.empty()) return;
    key(name);
    out_.format("%d", values[k]);
  }
  void acrossOf(const char *name, const Vec<Vec<double>> &all, int k) {
    Vec<double> values;
    for (const Vec<double> &vector : all) values.push_back(vector[k]);
    key(name);
    putArray(values);
  }

  void writeVars() {
    const int n = data_.numVars();
    const int solutions = intAttr("SolCount", 0);
    const int scenarios = static_cast<int>(data_.scenarios.size());
    const Vec<Vec<double>> scenarioX =
        scenarios > 0 ? vectors("ScenNX", Int::ScenarioNumber, scenarios, n) : Vec<Vec<double>>();
    const Vec<Vec<double>> poolX = data_.isMip() && solutions > 1 && scenarios == 0
                                       ? vectors("Xn", Int::SolutionNumber, solutions, n)
                                       : Vec<Vec<double>>();
    const Vec<double> x = solutions > 0 ? doubles("X", n) : Vec<double>();
    const Vec<double> ray = doubles("UnbdRay", n);
    const Vec<int> basis = ints("VBasis", n);
    const auto isZero = [&](int j) {
      for (const auto *all : {&scenarioX, &poolX})
        for (const Vec<double> &vector : *all)
          if (vector[j] != 0) return false;
      return x.empty() || x[j] == 0;
    };
    const char *between = "";
    for (int j = 0; j < n; ++j) {
      const char *tag = tagOf(data_.varTags, j);
      if ((tagged_ && !*tag) || (!detail_ && isZero(j))) continue;
      out_.put(between);
      if (tagged_) {
        out_.put(" { \"VTag\": [");
        putText(out_, tag);
        out_.put(']');
      } else {
        out_.put(" { \"VarName\": ");
        putText(out_, model_.varName(j));
      }
      between = ",";
      separator_ = ",";
      if (!scenarioX.empty())
        acrossOf("ScenNX", scenarioX, j);
      else
        valueOf("X", x, j);
      if (!poolX.empty()) acrossOf("Xn", poolX, j);
      valueOf("VBasis", basis, j);
      valueOf("UnbdRay", ray, j);
      out_.put(" }");
    }
  }

  void writeConstrs() {
    const int m = data_.numConstrs();
    const Vec<double> slack = doubles("Slack", m), farkas = doubles("FarkasDual", m);
    const Vec<double> pi = data_.isMip() ? Vec<double>() : doubles("Pi", m);
    const Vec<int> basis = ints("CBasis", m);
    const char *between = "";
    for (int i = 0; i < m; ++i) {
      const char *tag = tagOf(data_.constrTags, i);
      if (!*tag) continue;
      out_.put(between).put(" { \"CTag\": [");
      putText(out_, tag);
      out_.put(']');
      between = separator_ = ",";
      valueOf("Slack", slack, i);
      valueOf("Pi", pi, i);
      valueOf("CBasis", basis, i);
      valueOf("FarkasDual", farkas, i);
      out_.put(" }");
    }
  }

  void writeQConstrs() {
    const int count = data_.numQConstrs();
    const Vec<double> slack = doubles("QCSlack", count), pi = doubles("QCPi", count);
    const char *between = "";
    for (int k = 0; k < count; ++k) {
      const char *tag = tagOf(data_.qconstrTags, k);
      if (!*tag) continue;
      out_.put(between).put(" {\"QCTag\": [");
      putText(out_, tag);
      out_.put(']');
      between = separator_ = ",";
      valueOf("QCSlack", slack, k);
      valueOf("QCPi", pi, k);
      out_.put(" }");
    }
  }

  Model &model_;
  const ModelData &data_;
  TVKmodel *handle_;
  TextWriter &out_;
  const bool tagged_, detail_;
  const char *separator_ = "";
};

}  // namespace

void buildJsonReport(Model &model, TextWriter &out) {
  int status = 0;
  if (model.optimizing) throw Error(TVK_ERROR_INVALID_ARGUMENT, "Optimization in progress");
  if (model.hasPending() || !tryInt(model, "Status", status) || status == TVK_LOADED)
    throw Error(TVK_ERROR_INVALID_ARGUMENT, "Model not optimized or recently updated");
  JsonReport(model, out).write();
}

void writeJsonFile(Model &model, const char *filename) {
  TextWriter report;
  buildJsonReport(model, report);
  WriteStream stream(filename, "Unable to open file '%s'");
  stream.text().put(report.text());
  stream.closeOrTellNumber();
}

Vec<char> loadJsonFile(const char *filename) {
  InputFile file;
  if (!file.open(filename)) {
    if (!file.error().empty()) throw Error(TVK_ERROR_INVALID_ARGUMENT, "%s", file.error().c_str());
    throw Error(TVK_ERROR_INVALID_ARGUMENT, "Unable to open file '%s'", filename);
  }
  Vec<char> text;
  char block[1 << 16];
  while (const std::size_t count = file.read(block, sizeof block))
    text.insert(text.end(), block, block + count);
  if (!file.close()) throw Error(TVK_ERROR_INVALID_ARGUMENT, "Unable to read file '%s'", filename);
  text.push_back('\0');
  return text;
}

}  // namespace tarvik
