#include "base/number_format.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>

#include "base/random.h"

namespace tarvik {
namespace {

std::string exact(double value) {
  NumberText text;
  return std::string(formatNumber(value, text));
}
std::string lp(double value) {
  NumberText text;
  return std::string(formatLpNumber(value, text));
}

// A double of any magnitude: random bits, or a short decimal.
double anyDouble(Random &random) {
  if (random.below(3) == 0) return std::ldexp(random.uniform(-1, 1), random.below(60) - 30);
  if (random.below(2) == 0) return random.below(2000000) / 1000.0;
  for (;;) {
    const double value = std::bit_cast<double>(random.next());
    if (std::isfinite(value)) return value;
  }
}

TEST(NumberFormat, ExactForm) {
  EXPECT_EQ(exact(3.0), "3");
  EXPECT_EQ(exact(0.1), "0.1");
  EXPECT_EQ(exact(1e15), "1e+15");
  EXPECT_EQ(exact(2e9), "2000000000");
  EXPECT_EQ(exact(-1999999999.0), "-1999999999");
  EXPECT_EQ(exact(1.0 / 3), "3.3333333333333331e-01");
  EXPECT_EQ(exact(1e100), "1e+100");
}

TEST(NumberFormat, LpForm) {
  EXPECT_EQ(lp(0.1), "0.1");
  EXPECT_EQ(lp(1.0 / 3), "0.3333333333333333");
  EXPECT_EQ(lp(1e20), "1e+20");
  EXPECT_EQ(lp(0), "0");
  EXPECT_EQ(lp(1234567), "1.234567e+06");
  EXPECT_EQ(lp(123456.75), "123456.75");
  EXPECT_EQ(lp(100000.5), "100000.5");
  NumberText text;
  EXPECT_EQ(formatLpCoefficient(1, text), "");
  EXPECT_EQ(formatLpCoefficient(-1, text), "-");
  EXPECT_EQ(formatLpCoefficient(2.5, text), "2.5");
}

TEST(NumberFormat, FormsAgreeWithThePlatformAndReadBack) {
  Random random(7);
  for (int k = 0; k < 200000; ++k) {
    const double value = anyDouble(random);
    const std::string text = exact(value);
    double back = 0;
    ASSERT_TRUE(parseNumber(text, back)) << text;
    ASSERT_EQ(back, value) << text;
    char expected[64];
    if (std::fabs(value) < 2e9 && value == std::trunc(value)) {
      std::snprintf(expected, sizeof expected, "%d", static_cast<int>(value));
    } else {
      std::snprintf(expected, sizeof expected, "%.15g", value);
      if (std::strtod(expected, nullptr) != value)
        std::snprintf(expected, sizeof expected, "%.16e", value);
    }
    ASSERT_EQ(text, expected);
    ASSERT_TRUE(parseNumber(lp(value), back)) << lp(value);
    ASSERT_LE(std::fabs(back - value), std::max(1e-10, 4e-16 * std::fabs(value))) << lp(value);
  }
}

TEST(NumberFormat, ParsesEveryNotation) {
  const std::pair<const char *, double> cases[] = {{"1", 1},
                                                   {"-1.", -1},
                                                   {"+.5", 0.5},
                                                   {"1.0D3", 1000},
                                                   {"1d-2", 0.01},
                                                   {"1e400", HUGE_VAL},
                                                   {"-1e400", -HUGE_VAL},
                                                   {"1e-400", 0},
                                                   {"Inf", HUGE_VAL},
                                                   {"-INFINITY", -HUGE_VAL},
                                                   {"123456789012345678", 123456789012345678.0},
                                                   {"0.1234567890123456789", 0.1234567890123456789},
                                                   {"1E+2", 100},
                                                   {"0e99999999999999999999", 0},
                                                   {"5e-324", 5e-324}};
  for (const auto &[text, expected] : cases) {
    double value = 7;
    ASSERT_TRUE(parseNumber(text, value)) << text;
    EXPECT_EQ(value, expected) << text;
  }
  const std::string huge = std::string(400, '7') + "e-10",
                    tiny = "0." + std::string(500, '0') + "1e50";
  double value = 7;
  ASSERT_TRUE(parseNumber(huge, value));
  EXPECT_EQ(value, HUGE_VAL);
  ASSERT_TRUE(parseNumber(tiny, value));
  EXPECT_EQ(value, 0);
}

TEST(NumberFormat, RefusesWhatIsNoNumber) {
  for (const char *text : {"", "+", "-", ".", "e5", "1e", "1e+", "nan", "-nan", "0x10", "1.2.3",
                           "--1", "+-1", "1 ", "infinit", "1f", "in", "1dd2"}) {
    double value = 0;
    EXPECT_FALSE(parseNumber(text, value)) << text;
  }
  int integer = 0;
  EXPECT_TRUE(parseInteger("+12", integer) && integer == 12);
  EXPECT_TRUE(parseInteger("-3", integer) && integer == -3);
  for (const char *text : {"", "1.5", "99999999999", "+-1", "x"})
    EXPECT_FALSE(parseInteger(text, integer)) << text;
}

TEST(NumberFormat, ParsesAsThePlatformDoes) {
  Random random(11);
  for (int k = 0; k < 200000; ++k) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*g", 1 + random.below(20), anyDouble(random));
    double value = 0;
    ASSERT_TRUE(parseNumber(text, value)) << text;
    ASSERT_EQ(value, std::strtod(text, nullptr)) << text;
  }
}

}  // namespace
}  // namespace tarvik
