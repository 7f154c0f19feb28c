#include "io/lp/lp_keywords.h"

#include <cmath>

#include "base/number_format.h"
#include "base/text_reader.h"

namespace tarvik {

LpSection lpSection(std::string_view token) {
  static constexpr struct {
    const char *word;
    LpSection section;
  } kKeywords[] = {{"minimize", LpSection::Minimize},
                   {"minimum", LpSection::Minimize},
                   {"min", LpSection::Minimize},
                   {"maximize", LpSection::Maximize},
                   {"maximum", LpSection::Maximize},
                   {"max", LpSection::Maximize},
                   {"subject to", LpSection::Constraints},
                   {"such that", LpSection::Constraints},
                   {"st", LpSection::Constraints},
                   {"s.t.", LpSection::Constraints},
                   {"st.", LpSection::Constraints},
                   {"lazy constraints", LpSection::Lazy1},
                   {"user cuts", LpSection::UserCuts},
                   {"cones", LpSection::Cones},
                   {"bounds", LpSection::Bounds},
                   {"bound", LpSection::Bounds},
                   {"binary", LpSection::Binary},
                   {"binaries", LpSection::Binary},
                   {"bin", LpSection::Binary},
                   {"general", LpSection::Integer},
                   {"generals", LpSection::Integer},
                   {"gen", LpSection::Integer},
                   {"integer", LpSection::Integer},
                   {"integers", LpSection::Integer},
                   {"semi-continuous", LpSection::SemiContinuous},
                   {"semi continuous", LpSection::SemiContinuous},
                   {"semis", LpSection::SemiContinuous},
                   {"semi", LpSection::SemiContinuous},
                   {"sos", LpSection::Sos},
                   {"pwlobj", LpSection::PwlObj},
                   {"general constraints", LpSection::General},
                   {"general constraint", LpSection::General},
                   {"gencons", LpSection::General},
                   {"g.c.", LpSection::General},
                   {"scenario", LpSection::Scenario},
                   {"end", LpSection::End}};
  if (token.size() < 2 || token.size() > 19) return LpSection::None;
  const char first = static_cast<char>(token.front() | 0x20);
  for (const auto &keyword : kKeywords)
    if (keyword.word[0] == first && equalIgnoringCase(token, keyword.word)) return keyword.section;
  return LpSection::None;
}

bool isLpSense(std::string_view token) {
  return token == "<" || token == "<=" || token == ">" || token == ">=" || token == "=" ||
         token == "==";
}

bool isLpToken(std::string_view token) {
  if (token.empty() || (token.size() > 1 && token.back() == ':')) return false;
  switch (token.front()) {
    case '<':
    case '>':
    case '=':
    case '[':
    case ']':
    case '^':
    case ':':
    case '(':
      return false;
    default:
      return token != "+" && token != "-" && token != "*" && token != ")" && token != "->";
  }
}

bool isLpLabel(std::string_view name) {
  return isLpToken(name) && name.front() != '+' && name.front() != '-' && name.front() != '/' &&
         !holdsBlank(name) && name.find_first_of("^\\:") == std::string_view::npos;
}

bool isLpName(std::string_view name) {
  // Words that are keywords together with what may follow them.
  static constexpr const char *kReserved[] = {"free", "subject", "such",
                                              "lazy", "user",    "multi-objectives"};
  double value = 0;
  if (!isLpLabel(name) || parseNumber(name, value) || lpSection(name) != LpSection::None)
    return false;
  for (const char *word : kReserved)
    if (equalIgnoringCase(name, word)) return false;
  return name != "," && name.substr(0, 6) != "__pwl(";
}

bool isLpFactor(std::string_view name) {
  int open = 0;
  for (const char c : name) {
    if (c == '[') ++open;
    if (c == ']' && --open < 0) return false;
  }
  return name.front() != '*';
}

bool isNumericLpName(std::string_view name) {
  double value = 0;
  return isLpLabel(name) && parseNumber(name, value) && std::isfinite(value);
}

}  // namespace tarvik
