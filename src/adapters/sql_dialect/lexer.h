// Statement text into tokens.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora::sql {

enum class TokenKind { word, bracketedName, number, text, date, symbol, unclosed, unknown, end };

// `source` is the token as written, quotes and brackets included. An `unclosed` token runs from its
// opening mark to the end of the statement; what it means is told when a parser reaches it.
struct Token {
  TokenKind kind = TokenKind::end;
  std::string_view source;
  std::size_t offset = 0;
};

// Always ends with one token of kind `end`. `statement` must outlive the tokens. Never fails.
[[nodiscard]] std::vector<Token> tokenize(std::string_view statement);

// The contents of a text, date or bracketed name, doubled quotes made single.
[[nodiscard]] std::string contents(const Token& token);

}  // namespace pelmora::sql
