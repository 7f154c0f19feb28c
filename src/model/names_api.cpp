// Exported lookups of positions by name.
#include "model/model_call.h"
#include "model/validate.h"

using namespace tarvik;

namespace {

int findName(NameIndex &index, const NameList &names, const char *name, const char *kind) {
  if (names.empty()) {
    throw Error(TVK_ERROR_DATA_NOT_AVAILABLE, "No %s names available to index", kind);
  }
  if (!index.built()) index.build(names);
  return name ? index.find(names, name) : -1;
}

}  // namespace

extern "C" {

int TVKgetvarbyname(TVKmodel *model, const char *name, int *indexP) {
  return modelCall(model, "Failed to retrieve variable", [&](Model &m) {
    requireArgument(indexP != nullptr);
    *indexP = -1;
    *indexP = findName(m.derived().varNames, m.data().varNames, name, "variable");
  });
}

int TVKgetconstrbyname(TVKmodel *model, const char *name, int *indexP) {
  return modelCall(model, "Failed to retrieve constraint", [&](Model &m) {
    requireArgument(indexP != nullptr);
    *indexP = -1;
    *indexP = findName(m.derived().constrNames, m.data().constrNames, name, "constraint");
  });
}

int TVKgetqconstrbyname(TVKmodel *model, const char *name, int *indexP) {
  return modelCall(model, "Failed to retrieve quadratic constraint", [&](Model &m) {
    requireArgument(indexP != nullptr);
    *indexP = -1;
    *indexP =
        findName(m.derived().qconstrNames, m.data().qconstrNames, name, "quadratic constraint");
  });
}

}  // extern "C"
