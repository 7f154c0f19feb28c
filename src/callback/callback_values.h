// The values that a user callback may ask for: what each is, and where it is valid.
#pragma once

#include "callback/callback_context.h"

namespace tarvik {

enum class WhatType { Int = 1, Double = 2, String = 3 };

struct WhatInfo {
  int what;
  int where;  // kNowhere: everywhere
  WhatType type;
  bool isArray;
};

// Null for an unknown code.
const WhatInfo *whatInfo(int what);

// Stores the value for the invocation that runs; false when this version has none there.
bool callbackValue(CallbackContext &context, int what, void *result);

}  // namespace tarvik
