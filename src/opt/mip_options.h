// The parameters of a mixed-integer solve as the kernel takes them.
#pragma once

#include "env/env.h"
#include "mip/mip_options.h"

namespace tarvik {

// Effective cut levels: a family's own parameter, then Cuts, then its automatic level.
CutSettings resolveCutSettings(const Env &env);

MipOptions mipOptions(const Env &env, int objSense);

}  // namespace tarvik
