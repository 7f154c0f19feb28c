// Renders a model in the LP format: readable algebra, with numbers for reading rather than for
// losing nothing.
#pragma once

#include "base/text_writer.h"
#include "model/model.h"

namespace tarvik {

// type: TVK_FILETYPE_LP or _ILP for the model's names, _RLP or _DLP for generic ones.
void writeLp(Model &model, TextWriter &out, int type);

}  // namespace tarvik
