// The words of the LP format: section keywords, relations, and what may be a name.
#pragma once

#include <string_view>

namespace tarvik {

enum class LpSection {
  None,
  Minimize,
  Maximize,
  Constraints,
  Lazy1,
  UserCuts,
  Cones,
  Bounds,
  Binary,
  Integer,
  SemiContinuous,
  Sos,
  PwlObj,
  General,
  Scenario,
  End,
  Count
};

// The section that a token begins, in any case; None for any other token.
LpSection lpSection(std::string_view token);
bool isLpSense(std::string_view token);
// True for tokens that stand where a name is expected: neither punctuation nor a label.
bool isLpToken(std::string_view token);
// True when a name is read back as this name wherever it is written.
bool isLpName(std::string_view name);

}  // namespace tarvik
