// Reads the column-oriented MPS format with its extensions: quadratic sections, indicators,
// general constraints, piecewise-linear objectives, special ordered sets, lazy constraints,
// several objectives and scenarios.
#pragma once

#include <string>

#include "base/text_reader.h"
#include "io/parsed_model.h"

namespace tarvik {

// Logs warnings to env; throws Error on what is no MPS file.
ParsedModel readMps(Env &env, TextReader &reader);

}  // namespace tarvik
