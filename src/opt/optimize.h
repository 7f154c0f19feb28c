// What TVKoptimize does between its handle check and its return: header, limits, the model's own
// parameter adjustments, the choice of driver, clock and closing steps.
#pragma once

#include "model/model.h"

namespace tarvik {

void optimize(Model &model);

}  // namespace tarvik
