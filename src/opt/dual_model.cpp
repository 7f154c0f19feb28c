// The dual of a linear model.
//
// With r = c - A'y the reduced costs, a minimization has the dual
//   max b'y + l'z + u'w   with   r = z + w,  z >= 0 >= w,
// where z and w exist for finite bounds, y >= 0 for '>' rows and y <= 0 for '<' rows. A bound 0
// adds nothing to the objective, so its variable is left out and the row becomes an inequality.
// The dual of a maximization is the same with every sign condition turned round.
#include <cmath>

#include "model/data_edit.h"
#include "opt/derived_models.h"

namespace tarvik {

namespace {

class DualBuilder {
 public:
  explicit DualBuilder(const ModelData &primal) : primal_(primal), sense_(primal.objSense) {}

  ModelData build() {
    dual_.objSense = -sense_;
    dual_.objCon = -primal_.objCon;
    dual_.name = primal_.name;
    dual_.a = transpose(primal_.a);
    if (primal_.storesNames()) takeNames();
    for (int i = 0; i < primal_.numConstrs(); ++i) addRowVariable(i);
    for (int j = 0; j < primal_.numVars(); ++j) {
      dual_.rhs.push_back(sense_ * primal_.obj[j]);
      dual_.sense.push_back(rowSense(j));
    }
    for (int j = 0; j < primal_.numVars(); ++j) addBoundVariables(j);
    return std::move(dual_);
  }

 private:
  bool hasLower(int j) const { return primal_.lb[j] > -kInfBound; }
  bool hasUpper(int j) const { return primal_.ub[j] < kInfBound; }
  bool isFixed(int j) const { return hasLower(j) && primal_.lb[j] == primal_.ub[j]; }

  void takeNames() {
    for (int i = 0; i < primal_.numConstrs(); ++i)
      dual_.varNames.append(nameInData(primal_.constrNames, i, "R"));
    for (int j = 0; j < primal_.numVars(); ++j)
      dual_.constrNames.append(nameInData(primal_.varNames, j, "C"));
    dual_.varNamesIssued = primal_.numConstrs();
    dual_.constrNamesIssued = primal_.numVars();
  }

  // The row's variable; a row without a finite right-hand side has none to speak of.
  void addRowVariable(int i) {
    const double b = primal_.rhs[i];
    const char sense = primal_.sense[i];
    const bool vacuous = (sense == '<' && b >= kInfBound) || (sense == '>' && b <= -kInfBound);
    const bool atMostZero = (sense == '<') == (sense_ > 0);
    dual_.obj.push_back(vacuous ? 0 : -sense_ * b);
    dual_.lb.push_back(vacuous || (sense != '=' && !atMostZero) ? 0 : -kInf);
    dual_.ub.push_back(vacuous || (sense != '=' && atMostZero) ? 0 : kInf);
    dual_.vtype.push_back('C');
  }

  // What the reduced cost may be without variables for its parts.
  char rowSense(int j) const {
    const bool zeroLower = hasLower(j) && primal_.lb[j] == 0;
    const bool zeroUpper = hasUpper(j) && primal_.ub[j] == 0;
    if (zeroLower == zeroUpper) return '=';
    return zeroLower == (sense_ > 0) ? '<' : '>';
  }

  void addBoundVariable(int j, double bound, double lb, double ub, const char *prefix) {
    NewColumn column;
    const double one = 1;
    column.obj = -sense_ * bound;
    column.lb = lb;
    column.ub = ub;
    column.numNz = 1;
    column.ind = &j;
    column.val = &one;
    appendColumn(dual_, column, prefix + nameInData(primal_.varNames, j, "C"));
  }

  void addBoundVariables(int j) {
    const double lower = primal_.lb[j], upper = primal_.ub[j];
    const bool positive = sense_ > 0;
    if (isFixed(j)) {
      addBoundVariable(j, lower, -kInf, kInf, "Bnd_");
      return;
    }
    if (hasLower(j) && lower != 0)
      addBoundVariable(j, lower, positive ? 0 : -kInf, positive ? kInf : 0, "Lb_");
    if (hasUpper(j) && upper != 0)
      addBoundVariable(j, upper, positive ? -kInf : 0, positive ? 0 : kInf, "Ub_");
  }

  const ModelData &primal_;
  const int sense_;
  ModelData dual_;
};

}  // namespace

ModelData dualOf(const ModelData &data) { return DualBuilder(data).build(); }

}  // namespace tarvik
