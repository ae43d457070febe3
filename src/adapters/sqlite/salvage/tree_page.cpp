// The layout of pages is published: https://www.sqlite.org/fileformat2.html, section 1.6.
// SPDX-License-Identifier: MIT
#include "adapters/sqlite/salvage/tree_page.h"

#include <algorithm>
#include <utility>

namespace pelmora::sqlite::salvage {
namespace {

struct Extent {
  std::size_t begin = 0, end = 0;
};

// The header of the file lies before that of its first page.
std::size_t headerAt(PageNumber number) { return number == 1 ? 100 : 0; }

// Reads what lies between the header and the end of a page.
class PageReader {
 public:
  PageReader(Bytes page, PageNumber number) : page_(page), header_(headerAt(number)) {}

  std::optional<TreePage> read() {
    TreePage result;
    const std::uint8_t kind = page_[header_];
    if (kind != 2 && kind != 5 && kind != 10 && kind != 13) return std::nullopt;
    result.kind = static_cast<PageKind>(kind);
    const std::size_t pointers = header_ + (result.isInner() ? 12 : 8);
    if (result.isInner()) result.rightmost = fourBytes(page_, header_ + 8);
    const std::size_t count = twoBytes(page_, header_ + 3);
    begin_ = pointers + 2 * count;
    if (begin_ > page_.size()) return std::nullopt;
    result.cells.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
      TreeCell cell;
      if (!readCell(result.kind, twoBytes(page_, pointers + 2 * i), cell)) return std::nullopt;
      if (result.isOfTable() && i > 0 && cell.rowid <= result.cells.back().rowid)
        return std::nullopt;
      result.cells.push_back(cell);
    }
    if (!addFreeBlocks() || !isFilledExactly()) return std::nullopt;
    return result;
  }

 private:
  bool readCell(PageKind kind, std::size_t at, TreeCell& cell) {
    constexpr std::size_t smallestCell = 4;
    const std::size_t start = at;
    if (at < begin_ || at + smallestCell > page_.size()) return false;
    if (kind == PageKind::tableInner || kind == PageKind::indexInner) {
      cell.child = fourBytes(page_, at);
      at += 4;
    }
    const bool isOfTable = kind == PageKind::tableInner || kind == PageKind::tableLeaf;
    if (kind != PageKind::tableInner && !readVarint(page_, at, cell.payload)) return false;
    std::uint64_t rowid = 0;
    if (isOfTable && !readVarint(page_, at, rowid)) return false;
    cell.rowid = static_cast<std::int64_t>(rowid);
    if (kind != PageKind::tableInner && !readPayload(isOfTable, at, cell)) return false;
    extents_.push_back({start, std::max(at, start + smallestCell)});
    return extents_.back().end <= page_.size();
  }

  bool readPayload(bool isOfTable, std::size_t& at, TreeCell& cell) const {
    const std::uint64_t usable = page_.size();
    constexpr std::uint64_t longest = 1U << 31U;
    if (cell.payload > longest) return false;
    const std::uint64_t most = isOfTable ? usable - 35 : (usable - 12) * 64 / 255 - 23;
    const std::uint64_t least = (usable - 12) * 32 / 255 - 23;
    std::uint64_t local = cell.payload;
    if (local > most) {
      local = least + (cell.payload - least) % (usable - 4);
      if (local > most) local = least;
    }
    const std::uint64_t pointer = local < cell.payload ? 4 : 0;
    if (at + local + pointer > page_.size()) return false;
    cell.local = page_.subspan(at, static_cast<std::size_t>(local));
    at += static_cast<std::size_t>(local);
    if (pointer > 0) {
      cell.overflow = fourBytes(page_, at);
      if (cell.overflow == 0) return false;
      at += 4;
    }
    return true;
  }

  bool addFreeBlocks() {
    for (std::size_t at = twoBytes(page_, header_ + 1), before = 0; at != 0;) {
      if (at <= before || at < begin_ || at + 4 > page_.size()) return false;
      const std::size_t size = twoBytes(page_, at + 2);
      if (size < 4 || at + size > page_.size()) return false;
      extents_.push_back({at, at + size});
      before = at;
      at = twoBytes(page_, at);
    }
    return true;
  }

  bool isFilledExactly() {
    constexpr std::size_t wholePage = 65536;
    std::size_t end = twoBytes(page_, header_ + 5);
    if (end == 0) end = wholePage;
    if (end < begin_ || end > page_.size()) return false;
    std::sort(extents_.begin(), extents_.end(),
              [](const Extent& a, const Extent& b) { return a.begin < b.begin; });
    std::size_t fragments = 0;
    for (const Extent& extent : extents_) {
      if (extent.begin < end) return false;
      fragments += extent.begin - end;
      end = extent.end;
    }
    return fragments + (page_.size() - end) == page_[header_ + 7];
  }

  Bytes page_;
  std::size_t header_, begin_ = 0;
  std::vector<Extent> extents_;
};

}  // namespace

bool readVarint(Bytes bytes, std::size_t& at, std::uint64_t& value) {
  value = 0;
  for (int i = 0; i < 9; ++i) {
    if (at >= bytes.size()) return false;
    const std::uint8_t byte = bytes[at++];
    if (i == 8) {
      value = value << 8U | byte;
      return true;
    }
    value = value << 7U | (byte & 0x7FU);
    if (byte < 0x80U) return true;
  }
  return true;
}

std::optional<TreePage> readTreePage(Bytes page, PageNumber number) {
  constexpr std::size_t smallestUsable = 480;
  if (page.size() < smallestUsable) return std::nullopt;
  return PageReader(page, number).read();
}

}  // namespace pelmora::sqlite::salvage
