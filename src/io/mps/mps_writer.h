// Writes the whole model in the free MPS layout, losing nothing.
#pragma once

#include "base/text_writer.h"
#include "model/model.h"

namespace tarvik {

// generic: show generic names instead of the model's.
void writeMps(Model &model, TextWriter &out, bool generic);

}  // namespace tarvik
