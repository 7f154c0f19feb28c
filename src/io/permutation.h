// Puts rows and columns of a model that was read into a random order, to test how solve paths
// depend on the order of a model.
#pragma once

#include "io/parsed_model.h"

namespace tarvik {

// Does nothing unless the parameters ask for it and the model is a plain linear one.
void permuteForTest(Env &env, ParsedModel &parsed);

}  // namespace tarvik
