// The status of a linear solve in the numbers that callers and logs know.
#pragma once

#include "lp/lp_model.h"

namespace tarvik {

// A TVK_... status code.
int statusCode(LpStatus status);

}  // namespace tarvik
