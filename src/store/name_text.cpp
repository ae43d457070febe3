// SPDX-License-Identifier: MIT
#include "store/name_text.h"

namespace pelmora {

NameText NameText::spliced(std::string name) {
  std::string inside = name;
  return {std::move(name), std::move(inside)};
}

NameText NameText::quoted(std::string name) {
  std::string inside;
  for (const char c : name) {
    if (c == '\'') inside += c;
    inside += c;
  }
  return {std::move(name), std::move(inside)};
}

}  // namespace pelmora
