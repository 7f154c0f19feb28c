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
// True when a variable's name is read back as this name wherever it is written.
bool isLpName(std::string_view name);
// True when such a name is read back in a product, too: it does not look like a star and a name,
// and closes no bracket that it has not opened.
bool isLpFactor(std::string_view name);
// True for a name that is a number: it is read back behind a coefficient, in bounds and in lists
// of names, but not where a number may stand as well.
bool isNumericLpName(std::string_view name);
// True when the name of a row, an objective or a scenario is read back.
bool isLpLabel(std::string_view name);

}  // namespace tarvik
