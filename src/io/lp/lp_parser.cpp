// Sections, names and failures of the LP reader.
#include "io/lp/lp_parser.h"

#include <cstdarg>
#include <cstdio>

#include "base/number_format.h"
#include "io/lp/lp_reader.h"

namespace tarvik {

ParsedModel readLp(Env &env, TextReader &reader, const std::string &name) {
  return LpParser(env, reader, name).parse();
}

LpParser::LpParser(Env &env, TextReader &reader, std::string fileName)
    : env_(env),
      tokens_(reader),
      fileName_(std::move(fileName)),
      zeroTol_(env.get(Dbl::TARV_PAR_ZERO)) {}

ParsedModel LpParser::parse() {
  if (sectionAt() == LpSection::None) fail("LP format file must begin with a keyword");
  while (!peek().empty()) {
    const LpSection section = sectionAt();
    if (section == LpSection::End) break;
    if (section == LpSection::None) fail("Unexpected symbol");
    take();
    if (section == LpSection::Lazy1) {
      parseLazyRows();
      continue;
    }
    noteSection(
        section,
        seen_[static_cast<int>(section == LpSection::Maximize ? LpSection::Minimize : section)]);
    parseSection(section);
  }
  finish();
  return std::move(model_);
}

LpSection LpParser::sectionAt(int k) { return lpSection(peek(k)); }

bool LpParser::takeNumber(double &value) {
  const bool separateSign = peek() == "+" || peek() == "-";
  const std::string_view text = peek(separateSign ? 1 : 0);
  if (text.empty() || (separateSign && (text.front() == '+' || text.front() == '-')) ||
      !parseNumber(text, value))
    return false;
  if (separateSign && peek() == "-") value = -value;
  if (separateSign) take();
  take();
  return true;
}

std::string LpParser::takeLabel() {
  if (!isLabel(peek())) return "";
  const std::string name(peek().substr(0, peek().size() - 1));
  take();
  return name;
}

int LpParser::variable(std::string_view name) {
  if (name.substr(0, 6) == "__pwl(")
    fail("Invalid variable name \"__pwl(\" found outside of objective section");
  return vars_.findOrAdd(name);
}

void LpParser::warn(const char *format, ...) {
  if (!env_.logReachesAnybody()) return;
  va_list args;
  va_start(args, format);
  env_.vlog(format, args);
  va_end(args);
}

void LpParser::failOverlong() {
  fail("Token contains more than %d characters", static_cast<int>(LpTokens::kMaxLength));
}

void LpParser::fail(const char *format, ...) {
  char text[1024];
  va_list args;
  va_start(args, format);
  std::vsnprintf(text, sizeof text, format, args);
  va_end(args);
  std::string_view message = text;
  const bool ended = message.ends_with('\n');
  env_.log("Error reading LP format file %s at line %d\n", fileName_.c_str(), tokens_.lastLine());
  env_.log("%s%s", text, ended ? "" : "\n");
  env_.log("Neighboring tokens: \" %s\"\n", tokens_.neighbours().c_str());
  if (ended) message.remove_suffix(1);
  throw Error(TVK_ERROR_FILE_READ, "%s", std::string(message).c_str());
}

void LpParser::noteSection(LpSection section, bool &seen) {
  if (section == LpSection::Scenario) return;
  if (seen && !warnedDuplicate_) {
    warn(
        "Warning: Duplicate section found (read '%s') - Is a variable name equal to an LP file "
        "format keyword?\n",
        tokens_.lastText().c_str());
    warn("Warning: Further warnings of this type will be omitted.\n");
    warnedDuplicate_ = true;
  }
  seen = true;
}

// The level stands alone behind the keyword on its line; each level is a section of its own.
void LpParser::parseLazyRows() {
  const bool sameLine = tokens_.line() == tokens_.lastLine() && tokens_.line(1) != tokens_.line();
  int level = 1;
  const bool leveled = sameLine && parseInteger(peek(), level) && level >= 1 && level < kLazyLevels;
  if (!leveled) level = 1;
  noteSection(LpSection::Lazy1, seenLazy_[level]);
  if (leveled) take();
  parseRows(level);
}

void LpParser::parseSection(LpSection section) {
  switch (section) {
    case LpSection::Minimize:
    case LpSection::Maximize:
      return parseObjective(section == LpSection::Maximize);
    case LpSection::Constraints:
      return parseRows(0);
    case LpSection::UserCuts:
      return parseRows(-1);
    case LpSection::Cones:
      return parseCones();
    case LpSection::Bounds:
      return parseBounds();
    case LpSection::Sos:
      return parseSos();
    case LpSection::PwlObj:
      return parsePwlObj();
    case LpSection::General:
      return parseGeneral();
    case LpSection::Scenario:
      return parseScenario();
    default:
      return parseTypes(section);
  }
}

}  // namespace tarvik
