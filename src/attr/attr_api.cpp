// Exported access to attributes.
#include <cstdio>

#include "attr/attr_access.h"
#include "model/model_call.h"

using namespace tarvik;

namespace {

// Setting during an optimization is refused by the model check, with the attribute's name.
template <class Body>
int setCall(TVKmodel *model, const char *name, Body &&body) {
  const int code = modelCall(model, nullptr, body);
  if (code == TVK_ERROR_OPTIMIZATION_IN_PROGRESS && name)
    model->env().recordError(code, true, "Unable to set attribute '%s'", name);
  return code;
}

template <class T>
int getScalar(TVKmodel *model, const char *name, T *value) {
  return modelCall(model, nullptr, [&](Model &m) {
    if (!name) throw Error(TVK_ERROR_NULL_ARGUMENT, "NULL 'attrname' argument supplied");
    if (!value) throw Error(TVK_ERROR_NULL_ARGUMENT, "NULL 'value' argument supplied");
    *value = getAttr<T>(m, name);
  });
}

// While a solve runs in the background, its status can be asked for, and nothing else.
bool asksRunningStatus(const TVKmodel *model, const char *name, const int *value) {
  if (!model || model->marker() != kModelMarker || !name || !value) return false;
  return model->solvesInBackground() && TVKissamestring(name, "Status", sizeof "Status");
}

template <class T>
int setScalar(TVKmodel *model, const char *name, T value) {
  return setCall(model, name, [&](Model &m) { setAttr<T>(m, name, value); });
}

template <class T>
int getElements(TVKmodel *model, const char *name, const Elements &elements, T *values) {
  return modelCall(model, nullptr,
                   [&](Model &m) { getAttrElements<T>(m, name, elements, values); });
}

template <class T>
int setElements(TVKmodel *model, const char *name, const Elements &elements, const T *values) {
  return setCall(model, name, [&](Model &m) { setAttrElements<T>(m, name, elements, values); });
}

template <class T>
int getListed(TVKmodel *model, const char *name, int len, const int *ind, T *values) {
  return modelCall(model, nullptr, [&](Model &m) {
    if (len != 0 && !ind) throw Error(TVK_ERROR_NULL_ARGUMENT, "NULL 'ind' argument supplied");
    getAttrElements<T>(m, name, {0, len, ind}, values);
  });
}

template <class T>
int setListed(TVKmodel *model, const char *name, int len, const int *ind, const T *values) {
  return setCall(model, name, [&](Model &m) {
    if (len != 0 && !ind) throw Error(TVK_ERROR_NULL_ARGUMENT, "NULL 'ind' argument supplied");
    setAttrElements<T>(m, name, {0, len, ind}, values);
  });
}

const char **asTexts(char **values) { return const_cast<const char **>(values); }

}  // namespace

