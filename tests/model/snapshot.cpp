#include "snapshot.h"

#include <sstream>
#include <vector>

#include "model/model.h"

namespace {

class Reader {
 public:
  explicit Reader(TVKmodel *model) : model_(model) {
    out_.precision(17);
    numVars_ = size("NumVars");
    numConstrs_ = size("NumConstrs");
  }

  std::string run() {
    attributes();
    matrix();
    parts();
    selected("StartNumber", size("NumStart"), {"Start"});
    selected(
        "ObjNumber", size("NumObj"),
        {"ObjN", "ObjNCon", "ObjNWeight", "ObjNPriority", "ObjNRelTol", "ObjNAbsTol", "ObjNName"});
    selected("ScenarioNumber", size("NumScenarios"),
             {"ScenNLB", "ScenNUB", "ScenNObj", "ScenNRHS", "ScenNName"});
    return out_.str();
  }

 private:
  int size(const char *attribute) const {
    int value = 0;
    TVKgetintattr(model_, attribute, &value);
    return value;
  }

  template <class T>
  void put(int code, const std::vector<T> &values) {
    out_ << ' ' << code;
    if (code == 0)
      for (const T &value : values) out_ << ' ' << value;
  }

  void attribute(const char *name) {
    static constexpr const char *kCounts[] = {nullptr,  "NumVars",     "NumConstrs",
                                              "NumSOS", "NumQConstrs", "NumGenConstrs"};
    int type = -1, scope = -1;
    TVKgetattrinfo(model_, name, &type, &scope, nullptr);
    const int n = scope == 0 ? 1 : size(kCounts[scope]);
    std::vector<int> ints(n);
    std::vector<double> doubles(n);
    std::vector<char> chars(n);
    std::vector<char *> texts(n);
    out_ << name;
    if (type == 0) put(TVKgetcharattrarray(model_, name, 0, n, chars.data()), chars);
    if (type == 1)
      put(scope == 0 ? TVKgetintattr(model_, name, ints.data())
                     : TVKgetintattrarray(model_, name, 0, n, ints.data()),
          ints);
    if (type == 2)
      put(scope == 0 ? TVKgetdblattr(model_, name, doubles.data())
                     : TVKgetdblattrarray(model_, name, 0, n, doubles.data()),
          doubles);
    if (type == 3)
      put(scope == 0 ? TVKgetstrattr(model_, name, texts.data())
                     : TVKgetstrattrarray(model_, name, 0, n, texts.data()),
          texts);
    out_ << ' ' << TVKisattravailable(model_, name) << '\n';
  }

  void attributes() {
    for (int k = 0; k < TVKgetnumattributes(model_); ++k) {
      char *name = nullptr;
      TVKgetattrname(model_, k, &name);
      attribute(name);
    }
  }

  void selected(const char *param, int count, std::initializer_list<const char *> names) {
    for (int k = 0; k < count; ++k) {
      TVKsetintparam(TVKgetenv(model_), param, k);
      for (const char *name : names) attribute(name);
    }
    TVKsetintparam(TVKgetenv(model_), param, 0);
  }

  void matrix() {
    for (const auto query : {TVKgetvars, TVKgetconstrs}) {
      const int len = query == TVKgetvars ? numVars_ : numConstrs_;
      int numNz = 0;
      query(model_, &numNz, nullptr, nullptr, nullptr, 0, len);
      std::vector<int> beg(len), ind(numNz);
      std::vector<double> val(numNz);
      const int code = query(model_, &numNz, beg.data(), ind.data(), val.data(), 0, len);
      put(code, beg);
      put(code, ind);
      put(code, val);
      out_ << '\n';
    }
  }

  void parts() {
    const tarvik::ModelData &data = model_->data();
    const auto list = [&](const auto &values) {
      for (const auto &value : values) out_ << ' ' << value;
      out_ << " /";
    };
    const auto terms = [&](const tarvik::QuadTerms &q) {
      list(q.row);
      list(q.col);
      list(q.val);
    };
    terms(data.q);
    for (const tarvik::QConstr &qc : data.qconstrs) {
      list(qc.lind);
      list(qc.lval);
      terms(qc.quad);
    }
    for (const tarvik::Cone &cone : data.cones) list(cone.members);
    for (const tarvik::Sos &sos : data.sos) {
      out_ << sos.type;
      list(sos.ind);
      list(sos.weight);
    }
    for (const tarvik::GenConstr &g : data.genConstrs) {
      out_ << g.resVar << ' ' << g.binVal << ' ' << g.sense << ' ' << g.constant;
      list(g.vars);
      list(g.coef);
      list(g.pwlY);
    }
    for (const tarvik::PwlObjective &pwl : data.pwl) {
      out_ << pwl.var;
      list(pwl.x);
      list(pwl.y);
    }
    out_ << '\n';
  }

  TVKmodel *model_;
  int numVars_ = 0, numConstrs_ = 0;
  std::ostringstream out_;
};

}  // namespace

std::string snapshot(TVKmodel *model) { return Reader(model).run(); }
