// What statements that differ in plain literals alone have in common.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora::sql {

// A literal of one of the kinds that translate alike whatever they say: a whole number of up to 15
// digits, a text of such digits, and a text of printable ASCII that reads as no number.
struct PlainLiteral {
  std::size_t position = 0;           // as Expression::position
  std::string text;                   // without quotes
  std::optional<std::int64_t> whole;  // of both kinds of digits
};

struct StatementShape {
  std::string key;                     // the statement with a mark for each plain literal
  std::vector<PlainLiteral> literals;  // from left to right
};

// Two statements with one key have the same tree but for the texts of these literals.
//
// Nothing for a statement that is not worth knowing by its shape: a long one, one with many
// literals, or one that holds the marks itself.
[[nodiscard]] std::optional<StatementShape> shapeOf(std::string_view statement);

}  // namespace pelmora::sql
