#include "mip/cuts/separators.h"

namespace tarvik {

void makeSeparators(Vec<std::unique_ptr<Separator>> &separators) { separators.clear(); }

}  // namespace tarvik
