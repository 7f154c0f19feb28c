// The static parameter table and the lookup of names. Names are compared after normalisation:
// at most 512 characters, leading underscores kept, later ones dropped, ASCII letters in upper
// case. The index over the table is a hash table built at compile time.
#pragma once

#include "env/params.h"

namespace tarvik {

// Flag words: what the table says of a parameter and, in an environment, what happened to it.
enum ParamFlag : unsigned {
  kConnectionKind = 0x0F,
  kSilent = 0x10,             // setting it is never logged
  kHidden = 0x20,             // its value is never logged
  kFixedAfterStart = 0x40,    // cannot change once the environment is started
  kFixed = 0x80,              // can never be changed
  kLocked = 0x100,            // locked on this environment: requests are ignored with a warning
  kNotCopied = 0x200,         // not copied from environment to environment
  kExplicitlySet = 0x400,     // a set request has been made
  kCallbackSettable = 0x800,  // may be changed while a callback runs
  kLocalDisk = 0x2000,        // reset and locked where no local disk may be used
  kMasterOnly = 0x4000,       // meaningful on a master environment only
  kSetLoudly = 0x8000,        // the last set was a logged one
  kSetSilently = 0x10000,     // set silently at least once
};

enum class ParamType : int { Int = 1, Dbl = 2, Str = 3 };

struct ParamRow {
  const char *name;
  ParamType type;
  unsigned flags;
  double def, min, max;   // numbers only
  const char *stringDef;  // texts only
};

const ParamRow &paramRow(int row);

// The row of a name, -1 when there is none.
int findParamRow(const char *name);

}  // namespace tarvik
