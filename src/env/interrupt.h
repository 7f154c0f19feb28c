// The interrupt slot: while it holds an environment, the interrupt signal asks that environment's
// solve to end and gives the signal its default action back, so that a second interrupt ends the
// process. The slot is the library's only global state, as a signal handler needs it.
#pragma once

#include "env/env.h"

namespace tarvik {

void installInterrupt(Env &env);
// Puts the previous handler back when the slot holds env; otherwise does nothing.
void restoreInterrupt(Env &env);

}  // namespace tarvik
