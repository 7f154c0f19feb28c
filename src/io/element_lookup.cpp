#include "io/element_lookup.h"

#include "base/number_format.h"

namespace tarvik {

ElementLookup::ElementLookup(Model &model, NameKind kind) : kind_(kind), generic_(model, true) {
  const ModelData &data = model.data();
  count_ = kind == NameKind::Var      ? data.numVars()
           : kind == NameKind::Constr ? data.numConstrs()
                                      : data.numQConstrs();
  for (int k = 0; k < count_; ++k) {
    const char *name = kind == NameKind::Var      ? model.varName(k)
                       : kind == NameKind::Constr ? model.constrName(k)
                                                  : model.qconstrName(k);
    if (table_.findOrAdd(name) == static_cast<int>(element_.size())) element_.push_back(k);
  }
}

int ElementLookup::find(std::string_view name) {
  last_ = table_.find(name, last_);
  if (last_ >= 0) return element_[last_];
  // A generic name holds its index behind letters.
  const std::size_t digits = name.find_first_of("0123456789");
  if (digits == std::string_view::npos) return -1;
  const std::string_view number =
      name.substr(digits, name.find_first_not_of("0123456789", digits) - digits);
  int k = -1;
  if (!parseInteger(number, k) || k < 0 || k >= count_) return -1;
  const std::string_view expected = kind_ == NameKind::Var      ? generic_.var(k)
                                    : kind_ == NameKind::Constr ? generic_.constr(k)
                                                                : generic_.qconstr(k);
  return expected == name ? k : -1;
}

}  // namespace tarvik
