// The attribute table: one row an attribute, with what a caller may ask of it (type, scope,
// settable) and the functions that read and write it. A read runs the compute function, then
// copies from direct storage when there is some, else asks the get function. Values that are not
// available are a null storage, the double kUndefined, or an Error 10005 of the get function.
//
// The rows come from attr_table.def; the handlers are added by the files attrs_*.cpp, each for
// one family of attributes. The finished table is immutable and shared by all models.
#pragma once

#include <array>
#include <variant>

#include "model/elements.h"
#include "model/model.h"

namespace tarvik {

enum class AttrType : int { Char, Int, Dbl, Str };
enum class AttrScope : int { Model, Var, Constr, Sos, QConstr, GenConstr };

enum class Attr : int {
#define TVK_ATTR(name, type, scope, settable, result) name,
#include "attr/attr_table.def"
#undef TVK_ATTR
  Count
};
inline constexpr int kNumAttrs = static_cast<int>(Attr::Count);

template <class T>
struct AttrHandlers {
  // The scalar, or the array of the whole scope; null while not available.
  const T *(*storage)(Model &) = nullptr;
  // For scalars the elements are empty and one value is written or read.
  void (*get)(Model &, const Elements &, T *) = nullptr;
  void (*set)(Model &, const Elements &, const T *) = nullptr;
};

struct AttrRow {
  const char *name;
  AttrType type;
  AttrScope scope;
  bool settable, result;
  void (*compute)(Model &) = nullptr;
  std::variant<AttrHandlers<char>, AttrHandlers<int>, AttrHandlers<double>,
               AttrHandlers<const char *>>
      handlers;
};

class AttrTable {
 public:
  AttrTable();
  const AttrRow &row(int r) const { return rows_[r]; }
  // The row of a name, compared after normalisation; null when there is none.
  const AttrRow *find(const char *name) const;

  // For the registration of handlers.
  template <class T>
  AttrHandlers<T> &handlers(Attr attr) {
    return std::get<AttrHandlers<T>>(rows_[static_cast<int>(attr)].handlers);
  }
  void setCompute(Attr attr, void (*compute)(Model &)) {
    rows_[static_cast<int>(attr)].compute = compute;
  }

 private:
  static constexpr std::size_t kSlots = 1024;  // a power of two, a few times the row count
  std::array<AttrRow, kNumAttrs> rows_;
  std::array<short, kSlots> slots_;
  std::array<std::string, kNumAttrs> keys_;  // normalised names
};

const AttrTable &attrTable();

// The families of handlers.
void registerSizeAttrs(AttrTable &table);
void registerDataAttrs(AttrTable &table);
void registerSettingAttrs(AttrTable &table);
void registerObjectiveAttrs(AttrTable &table);
void registerScenarioAttrs(AttrTable &table);
void registerResultAttrs(AttrTable &table);
void registerStatisticsAttrs(AttrTable &table);
void registerQualityAttrs(AttrTable &table);

}  // namespace tarvik
