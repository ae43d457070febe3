// The files of the page, compiled into the program.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace pelmora::cli::workbench::page {

struct File {
  std::string_view name, type, text;
};

// Null if the page has no such file. "" is index.html.
[[nodiscard]] const File* file(std::string_view name);

}  // namespace pelmora::cli::workbench::page
