// Reads the LP format: a model as readable algebra, in sections introduced by keywords.
#pragma once

#include <string>

#include "base/text_reader.h"
#include "io/parsed_model.h"

namespace tarvik {

// Logs warnings to env; throws Error on what is no LP file. `name` is shown in messages.
ParsedModel readLp(Env &env, TextReader &reader, const std::string &name);

}  // namespace tarvik
