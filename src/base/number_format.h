// The texts of numbers in everything that is written: shortest forms that read back exactly for
// files that lose nothing, and the friendlier forms of the LP format. Independent of the locale.
#pragma once

#include <string_view>

namespace tarvik {

// Room for one formatted number; the view that a formatter returns points into it.
struct NumberText {
  char data[48];
};

// Reads back to exactly the same double: integral values below 2e9 in magnitude as integers,
// others with 15 significant digits, or 17 in scientific notation when 15 lose something.
std::string_view formatNumber(double value, NumberText &text);

// The number text of LP files: "%g" when that is close (1e-10 absolutely or 1e-15 relatively),
// else plain decimals with about 17 significant digits for common magnitudes, else scientific
// notation, each without trailing zeros.
std::string_view formatLpNumber(double value, NumberText &text);

// As formatLpNumber, for the coefficient of a variable: 1 is the empty text, -1 is "-".
std::string_view formatLpCoefficient(double value, NumberText &text);

// printf's "%g" in the "C" locale.
std::string_view formatShort(double value, NumberText &text);

// Reads a whole text as a number: decimal or scientific notation with an exponent letter e, E,
// d or D, an optional sign, or "inf"/"infinity" in any case. Correctly rounded; values beyond
// the range become infinite or zero. False when the text is anything else, not-a-number included.
bool parseNumber(std::string_view text, double &value);

// Reads a whole text as a decimal integer; false when it is none or does not fit.
bool parseInteger(std::string_view text, int &value);

}  // namespace tarvik
