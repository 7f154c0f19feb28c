// From a file's name to the reader or writer of its format.
#pragma once

#include "model/model.h"

namespace tarvik {

// Reads a model file into a new model, found under the name or with a suffix added; throws Error.
TVKmodel *readModelFile(Env &env, const char *filename);

// Reads a solution-side or parameter file into a model and applies it.
void readIntoModel(Model &model, const char *filename);

// Writes the model, or what is attached to it.
void writeFromModel(Model &model, const char *filename);

// Writes base.mps, base.prm and, when there is anything to write, base.attr.
void dumpModel(Model &model, const char *base);

}  // namespace tarvik
