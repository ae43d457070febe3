// SPDX-License-Identifier: MIT
#include "adapters/sql_dialect/statement_shape.h"

#include "adapters/sql_dialect/lexer.h"
#include "adapters/sql_dialect/literal_number.h"
#include "base/ascii_character.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace pelmora::sql {

namespace {

constexpr std::size_t longestStatement = 4096;
constexpr std::size_t mostLiterals = 16;
constexpr std::size_t mostDigits = 15;  // exact as a double too

// The marks of the three kinds. No statement can hold them outside quotes and brackets.
constexpr char wholeNumberMark = '\x01';
constexpr char digitsTextMark = '\x02';
constexpr char wordsTextMark = '\x03';

bool isPrintableAscii(char c) { return c >= ' ' && c <= '~'; }

// The value of digits that are spelled as the number is.
std::optional<std::int64_t> wholeOf(std::string_view digits) {
  const bool isDigits =
      !digits.empty() && digits.size() <= mostDigits && std::ranges::all_of(digits, isDigit);
  if (!isDigits || (digits.size() > 1 && digits.front() == '0')) return std::nullopt;
  std::int64_t value = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return value;
}

// The mark of the kind of a number or text; 0 if it is not a plain literal.
char markOf(const Token& token, PlainLiteral& literal) {
  const bool isNumber = token.kind == TokenKind::number;
  literal.text = isNumber ? std::string(token.source) : contents(token);
  literal.whole = wholeOf(literal.text);
  if (literal.whole) return isNumber ? wholeNumberMark : digitsTextMark;
  if (isNumber) return '\0';
  const bool isWords =
      std::ranges::all_of(literal.text, isPrintableAscii) && !numberOf(literal.text);
  return isWords ? wordsTextMark : '\0';
}

}  // namespace

std::optional<StatementShape> shapeOf(std::string_view statement) {
  constexpr std::string_view marks("\x01\x02\x03", 3);
  if (statement.size() > longestStatement) return std::nullopt;
  if (statement.find_first_of(marks) != std::string_view::npos) return std::nullopt;
  StatementShape shape;
  shape.key.reserve(statement.size());
  std::size_t copied = 0;
  for (const Token& token : tokenize(statement)) {
    if (token.kind != TokenKind::number && token.kind != TokenKind::text) continue;
    PlainLiteral literal;
    const char mark = markOf(token, literal);
    if (mark == '\0') continue;
    if (shape.literals.size() == mostLiterals) return std::nullopt;
    shape.key.append(statement.substr(copied, token.offset - copied)).push_back(mark);
    copied = token.offset + token.source.size();
    literal.position = token.offset + 1;
    shape.literals.push_back(std::move(literal));
  }
  shape.key.append(statement.substr(copied));
  return shape;
}

}  // namespace pelmora::sql
