// Exported queries of the matrix, SOS, quadratic parts and piecewise-linear objectives.
#include "attr/queries.h"
#include "model/model_call.h"
#include "model/validate.h"

using namespace tarvik;

namespace {

constexpr const char *kGetVars = "Failed to retrieve variables";
constexpr const char *kGetConstrs = "Failed to retrieve constraints";
constexpr const char *kGetSos = "Failed to retrieve SOS constraints";

template <class T>
void copyOut(const Vec<T> &values, T *out) {
  if (out) std::copy(values.begin(), values.end(), out);
}

void copySos(const ModelData &data, int start, int len, int *types, int *beg, int *ind,
             double *weight) {
  int at = 0;
  for (int k = 0; k < len; ++k) {
    const Sos &sos = data.sos[start + k];
    types[k] = sos.type;
    beg[k] = at;
    copyOut(sos.ind, ind + at);
    copyOut(sos.weight, weight + at);
    at += static_cast<int>(sos.ind.size());
  }
}

}  // namespace

extern "C" {

int TVKgetcoeff(TVKmodel *model, int constr, int var, double *valP) {
  return modelCall(model, "Failed to retrieve coefficient", [&](Model &m) {
    requireArgument(valP != nullptr);
    *valP = getCoef(m, constr, var);
  });
}

int TVKgetvars(TVKmodel *model, int *numnzP, int *vbeg, int *vind, double *vval, int start,
               int len) {
  return modelCall(model, kGetVars, [&](Model &m) {
    const SparseOutput<int> out{vbeg, vind, vval};
    const NzIndex count = len < 1 ? 0 : getVars(m, start, len, out);
    if (numnzP) *numnzP = static_cast<int>(count);
  });
}

int TVKXgetvars(TVKmodel *model, size_t *numnzP, size_t *vbeg, int *vind, double *vval, int start,
                int len) {
  return modelCall(model, kGetVars, [&](Model &m) {
    const NzIndex count = getVars(m, start, len, SparseOutput<size_t>{vbeg, vind, vval});
    if (numnzP) *numnzP = static_cast<size_t>(count);
  });
}

int TVKgetconstrs(TVKmodel *model, int *numnzP, int *cbeg, int *cind, double *cval, int start,
                  int len) {
  return modelCall(model, kGetConstrs, [&](Model &m) {
    const SparseOutput<int> out{cbeg, cind, cval};
    const NzIndex count = len < 1 ? 0 : getConstrs(m, start, len, out);
    if (numnzP) *numnzP = static_cast<int>(count);
  });
}

int TVKXgetconstrs(TVKmodel *model, size_t *numnzP, size_t *cbeg, int *cind, double *cval,
                   int start, int len) {
  return modelCall(model, kGetConstrs, [&](Model &m) {
    const NzIndex count = getConstrs(m, start, len, SparseOutput<size_t>{cbeg, cind, cval});
    if (numnzP) *numnzP = static_cast<size_t>(count);
  });
}

int TVKgetsos(TVKmodel *model, int *nummembersP, int *sostype, int *beg, int *ind, double *weight,
              int start, int len) {
  return modelCall(model, kGetSos, [&](Model &m) {
    const ModelData &data = m.data();
    if (start < 0 || len < 1 || len > data.numSos() || start > data.numSos() - len) {
      throw Error(TVK_ERROR_INDEX_OUT_OF_RANGE, "Invalid index range for SOS query: [%d, %d]",
                  start,
                  static_cast<int>(static_cast<unsigned>(start) + static_cast<unsigned>(len)));
    }
    std::size_t count = 0;
    for (int k = 0; k < len; ++k) count += data.sos[start + k].ind.size();
    if (nummembersP) *nummembersP = static_cast<int>(count);
    if (sostype && beg && ind && weight) copySos(data, start, len, sostype, beg, ind, weight);
  });
}

int TVKgetq(TVKmodel *model, int *numqnzP, int *qrow, int *qcol, double *qval) {
  return modelCall(model, "Failed to retrieve Q matrix", [&](Model &m) {
    requireArgument(numqnzP != nullptr);
    const QuadTerms &q = m.data().q;
    *numqnzP = q.count();
    if (!qrow || !qcol || !qval) return;
    copyOut(q.row, qrow);
    copyOut(q.col, qcol);
    for (int k = 0; k < q.count(); ++k) qval[k] = m.data().inCallersSense(0.5 * q.val[k]);
  });
}

int TVKgetqconstr(TVKmodel *model, int qconstr, int *numlnzP, int *lind, double *lval, int *numqnzP,
                  int *qrow, int *qcol, double *qval) {
  return modelCall(model, kGetConstrs, [&](Model &m) {
    requireArgument(numlnzP && numqnzP);
    if (qconstr < 0 || qconstr >= m.data().numQConstrs()) {
      throw Error(TVK_ERROR_INDEX_OUT_OF_RANGE, "Invalid index (%d) for quadratic constraint query",
                  qconstr);
    }
    const QConstr &qc = m.data().qconstrs[qconstr];
    *numlnzP = static_cast<int>(qc.lind.size());
    *numqnzP = qc.quad.count();
    copyOut(qc.lind, lind);
    copyOut(qc.lval, lval);
    copyOut(qc.quad.row, qrow);
    copyOut(qc.quad.col, qcol);
    copyOut(qc.quad.val, qval);
  });
}

int TVKgetpwlobj(TVKmodel *model, int var, int *npointsP, double *x, double *y) {
  return modelCall(model, "Failed to retrieve piecewise-linear objective", [&](Model &m) {
    requireArgument(npointsP != nullptr);
    if (var < 0 || var >= m.data().numVars())
      throw Error(TVK_ERROR_INDEX_OUT_OF_RANGE, "Invalid variable index for getpwobj query");
    const PwlObjective *pwl = m.data().pwlOf(var);
    *npointsP = pwl ? static_cast<int>(pwl->x.size()) : 0;
    if (!pwl || !x || !y) return;
    copyOut(pwl->x, x);
    for (std::size_t k = 0; k < pwl->y.size(); ++k) y[k] = m.data().inCallersSense(pwl->y[k]);
  });
}

}  // extern "C"
