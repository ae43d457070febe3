// SPDX-License-Identifier: MIT
#include <pelmora/sheet.h>

#include "base/text_case.h"
#include "sheets/decoded_text.h"
#include "sheets/field_number.h"
#include "sheets/unit_text.h"

namespace pelmora::sheets {

namespace {

// start: of a file, cut anywhere. Half a UTF-16 character at the end would be an error, so up to
// three bytes are dropped.
std::string decodedStart(std::string_view start) {
  constexpr std::size_t bytesOfCharacter = 4;
  for (std::size_t cut = 0; cut < bytesOfCharacter && cut < start.size(); ++cut) {
    try {
      return decoded(std::string(start.substr(0, start.size() - cut))).text;
    } catch (const SheetError&) {
      continue;
    }
  }
  // Zeros after the text are left by a program that was interrupted while it wrote.
  return std::string(start.substr(0, start.find('\0')));
}

}  // namespace

bool namesColumn(std::string_view start, std::string_view column) {
  const std::string text = decodedStart(start);
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::size_t end = rest.find_first_of(",;\t\r\n|");
    std::string_view field = trimmed(rest.substr(0, end));
    while (field.starts_with('#') || field.starts_with('"') || field.starts_with(' '))
      field.remove_prefix(1);
    while (field.ends_with('"')) field.remove_suffix(1);
    if (equalNames(columnOf(field).name, column)) return true;
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
  return false;
}

}  // namespace pelmora::sheets
