// Exported functions that add, change and delete variables and linear constraints.
#include "model/edits.h"
#include "model/model_call.h"

using namespace tarvik;

namespace {

// Begin offsets of the 32-bit functions in the width of the library; negative ones stay
// recognisable as such.
class WideOffsets {
 public:
  WideOffsets(const int *beg, int count) {
    if (!beg) return;
    given_ = true;
    wide_.reserve(count);
    for (int k = 0; k < count; ++k)
      wide_.push_back(static_cast<std::size_t>(static_cast<std::int64_t>(beg[k])));
  }
  const std::size_t *data() const { return given_ ? wide_.data() : nullptr; }

 private:
  bool given_ = false;
  Vec<std::size_t> wide_;
};

constexpr const char *kAddVars = "Problem adding variables";
constexpr const char *kAddConstrs = "Problem adding constraints";
constexpr const char *kChangeCoefs = "Problem changing coefficient";

const std::size_t kZeroOffset = 0;

}  // namespace

extern "C" {

int TVKaddvar(TVKmodel *model, int numnz, const int *vind, const double *vval, double obj,
              double lb, double ub, char vtype, const char *varname) {
  return modelCall(model, kAddVars, [&](Model &m) {
    addVars(m, {{1, numnz, &kZeroOffset, vind, vval}, &obj, &lb, &ub, &vtype, &varname});
  });
}

int TVKaddvars(TVKmodel *model, int numvars, int numnz, const int *vbeg, const int *vind,
               const double *vval, const double *obj, const double *lb, const double *ub,
               const char *vtype, const char *const *varnames) {
  if (numvars < 1) return 0;
  return modelCall(model, kAddVars, [&](Model &m) {
    const WideOffsets beg(numnz > 0 ? vbeg : nullptr, numvars);
    addVars(m, {{numvars, numnz, beg.data(), vind, vval}, obj, lb, ub, vtype, varnames});
  });
}

int TVKXaddvars(TVKmodel *model, int numvars, size_t numnz, const size_t *vbeg, const int *vind,
                const double *vval, const double *obj, const double *lb, const double *ub,
                const char *vtype, const char *const *varnames) {
  if (numvars < 1) return 0;
  return modelCall(model, kAddVars, [&](Model &m) {
    addVars(m, {{numvars, static_cast<std::int64_t>(numnz), vbeg, vind, vval},
                obj,
                lb,
                ub,
                vtype,
                varnames});
  });
}

int TVKaddconstr(TVKmodel *model, int numnz, const int *cind, const double *cval, char sense,
                 double rhs, const char *constrname) {
  return modelCall(model, kAddConstrs, [&](Model &m) {
    addConstrs(m,
               {{1, numnz, &kZeroOffset, cind, cval}, &sense, false, nullptr, &rhs, &constrname});
  });
}

int TVKaddconstrs(TVKmodel *model, int numconstrs, int numnz, const int *cbeg, const int *cind,
                  const double *cval, const char *sense, const double *rhs,
                  const char *const *constrnames) {
  if (numconstrs < 1) return 0;
  return modelCall(model, kAddConstrs, [&](Model &m) {
    const WideOffsets beg(numnz > 0 ? cbeg : nullptr, numconstrs);
    addConstrs(
        m, {{numconstrs, numnz, beg.data(), cind, cval}, sense, false, nullptr, rhs, constrnames});
  });
}

int TVKXaddconstrs(TVKmodel *model, int numconstrs, size_t numnz, const size_t *cbeg,
                   const int *cind, const double *cval, const char *sense, const double *rhs,
                   const char *const *constrnames) {
  if (numconstrs < 1) return 0;
  return modelCall(model, kAddConstrs, [&](Model &m) {
    addConstrs(m, {{numconstrs, static_cast<std::int64_t>(numnz), cbeg, cind, cval},
                   sense,
                   false,
                   nullptr,
                   rhs,
                   constrnames});
  });
}

int TVKaddrangeconstr(TVKmodel *model, int numnz, const int *cind, const double *cval, double lower,
                      double upper, const char *constrname) {
  return modelCall(model, kAddConstrs, [&](Model &m) {
    addConstrs(m,
               {{1, numnz, &kZeroOffset, cind, cval}, nullptr, true, &lower, &upper, &constrname});
  });
}

int TVKaddrangeconstrs(TVKmodel *model, int numconstrs, int numnz, const int *cbeg, const int *cind,
                       const double *cval, const double *lower, const double *upper,
                       const char *const *constrnames) {
  if (numnz > 0 && !cbeg) return TVK_ERROR_NULL_ARGUMENT;
  if (numconstrs < 1) return 0;
  return modelCall(model, kAddConstrs, [&](Model &m) {
    const WideOffsets beg(numnz > 0 ? cbeg : nullptr, numconstrs);
    addConstrs(
        m, {{numconstrs, numnz, beg.data(), cind, cval}, nullptr, true, lower, upper, constrnames});
  });
}

int TVKXaddrangeconstrs(TVKmodel *model, int numconstrs, size_t numnz, const size_t *cbeg,
                        const int *cind, const double *cval, const double *lower,
                        const double *upper, const char *const *constrnames) {
  if (numconstrs < 1) return 0;
  return modelCall(model, kAddConstrs, [&](Model &m) {
    addConstrs(m, {{numconstrs, static_cast<std::int64_t>(numnz), cbeg, cind, cval},
                   nullptr,
                   true,
                   lower,
                   upper,
                   constrnames});
  });
}

int TVKchgcoeffs(TVKmodel *model, int cnt, const int *cind, const int *vind, const double *val) {
  return modelCall(model, kChangeCoefs,
                   [&](Model &m) { changeCoefs(m, cnt < 1 ? 0 : cnt, cind, vind, val); });
}

int TVKXchgcoeffs(TVKmodel *model, size_t cnt, const int *cind, const int *vind,
                  const double *val) {
  return modelCall(model, kChangeCoefs, [&](Model &m) {
    changeCoefs(m, static_cast<std::int64_t>(cnt), cind, vind, val);
  });
}

int TVKdelvars(TVKmodel *model, int numdel, const int *ind) {
  return modelCall(model, "Problem deleting variable",
                   [&](Model &m) { deleteElements(m, ElementKind::Var, numdel, ind); });
}

int TVKdelconstrs(TVKmodel *model, int numdel, const int *ind) {
  return modelCall(model, "Problem deleting constraint",
                   [&](Model &m) { deleteElements(m, ElementKind::Constr, numdel, ind); });
}

}  // extern "C"
