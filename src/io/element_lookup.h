// Finds variables and constraints by the names that files show: their own names, default names,
// and the generic names that writers fall back to.
#pragma once

#include <string_view>

#include "io/name_table.h"
#include "io/writer_names.h"

namespace tarvik {

class ElementLookup {
 public:
  ElementLookup(Model &model, NameKind kind);
  // The index, -1 when nothing has the name.
  int find(std::string_view name);

 private:
  NameTable table_;
  Vec<int> element_;  // per name of the table, the first element with it
  NameKind kind_;
  int count_;
  WriterNames generic_;
  int last_ = -1;
};

}  // namespace tarvik
