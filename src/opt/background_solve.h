// A solve on a thread of its own. While it runs, the model refuses every call but a query of
// Status and a request to terminate; its error code waits for TVKsync.
#pragma once

#include "model/model.h"

namespace tarvik {

// Returns once the solve runs.
void startBackgroundSolve(Model &model);

// Waits for the solve that was started last and throws its error; nothing when none was.
void syncBackgroundSolve(Model &model);

}  // namespace tarvik
