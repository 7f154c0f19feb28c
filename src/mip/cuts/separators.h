// The separators that a search uses, in the order in which they are called.
#pragma once

#include <memory>

#include "mip/cuts/cut_context.h"

namespace tarvik {

void makeSeparators(Vec<std::unique_ptr<Separator>> &separators);

// One a family; those of one search share a context.
std::unique_ptr<Separator> makeMirSeparator(std::shared_ptr<CutContext> context);
std::unique_ptr<Separator> makeStrongCgSeparator(std::shared_ptr<CutContext> context);
std::unique_ptr<Separator> makeFlowCoverSeparator(std::shared_ptr<CutContext> context);
std::unique_ptr<Separator> makeGomorySeparator(std::shared_ptr<CutContext> context);
std::unique_ptr<Separator> makeLiftAndProjectSeparator(std::shared_ptr<CutContext> context);
std::unique_ptr<Separator> makeCoverSeparator(std::shared_ptr<CutContext> context);
std::unique_ptr<Separator> makeGubCoverSeparator(std::shared_ptr<CutContext> context);
std::unique_ptr<Separator> makeMixingSeparator(std::shared_ptr<CutContext> context);
std::unique_ptr<Separator> makeFlowPathSeparator(std::shared_ptr<CutContext> context);
std::unique_ptr<Separator> makeImpliedBoundSeparator(std::shared_ptr<CutContext> context);
std::unique_ptr<Separator> makeProjectedBoundSeparator(std::shared_ptr<CutContext> context);
std::unique_ptr<Separator> makeCliqueSeparator(std::shared_ptr<CutContext> context);
std::unique_ptr<Separator> makeZeroHalfSeparator(std::shared_ptr<CutContext> context);
std::unique_ptr<Separator> makeNetworkSeparator(std::shared_ptr<CutContext> context);
std::unique_ptr<Separator> makeModKSeparator(std::shared_ptr<CutContext> context);

}  // namespace tarvik
