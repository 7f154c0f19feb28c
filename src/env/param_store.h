// The parameter values of one environment: a slot, a flag word and an effective limit a row.
// A text slot points to the table's default or to an owned copy. Copying is deep; nothing but a
// new text allocates, and a failed assignment leaves the store as it was.
#pragma once

#include "env/param_table.h"

namespace tarvik {

class ParamStore {
 public:
  ParamStore() noexcept;  // every slot at its default, flags as in the table
  ParamStore(const ParamStore &other);
  ParamStore &operator=(const ParamStore &) = delete;
  ~ParamStore();

  int getInt(int row) const { return values_[row].i; }
  double getDbl(int row) const { return values_[row].d; }
  const char *getStr(int row) const { return values_[row].s; }

  void setInt(int row, int value) { values_[row].i = value; }
  void setDbl(int row, double value) { values_[row].d = value; }
  void setStr(int row, const char *value);  // null means the empty text

  unsigned flags(int row) const { return flags_[row]; }
  bool has(int row, unsigned flag) const { return (flags_[row] & flag) != 0; }
  void addFlags(int row, unsigned flags) { flags_[row] |= flags; }
  void clearFlags(int row, unsigned flags) { flags_[row] &= ~flags; }

  double limit(int row) const { return limits_[row]; }
  void setLimit(int row, double limit) { limits_[row] = limit; }

  // Slots, flags and limits as after creation.
  void reset() noexcept;
  // The default of a number, at most its effective limit.
  double resetTarget(int row) const;
  bool atResetTarget(int row) const;
  bool sameValue(int row, const ParamStore &other) const;

 private:
  union Slot {
    int i;
    double d;
    const char *s;
  };

  void releaseText(int row);

  Slot values_[kNumParams];
  unsigned flags_[kNumParams];
  double limits_[kNumParams];
};

}  // namespace tarvik
