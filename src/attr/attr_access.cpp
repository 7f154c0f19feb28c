#include "attr/attr_access.h"

#include "model/validate.h"

namespace tarvik {

namespace {

constexpr const char *kTypeNames[] = {"char", "int", "double", "string"};

template <class T>
constexpr AttrType kTypeOf = AttrType::Str;
template <>
constexpr AttrType kTypeOf<char> = AttrType::Char;
template <>
constexpr AttrType kTypeOf<int> = AttrType::Int;
template <>
constexpr AttrType kTypeOf<double> = AttrType::Dbl;

enum class Shape { Scalar, Array };

const AttrRow &lookup(const char *name, AttrType type, Shape shape, bool write) {
  const AttrRow &row = findAttr(name);
  if (row.type != type) {
    throw Error(TVK_ERROR_UNKNOWN_ATTRIBUTE, "Requested %s attribute '%s' is of type %s",
                kTypeNames[static_cast<int>(type)], name, kTypeNames[static_cast<int>(row.type)]);
  }
  const bool isScalar = row.scope == AttrScope::Model;
  if (shape == Shape::Array && isScalar) {
    throw Error(TVK_ERROR_UNKNOWN_ATTRIBUTE,
                "You tried to access scalar attribute '%s' as an array", name);
  }
  if (shape == Shape::Scalar && !isScalar) {
    throw Error(TVK_ERROR_UNKNOWN_ATTRIBUTE, "You tried to access array attribute '%s' as a scalar",
                name);
  }
  if (write && !row.settable) {
    throw Error(TVK_ERROR_UNKNOWN_ATTRIBUTE, "Attribute '%s' may not be set", name);
  }
  return row;
}

// Runs body; an error without a text of its own gets one that names the attribute.
template <class Body>
auto named(const char *format, const char *name, Body &&body) {
  try {
    return body();
  } catch (const Error &error) {
    if (!error.message().empty()) throw;
    throw Error(error.code(), format, name);
  }
}

constexpr const char *kUnableToGet = "Unable to retrieve attribute '%s'";
constexpr const char *kUnableToSet = "Unable to set attribute '%s'";

[[noreturn]] void notAvailable() { throw Error(TVK_ERROR_DATA_NOT_AVAILABLE); }

int scopeSize(const Model &model, AttrScope scope, bool write) {
  const ModelData &data = model.data();
  const PendingChanges *p = write ? model.pending() : nullptr;
  switch (scope) {
    case AttrScope::Var:
      return p ? p->allVars() : data.numVars();
    case AttrScope::Constr:
      return p ? p->allConstrs() : data.numConstrs();
    case AttrScope::Sos:
      return p ? p->allSos() : data.numSos();
    case AttrScope::QConstr:
      return p ? p->allQConstrs() : data.numQConstrs();
    case AttrScope::GenConstr:
      return p ? p->allGenConstrs() : data.numGenConstrs();
    default:
      return 0;
  }
}

void checkElements(const Elements &elements, int size, const char *name) {
  if (elements.list && elements.len >= 0) {
    for (int k = 0; k < elements.len; ++k) {
      if (elements.list[k] >= 0 && elements.list[k] < size) continue;
      throw Error(TVK_ERROR_INDEX_OUT_OF_RANGE, "Index %d out of range for attribute '%s'",
                  elements.list[k], name);
    }
  } else if (elements.first < 0 || elements.len < 0 || elements.len > size ||
             elements.first > size - elements.len) {
    throw Error(TVK_ERROR_INDEX_OUT_OF_RANGE, "Index out of range for attribute '%s'", name);
  }
}

template <class T>
T readScalar(Model &model, const AttrRow &row) {
  if (row.compute) row.compute(model);
  const auto &handlers = std::get<AttrHandlers<T>>(row.handlers);
  T value{};
  if (handlers.storage) {
    const T *stored = handlers.storage(model);
    if (!stored) notAvailable();
    value = *stored;
  } else if (handlers.get) {
    handlers.get(model, {}, &value);
  } else {
    notAvailable();
  }
  if constexpr (std::is_same_v<T, double>)
    if (value == kUndefined) notAvailable();
  return value;
}

template <class T>
void readElements(Model &model, const AttrRow &row, const Elements &elements, T *values) {
  if (row.compute) row.compute(model);
  const auto &handlers = std::get<AttrHandlers<T>>(row.handlers);
  if (handlers.storage) {
    const T *stored = handlers.storage(model);
    if (!stored) notAvailable();
    if (elements.list) {
      for (int k = 0; k < elements.len; ++k) values[k] = stored[elements.list[k]];
    } else {
      std::copy_n(stored + elements.first, elements.len, values);
    }
  } else if (handlers.get) {
    handlers.get(model, elements, values);
  } else {
    notAvailable();
  }
}

template <class T>
bool canRead(Model &model, const AttrRow &row) {
  if (row.scope == AttrScope::Model) {
    readScalar<T>(model, row);
  } else if (scopeSize(model, row.scope, false) > 0) {
    T value;
    readElements<T>(model, row, {0, 1, nullptr}, &value);
  } else {
    return row.scope == AttrScope::Var || row.scope == AttrScope::Constr;
  }
  return true;
}

void requireName(const char *name) {
  if (!name) throw Error(TVK_ERROR_NULL_ARGUMENT, "NULL 'attrname' argument supplied");
}

}  // namespace

const AttrRow &findAttr(const char *name) {
  requireName(name);
  const AttrRow *row = attrTable().find(name);
  if (!row) throw Error(TVK_ERROR_UNKNOWN_ATTRIBUTE, "Unknown attribute '%s'", name);
  return *row;
}

template <class T>
T getAttr(Model &model, const char *name) {
  const AttrRow &row = lookup(name, kTypeOf<T>, Shape::Scalar, false);
  return named(kUnableToGet, name, [&] { return readScalar<T>(model, row); });
}

template <class T>
void setAttr(Model &model, const char *name, T value) {
  requireName(name);
  named(kUnableToSet, name, [&] {
    if (model.optimizing) throw Error(TVK_ERROR_OPTIMIZATION_IN_PROGRESS);
    const AttrRow &row = lookup(name, kTypeOf<T>, Shape::Scalar, true);
    const auto &handlers = std::get<AttrHandlers<T>>(row.handlers);
    if (!handlers.set) notAvailable();
    if constexpr (std::is_same_v<T, double>) checkNoNanValue(value);
    handlers.set(model, {}, &value);
  });
}

template <class T>
void getAttrElements(Model &model, const char *name, const Elements &elements, T *values) {
  requireName(name);
  if (elements.len == 0) return;
  if (!values) throw Error(TVK_ERROR_NULL_ARGUMENT, "NULL 'value' argument supplied");
  const AttrRow &row = lookup(name, kTypeOf<T>, Shape::Array, false);
  named(kUnableToGet, name, [&] {
    checkElements(elements, scopeSize(model, row.scope, false), name);
    readElements(model, row, elements, values);
  });
}

template <class T>
void setAttrElements(Model &model, const char *name, const Elements &elements, const T *values) {
  requireName(name);
  named(kUnableToSet, name, [&] {
    if (model.optimizing) throw Error(TVK_ERROR_OPTIMIZATION_IN_PROGRESS);
    if (!values && elements.len != 0)
      throw Error(TVK_ERROR_NULL_ARGUMENT, "NULL 'value' argument supplied");
    const AttrRow &row = lookup(name, kTypeOf<T>, Shape::Array, true);
    checkElements(elements, scopeSize(model, row.scope, true), name);
    const auto &handlers = std::get<AttrHandlers<T>>(row.handlers);
    if (!handlers.set) notAvailable();
    if constexpr (std::is_same_v<T, double>) checkNoNan(values, elements.len);
    if (elements.len > 0) handlers.set(model, elements, values);
  });
}

bool isAttrAvailable(Model &model, const char *name) {
  const AttrRow &row = findAttr(name);
  try {
    switch (row.type) {
      case AttrType::Char:
        return canRead<char>(model, row);
      case AttrType::Int:
        return canRead<int>(model, row);
      case AttrType::Dbl:
        return canRead<double>(model, row);
      default:
        return canRead<const char *>(model, row);
    }
  } catch (const Error &) {
    return false;
  }
}

template int getAttr(Model &, const char *);
template double getAttr(Model &, const char *);
template const char *getAttr(Model &, const char *);
template void setAttr(Model &, const char *, int);
template void setAttr(Model &, const char *, double);
template void setAttr(Model &, const char *, const char *);
template void getAttrElements(Model &, const char *, const Elements &, char *);
template void getAttrElements(Model &, const char *, const Elements &, int *);
template void getAttrElements(Model &, const char *, const Elements &, double *);
template void getAttrElements(Model &, const char *, const Elements &, const char **);
template void setAttrElements(Model &, const char *, const Elements &, const char *);
template void setAttrElements(Model &, const char *, const Elements &, const int *);
template void setAttrElements(Model &, const char *, const Elements &, const double *);
template void setAttrElements(Model &, const char *, const Elements &, const char *const *);

}  // namespace tarvik
