#include "presolve/sparsify.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "presolve/reductions.h"

namespace tarvik::presolve {

namespace {

// What is left of two entries below this share of them is their rounding.
constexpr double kNoise = 1e-14;
// Relative rounding errors may grow by this factor: later reductions must still tell what is left
// of two such entries from rounding.
constexpr double kMaxLoss = 100;
// Violations of the equation return on the row times the multiple.
constexpr double kMultiple = 100;
// The entries of a row may exceed their original range by this factor, downwards only those with
// rounding errors.
constexpr double kSpread = 10;
// What is added to a side may exceed it by this factor.
constexpr double kSideGrowth = 1e6;
// Multiples tried for a pair of rows.
constexpr int kTrials = 3;
// Of the length of an equation, what a row must win by it, pass by pass: small wins change rows
// that great ones need as they are. The last is for those who ask for everything.
constexpr double kWorthwhile[] = {0.25, 0.05, 0};
constexpr double kMaxEntries = 2e9 / 1.5;
constexpr double kRowsPerCol = 10;
constexpr int kAggressive = 2;
// Duals smaller than this are none.
constexpr double kNoDual = 1e-9;

// Entries that may be touched for each one of the model; so many in any case.
constexpr double kFreeEffort = 1e6;
double effortFactor(int level) { return level < 0 ? 50 : level < kAggressive ? 200 : 2000; }

bool integral(double value) { return value == std::round(value); }

// Values with few binary digits have no rounding errors, and multiples of this kind make none.
bool isShort(double value) { return integral(value * 1024); }

}  // namespace

bool Sparsifier::denseEnough() const {
  double rows = 0, cols = 0;
  for (int i = 0; i < model_.numRows(); ++i) rows += model_.row(i).length > 0;
  for (int j = 0; j < model_.numCols(); ++j) cols += model_.col(j).length > 0;
  const double entries = static_cast<double>(model_.entriesLeft());
  const double smallest = ws_.options.sparsifyMinSize, fewest = ws_.options.sparsifyMinLength;
  return model_.rowsLeft() >= smallest && model_.colsLeft() >= smallest &&
         entries >= fewest * std::max(rows, cols) && rows <= kRowsPerCol * cols &&
         entries <= kMaxEntries;
}

void Sparsifier::studyRows() {
  natures_.assign(static_cast<std::size_t>(model_.numRows()), {});
  for (int i = 0; i < model_.numRows(); ++i) {
    RowNature &nature = natures_[i];
    for (const Entry &entry : model_.rowEntries(i)) {
      nature.smallest = std::min(nature.smallest, std::fabs(entry.value));
      nature.largest = std::max(nature.largest, std::fabs(entry.value));
      nature.integral = nature.integral && model_.col(entry.col).integer && integral(entry.value);
    }
  }
}

Vec<int> Sparsifier::equations() const {
  Vec<int> result;
  for (int i = 0; i < model_.numRows(); ++i)
    if (model_.row(i).alive && model_.row(i).isEquation() && model_.row(i).length >= 2)
      result.push_back(i);
  std::stable_sort(result.begin(), result.end(),
                   [&](int a, int b) { return model_.row(a).length < model_.row(b).length; });
  return result;
}

bool Sparsifier::run() {
  if (!denseEnough()) return false;
  const int level = ws_.options.sparsify;
  const NzIndex before = model_.entriesLeft();
  const double limit = std::max(kFreeEffort, effortFactor(level) * static_cast<double>(before));
  studyRows();
  ws_.preparePositions();
  coef_.assign(static_cast<std::size_t>(model_.numCols()), 0.0);
  seen_.assign(static_cast<std::size_t>(model_.numRows()), 0);
  for (int pass = 0; pass < (level < kAggressive ? 2 : 3); ++pass) {
    worthwhile_ = kWorthwhile[pass];
    for (const int e : equations()) {
      if (ws_.finished() || effort_ > limit) break;
      const double effort = effort_;
      useEquation(e);
      ws_.charge(5 * (effort_ - effort));
      if (ws_.control->limits.poll(ws_.control->work, 0) != StopReason::None) break;
    }
  }
  ws_.stats.sparsified = before - model_.entriesLeft();
  ws_.stats.sparsifiedFrom = before;
  return ws_.stats.sparsified > 0;
}

void Sparsifier::useEquation(int e) {
  equation_.clear();
  for (const Entry &entry : model_.rowEntries(e)) {
    equation_.push_back(entry);
    coef_[entry.col] = entry.value;
  }
  std::stable_sort(equation_.begin(), equation_.end(), [&](const Entry &a, const Entry &b) {
    return model_.col(a.col).length < model_.col(b.col).length;
  });
  findCandidates();
  for (const int i : candidates_) {
    if (ws_.finished()) break;
    tryRow(e, i);
  }
  for (const Entry &entry : equation_) coef_[entry.col] = 0;
}

void Sparsifier::findCandidates() {
  candidates_.clear();
  const int e = equation_.front().row;
  ++uses_;
  const std::size_t shorterHalf = (equation_.size() + 1) / 2;
  for (std::size_t k = 0; k < shorterHalf; ++k) {
    for (const Entry &entry : model_.colEntries(equation_[k].col)) {
      if (entry.row == e || seen_[entry.row] == uses_) continue;
      seen_[entry.row] = uses_;
      candidates_.push_back(entry.row);
    }
    effort_ += model_.col(equation_[k].col).length;
  }
}

void Sparsifier::tryRow(int e, int i) {
  quotients_.clear();
  const RowEntries row = model_.rowEntries(i);
  for (auto it = row.begin(); it.position() >= 0; ++it) {
    const Entry &entry = *it;
    if (coef_[entry.col] == 0) continue;
    ws_.positionOf[entry.col] = it.position();
    quotients_.push_back(-entry.value / coef_[entry.col]);
  }
  effort_ += model_.row(i).length;
  const int length = static_cast<int>(equation_.size());
  const int fill = length - static_cast<int>(quotients_.size());
  const int worthwhile = 1 + static_cast<int>(worthwhile_ * length);
  if (static_cast<int>(quotients_.size()) - fill >= worthwhile) {
    countRatios();
    int trials = kTrials;
    for (const Ratio &ratio : ratios_) {
      if (ratio.count - fill < worthwhile || trials-- == 0) break;
      if (tryMultiple(e, i, ratio.value)) break;
    }
  }
  for (const Entry &entry : equation_) ws_.positionOf[entry.col] = -1;
}

// The multiples among the quotients, most frequent first.
void Sparsifier::countRatios() {
  std::sort(quotients_.begin(), quotients_.end());
  ratios_.clear();
  double first = 0;
  for (const double quotient : quotients_) {
    if (ratios_.empty() || quotient - first > kNoise * std::fabs(first)) {
      first = quotient;
      ratios_.push_back({quotient, 1});
      continue;
    }
    Ratio &ratio = ratios_.back();
    ++ratio.count;
    if (!isShort(ratio.value) && isShort(quotient)) ratio.value = quotient;
  }
  effort_ += 4.0 * static_cast<double>(quotients_.size());
  std::stable_sort(ratios_.begin(), ratios_.end(), [](const Ratio &a, const Ratio &b) {
    if (a.count != b.count) return a.count > b.count;
    return isShort(a.value) > isShort(b.value);
  });
}

bool Sparsifier::keepsNature(const RowNature &nature, int col, double sum) const {
  const double size = std::fabs(sum);
  if (size > nature.largest * kSpread) return false;
  if (size < nature.smallest / kSpread && !isShort(sum)) return false;
  return !nature.integral || (model_.col(col).integer && integral(sum));
}

double Sparsifier::movedSide(double side, int e, double multiple) const {
  if (isInf(side)) return side;
  const double sum = std::fma(multiple, model_.row(e).lower, side);
  return std::fabs(sum) <= kNoise * std::fabs(side) ? 0.0 : sum;
}

// Sides that differ must go on to do so, and none may lose the digits that it has.
bool Sparsifier::keepsSides(int e, int i, double multiple) const {
  const Row &row = model_.row(i);
  const double shift = std::fabs(multiple * model_.row(e).lower);
  for (const double side : {row.lower, row.upper})
    if (!isInf(side) && shift > kSideGrowth * std::max(1.0, std::fabs(side))) return false;
  return row.isEquation() || movedSide(row.lower, e, multiple) < movedSide(row.upper, e, multiple);
}

bool Sparsifier::tryMultiple(int e, int i, double multiple) {
  const double size = std::fabs(multiple);
  if (size > std::min(kMultiple, ws_.options.multiplierLimit) || size < 1 / kMultiple) return false;
  if (!keepsSides(e, i, multiple)) return false;
  effort_ += static_cast<double>(equation_.size());
  sums_.clear();
  int won = 0;
  double loss = 1;
  for (const Entry &term : equation_) {
    const int position = ws_.positionOf[term.col];
    const double old = position < 0 ? 0 : model_.entry(position).value;
    double sum = std::fma(multiple, term.value, old);
    if (std::fabs(sum) <= kNoise * std::fabs(old))
      sum = 0, ++won;
    else if (!keepsNature(natures_[i], term.col, sum))
      return false;
    else if (!isShort(sum))
      loss = std::max({loss, std::fabs(old / sum), std::fabs(multiple * term.value / sum)});
    won -= old == 0;
    sums_.push_back(sum);
  }
  loss *= std::max(natures_[e].loss, natures_[i].loss);
  if (loss > kMaxLoss) return false;
  if (won <= 0 || !ws_.take()) return false;
  add(e, i, multiple);
  natures_[i].loss = loss;
  return true;
}

void Sparsifier::add(int e, int i, double multiple) {
  ws_.stack.begin(RecordKind::AddedEquation);
  ws_.stack.put(e);
  ws_.stack.put(i);
  ws_.stack.put(multiple);
  for (std::size_t k = 0; k < equation_.size(); ++k) {
    const int col = equation_[k].col, position = ws_.positionOf[col];
    if (position < 0)
      model_.addEntry(i, col, sums_[k]);
    else if (sums_[k] == 0)
      model_.removeEntry(position);
    else
      model_.setEntry(position, sums_[k]);
  }
  ws_.stats.coefsChanged += static_cast<int>(equation_.size());
  const Row &row = model_.row(i);
  model_.setRowBounds(i, movedSide(row.lower, e, multiple), movedSide(row.upper, e, multiple));
  model_.refreshActivity(i);
  effort_ += 3.0 * static_cast<double>(equation_.size());
}

bool sparsifyRows(Workspace &ws) { return ws.options.sparsify != 0 && Sparsifier(ws).run(); }

void undoAddedEquation(RecordReader record, PostsolveState &state) {
  const int e = record.get<int>();
  const int i = record.get<int>();
  const double multiple = record.get<double>();
  if (state.hasPrimal) state.activity[i] -= multiple * state.activity[e];
  if (!state.hasDual) return;
  state.y[e] += multiple * state.y[i];
  if (!state.hasBasis || state.rowStatus[e] != VarStatus::Basic ||
      state.rowStatus[i] == VarStatus::Basic)
    return;
  state.basisFits = false;
  if (std::fabs(state.y[e]) <= kNoDual) return;
  state.rowStatus[e] = state.y[e] > 0 ? VarStatus::AtLower : VarStatus::AtUpper;
  state.missingBasic.push_back(e);
}

}  // namespace tarvik::presolve
