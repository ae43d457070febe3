// SPDX-License-Identifier: MIT
#include "adapters/sqlite/salvage/tree_walk.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace pelmora::sqlite::salvage {
namespace {

// The engine refuses deeper trees.
constexpr int deepestTree = 20;

}  // namespace

void PageClaims::claim(PageNumber page) {
  if (page >= 1 && page < claims_.size() && claims_[page] < 2) ++claims_[page];
}

void TreeWalk::claim(PageNumber root, TreeKind kind) {
  isClaiming_ = true;
  kind_ = kind;
  leafDepth_ = 0;
  (void)visit(root, {0, std::numeric_limits<std::int64_t>::max()}, 1);
  isClaiming_ = false;
}

bool TreeWalk::read(PageNumber root, TreeKind kind, const UseRow& use, const UseDamage& damage) {
  kind_ = kind;
  leafDepth_ = 0;
  isRowMissing_ = false;
  lastKey_.clear();
  use_ = &use;
  damage_ = &damage;
  const bool isWhole = visit(root, {0, std::numeric_limits<std::int64_t>::max()}, 1);
  return isWhole && !isRowMissing_;
}

bool TreeWalk::readLeaf(PageNumber number, const UseRow& use) {
  std::vector<std::uint8_t> bytes;
  if (!file_.read(number, bytes)) return false;
  const auto page = readTreePage(bytes, number);
  std::vector<Row> rows;
  if (!page || page->kind != PageKind::tableLeaf || !rowsOf(*page, rows) || isRowMissing_)
    return false;
  for (const Row& row : rows) use(row.rowid, row.record);
  return !rows.empty();
}

bool TreeWalk::damaged(PageNumber number) {
  if (!isClaiming_) (*damage_)(number);
  return false;
}

// Whether a page that is right in itself belongs where it was found.
bool TreeWalk::fits(const TreePage& page, Range range, int depth) {
  if (page.isOfTable() != (kind_ == TreeKind::table)) return false;
  if (!page.isInner()) {
    if (leafDepth_ == 0) leafDepth_ = depth;
    if (leafDepth_ != depth || (page.cells.empty() && depth > 1)) return false;
  }
  if (kind_ == TreeKind::index || page.cells.empty()) return true;
  return (!range.hasLow || page.cells.front().rowid > range.low) &&
         page.cells.back().rowid <= range.high;
}

bool TreeWalk::visit(PageNumber number, Range range, int depth) {
  if (depth > deepestTree || number < 1 || number > file_.pageCount()) return damaged(number);
  if (isClaiming_) {
    const bool isFirst = claims_.isFree(number);
    claims_.claim(number);
    if (!isFirst) return false;
  } else if (claims_.isShared(number)) {
    return damaged(number);
  }
  std::vector<std::uint8_t> bytes;
  if (!file_.read(number, bytes)) return damaged(number);
  const auto page = readTreePage(bytes, number);
  if (!page || !fits(*page, range, depth)) return damaged(number);
  std::vector<Row> rows;
  if (page->kind != PageKind::tableInner && !rowsOf(*page, rows)) return damaged(number);
  if (page->isInner()) return follow(*page, rows, range, depth);
  if (!isClaiming_ && !useRows(rows)) return damaged(number);
  return true;
}

bool TreeWalk::follow(const TreePage& page, const std::vector<Row>& rows, Range range, int depth) {
  bool isWhole = true;
  for (std::size_t i = 0; i < page.cells.size(); ++i) {
    Range below = range;
    if (kind_ == TreeKind::table) below.high = page.cells[i].rowid;
    isWhole = visit(page.cells[i].child, below, depth + 1) && isWhole;
    range.low = page.cells[i].rowid;
    range.hasLow = true;
    if (kind_ == TreeKind::index && !isClaiming_) isWhole = useKey(rows[i].record) && isWhole;
  }
  return visit(page.rightmost, range, depth + 1) && isWhole;
}

// False where a row that lies on this page cannot be right: then nothing on the page is trusted. A
// row that is right here and ends on a damaged page is left out alone.
bool TreeWalk::rowsOf(const TreePage& page, std::vector<Row>& rows) {
  std::vector<std::uint8_t> payload;
  for (const TreeCell& cell : page.cells) {
    if (!payloadOf(cell, payload)) {
      if (page.kind == PageKind::indexInner) return false;
      isRowMissing_ = true;
      continue;
    }
    if (isClaiming_) continue;
    Row row{cell.rowid, {}};
    if (!readRecord(payload, row.record)) return false;
    rows.push_back(std::move(row));
  }
  return true;
}

bool TreeWalk::useRows(const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    if (kind_ == TreeKind::table) {
      (*use_)(row.rowid, row.record);
    } else if (!useKey(row.record)) {
      return false;
    }
  }
  return true;
}

// Keys rise.
bool TreeWalk::useKey(const Record& key) {
  if (!lastKey_.empty()) {
    const auto order = std::lexicographical_compare_three_way(
        lastKey_.begin(), lastKey_.end(), key.begin(), key.end(),
        [](const Field& a, const Field& b) { return compareAsIndexed(a, b); });
    if (order >= 0) return false;
  }
  lastKey_ = key;
  (*use_)(0, key);
  return true;
}

// The payload with what lies on further pages; those are claimed at the first visit.
bool TreeWalk::payloadOf(const TreeCell& cell, std::vector<std::uint8_t>& payload) {
  payload.assign(cell.local.begin(), cell.local.end());
  std::vector<std::uint8_t> bytes;
  PageNumber next = cell.overflow;
  while (payload.size() < cell.payload) {
    if (next < 1 || next > file_.pageCount()) return false;
    if (isClaiming_) {
      const bool isFirst = claims_.isFree(next);
      claims_.claim(next);
      if (!isFirst) return false;
    } else if (claims_.isShared(next)) {
      return false;
    }
    if (!file_.read(next, bytes)) return false;
    constexpr std::size_t pointer = 4;
    const auto rest =
        std::min<std::uint64_t>(cell.payload - payload.size(), bytes.size() - pointer);
    payload.insert(payload.end(), bytes.begin() + pointer,
                   bytes.begin() + static_cast<std::ptrdiff_t>(pointer + rest));
    next = fourBytes(bytes, 0);
  }
  return next == 0;
}

}  // namespace pelmora::sqlite::salvage
