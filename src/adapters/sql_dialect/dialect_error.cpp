// SPDX-License-Identifier: MIT
#include "adapters/sql_dialect/dialect_error.h"

#include <cstddef>

namespace pelmora::sql {

namespace {

constexpr std::size_t longestExcerpt = 400;

std::string quoted(std::string_view text) { return "'" + std::string(text) + "'"; }

// Cuts between characters, never inside one.
std::string excerpt(std::string_view text) {
  if (text.size() <= longestExcerpt) return std::string(text);
  std::size_t end = longestExcerpt;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;
  return std::string(text.substr(0, end)) + "...";
}

}  // namespace

Error statementError(const std::string& description) {
  return {syntaxErrorNumber, "Pelmora", description};
}

Error syntaxErrorIn(std::string_view place) {
  return statementError("Syntax error in " + std::string(place) + ".");
}

Error expressionError(std::string_view what, std::string_view expression) {
  return statementError(std::string(what) + " in query expression " + quoted(excerpt(expression)) +
                        ".");
}

Error missingTable(std::string_view name) {
  return {missingTableNumber, "Pelmora",
          "The database engine cannot find the input table or query " + quoted(name) +
              ". Make sure it exists and that its name is spelled correctly."};
}

Error missingOutputTable(std::string_view name) {
  return {missingTableNumber, "Pelmora",
          "Could not find output table " + quoted(name) +
              ". Make sure it exists and that its name is spelled correctly."};
}

Error missingColumn(std::string_view name, std::string_view places) {
  return {missingParameterNumber, "Pelmora",
          "No value given for one or more required parameters. " + quoted(name) +
              " is not a column of " + std::string(places) + "."};
}

Error typeMismatch() {
  return {typeMismatchNumber, "Pelmora", "Data type mismatch in criteria expression."};
}

}  // namespace pelmora::sql
