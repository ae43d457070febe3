// SPDX-License-Identifier: MIT
#include "base/text_lines.h"

namespace pelmora {

std::vector<std::string_view> split(std::string_view text, std::string_view separator) {
  std::vector<std::string_view> parts;
  std::size_t begin = 0;
  for (std::size_t at = 0; (at = text.find(separator, begin)) != std::string_view::npos;
       begin = at + separator.size()) {
    parts.push_back(text.substr(begin, at - begin));
  }
  parts.push_back(text.substr(begin));
  return parts;
}

}  // namespace pelmora
