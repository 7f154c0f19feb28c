// Attribute access for file readers and writers: a failure is an Error with the code and the
// message that the attribute layer left.
#pragma once

#include "model/model.h"

namespace tarvik {

TVKmodel *handleOf(Model &model);
// Throws when code is not 0, with the model's pending message.
void checkCall(Model &model, int code);
// Throws with a message of the caller in place of the one that the attribute layer left.
[[noreturn]] void failInstead(Model &model, int code, const char *message);

Vec<double> getDoubles(Model &model, const char *attribute, int count);
Vec<int> getInts(Model &model, const char *attribute, int count);
// False when the attribute is not available; leaves no message then.
bool tryInt(Model &model, const char *attribute, int &value);
bool tryDouble(Model &model, const char *attribute, double &value);
bool tryInts(Model &model, const char *attribute, Vec<int> &values);
bool tryDoubles(Model &model, const char *attribute, Vec<double> &values);

// Sets a parameter for the life of the scope.
class IntParamScope {
 public:
  IntParamScope(Env &env, Int id, int value) : env_(env), id_(id), previous_(env.get(id)) {
    env_.setSilently(id_, value);
  }
  ~IntParamScope() { env_.setSilently(id_, previous_); }
  IntParamScope(const IntParamScope &) = delete;
  IntParamScope &operator=(const IntParamScope &) = delete;

 private:
  Env &env_;
  Int id_;
  int previous_;
};

}  // namespace tarvik
