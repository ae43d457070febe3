// What happened during a test, in order: one line per event, statement, box.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace pelmora::test {

using Journal = std::vector<std::string>;

// The lines that begin with `kind`, without it.
inline Journal linesOf(const Journal& journal, std::string_view kind) {
  Journal lines;
  for (const std::string& line : journal) {
    if (line.starts_with(kind)) lines.push_back(line.substr(kind.size()));
  }
  return lines;
}

}  // namespace pelmora::test
