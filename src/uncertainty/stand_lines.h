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

// Lines NAME = VALUE below [SECTION]. Empty lines and those that begin with # or ; are comments;
// blanks around names and values do not count. LF or CR LF, a byte order mark is allowed.
//
// Errors: BadData with the line for text that is not UTF-8, control characters, a setting outside
//         of sections, a name or value that is missing, and a section or setting that is repeated.
[[nodiscard]] std::vector<Section> readSections(std::string_view text, const std::string& where);

// BadData "line 3: ...".
[[noreturn]] void refuseLine(std::size_t line, const std::string& what, const std::string& where,
                             const std::string& remedy);

}  // namespace pelmora::uncertainty
