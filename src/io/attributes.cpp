#include "io/attributes.h"

namespace tarvik {

TVKmodel *handleOf(Model &model) { return static_cast<TVKmodel *>(&model); }

void checkCall(Model &model, int code) {
  if (code != 0) throw Error(code, "%s", model.env().errorMessage());
}

void failInstead(Model &model, int code, const char *message) {
  model.env().clearErrorAtEntry();
  throw Error(code, "%s", message);
}

Vec<double> getDoubles(Model &model, const char *attribute, int count) {
  Vec<double> values(count);
  checkCall(model, TVKgetdblattrarray(handleOf(model), attribute, 0, count, values.data()));
  return values;
}

Vec<int> getInts(Model &model, const char *attribute, int count) {
  Vec<int> values(count);
  checkCall(model, TVKgetintattrarray(handleOf(model), attribute, 0, count, values.data()));
  return values;
}

namespace {

// Memory that ran out is no answer to whether an attribute is available.
bool isAvailable(Model &model, const char *attribute, int code) {
  if (code == 0) return true;
  model.env().clearErrorAtEntry();
  if (code == TVK_ERROR_OUT_OF_MEMORY)
    throw Error(code, "Could not retrieve attribute `%s`", attribute);
  return false;
}

}  // namespace

bool tryInt(Model &model, const char *attribute, int &value) {
  return isAvailable(model, attribute, TVKgetintattr(handleOf(model), attribute, &value));
}

bool tryDouble(Model &model, const char *attribute, double &value) {
  return isAvailable(model, attribute, TVKgetdblattr(handleOf(model), attribute, &value));
}

bool tryInts(Model &model, const char *attribute, Vec<int> &values) {
  return isAvailable(model, attribute,
                     TVKgetintattrarray(handleOf(model), attribute, 0,
                                        static_cast<int>(values.size()), values.data()));
}

bool tryDoubles(Model &model, const char *attribute, Vec<double> &values) {
  return isAvailable(model, attribute,
                     TVKgetdblattrarray(handleOf(model), attribute, 0,
                                        static_cast<int>(values.size()), values.data()));
}

}  // namespace tarvik
