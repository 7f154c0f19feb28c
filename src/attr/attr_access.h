// Typed access to attributes with all its checks; what the exported functions and the writers
// and readers of the shell use. T is char, int, double or const char *. Every failure is an
// Error; one that has no text of its own says which attribute could not be read or set.
#pragma once

#include "attr/attr_table.h"

namespace tarvik {

template <class T>
T getAttr(Model &model, const char *name);
template <class T>
void setAttr(Model &model, const char *name, T value);

template <class T>
void getAttrElements(Model &model, const char *name, const Elements &elements, T *values);
template <class T>
void setAttrElements(Model &model, const char *name, const Elements &elements, const T *values);

// True when the attribute can be read now; unknown names are an Error.
bool isAttrAvailable(Model &model, const char *name);

const AttrRow &findAttr(const char *name);

}  // namespace tarvik
