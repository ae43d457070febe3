// Sections and settings of a text file, with the lines where they stand.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora::uncertainty {

struct Setting {
  std::size_t line = 0;  // from 1
  std::string name, value;
};

struct Section {
  std::size_t line = 0;
  std::string name;
  std::vector<Setting> settings;
  // The setting with this name; null if there is none.
  [[nodiscard]] const Setting* find(std::string_view setting) const;
};

// Lines NAME = VALUE below [SECTION], as in INI or TOML: texts with or without quotes,
// degrees_of_freedom for "degrees of freedom", [flow."master meter"] for [flow: master meter].
// Ignored are empty lines, lines that begin with # or ;, a comment that starts with # after a
// section, a number (but not in a name) or a text in quotes, and blanks around names and values.
// Lines end with LF or CR LF; a byte order mark is allowed.
//
// Errors: BadData with the line for text that is not UTF-8, control characters, a setting outside
//         of sections, a name or value that is missing, and a section or setting that is repeated.
[[nodiscard]] std::vector<Section> readSections(std::string_view text, const std::string& where);

// BadData "line 3: ...".
[[noreturn]] void refuseLine(std::size_t line, const std::string& what, const std::string& where,
                             const std::string& remedy);

}  // namespace pelmora::uncertainty
