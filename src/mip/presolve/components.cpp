#include "mip/presolve/components.h"
#include "base/union_find.h"

#include <algorithm>

#include "mip/mip_solve.h"

namespace tarvik {

namespace {

// Parts beyond this share of the model's columns are no detail to be settled on the way.
constexpr double kLargestShare = 0.5;
constexpr int kMostIntegers = 200;
constexpr int kMostParts = 500;
constexpr double kNodeLimit = 1000;
// Work units: of one part, and of all.
constexpr double kWorkOfPart = 0.1;
constexpr double kWork = 0.5;

// The part of a model that some of its columns make up, with the rows that they are in. `place`
// holds the new number of every column, -1 for those that are not taken.
MipModel extract(const MipModel &model, const Vec<int> &cols, const Vec<int> &place) {
  const LpModel &lp = model.lp;
  MipModel part;
  const auto take = [&](const auto &values, auto &taken) {
    if (values.empty()) return;
    for (const int j : cols) taken.push_back(values[j]);
  };
  take(model.kind, part.kind);
  take(model.holeLower, part.holeLower);
  take(model.holeUpper, part.holeUpper);
  take(model.branchPriority, part.branchPriority);
  take(model.partition, part.partition);
  take(lp.cost, part.lp.cost);
  take(lp.colLower, part.lp.colLower);
  take(lp.colUpper, part.lp.colUpper);
  Vec<int> rowPlace(lp.numRows, -1);
  for (const int j : cols)
    for (NzIndex k = lp.a.start[j]; k < lp.a.start[j + 1]; ++k) rowPlace[lp.a.index[k]] = 0;
  for (int i = 0; i < lp.numRows; ++i) {
    if (rowPlace[i] < 0) continue;
    rowPlace[i] = part.lp.numRows++;
    part.lp.rowLower.push_back(lp.rowLower[i]);
    part.lp.rowUpper.push_back(lp.rowUpper[i]);
  }
  part.lp.numCols = static_cast<int>(cols.size());
  part.lp.a.clear(part.lp.numRows);
  for (const int j : cols) {
    const NzIndex start = lp.a.start[j];
    Vec<int> index;
    for (NzIndex k = start; k < lp.a.start[j + 1]; ++k) index.push_back(rowPlace[lp.a.index[k]]);
    part.lp.a.append(lp.a.length(j), index.data(), lp.a.value.data() + start);
  }
  for (const SosSet &set : model.sos) {
    if (place[set.cols.front()] < 0) continue;
    part.sos.push_back(set);
    for (int &j : part.sos.back().cols) j = place[j];
  }
  return part;
}

MipOptions optionsOfPart(const MipOptions &options) {
  MipOptions own = nestedOptions(options);
  // Nothing less than an optimum may be fixed.
  own.mipGap = own.mipGapAbs = 0;
  own.cutoff = kUserInf;
  own.bestObjStop = -kUserInf;
  own.iterationLimit = kUserInf;
  own.nodeLimit = kNodeLimit;
  own.solutionLimit = kMaxInt;
  own.softTimeLimit = own.softWorkLimit = kUserInf;
  own.focus = 0;
  return own;
}

Vec<int> placesOf(const Vec<int> &cols, int numCols) {
  Vec<int> place(numCols, -1);
  for (std::size_t k = 0; k < cols.size(); ++k) place[cols[k]] = static_cast<int>(k);
  return place;
}

}  // namespace

Vec<Components::Part> Components::split(const MipModel &model) const {
  const LpModel &lp = model.lp;
  UnionFind sets(lp.numCols);
  Vec<int> firstInRow(lp.numRows, -1);
  for (int j = 0; j < lp.numCols; ++j)
    for (NzIndex k = lp.a.start[j]; k < lp.a.start[j + 1]; ++k) {
      int &first = firstInRow[lp.a.index[k]];
      first < 0 ? static_cast<void>(first = j) : sets.unite(j, first);
    }
  for (const SosSet &set : model.sos)
    for (const int j : set.cols) sets.unite(j, set.cols.front());
  Vec<Part> parts;
  Vec<int> partOf(lp.numCols, -1);
  for (int j = 0; j < lp.numCols; ++j) {
    int &part = partOf[sets.find(j)];
    if (part < 0) {
      part = static_cast<int>(parts.size());
      parts.emplace_back();
    }
    parts[part].cols.push_back(j);
    parts[part].size += 1 + lp.a.length(j);
  }
  std::stable_sort(parts.begin(), parts.end(),
                   [](const Part &a, const Part &b) { return a.size < b.size; });
  return parts;
}

// True when the part's optimum is known and stored.
bool Components::solve(const Part &part, const MipModel &model, const MipOptions &options,
                       SolveControl &control) {
  int integers = 0;
  for (const int j : part.cols) integers += model.kind[j] != VarKind::Continuous;
  if (integers > kMostIntegers) return false;
  const MipModel own = extract(model, part.cols, placesOf(part.cols, model.lp.numCols));
  const double workLimit = control.limits.workLimit;
  control.limits.workLimit = std::min(workLimit, control.work.workUnits() + kWorkOfPart);
  const MipOutcome outcome = MipSolve(own, options, control).run();
  control.limits.workLimit = workLimit;
  infeasible_ = outcome.status == MipStatus::Infeasible;
  if (outcome.status != MipStatus::Optimal || outcome.solutions.empty()) return false;
  for (std::size_t k = 0; k < part.cols.size(); ++k)
    values_[part.cols[k]] = outcome.solutions.front().x[k];
  return true;
}

Components::Result Components::run(MipModel &model, const MipOptions &options,
                                   SolveControl &control) {
  const Vec<Part> parts = split(model);
  control.work.charge(5.0 * static_cast<double>(model.lp.a.numNz()));
  if (parts.size() < 2 || parts.size() > kMostParts) return Result::Unchanged;
  const MipOptions own = optionsOfPart(options);
  const double end = control.work.workUnits() + kWork;
  values_.assign(model.lp.numCols, 0);
  Vec<char> isSolved(model.lp.numCols, 0);
  for (std::size_t p = 0; p + 1 < parts.size() && control.work.workUnits() < end; ++p) {
    if (static_cast<double>(parts[p].cols.size()) > kLargestShare * model.lp.numCols) break;
    if (control.limits.pollNow(control.work, 0) != StopReason::None) break;
    const bool done = solve(parts[p], model, own, control);
    if (infeasible_) return Result::Infeasible;
    if (!done) continue;
    ++solved_;
    for (const int j : parts[p].cols) isSolved[j] = 1;
  }
  if (solved_ == 0) return Result::Unchanged;
  CompensatedSum offset(model.lp.offset);
  for (int j = 0; j < model.lp.numCols; ++j)
    isSolved[j] ? offset.addProduct(model.lp.cost[j], values_[j]) : left_.push_back(j);
  MipModel rest = extract(model, left_, placesOf(left_, model.lp.numCols));
  rest.lp.offset = offset.value();
  model = std::move(rest);
  return Result::Reduced;
}

void Components::crushRow(LinearRow &row) const {
  const Vec<int> place = placesOf(left_, static_cast<int>(values_.size()));
  CompensatedSum constant;
  LinearRow result;
  for (std::size_t k = 0; k < row.cols.size(); ++k) {
    const int j = row.cols[k];
    if (place[j] < 0) {
      constant.addProduct(row.values[k], values_[j]);
      continue;
    }
    result.cols.push_back(place[j]);
    result.values.push_back(row.values[k]);
  }
  result.lower = isInf(row.lower) ? row.lower : row.lower - constant.value();
  result.upper = isInf(row.upper) ? row.upper : row.upper - constant.value();
  row = std::move(result);
}

void Components::restore(Vec<double> &point) const {
  Vec<double> full(values_);
  for (std::size_t k = 0; k < left_.size(); ++k) full[left_[k]] = point[k];
  point.swap(full);
}

}  // namespace tarvik
