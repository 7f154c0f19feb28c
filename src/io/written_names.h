// Texts that only writers need: names that must not meet others, and objective names.
#pragma once

#include <string>
#include <unordered_map>

#include "io/name_table.h"
#include "io/writer_names.h"

namespace tarvik {

// True when a name would be cut into pieces by a reader.
bool breaksFields(const std::string &name);
// `wanted`, or `wanted` with the first number behind it that no constraint of the file has.
std::string freeConstraintName(const ModelData &data, WriterNames &names,
                               const std::string &wanted);

// The same for many names, each of which differs from those taken before it, too.
class FreeConstraintNames {
 public:
  FreeConstraintNames(const ModelData &data, WriterNames &names);
  std::string take(const std::string &wanted);

 private:
  NameTable taken_;
  std::unordered_map<std::string, int> next_;  // the number that a wanted name got last
};

}  // namespace tarvik
