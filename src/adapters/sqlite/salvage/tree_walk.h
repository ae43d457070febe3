// The pages of a table or an index, followed from its root.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sqlite/salvage/page_file.h"
#include "adapters/sqlite/salvage/record.h"
#include "adapters/sqlite/salvage/tree_page.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace pelmora::sqlite::salvage {

// Which pages something leads to. A page that two ways lead to belongs to neither.
class PageClaims {
 public:
  explicit PageClaims(PageNumber pages) : claims_(pages + std::size_t{1}, 0) {}
  void claim(PageNumber page);
  [[nodiscard]] bool isFree(PageNumber page) const { return claims_[page] == 0; }
  [[nodiscard]] bool isShared(PageNumber page) const { return claims_[page] > 1; }
  [[nodiscard]] PageNumber pages() const { return static_cast<PageNumber>(claims_.size() - 1); }

 private:
  std::vector<std::uint8_t> claims_;
};

enum class TreeKind { table, index };

using UseRow = std::function<void(std::int64_t rowid, const Record&)>;
// Adds to a list of what is damaged, a page at a time.
using UseDamage = std::function<void(PageNumber)>;

class TreeWalk {
 public:
  TreeWalk(const PageFile& file, PageClaims& claims) : file_(file), claims_(claims) {}

  // Claims all pages that the root leads to. To be done for all trees before any is read.
  void claim(PageNumber root, TreeKind kind);
  // Rows in the order of their ids, or keys of an index in their order (row id 0; the last field is
  // the row's id), page by page where everything on the page is right. False unless the tree is
  // whole.
  bool read(PageNumber root, TreeKind kind, const UseRow& use, const UseDamage& damage);
  // The rows of a single leaf of a table; false unless everything on it is right.
  bool readLeaf(PageNumber number, const UseRow& use);

 private:
  struct Range {  // of row ids: above low, up to high
    std::int64_t low, high;
    bool hasLow = false;
  };
  struct Row {
    std::int64_t rowid;
    Record record;
  };
  bool visit(PageNumber number, Range range, int depth);
  bool follow(const TreePage& page, const std::vector<Row>& rows, Range range, int depth);
  bool rowsOf(const TreePage& page, std::vector<Row>& rows);
  bool useRows(const std::vector<Row>& rows);
  bool useKey(const Record& key);
  bool payloadOf(const TreeCell& cell, std::vector<std::uint8_t>& payload);
  bool fits(const TreePage& page, Range range, int depth);
  bool damaged(PageNumber number);

  const PageFile& file_;
  PageClaims& claims_;
  TreeKind kind_ = TreeKind::table;
  bool isClaiming_ = false;
  int leafDepth_ = 0;
  bool isRowMissing_ = false;
  Record lastKey_;
  const UseRow* use_ = nullptr;
  const UseDamage* damage_ = nullptr;
};

}  // namespace pelmora::sqlite::salvage
