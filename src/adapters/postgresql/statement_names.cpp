// SPDX-License-Identifier: MIT
#include "adapters/postgresql/statement_names.h"

#include "base/run_time_error.h"

namespace pelmora::postgres {

namespace {

std::string between(std::string_view text, char quote) {
  if (text.find('\0') != std::string_view::npos) {
    throw Error(static_cast<std::int32_t>(RunTimeError::typeMismatch), "Pelmora",
                "Type mismatch: a PostgreSQL database cannot hold a text with a zero character.");
  }
  std::string result(1, quote);
  for (const char c : text) {
    if (c == quote) result += quote;
    result += c;
  }
  return result + quote;
}

}  // namespace

std::string quotedName(std::string_view name) { return between(name, '"'); }
std::string quotedText(std::string_view text) { return between(text, '\''); }

}  // namespace pelmora::postgres
