// The list of free pages is published: https://www.sqlite.org/fileformat2.html, section 1.5.
// SPDX-License-Identifier: MIT
#include "adapters/sqlite/salvage/free_pages.h"

#include <vector>

namespace pelmora::sqlite::salvage {

bool claimFreePages(const PageFile& file, PageClaims& claims) {
  std::vector<std::uint8_t> page;
  if (!file.read(1, page)) return false;
  PageNumber trunk = fourBytes(page, 32);
  std::uint32_t left = fourBytes(page, 36);
  const auto claim = [&](PageNumber number) {
    if (left == 0 || number < 1 || number > file.pageCount() || !claims.isFree(number))
      return false;
    claims.claim(number);
    --left;
    return true;
  };
  while (trunk != 0) {
    if (!claim(trunk) || !file.read(trunk, page)) return false;
    const std::uint32_t count = fourBytes(page, 4);
    if (count > file.usableSize() / 4 - 2) return false;
    for (std::uint32_t i = 0; i < count; ++i) {
      if (!claim(fourBytes(page, 8 + std::size_t{4} * i))) return false;
    }
    trunk = fourBytes(page, 0);
  }
  return left == 0;
}

}  // namespace pelmora::sqlite::salvage
