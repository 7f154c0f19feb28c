// Reads pseudo-Boolean problems in the OPB format.
#pragma once

#include <string>

#include "base/text_reader.h"
#include "io/parsed_model.h"

namespace tarvik {

ParsedModel readOpb(Env &env, TextReader &reader, const std::string &name);

}  // namespace tarvik
