// SPDX-License-Identifier: MIT
#include "adapters/access/helper/usage_map.h"

namespace pelmora::access {
namespace {

// A map has one bit per page. The bits follow the number of the first page, or lie on pages of
// their own, whose numbers the map lists.
enum class MapKind : std::uint8_t { here = 0, onPages = 1 };
constexpr std::size_t mapHead = 1;
constexpr std::size_t pageHead = 4;
constexpr std::uint64_t pagesPerMapPage = (pageSize - pageHead) * 8;

void addMarked(std::vector<std::uint32_t>& pages, Bytes bits, std::uint64_t first) {
  for (std::size_t i = 0; i < bits.size() * 8; ++i) {
    if ((bits[i / 8] >> (i % 8) & 1U) != 0) pages.push_back(static_cast<std::uint32_t>(first + i));
  }
}

}  // namespace

std::vector<std::uint32_t> pagesInMap(const PageFile& file, Bytes map) {
  std::vector<std::uint32_t> pages;
  const auto kind = static_cast<MapKind>(part(map, 0, mapHead)[0]);
  if (kind == MapKind::here) {
    addMarked(pages, map.subspan(part(map, 0, mapHead + 4).size()), u32(map, mapHead));
  } else if (kind == MapKind::onPages) {
    const std::size_t count = (map.size() - mapHead) / 4;
    for (std::size_t i = 0; i < count; ++i) {
      const std::uint32_t number = u32(map, mapHead + 4 * i);
      if (number == 0) continue;
      const Page page = file.page(number, PageKind::usageMap);
      addMarked(pages, Bytes(page).subspan(pageHead), i * pagesPerMapPage);
    }
  } else {
    throw Damage("the list of its pages is damaged");
  }
  return pages;
}

}  // namespace pelmora::access
