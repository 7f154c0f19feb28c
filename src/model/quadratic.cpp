#include "model/quadratic.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>

#include "model/growth.h"
#include "model/validate.h"

namespace tarvik {

namespace {

void checkFiniteInt(const double *values, int count) {
  for (int k = 0; k < count; ++k) {
    if (!std::isfinite(values[k]))
      throw Error(TVK_ERROR_INVALID_ARGUMENT, "Element %d of a double array is Nan or Inf.", k);
  }
}

void checkConeIndices(const int *vars, int count, int numVars) {
  for (int k = 0; k < count; ++k) {
    if (vars[k] < 0 || vars[k] >= numVars) {
      throw Error(TVK_ERROR_INDEX_OUT_OF_RANGE, "Variable index '%d' out of range in cone",
                  vars[k]);
    }
  }
}

// Terms with row <= col, sorted, one a pair; small ones are dropped and noted.
QuadTerms cleanTerms(const QConstrInput &input, double tolerance, bool &dropped) {
  Vec<int> order(input.numQuad);
  std::iota(order.begin(), order.end(), 0);
  const auto pairOf = [&](int k) {
    return std::pair<int, int>(std::minmax(input.qrow[k], input.qcol[k]));
  };
  std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return pairOf(a) < pairOf(b); });
  QuadTerms terms;
  for (int k = 0; k < input.numQuad;) {
    const auto pair = pairOf(order[k]);
    double sum = 0;
    for (; k < input.numQuad && pairOf(order[k]) == pair; ++k) sum += input.qval[order[k]];
    if (std::abs(sum) >= tolerance) {
      terms.append(pair.first, pair.second, sum);
    } else {
      dropped = true;
    }
  }
  return terms;
}

// The linear part in the order given, a repeated variable's coefficients added up.
void cleanLinear(const QConstrInput &input, double tolerance, QConstr &qc, bool &dropped) {
  Vec<int> order(input.numLinear), owner(input.numLinear);
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(),
                   [&](int a, int b) { return input.lind[a] < input.lind[b]; });
  Vec<double> sum(input.lval, input.lval + input.numLinear);
  for (int k = 0; k < input.numLinear; ++k) {
    const bool repeats = k > 0 && input.lind[order[k]] == input.lind[order[k - 1]];
    owner[order[k]] = repeats ? owner[order[k - 1]] : order[k];
    if (repeats) sum[owner[order[k]]] += input.lval[order[k]];
  }
  for (int k = 0; k < input.numLinear; ++k) {
    if (owner[k] != k) continue;
    if (std::abs(sum[k]) >= tolerance) {
      qc.lind.push_back(input.lind[k]);
      qc.lval.push_back(sum[k]);
    } else {
      dropped = true;
    }
  }
}

void checkQConstr(const QConstrInput &input) {
  requireArgument(input.numLinear <= 0 || (input.lind && input.lval));
  requireArgument(input.numQuad <= 0 || (input.qrow && input.qcol && input.qval));
  checkFiniteInt(input.lval, input.numLinear);
  checkFiniteInt(input.qval, input.numQuad);
  checkNoNanValue(input.rhs);
}

}  // namespace

