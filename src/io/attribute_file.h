// Attribute files: per-element settings and results of a model in sections, guarded by the
// model's fingerprint.
#pragma once

#include "model/model.h"

namespace tarvik {

void writeAttributeFile(Model &model, const char *filename);
void readAttributeFile(Model &model, const char *filename);

}  // namespace tarvik
