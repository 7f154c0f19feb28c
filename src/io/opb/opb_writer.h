// Writes models of binary variables and linear constraints in the OPB format.
#pragma once

#include "model/model.h"

namespace tarvik {

void writeOpb(Model &model, const char *filename);

}  // namespace tarvik