extern "C" {

int TVKgetintattr(TVKmodel *model, const char *attrname, int *value) {
  if (asksRunningStatus(model, attrname, value)) {
    *value = TVK_INPROGRESS;
    return 0;
  }
  return getScalar(model, attrname, value);
}

int TVKsetintattr(TVKmodel *model, const char *attrname, int value) {
  return setScalar(model, attrname, value);
}

int TVKgetintattrelement(TVKmodel *model, const char *attrname, int element, int *value) {
  return getElements(model, attrname, {element, 1, nullptr}, value);
}

int TVKsetintattrelement(TVKmodel *model, const char *attrname, int element, int value) {
  return setElements(model, attrname, {element, 1, nullptr}, &value);
}

int TVKgetintattrarray(TVKmodel *model, const char *attrname, int first, int len, int *values) {
  return getElements(model, attrname, {first, len, nullptr}, values);
}

int TVKsetintattrarray(TVKmodel *model, const char *attrname, int first, int len,
                       const int *values) {
  return setElements(model, attrname, {first, len, nullptr}, values);
}

int TVKgetintattrlist(TVKmodel *model, const char *attrname, int len, const int *ind, int *values) {
  return getListed(model, attrname, len, ind, values);
}

int TVKsetintattrlist(TVKmodel *model, const char *attrname, int len, const int *ind,
                      const int *values) {
  return setListed(model, attrname, len, ind, values);
}

int TVKgetcharattrelement(TVKmodel *model, const char *attrname, int element, char *value) {
  return getElements(model, attrname, {element, 1, nullptr}, value);
}

int TVKsetcharattrelement(TVKmodel *model, const char *attrname, int element, char value) {
  return setElements(model, attrname, {element, 1, nullptr}, &value);
}

int TVKgetcharattrarray(TVKmodel *model, const char *attrname, int first, int len, char *values) {
  return getElements(model, attrname, {first, len, nullptr}, values);
}

int TVKsetcharattrarray(TVKmodel *model, const char *attrname, int first, int len,
                        const char *values) {
  return setElements(model, attrname, {first, len, nullptr}, values);
}

int TVKgetcharattrlist(TVKmodel *model, const char *attrname, int len, const int *ind,
                       char *values) {
  return getListed(model, attrname, len, ind, values);
}

int TVKsetcharattrlist(TVKmodel *model, const char *attrname, int len, const int *ind,
                       const char *values) {
  return setListed(model, attrname, len, ind, values);
}

int TVKgetdblattr(TVKmodel *model, const char *attrname, double *value) {
  return getScalar(model, attrname, value);
}

int TVKsetdblattr(TVKmodel *model, const char *attrname, double value) {
  return setScalar(model, attrname, value);
}

int TVKgetdblattrelement(TVKmodel *model, const char *attrname, int element, double *value) {
  return getElements(model, attrname, {element, 1, nullptr}, value);
}

int TVKsetdblattrelement(TVKmodel *model, const char *attrname, int element, double value) {
  return setElements(model, attrname, {element, 1, nullptr}, &value);
}

int TVKgetdblattrarray(TVKmodel *model, const char *attrname, int first, int len, double *values) {
  return getElements(model, attrname, {first, len, nullptr}, values);
}

int TVKsetdblattrarray(TVKmodel *model, const char *attrname, int first, int len,
                       const double *values) {
  return setElements(model, attrname, {first, len, nullptr}, values);
}

int TVKgetdblattrlist(TVKmodel *model, const char *attrname, int len, const int *ind,
                      double *values) {
  return getListed(model, attrname, len, ind, values);
}

int TVKsetdblattrlist(TVKmodel *model, const char *attrname, int len, const int *ind,
                      const double *values) {
  return setListed(model, attrname, len, ind, values);
}

int TVKgetstrattr(TVKmodel *model, const char *attrname, char **value) {
  return getScalar(model, attrname, asTexts(value));
}

int TVKsetstrattr(TVKmodel *model, const char *attrname, const char *value) {
  return setScalar(model, attrname, value);
}

int TVKgetstrattrelement(TVKmodel *model, const char *attrname, int element, char **value) {
  return getElements(model, attrname, {element, 1, nullptr}, asTexts(value));
}

int TVKsetstrattrelement(TVKmodel *model, const char *attrname, int element, const char *value) {
  return setElements(model, attrname, {element, 1, nullptr}, &value);
}

int TVKgetstrattrarray(TVKmodel *model, const char *attrname, int first, int len, char **values) {
  return getElements(model, attrname, {first, len, nullptr}, asTexts(values));
}

int TVKsetstrattrarray(TVKmodel *model, const char *attrname, int first, int len,
                       const char *const *values) {
  return setElements(model, attrname, {first, len, nullptr}, values);
}

int TVKgetstrattrlist(TVKmodel *model, const char *attrname, int len, const int *ind,
                      char **values) {
  return getListed(model, attrname, len, ind, asTexts(values));
}

int TVKsetstrattrlist(TVKmodel *model, const char *attrname, int len, const int *ind,
                      const char *const *values) {
  return setListed(model, attrname, len, ind, values);
}

int TVKgetattrinfo(TVKmodel *model, const char *attrname, int *datatype, int *attrtype,
                   int *settable) {
  for (int *output : {datatype, attrtype, settable})
    if (output) *output = -1;
  return modelCall(model, nullptr, [&](Model &) {
    const AttrRow &row = findAttr(attrname);
    if (datatype) *datatype = static_cast<int>(row.type);
    if (attrtype) *attrtype = static_cast<int>(row.scope);
    if (settable) *settable = row.settable;
  });
}

int TVKisattravailable(TVKmodel *model, const char *attrname) {
  bool available = false;
  const int code =
      modelCall(model, nullptr, [&](Model &m) { available = isAttrAvailable(m, attrname); });
  return code == 0 && available;
}

int TVKgetnumattributes(TVKmodel *model) { return checkModel(model) ? -1 : kNumAttrs; }

int TVKgetattrname(TVKmodel *model, int i, char **name) {
  return modelCall(model, nullptr, [&](Model &) {
    if (!name) throw Error(TVK_ERROR_NULL_ARGUMENT);
    if (i < 0 || i >= kNumAttrs) throw Error(TVK_ERROR_INVALID_ARGUMENT);
    *name = const_cast<char *>(attrTable().row(i).name);
  });
}

}  // extern "C"