void addQConstr(Model &model, const QConstrInput &given) {
  QConstrInput input = given;
  input.numLinear = std::max(0, input.numLinear);
  input.numQuad = std::max(0, input.numQuad);
  checkQConstr(input);
  const double tolerance = model.env().get(Dbl::TARV_PAR_ZERO);
  const bool named = input.name && *input.name && !model.env().get(Int::IgnoreNames);
  model.edit([&](PendingChanges &p) {
    for (const int *vars : {input.qrow, input.qcol})
      checkConeIndices(vars, input.numQuad, p.currentVars());
    checkConeIndices(input.lind, input.numLinear, p.currentVars());
    QConstr qc;
    bool dropped = false;
    qc.sense = checkedSense(input.sense);
    qc.rhs = clampToUserInf(input.rhs);
    qc.quad = cleanTerms(input, tolerance, dropped);
    cleanLinear(input, tolerance, qc, dropped);
    if (named) checkName(input.name);
    const std::size_t count = p.qconstrs.size();
    makeRoom(p.qconstrs, 1);
    const bool keepNames = named || !p.qconstrNames.empty();
    if (keepNames) {
      p.qconstrNames.reserve(count + 1, std::max(p.qconstrNames.poolBytes(), count) + 1 +
                                            (named ? std::strlen(input.name) : 0));
    }
    model.checkUpdateMode();

    while (keepNames && p.qconstrNames.size() < static_cast<int>(count)) p.qconstrNames.append("");
    if (keepNames) p.qconstrNames.append(named ? input.name : "");
    p.qconstrs.push_back(std::move(qc));
    if (dropped && !p.warnedSmallQ) {
      p.warnedSmallQ = true;
      model.env().log(
          "Warning: zero or small (< 1e-13) coefficients in quadratic constraints, ignored\n");
    }
  });
}

namespace {

// Marks elements of one set; throws for a repeated one.
void checkUnique(const int *vars, int count, PendingChanges &p) {
  if (static_cast<int>(p.colMarks.size()) < p.allVars()) p.colMarks.resize(p.allVars());
  if (++p.colStamp == 0) {
    std::fill(p.colMarks.begin(), p.colMarks.end(), 0u);
    p.colStamp = 1;
  }
  for (int k = 0; k < count; ++k) {
    if (p.colMarks[vars[k]] == p.colStamp) throw Error(TVK_ERROR_DUPLICATES);
    p.colMarks[vars[k]] = p.colStamp;
  }
}

}  // namespace

void addCone(Model &model, int count, const int *vars) {
  if (count < 1) return;
  requireArgument(vars);
  model.edit([&](PendingChanges &p) {
    checkConeIndices(vars, count, p.currentVars());
    checkUnique(vars, count, p);
    Cone cone;
    cone.members.assign(vars, vars + count);
    makeRoom(p.cones, 1);
    model.checkUpdateMode();
    p.cones.push_back(std::move(cone));
  });
}

void addSos(Model &model, const SosBatch &batch) {
  if (batch.count < 1) return;
  requireArgument(batch.types);
  requireArgument(batch.numMembers <= 0 || (batch.beg && batch.ind && batch.weight));
  const int numMembers = std::max(0, batch.numMembers);
  const auto begin = [&](int k) { return numMembers > 0 ? batch.beg[k] : 0; };
  const auto end = [&](int k) {
    return numMembers > 0 && k + 1 < batch.count ? batch.beg[k + 1] : numMembers;
  };
  for (int k = 0; k < batch.count; ++k) {
    if (batch.types[k] != 1 && batch.types[k] != 2)
      throw Error(TVK_ERROR_INVALID_ARGUMENT, "Invalid SOS type %d", batch.types[k]);
    if (begin(k) < 0 || begin(k) > end(k) || end(k) > numMembers)
      throw Error(TVK_ERROR_INVALID_ARGUMENT, "Begin indices are not in ascending order");
  }
  if (numMembers > 0) checkFiniteInt(batch.weight, numMembers);
  model.edit([&](PendingChanges &p) {
    Vec<Sos> added(batch.count);
    for (int k = batch.count - 1; k >= 0; --k) {
      const int length = end(k) - begin(k);
      for (int i = begin(k); i < end(k); ++i) {
        if (batch.ind[i] < 0 || batch.ind[i] >= p.currentVars())
          throw Error(TVK_ERROR_INDEX_OUT_OF_RANGE);
      }
      if (length > 0) checkUnique(batch.ind + begin(k), length, p);
      added[k].type = batch.types[k];
      added[k].ind.assign(batch.ind + begin(k), batch.ind + end(k));
      added[k].weight.assign(batch.weight + begin(k), batch.weight + end(k));
    }
    makeRoom(p.sos, batch.count);
    model.checkUpdateMode();
    for (Sos &sos : added) p.sos.push_back(std::move(sos));
  });
}

}  // namespace tarvik
