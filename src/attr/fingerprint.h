// A 32-bit hash of everything that says what the model is: dimensions, objective, bounds, types,
// rows, matrix and the other parts. Names, tags, starts and further settings do not count.
#pragma once

#include "model/model.h"

namespace tarvik {

int fingerprint(Model &model);

}  // namespace tarvik
