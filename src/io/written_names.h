// Texts that only writers need: names that must not meet others, and objective names.
#pragma once

#include <string>

#include "io/writer_names.h"

namespace tarvik {

// True when a name would be cut into pieces by a reader.
bool breaksFields(const std::string &name);
// `wanted`, or `wanted` with the first number behind it that no constraint of the file has.
std::string freeConstraintName(const ModelData &data, WriterNames &names,
                               const std::string &wanted);

}  // namespace tarvik
