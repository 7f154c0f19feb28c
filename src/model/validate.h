// Checks and normal forms that the building functions, the builder and the attribute setters
// share. Checks throw Error with the message of the failure.
#pragma once

#include <cstddef>
#include <string_view>

#include "model/model_data.h"

namespace tarvik {

inline constexpr int kMaxNameLength = 255;

void requireArgument(bool present);
void checkNoNan(const double *values, std::size_t count);
void checkFinite(const double *values, std::size_t count);
void checkFiniteValue(double value);  // for a single argument
void checkNoNanValue(double value);
void checkName(std::string_view name);
// The letter in upper case.
char checkedVarType(char letter);
// '<', '>' or '=', also from L, G, E in either case.
char checkedSense(char letter);

// A value as objective coefficients and right-hand sides are stored.
double clampToUserInf(double value);
// A bound as it is stored: beyond 1e20 in magnitude it is infinite.
double storedBound(double bound);
// Integer-like variables with different bounds have integral ones, binaries lie in [0, 1].
void roundIntegerBounds(char type, double &lb, double &ub);
// Start values are clamped; kUndefined stays.
double storedStart(double value);

// Fills names so that it has `count` non-empty texts: prefix and a number from firstNumber on
// for blank ones. Throws before anything is changed.
void completeNames(NameList &names, int count, const char *prefix, int firstNumber);

}  // namespace tarvik
