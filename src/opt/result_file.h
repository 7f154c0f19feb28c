// The file that the parameter ResultFile asks for after a solve.
#pragma once

#include "model/model.h"

namespace tarvik {

// Says in the log whether the file was written; never fails.
void writeResultFile(Model &model);

}  // namespace tarvik
