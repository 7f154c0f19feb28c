#include "mip/cuts/separators.h"

namespace tarvik {

void makeSeparators(Vec<std::unique_ptr<Separator>> &separators) {
  const auto context = std::make_shared<CutContext>();
  separators.clear();
  separators.push_back(makeImpliedBoundSeparator(context));
  separators.push_back(makeProjectedBoundSeparator(context));
  separators.push_back(makeCliqueSeparator(context));
  separators.push_back(makeCoverSeparator(context));
  separators.push_back(makeGubCoverSeparator(context));
  separators.push_back(makeMixingSeparator(context));
  separators.push_back(makeFlowPathSeparator(context));
  separators.push_back(makeNetworkSeparator(context));
  separators.push_back(makeMirSeparator(context));
  separators.push_back(makeGomorySeparator(context));
  separators.push_back(makeLiftAndProjectSeparator(context));
  separators.push_back(makeFlowCoverSeparator(context));
  separators.push_back(makeStrongCgSeparator(context));
  separators.push_back(makeZeroHalfSeparator(context));
  separators.push_back(makeModKSeparator(context));
}

}  // namespace tarvik
