// Simplex bases in the MPS basis format.
#pragma once

#include "model/model.h"

namespace tarvik {

void writeBasisFile(Model &model, const char *filename);
void readBasisFile(Model &model, const char *filename);

}  // namespace tarvik
