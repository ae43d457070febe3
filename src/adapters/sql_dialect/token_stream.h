// A cursor over the tokens of one statement.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_dialect/lexer.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora::sql {

// Words compare without regard to case. A reserved word is not a name unless it stands in brackets.
class TokenStream {
 public:
  explicit TokenStream(std::string_view statement)
      : statement_(statement), tokens_(tokenize(statement)) {}

  [[nodiscard]] const Token& peek(std::size_t ahead = 0) const;
  [[nodiscard]] bool atWord(std::string_view word, std::size_t ahead = 0) const;
  [[nodiscard]] bool atSymbol(std::string_view symbol, std::size_t ahead = 0) const;
  [[nodiscard]] bool atName(std::size_t ahead = 0) const;
  [[nodiscard]] bool atReservedWord() const;
  // Nothing but an optional ';' is left before the end.
  [[nodiscard]] bool atStatementEnd() const { return atSymbol(";") || atEnd(); }
  [[nodiscard]] bool atEnd() const { return peek().kind == TokenKind::end; }

  Token take();
  bool acceptWord(std::string_view word);
  bool acceptSymbol(std::string_view symbol);
  // The name at the cursor. Needs atName().
  std::string takeName();

  [[nodiscard]] std::size_t position() const { return at_; }
  // The text of the expression that begins at token `position`: up to the next comma, closing
  // bracket or clause word on its own level.
  [[nodiscard]] std::string_view expressionAt(std::size_t position) const;

 private:
  std::string_view statement_;
  std::vector<Token> tokens_;
  std::size_t at_ = 0;
};

}  // namespace pelmora::sql
