// SPDX-License-Identifier: MIT
#include "store/row_text.h"

#include "base/text_lines.h"
#include "store/field_value.h"

#include <string_view>

namespace pelmora {

std::vector<std::string> rowsAsTexts(Recordset& rows) {
  std::string text;
  for (; !rows.atEnd(); rows.moveNext()) {
    for (std::size_t field = 0; field < rows.fieldCount(); ++field)
      text += toText(rows.value(field));
    text += lineBreak;
  }
  if (text.size() <= lineBreak.size()) return {};
  text.resize(text.size() - lineBreak.size());

  const std::vector<std::string_view> lines = split(text, lineBreak);
  return {lines.begin(), lines.end()};
}

}  // namespace pelmora
