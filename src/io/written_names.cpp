#include "io/written_names.h"

#include "base/text_reader.h"
#include "io/numbered.h"

namespace tarvik {

bool breaksFields(const std::string &name) {
  return name.empty() || holdsBlank(name) || name.find_first_of(":^\\") != std::string::npos;
}

std::string freeConstraintName(const ModelData &data, WriterNames &names,
                               const std::string &wanted) {
  const auto taken = [&](const std::string &name) {
    for (int i = 0; i < data.numConstrs(); ++i)
      if (names.constr(i) == name) return true;
    for (int k = 0; k < data.numQConstrs(); ++k)
      if (names.qconstr(k) == name) return true;
    for (int k = 0; k < data.numGenConstrs(); ++k)
      if (names.genConstr(k) == name) return true;
    return false;
  };
  std::string name = wanted;
  for (int k = 1; taken(name); ++k) name = wanted + numbered("_", k);
  return name;
}

FreeConstraintNames::FreeConstraintNames(const ModelData &data, WriterNames &names) {
  for (int i = 0; i < data.numConstrs(); ++i) taken_.findOrAdd(names.constr(i));
  for (int k = 0; k < data.numQConstrs(); ++k) taken_.findOrAdd(names.qconstr(k));
  for (int k = 0; k < data.numGenConstrs(); ++k) taken_.findOrAdd(names.genConstr(k));
}

std::string FreeConstraintNames::take(const std::string &wanted) {
  std::string name = wanted;
  int &number = next_[wanted];
  for (int known = taken_.size(); taken_.findOrAdd(name) < known; known = taken_.size())
    name = wanted + numbered("_", ++number);
  return name;
}

}  // namespace tarvik
