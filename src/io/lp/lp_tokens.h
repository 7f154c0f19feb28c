// Tokens of an LP file with a look-ahead window. Tokens are separated by white space; ':', '^',
// a backslash (which begins a comment) and a leading sign or relation also end them. A label is a
// token with its ':' attached; "::" and "^" are tokens of their own, and the keywords of two
// words are joined. Brackets of quadratic expressions and the stars between them are tokens too.
#pragma once

#include <string>
#include <string_view>

#include "base/text_reader.h"

namespace tarvik {

class LpTokens {
 public:
  static constexpr std::size_t kMaxLength = 255;  // of a name, without the colon of a label
  static constexpr int kWindow = 10;

  explicit LpTokens(TextReader &reader) : reader_(reader) {}

  // The token k places ahead; the empty text behind the last one. The view is valid until the
  // token is taken.
  std::string_view peek(int k = 0) {
    while (count_ <= k) read();
    return token(k).text();
  }
  bool atEnd() { return peek().empty(); }
  void take() {
    peek();
    previous_ = token(0);
    first_ = (first_ + 1) % kWindow;
    --count_;
  }
  // Shortens the next token to what is behind its first `count` characters.
  void cut(std::size_t count);
  // The line of the next token, or of the one k places ahead.
  int line(int k = 0) {
    peek(k);
    return token(k).line;
  }
  // The token taken last.
  std::string lastText() const { return std::string(previous_.text()); }
  int lastLine() const { return previous_.line; }

  // The name of the model, from the comment that begins a written file.
  const std::string &title() const { return title_; }
  // The tokens around the next one, each behind a blank.
  std::string neighbours();
  // True when a token was longer than allowed; it was cut.
  bool overlong() const { return overlong_; }

 private:
  struct Token {
    char data[kMaxLength + 1];
    int size = 0;
    int line = 0;

    std::string_view text() const { return {data, static_cast<std::size_t>(size)}; }
    void set(std::string_view text, int lineNumber);
  };

  Token &token(int k) { return window_[(first_ + k) % kWindow]; }
  // Reads one more token into the window, joining two-word keywords.
  void read();
  // The next piece of the file; empty at its end.
  std::string_view scan(int &line);
  bool skipToText();
  // The length of the factor of a product that a text of that size begins with.
  std::size_t factorSize(std::size_t size, bool behindStar) const;

  TextReader &reader_;
  std::string_view rest_;  // of the current line
  Token window_[kWindow];
  Token previous_;
  Token held_;  // scanned but not yet in the window
  bool hasHeld_ = false;
  std::string label_;  // a label whose colon stood behind blanks
  std::string title_;
  bool afterCaret_ = false, afterBracket_ = false, afterStar_ = false;  // what came before
  bool inBracket_ = false;
  bool overlong_ = false;
  bool finished_ = false;
  int first_ = 0, count_ = 0;
};

}  // namespace tarvik
