// SPDX-License-Identifier: MIT
#include "adapters/access/helper/data_page.h"

namespace pelmora::access {
namespace {

constexpr std::size_t ownerAt = 4;
constexpr std::size_t countAt = 12;
constexpr std::size_t entriesAt = 14;
constexpr unsigned kindBits = 0xC000;
constexpr unsigned placeBits = 0x1FFF;

std::size_t entryOf(std::size_t row) { return entriesAt + 2 * row; }

}  // namespace

DataPage::DataPage(const PageFile& file, std::uint32_t number, std::uint32_t owner)
    : page_(file.page(number, PageKind::data)), rowCount_(u16(page_, countAt)) {
  if (u32(page_, ownerAt) != owner)
    throw Damage("page " + std::to_string(number) + " belongs to something else");
  if (entryOf(rowCount_) > pageSize)
    throw Damage("the list of rows of page " + std::to_string(number) + " is damaged");
}

DataPage::RowKind DataPage::kind(std::size_t row) const {
  return static_cast<RowKind>(u16(page_, entryOf(row)) & kindBits);
}

Bytes DataPage::row(std::size_t row) const {
  if (row >= rowCount_) throw Damage("its page has no such row");
  const std::size_t begin = u16(page_, entryOf(row)) & placeBits;
  const std::size_t end = row == 0 ? pageSize : u16(page_, entryOf(row - 1)) & placeBits;
  if (begin > end || begin < entryOf(rowCount_) || end > pageSize)
    throw Damage("its place on the page is damaged");
  return part(page_, begin, end - begin);
}

}  // namespace pelmora::access
