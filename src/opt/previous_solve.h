// How much of a model is still as it was when it was solved last. That decides whether a
// mixed-integer solve keeps the continuous values which the last one left, or computes them anew.
#pragma once

#include <cstdint>

#include "model/model_data.h"

namespace tarvik {

// A hash of every variable's type, bounds, cost and coefficients.
Vec<std::uint32_t> variableMarks(const ModelData &data);

// Whether the model is so large and so little changed that computing values anew does not pay.
// With changes at a variable that has to be integral or semi-continuous, fewer others may have
// changed.
bool mostlyUnchanged(const ModelData &data, const Vec<std::uint32_t> &marksThen);

}  // namespace tarvik
