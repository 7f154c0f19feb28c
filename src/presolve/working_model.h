// The model that presolve works on: entries linked along rows and columns, so that rows, columns
// and single entries vanish in constant time an entry and fill finds its place; activity bounds
// of rows kept incrementally in compensated sums with counts of infinite terms; counts of the
// rows that block a column in each direction; queues of what changed, so that reductions look
// only at what is new.
//
// All changes go through the functions below, which keep these parts consistent. They do not
// know why a change is right and leave no record; that is the business of the reductions.
#pragma once

#include <cmath>

#include "base/compensated_sum.h"
#include "lp/lp_model.h"
#include "presolve/presolve.h"

namespace tarvik::presolve {

struct Entry {
  double value;
  int row, col;
  int nextInRow, prevInRow, nextInCol, prevInCol;  // -1 at the ends
};

// The values that a row's activity can take within the column bounds. Infinite terms are counted
// instead of added.
struct ActivityBounds {
  CompensatedSum min, max;
  int minInf = 0, maxInf = 0;
};

struct Row {
  double lower, upper;
  ActivityBounds activity;
  int first = -1;
  int length = 0;
  int singletons = 0;  // columns of this row that have no other entry
  int changedAt = 0;   // clock() of the last change to entries, bounds or activity
  bool alive = true;
  bool isEquation() const { return lower == upper; }
};

// Bounds of an integral column, rounded inwards; what misses an integer by rounding only is it.
constexpr double kIntegerSlack = 1e-6;
inline double integerLower(double bound) {
  return isInf(bound) ? bound : std::ceil(bound - kIntegerSlack);
}
inline double integerUpper(double bound) {
  return isInf(bound) ? bound : std::floor(bound + kIntegerSlack);
}

struct Col {
  double lower, upper, cost;
  int first = -1;
  int length = 0;
  int downLocks = 0, upLocks = 0;  // row sides that keep the column from falling, rising
  int changedAt = 0;
  bool alive = true;
  bool integer = false;
  bool restricted = false;  // see PresolveOptions::restricted
  bool hasLower() const { return lower > -kInfBound; }
  bool hasUpper() const { return upper < kInfBound; }
};

// Iterates over the entries of a row or a column. The entry under the cursor may not be removed.
template <int Entry::*Next>
class EntryRange {
 public:
  class Iterator {
   public:
    Iterator(const Entry *base, int at) : base_(base), at_(at) {}
    const Entry &operator*() const { return base_[at_]; }
    Iterator &operator++() {
      at_ = base_[at_].*Next;
      return *this;
    }
    bool operator!=(const Iterator &other) const { return at_ != other.at_; }
    int position() const { return at_; }

   private:
    const Entry *base_;
    int at_;
  };
  EntryRange(const Entry *base, int first) : base_(base), first_(first) {}
  Iterator begin() const { return {base_, first_}; }
  Iterator end() const { return {base_, -1}; }

 private:
  const Entry *base_;
  int first_;
};
using RowEntries = EntryRange<&Entry::nextInRow>;
using ColEntries = EntryRange<&Entry::nextInCol>;

// Rows or columns waiting to be looked at, each at most once.
class ChangeQueue {
 public:
  void reset(int size) {
    queued_.assign(static_cast<std::size_t>(size), 0);
    list_.clear();
  }
  void push(int item) {
    if (queued_[item]) return;
    queued_[item] = 1;
    list_.push_back(item);
  }
  bool empty() const { return list_.empty(); }
  // Takes the whole list; items changed from now on are queued anew.
  void takeAll(Vec<int> &items) {
    items.clear();
    items.swap(list_);
    for (const int item : items) queued_[item] = 0;
  }

 private:
  Vec<char> queued_;
  Vec<int> list_;
};

class WorkingModel {
 public:
  void load(const LpModel &lp, const PresolveOptions &options);
  // The surviving part as a model of its own, with its rows and columns in terms of the loaded
  // model.
  void extract(LpModel &lp, Vec<int> &rows, Vec<int> &cols) const;

  int numRows() const { return static_cast<int>(rows_.size()); }
  int numCols() const { return static_cast<int>(cols_.size()); }
  int rowsLeft() const { return rowsLeft_; }
  int colsLeft() const { return colsLeft_; }
  NzIndex entriesLeft() const { return entriesLeft_; }
  const Row &row(int i) const { return rows_[i]; }
  const Col &col(int j) const { return cols_[j]; }
  RowEntries rowEntries(int i) const { return {entries_.data(), rows_[i].first}; }
  ColEntries colEntries(int j) const { return {entries_.data(), cols_[j].first}; }
  const Entry &entry(int position) const { return entries_[position]; }
  // The position of an entry, -1 when there is none; walks along the shorter of the two lists.
  int find(int i, int j) const;

  // Bounds of the row's activity, and without one of its entries; infinite when a term is.
  double minActivity(int i) const;
  double maxActivity(int i) const;
  double minActivityWithout(const Entry &entry) const;
  double maxActivityWithout(const Entry &entry) const;
  // The bounds of a column that one of its rows implies; infinite when it implies none.
  double impliedLower(const Entry &entry) const;
  double impliedUpper(const Entry &entry) const;

  void setColLower(int j, double lower);
  void setColUpper(int j, double upper);
  void setCost(int j, double cost);
  void addOffset(double value) { offset_.add(value); }
  void setRowBounds(int i, double lower, double upper);
  void removeRow(int i);
  // Removes a column and leaves rows and offset as they are.
  void removeCol(int j);
  // Removes a column that has this value: moves its part into row bounds and offset.
  void fixCol(int j, double value);
  void setEntry(int position, double value);
  void removeEntry(int position);
  void addEntry(int i, int j, double value);
  // Adds to an entry that may not exist yet; what cancels vanishes.
  void addToEntry(int i, int j, int position, double value);
  // Computes the activity bounds of a row afresh.
  void refreshActivity(int i);

  ChangeQueue &changedRows() { return changedRows_; }
  ChangeQueue &changedCols() { return changedCols_; }
  void touchRow(int i);
  void touchCol(int j);
  // Ticks with every change; a reduction compares changedAt with the time of its last visit.
  int clock() const { return clock_; }

 private:
  void addLocks(const Entry &entry, int count);
  void addTerm(const Entry &entry, double bound, bool isLower, int sign);
  void addTerms(const Entry &entry, int sign);
  void link(int position);
  void unlinkFromRow(const Entry &entry);
  void unlinkFromCol(const Entry &entry);
  void lengthened(int j);
  void shortened(int j);

  Vec<Row> rows_;
  Vec<Col> cols_;
  Vec<Entry> entries_;
  Vec<int> freeEntries_;
  CompensatedSum offset_;
  ChangeQueue changedRows_, changedCols_;
  double zeroTol_ = 0;
  int rowsLeft_ = 0, colsLeft_ = 0;
  NzIndex entriesLeft_ = 0;
  int clock_ = 0;
};

}  // namespace tarvik::presolve
