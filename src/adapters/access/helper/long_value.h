// Values that may be longer than a row: memos and binary objects.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/access/helper/data_page.h"

#include <set>
#include <vector>

namespace pelmora::access {

// Remembers which places have been read. A value belongs to one field only, so all values together
// are no longer than the file, whatever damaged fields refer to.
class LongValues {
 public:
  // `file` must outlive the object.
  explicit LongValues(const PageFile& file) : file_(file) {}

  // The bytes that a row's field of such a column refers to.
  // Errors: Damage, also if their number differs from the one in the field, or if an earlier field
  //         referred to the same value.
  [[nodiscard]] std::vector<unsigned char> read(Bytes field);

 private:
  [[nodiscard]] Bytes take(const DataPage& page, RowPlace place);
  [[nodiscard]] std::vector<unsigned char> oneRow(RowPlace place);
  [[nodiscard]] std::vector<unsigned char> chain(RowPlace place, std::size_t length);

  const PageFile& file_;
  std::set<RowPlace> taken_;
};

}  // namespace pelmora::access
