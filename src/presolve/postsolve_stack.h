// The record of a presolve run: one entry a reduction, written as plain bytes in the order of
// application and undone in reverse. What is stored is what the reduction saw: the entries of
// the row or column it removed, costs and bounds at that moment. Every removed row and column
// stores its entries once, so the stack grows with the entries of the model.
#pragma once

#include <cstring>

#include "lp/lp_model.h"
#include "presolve/working_model.h"

namespace tarvik::presolve {

enum class RecordKind : int {
  FixedCol,
  RedundantRow,
  SingletonRow,
  ForcingRow,
  UnconstrainedCol,
  FreeSingletonCol,
  SlackCol,
  Doubleton,
  Substitution,
  EquationSide,
  ParallelRows,
  ParallelCols,
  AddedEquation,
};

// Entries (of a row or a column) as they stand in a record.
class StoredEntries {
 public:
  StoredEntries(const char *bytes, int count) : bytes_(bytes), count_(count) {}
  int count() const { return count_; }
  int index(int k) const {
    int result;
    std::memcpy(&result, bytes_ + k * kSize, sizeof result);
    return result;
  }
  double value(int k) const {
    double result;
    std::memcpy(&result, bytes_ + k * kSize + sizeof(int), sizeof result);
    return result;
  }
  static constexpr std::size_t kSize = sizeof(int) + sizeof(double);

 private:
  const char *bytes_;
  int count_;
};

class RecordReader {
 public:
  explicit RecordReader(const char *bytes) : bytes_(bytes) {}
  template <class T>
  T get() {
    T result;
    std::memcpy(&result, bytes_, sizeof(T));
    bytes_ += sizeof(T);
    return result;
  }
  StoredEntries entries() {
    const int count = get<int>();
    const StoredEntries result(bytes_, count);
    bytes_ += count * StoredEntries::kSize;
    return result;
  }

 private:
  const char *bytes_;
};

class PostsolveStack {
 public:
  void clear() {
    records_.clear();
    bytes_.clear();
  }
  void shrink() {
    records_.shrink_to_fit();
    bytes_.shrink_to_fit();
  }
  int size() const { return static_cast<int>(records_.size()); }

  void begin(RecordKind kind) { records_.push_back({kind, bytes_.size()}); }
  template <class T>
  void put(const T &value) {
    const char *raw = reinterpret_cast<const char *>(&value);
    bytes_.insert(bytes_.end(), raw, raw + sizeof(T));
  }
  // The entries of a column but for one row, those of a row but for one column.
  void putCol(const WorkingModel &model, int col, int withoutRow = -1);
  void putRow(const WorkingModel &model, int row, int withoutCol = -1);

  RecordKind kind(int record) const { return records_[record].kind; }
  RecordReader read(int record) const {
    return RecordReader(bytes_.data() + records_[record].start);
  }

 private:
  struct Head {
    RecordKind kind;
    std::size_t start;
  };
  void patchCount(std::size_t at, int count) {
    std::memcpy(bytes_.data() + at, &count, sizeof count);
  }
  Vec<Head> records_;
  Vec<char> bytes_;
};

// What postsolve restores, in the indices of the full model. Row activities are those of the
// model as it was at the moment of the record being undone.
struct PostsolveState {
  Vec<double> x, activity, y, d;
  Vec<VarStatus> colStatus, rowStatus;
  bool hasPrimal = false;
  bool hasDual = false;
  bool hasBasis = false;
  bool basisFits = true;     // the basis has these duals
  Vec<int> missingBasic;     // rows whose logicals are to complete the basis in the end
  bool ignoreCosts = false;  // restoring a Farkas certificate: duals of a zero objective

  double cost(double value) const { return ignoreCosts ? 0 : value; }
  // cost - y'a over stored column entries.
  double reducedCost(double cost, const StoredEntries &entries) const;
  // The stored row's activity.
  double rowValue(const StoredEntries &entries) const;
  // Adds a restored column to the activities of its rows.
  void addToActivity(const StoredEntries &entries, double value);
  void setRow(int row, VarStatus status) {
    if (hasBasis) rowStatus[row] = status;
  }
  void setCol(int col, VarStatus status) {
    if (hasBasis) colStatus[col] = status;
  }
  // Which of a column's bounds holds it: -1 the lower, 1 the upper, 0 none (basic, or free of
  // reduced cost when there is no basis). For a fixed column the sign of d decides.
  int holdingSide(int col, bool fixed) const;
};

}  // namespace tarvik::presolve
