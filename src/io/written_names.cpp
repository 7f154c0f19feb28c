#include "io/written_names.h"
#include "io/numbered.h"

namespace tarvik {

bool breaksFields(const std::string &name) {
  return name.empty() || name.find_first_of(" :^\\\t\n\r") != std::string::npos;
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

}  // namespace tarvik
