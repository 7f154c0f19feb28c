// Exported functions on the quadratic objective, quadratic constraints, cones and SOS.
#include "model/model_call.h"
#include "model/quadratic.h"

using namespace tarvik;

extern "C" {

int TVKaddqpterms(TVKmodel *model, int numqnz, const int *qrow, const int *qcol,
                  const double *qval) {
  return modelCall(model, "Problem adding quadratic coefficients",
                   [&](Model &m) { addQuadTerms(m, numqnz, qrow, qcol, qval); });
}

int TVKdelq(TVKmodel *model) {
  return modelCall(model, "Problem deleting Q matrix", [](Model &m) { deleteQuadTerms(m); });
}

int TVKaddqconstr(TVKmodel *model, int numlnz, const int *lind, const double *lval, int numqnz,
                  const int *qrow, const int *qcol, const double *qval, char sense, double rhs,
                  const char *QCname) {
  return modelCall(model, "Problem adding quadratic constraint", [&](Model &m) {
    addQConstr(m, {numlnz, lind, lval, numqnz, qrow, qcol, qval, sense, rhs, QCname});
  });
}

int TVKdelqconstrs(TVKmodel *model, int numdel, const int *ind) {
  return modelCall(model, "Problem deleting quadratic constraint",
                   [&](Model &m) { deleteElements(m, ElementKind::QConstr, numdel, ind); });
}

int TVKaddcone(TVKmodel *model, int nummembers, const int *vind) {
  return modelCall(model, "Problem adding cone", [&](Model &m) { addCone(m, nummembers, vind); });
}

int TVKaddsos(TVKmodel *model, int numsos, int nummembers, const int *types, const int *beg,
              const int *ind, const double *weight) {
  return modelCall(model, "Problem adding SOS constraints", [&](Model &m) {
    addSos(m, {numsos, nummembers, types, beg, ind, weight});
  });
}

int TVKdelsos(TVKmodel *model, int numdel, const int *ind) {
  return modelCall(model, "Problem deleting sos",
                   [&](Model &m) { deleteElements(m, ElementKind::Sos, numdel, ind); });
}

}  // extern "C"
