// SPDX-License-Identifier: MIT
#include "adapters/sql_dialect/token_stream.h"

#include <algorithm>
#include <array>

namespace pelmora::sql {

namespace {

constexpr std::array<std::string_view, 32> reservedWords{
    "SELECT", "DISTINCT", "TOP",    "AS",    "FROM",   "INNER", "LEFT",   "RIGHT",
    "OUTER",  "JOIN",     "ON",     "WHERE", "GROUP",  "BY",    "HAVING", "ORDER",
    "ASC",    "DESC",     "INSERT", "INTO",  "VALUES", "IN",    "UPDATE", "SET",
    "DELETE", "AND",      "OR",     "NOT",   "IS",     "NULL",  "LIKE",   "BETWEEN"};

constexpr std::array<std::string_view, 6> clauseWords{"FROM",  "WHERE",  "GROUP",
                                                      "ORDER", "HAVING", "AS"};

// Words of the dialect are capital ASCII letters.
bool isSameWord(std::string_view source, std::string_view word) {
  return source.size() == word.size() && std::ranges::equal(source, word, [](char a, char b) {
           return a == b || (a >= 'a' && a <= 'z' && a - 'a' + 'A' == b);
         });
}

template <std::size_t Size>
bool isOneOf(const Token& token, const std::array<std::string_view, Size>& words) {
  return token.kind == TokenKind::word &&
         std::ranges::any_of(words, [&](auto word) { return isSameWord(token.source, word); });
}

}  // namespace

const Token& TokenStream::peek(std::size_t ahead) const {
  return tokens_[std::min(at_ + ahead, tokens_.size() - 1)];
}

bool TokenStream::atWord(std::string_view word, std::size_t ahead) const {
  return peek(ahead).kind == TokenKind::word && isSameWord(peek(ahead).source, word);
}

bool TokenStream::atSymbol(std::string_view symbol, std::size_t ahead) const {
  return peek(ahead).kind == TokenKind::symbol && peek(ahead).source == symbol;
}

bool TokenStream::atName(std::size_t ahead) const {
  const Token& token = peek(ahead);
  if (token.kind == TokenKind::bracketedName) return token.source.size() > 2;
  return token.kind == TokenKind::word && !isOneOf(token, reservedWords);
}

bool TokenStream::atReservedWord() const { return isOneOf(peek(), reservedWords); }

Token TokenStream::take() {
  const Token token = peek();
  if (at_ + 1 < tokens_.size()) ++at_;
  return token;
}

bool TokenStream::acceptWord(std::string_view word) {
  if (!atWord(word)) return false;
  take();
  return true;
}

bool TokenStream::acceptSymbol(std::string_view symbol) {
  if (!atSymbol(symbol)) return false;
  take();
  return true;
}

std::string TokenStream::takeName() {
  const Token token = take();
  return token.kind == TokenKind::bracketedName ? contents(token) : std::string(token.source);
}

std::string_view TokenStream::expressionAt(std::size_t position) const {
  std::size_t end = position;
  for (int depth = 0; tokens_[end].kind != TokenKind::end; ++end) {
    const Token& token = tokens_[end];
    const bool isSymbol = token.kind == TokenKind::symbol;
    if (isSymbol && token.source == ";") break;
    if (isSymbol && token.source == "(") ++depth;
    if (isSymbol && token.source == ")" && --depth < 0) break;
    if (depth == 0 && isSymbol && token.source == ",") break;
    if (depth == 0 && isOneOf(token, clauseWords)) break;
  }
  if (end == position) return {};
  const Token& last = tokens_[end - 1];
  const std::size_t begin = tokens_[position].offset;
  return statement_.substr(begin, last.offset + last.source.size() - begin);
}

}  // namespace pelmora::sql
