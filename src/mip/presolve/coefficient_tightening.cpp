#include "mip/presolve/coefficient_tightening.h"

#include <algorithm>
#include <cmath>

#include "mip/sos_propagator.h"

namespace tarvik {

namespace {

// Smaller reductions of a coefficient, relative to it, are not worth the rounding.
constexpr double kLeastReduction = 1e-3;

// One inequality value'x <= limit of a model whose rows are stored by row.
class RowTightener {
 public:
  RowTightener(const Domain &domain, SparseMatrix &rows) : domain_(domain), rows_(rows) {}

  // sign -1 when the row is its lower side. Returns the number of coefficients changed.
  int run(int row, double sign, double &limit) {
    const NzIndex start = rows_.start[row], end = rows_.start[row + 1];
    CompensatedSum largest;
    for (NzIndex k = start; k < end; ++k) {
      const double a = sign * rows_.value[k];
      const double bound = a > 0 ? domain_.upper(rows_.index[k]) : domain_.lower(rows_.index[k]);
      if (isInf(bound)) return 0;
      largest.addProduct(a, bound);
    }
    double activity = largest.value(), side = sign * limit;
    const double tolerance = 1e-6 * std::max(1.0, std::fabs(side));
    if (activity <= side + tolerance) return 0;
    int changed = 0;
    for (NzIndex k = start; k < end; ++k) {
      const int j = rows_.index[k];
      const double a = sign * rows_.value[k];
      if (domain_.problem().kind(j) != VarKind::Integer || domain_.isFixed(j)) continue;
      // One step off the extreme bound makes the row redundant by this much.
      const double slack = side - (activity - std::fabs(a));
      if (slack <= tolerance || slack <= kLeastReduction * std::fabs(a)) continue;
      if (slack >= std::fabs(a)) continue;
      const double reduced = a > 0 ? a - slack : a + slack;
      const double bound = a > 0 ? domain_.upper(j) : domain_.lower(j);
      activity -= (a - reduced) * bound;
      side -= (a - reduced) * bound;
      rows_.value[k] = sign * reduced;
      ++changed;
    }
    limit = sign * side;
    return changed;
  }

 private:
  const Domain &domain_;
  SparseMatrix &rows_;
};

int tightenCoefficients(const Domain &domain, MipModel &model) {
  SparseMatrix rows = transpose(model.lp.a);
  RowTightener tightener(domain, rows);
  int changed = 0;
  for (int i = 0; i < model.lp.numRows; ++i) {
    double &lower = model.lp.rowLower[i], &upper = model.lp.rowUpper[i];
    if (isInf(lower) == isInf(upper)) continue;
    changed += isInf(lower) ? tightener.run(i, 1, upper) : tightener.run(i, -1, lower);
  }
  if (changed > 0) model.lp.a = transpose(rows);
  return changed;
}

bool decidesHole(const Domain &domain, int col) {
  const MipModel &model = domain.problem().model();
  return isSemi(model.kind[col]) &&
         (domain.lower(col) >= model.holeUpper[col] || domain.upper(col) <= model.holeLower[col]);
}

int takeBounds(const Domain &domain, MipModel &model) {
  int changed = 0;
  for (int j = 0; j < model.lp.numCols; ++j) {
    double &lower = model.lp.colLower[j], &upper = model.lp.colUpper[j];
    // Implied bounds of continuous columns stay implied, unless they fix the column or decide on a
    // hole.
    if (!isIntegral(model.kind[j]) && !domain.isFixed(j) && !decidesHole(domain, j)) continue;
    changed += domain.lower(j) > lower;
    changed += domain.upper(j) < upper;
    lower = domain.lower(j);
    upper = domain.upper(j);
  }
  return changed;
}

}  // namespace

TighteningResult tightenMip(MipModel &model, const MipTolerances &tolerances, bool coefficients,
                            WorkMeter &work) {
  TighteningResult result;
  const Problem problem(MipModel(model), tolerances);
  Domain domain(problem);
  SosPropagator sets(problem);
  if (!model.sos.empty()) domain.addPropagator(&sets);
  if (!domain.propagate(work)) {
    result.infeasible = true;
    return result;
  }
  result.bounds = takeBounds(domain, model);
  if (coefficients) result.coefficients = tightenCoefficients(domain, model);
  work.charge(3.0 * static_cast<double>(model.lp.a.numNz()));
  return result;
}

}  // namespace tarvik
