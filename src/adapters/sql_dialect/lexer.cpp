// SPDX-License-Identifier: MIT
#include "adapters/sql_dialect/lexer.h"

#include "base/ascii_character.h"

#include <algorithm>

namespace pelmora::sql {

namespace {

// Every byte of a character outside ASCII counts as a letter.
bool isNameStart(char c) {
  return isLetter(c) || c == '_' || static_cast<unsigned char>(c) >= 0x80U;
}

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

class Lexer {
 public:
  explicit Lexer(std::string_view text) : text_(text) {}

  Token next() {
    while (at_ < text_.size() && isBlank(text_[at_])) ++at_;
    const std::size_t begin = at_;
    const TokenKind kind = scan();
    return {kind, text_.substr(begin, at_ - begin), begin};
  }

 private:
  [[nodiscard]] char peek(std::size_t ahead = 0) const {
    return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0';
  }

  TokenKind scan() {
    if (at_ == text_.size()) return TokenKind::end;
    const char c = peek();
    if (isNameStart(c)) return scanWord();
    if (isDigit(c) || (c == '.' && isDigit(peek(1)))) return scanNumber();
    if (c == '\'' || c == '"') return scanText(c);
    if (c == '[') return scanUntil(']', TokenKind::bracketedName);
    if (c == '#') return scanUntil('#', TokenKind::date);
    return scanSymbol();
  }

  TokenKind scanWord() {
    while (isNameStart(peek()) || isDigit(peek())) ++at_;
    return TokenKind::word;
  }

  TokenKind scanNumber() {
    while (isDigit(peek())) ++at_;
    if (peek() == '.') ++at_;
    while (isDigit(peek())) ++at_;
    if (peek() == 'e' || peek() == 'E') {
      const std::size_t sign = peek(1) == '+' || peek(1) == '-' ? 1 : 0;
      if (isDigit(peek(1 + sign))) {
        at_ += 1 + sign;
        while (isDigit(peek())) ++at_;
      }
    }
    return TokenKind::number;
  }

  TokenKind scanText(char quote) {
    ++at_;
    while (at_ < text_.size()) {
      if (text_[at_++] != quote) continue;
      if (peek() != quote) return TokenKind::text;
      ++at_;
    }
    return TokenKind::unclosed;
  }

  TokenKind scanUntil(char close, TokenKind kind) {
    ++at_;
    const std::size_t found = text_.find(close, at_);
    at_ = found == std::string_view::npos ? text_.size() : found + 1;
    return found == std::string_view::npos ? TokenKind::unclosed : kind;
  }

  TokenKind scanSymbol() {
    const char c = text_[at_++];
    if ((c == '<' && (peek() == '=' || peek() == '>')) || (c == '>' && peek() == '=')) {
      ++at_;
      return TokenKind::symbol;
    }
    constexpr std::string_view symbols = "=<>+-*/^&(),.;!";
    return symbols.find(c) == std::string_view::npos ? TokenKind::unknown : TokenKind::symbol;
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace

std::vector<Token> tokenize(std::string_view statement) {
  Lexer lexer(statement);
  std::vector<Token> tokens;
  tokens.reserve(statement.size() / 4 + 2);  // most statements have no more
  do {
    tokens.push_back(lexer.next());
  } while (tokens.back().kind != TokenKind::end);
  return tokens;
}

std::string contents(const Token& token) {
  const std::string_view inner = token.source.substr(1, token.source.size() - 2);
  if (token.kind != TokenKind::text) return std::string(inner);
  const char quote = token.source.front();
  std::string result;
  result.reserve(inner.size());
  for (std::size_t i = 0; i < inner.size(); ++i) {
    result.push_back(inner[i]);
    if (inner[i] == quote) ++i;
  }
  return result;
}

}  // namespace pelmora::sql
