// Exported functions on whole objectives.
#include "model/model_call.h"
#include "model/objectives.h"

using namespace tarvik;

extern "C" {

int TVKsetobjective(TVKmodel *model, int sense, double constant, int lnz, const int *lind,
                    const double *lval, int qnz, const int *qrow, const int *qcol,
                    const double *qval) {
  return modelCall(model, "Problem setting objective", [&](Model &m) {
    setObjective(m, sense, constant, {lnz, lind, lval}, qnz, qrow, qcol, qval);
  });
}

int TVKsetobjectiven(TVKmodel *model, int index, int priority, double weight, double abstol,
                     double reltol, const char *name, double constant, int lnz, const int *lind,
                     const double *lval) {
  return modelCall(model, "Problem setting objective", [&](Model &m) {
    setObjectiveN(m, index, {priority, weight, abstol, reltol, name, constant}, {lnz, lind, lval});
  });
}

int TVKsetpwlobj(TVKmodel *model, int var, int npts, const double *x, const double *y) {
  return modelCall(model, "Setting piecewise objective",
                   [&](Model &m) { setPwlObjective(m, var, npts, x, y); });
}

}  // extern "C"
