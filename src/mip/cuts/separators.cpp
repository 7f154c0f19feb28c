#include "mip/cuts/separators.h"

namespace tarvik {

void makeSeparators(Vec<std::unique_ptr<Separator>> &separators) {
  const auto context = std::make_shared<CutContext>();
  separators.clear();
  separators.push_back(makeMirSeparator(context));
  separators.push_back(makeGomorySeparator(context));
  separators.push_back(makeFlowCoverSeparator(context));
  separators.push_back(makeStrongCgSeparator(context));
}

}  // namespace tarvik
