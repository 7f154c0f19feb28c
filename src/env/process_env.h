// The process environment. Reading and changing it is serialised within the library, since two
// environments may start in two threads at once.
#pragma once

namespace tarvik {

// The numbers of environment variables; false when unset or not a number.
bool processVariable(const char *name, int &value);
bool processVariable(const char *name, double &value);

bool processVariableIsSet(const char *name);
// Sets a variable that is not set yet.
void setProcessVariable(const char *name, const char *value);
void unsetProcessVariable(const char *name);

}  // namespace tarvik
