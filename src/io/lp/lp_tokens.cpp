#include "io/lp/lp_tokens.h"

#include <algorithm>
#include <cstring>

#include "base/number_format.h"

namespace tarvik {

namespace {

// What no term begins with; an opening bracket must not touch it.
constexpr std::string_view kNoTermBegin = "[]^*/:<>=(";

bool isRelation(char c) { return c == '<' || c == '>' || c == '='; }

// First words of keywords that have two, and the words that may follow.
constexpr struct {
  const char *first, *second;
} kTwoWords[] = {{"subject", "to"},          {"such", "that"},         {"lazy", "constraints"},
                 {"user", "cuts"},           {"semi", "-continuous"},  {"semi", "continuous"},
                 {"general", "constraints"}, {"general", "constraint"}};

bool beginsKeyword(std::string_view word) {
  for (const auto &pair : kTwoWords)
    if (equalIgnoringCase(word, pair.first)) return true;
  return false;
}

bool joins(std::string_view first, std::string_view second) {
  for (const auto &pair : kTwoWords)
    if (equalIgnoringCase(first, pair.first) && equalIgnoringCase(second, pair.second)) return true;
  return false;
}

}  // namespace

void LpTokens::Token::set(std::string_view text, int lineNumber) {
  size = static_cast<int>(std::min(text.size(), kMaxLength + 1));
  std::copy_n(text.data(), size, data);
  line = lineNumber;
}

bool LpTokens::skipToText() {
  for (;;) {
    std::size_t k = 0;
    while (k < rest_.size() && isBlank(rest_[k])) ++k;
    rest_.remove_prefix(k);
    if (!rest_.empty() && rest_.front() != '\\') return true;
    constexpr std::string_view kTitle = "\\ Model ";
    if (reader_.lineNumber() == 1 && rest_.substr(0, kTitle.size()) == kTitle)
      title_ = trimmed(rest_.substr(kTitle.size()));
    if (!reader_.nextLine(rest_)) {
      rest_ = {};
      return false;
    }
  }
}

// Within the brackets of a quadratic expression no blanks are needed around a product or before
// the closing bracket. A name may hold brackets in pairs, and even a star when it is clearly a
// factor: behind another star, or before a star or a caret of its own.
std::size_t LpTokens::factorSize(std::size_t size, bool behindStar) const {
  int open = 0;
  for (std::size_t k = 0; k < size; ++k) {
    if (rest_[k] == '[') ++open;
    if (rest_[k] == ']' && --open < 0) size = k;
  }
  std::size_t next = size;
  while (next < rest_.size() && isBlank(rest_[next])) ++next;
  const bool isFactor =
      behindStar || (next < rest_.size() && (rest_[next] == '*' || rest_[next] == '^'));
  const std::size_t star = rest_.substr(0, size).find('*');
  return isFactor || star == std::string_view::npos || star == 0 ? size : star;
}

std::string_view LpTokens::scan(int &line) {
  if (finished_ || !skipToText()) {
    finished_ = true;
    line = reader_.lineNumber();
    return {};
  }
  line = reader_.lineNumber();
  const auto cutOff = [&](std::size_t size) {
    const std::string_view text = rest_.substr(0, size);
    rest_.remove_prefix(size);
    afterCaret_ = text == "^";
    afterBracket_ = text == "]";
    afterStar_ = text == "*";
    return text;
  };
  const char front = rest_.front();
  const bool wasBracket = afterBracket_, wasCaret = afterCaret_, wasStar = afterStar_;
  if (front == '^' || front == ']') {
    inBracket_ = inBracket_ && front == '^';
    return cutOff(1);
  }
  if (front == '[' &&
      (rest_.size() == 1 || kNoTermBegin.find(rest_[1]) == std::string_view::npos)) {
    inBracket_ = true;
    return cutOff(1);
  }
  if (front == '*' && inBracket_ && !wasStar) return cutOff(1);
  if (front == '/' && wasBracket) return cutOff(1);
  if (front == ':') return cutOff(rest_.size() > 1 && rest_[1] == ':' ? 2 : 1);
  std::size_t size = 0;
  if (isRelation(front)) {
    while (size < rest_.size() && isRelation(rest_[size])) ++size;
    return cutOff(size);
  }
  const auto ends = [&](char c) {
    return isBlank(c) || c == ':' || c == '\\' || c == '^' || (wasCaret && inBracket_ && c == ']');
  };
  while (size < rest_.size() && !ends(rest_[size])) ++size;
  if (inBracket_) size = factorSize(size, wasStar);
  if ((front == '+' || front == '-') && size > 1 && rest_[1] != '>') {
    double value = 0;
    const bool continuous = equalIgnoringCase(rest_.substr(0, size), "-continuous");
    if (!parseNumber(rest_.substr(0, size), value) && !continuous) return cutOff(1);
  }
  // A colon belongs to the name before it, perhaps behind blanks; "::" and one behind a
  // closing parenthesis do not.
  std::size_t colon = size;
  while (colon < rest_.size() && isBlank(rest_[colon])) ++colon;
  const bool labelled = colon < rest_.size() && rest_[colon] == ':' &&
                        (colon + 1 == rest_.size() || rest_[colon + 1] != ':') &&
                        rest_.substr(0, size) != ")";
  if (!labelled) return cutOff(size);
  if (colon == size) return cutOff(size + 1);
  // Close the gap: the label is put together in the held token.
  label_.assign(rest_.substr(0, size));
  label_.push_back(':');
  rest_.remove_prefix(colon + 1);
  afterCaret_ = afterBracket_ = afterStar_ = false;
  return label_;
}

void LpTokens::read() {
  Token &slot = token(count_);
  if (hasHeld_) {
    slot = held_;
    hasHeld_ = false;
  } else {
    int line = 0;
    const std::string_view text = scan(line);
    if (text.size() > kMaxLength + (text.ends_with(':') ? 1 : 0)) overlong_ = true;
    slot.set(text, line);
  }
  if (slot.size == 0 || !beginsKeyword(slot.text())) {
    ++count_;
    return;
  }
  int line = 0;
  const std::string_view next = scan(line);
  if (joins(slot.text(), next)) {
    std::string joined(slot.text());
    if (next.front() != '-') joined += ' ';
    joined += next;
    slot.set(joined, line);
  } else {
    if (next.size() > kMaxLength + (next.ends_with(':') ? 1 : 0)) overlong_ = true;
    held_.set(next, line);
    hasHeld_ = true;
  }
  ++count_;
}

void LpTokens::cut(std::size_t count) {
  peek();
  Token &slot = token(0);
  std::memmove(slot.data, slot.data + count, slot.size - count);
  slot.size -= static_cast<int>(count);
}

std::string LpTokens::neighbours() {
  std::string text(previous_.text());
  for (int k = 0; k < count_ && k < kWindow; ++k) {
    if (token(k).size == 0) break;
    if (!text.empty()) text += ' ';
    text += token(k).text();
  }
  return text;
}

}  // namespace tarvik
