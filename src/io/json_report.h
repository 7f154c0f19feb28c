// The result of a solve as one JSON document, and the reading of JSON files into text.
#pragma once

#include "base/text_writer.h"
#include "model/model.h"

namespace tarvik {

// Throws Error when there is no current result.
void buildJsonReport(Model &model, TextWriter &out);
void writeJsonFile(Model &model, const char *filename);
// Reads a whole JSON file; throws Error when it cannot be read.
Vec<char> loadJsonFile(const char *filename);

}  // namespace tarvik
