// One page of the tree of a table or an index, with everything on it checked.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sqlite/salvage/page_file.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace pelmora::sqlite::salvage {

enum class PageKind : std::uint8_t {
  indexInner = 2,
  tableInner = 5,
  indexLeaf = 10,
  tableLeaf = 13
};

// An entry of a page: a row, a key, or the way to a page below.
struct TreeCell {
  PageNumber child = 0;    // inner pages: what comes before this entry
  std::int64_t rowid = 0;  // tables
  std::uint64_t payload = 0;
  Bytes local;              // the part of the payload that lies on this page
  PageNumber overflow = 0;  // where the rest begins
};

struct TreePage {
  PageKind kind = PageKind::tableLeaf;
  std::vector<TreeCell> cells;
  PageNumber rightmost = 0;  // inner pages: what comes after the last entry

  [[nodiscard]] bool isInner() const {
    return kind == PageKind::indexInner || kind == PageKind::tableInner;
  }
  [[nodiscard]] bool isOfTable() const {
    return kind == PageKind::tableInner || kind == PageKind::tableLeaf;
  }
};

// Nothing unless header, entries, free blocks and fragments fill the page exactly and the row ids
// rise. The result points into `page`.
[[nodiscard]] std::optional<TreePage> readTreePage(Bytes page, PageNumber number);

// A number of 1 to 9 bytes at `at`, which moves behind it; false where `bytes` ends before.
[[nodiscard]] bool readVarint(Bytes bytes, std::size_t& at, std::uint64_t& value);

}  // namespace pelmora::sqlite::salvage
