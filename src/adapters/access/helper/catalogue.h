// The tables of a file.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/access/helper/table_rows.h"

namespace pelmora::access {

struct CatalogueEntry {
  std::string name;
  std::uint32_t page = 0;  // 0: a link to a table in another file
};

// The tables that users see, from the file's own table of all objects. Entries that cannot be read
// are reported to `leftOut`.
// Errors: Unreadable if the list of objects itself cannot be read.
[[nodiscard]] std::vector<CatalogueEntry> readCatalogue(
    const PageFile& file, const std::function<void(const LeftOutNote&)>& leftOut);

}  // namespace pelmora::access
