// Everything that a caller can read from a model, as one text.
#pragma once

#include <string>

#include "tarvik.h"

std::string snapshot(TVKmodel *model);
