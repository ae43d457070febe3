// A number by which two sets of rows are compared.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sqlite/salvage/record.h"

#include <cstdint>

namespace pelmora::sqlite::salvage {

// Of one row. Those of all rows are added up: the order in which they come does not matter.
class RowPrint {
 public:
  void add(const Field& field);
  [[nodiscard]] std::uint64_t value() const { return print_ ^ (print_ >> 29U); }

 private:
  std::uint64_t print_ = 0;
};

}  // namespace pelmora::sqlite::salvage
