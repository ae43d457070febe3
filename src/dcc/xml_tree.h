// An XML text as a tree of elements.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora::dcc {

// An element, its children in their order, and the text directly in it.
struct XmlElement {
  std::string name;  // with its prefix, as written
  std::size_t line = 0;
  std::vector<XmlElement> children;
  std::string text;

  // The first child with this local name; null if there is none.
  [[nodiscard]] const XmlElement* child(std::string_view localName) const;
  [[nodiscard]] std::string_view localName() const;
};

// The root of a well-formed text. Document types are refused: no certificate needs one, and attacks
// on readers of XML use them. Nothing is fetched.
//
// Errors: BadData with the line; `where` names the file. Unusable if libxml2 cannot be loaded.
[[nodiscard]] XmlElement readXml(std::string_view text, const std::string& where);

}  // namespace pelmora::dcc
