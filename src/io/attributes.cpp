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

bool tryInt(Model &model, const char *attribute, int &value) {
  return TVKgetintattr(handleOf(model), attribute, &value) == 0;
}

bool tryDouble(Model &model, const char *attribute, double &value) {
  return TVKgetdblattr(handleOf(model), attribute, &value) == 0;
}

}  // namespace tarvik
