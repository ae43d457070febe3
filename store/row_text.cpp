// SPDX-License-Identifier: MIT
#include "store/row_text.h"

#include "store/field_value.h"

#include <string_view>

namespace pelmora {

std::vector<std::string> rowsAsTexts(Recordset& rows) {
  constexpr std::string_view lineBreak = "\r\n";
  std::string text;
  for (; !rows.atEnd(); rows.moveNext()) {
    for (std::size_t field = 0; field < rows.fieldCount(); ++field) text += toText(rows.value(field));
    text += lineBreak;
  }
  if (text.size() <= lineBreak.size()) return {};
  text.resize(text.size() - lineBreak.size());

  std::vector<std::string> lines;
  std::size_t begin = 0;
  for (std::size_t end = 0; (end = text.find(lineBreak, begin)) != std::string::npos;
       begin = end + lineBreak.size()) {
    lines.push_back(text.substr(begin, end - begin));
  }
  lines.push_back(text.substr(begin));
  return lines;
}

}  // namespace pelmora
