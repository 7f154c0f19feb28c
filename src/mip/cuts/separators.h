// The separators that a search uses, in the order in which they are called.
#pragma once

#include <memory>

#include "mip/cuts/cut.h"

namespace tarvik {

void makeSeparators(Vec<std::unique_ptr<Separator>> &separators);

}  // namespace tarvik
