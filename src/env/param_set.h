// The rules by which parameters change: checks, flags, messages and log lines. The functions
// that take a row expect it to be of the matching type.
#pragma once

#include "env/env.h"

namespace tarvik {

// The row of a name; throws Error 10007 for an unknown name and, in the second form, for a
// parameter of another type.
int requireParam(const char *name);
int requireParam(const char *name, ParamType type);

void setIntParam(Env &env, int row, int value, bool silent);
void setDblParam(Env &env, int row, double value, bool silent);
void setStrParam(Env &env, int row, const char *value, bool silent);

// Sets a parameter of any type from text, the texts for infinity included.
void setParamFromText(Env &env, const char *name, const char *text);

// Lowers the effective limit of a number, and the number itself when it is above it.
void lowerParamLimit(Env &env, Int id, int limit, bool silent);
void lowerParamLimit(Env &env, Dbl id, double limit, bool silent);

// Resets one parameter and locks it, as where no local disk may be used.
void resetAndLockParam(Env &env, int row);
void resetParams(Env &env);
void copyParams(Env &dest, Env &source);

// Tells the memory account of the limits that the parameters ask for.
void applyMemoryParams(Env &env);

}  // namespace tarvik
