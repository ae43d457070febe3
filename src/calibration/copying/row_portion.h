// The rows of a table that are copied together: those of some owners, by the owners' ids.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace pelmora::calibration {

class RowPortion {
 public:
  // All rows of a table.
  RowPortion() = default;
  // Behind `after`, up to `last`. Without `after`, rows without an owner too; without `last`, all
  // that follow. Successive ranges therefore cover every row once.
  static RowPortion range(std::optional<std::int64_t> after, std::optional<std::int64_t> last) {
    RowPortion portion;
    portion.after_ = after;
    portion.last_ = last;
    return portion;
  }
  static RowPortion of(std::vector<std::int64_t> owners) {
    RowPortion portion;
    portion.owners_ = std::move(owners);
    return portion;
  }

  // The condition of a statement, with a blank before it; empty for all rows.
  [[nodiscard]] std::string where(const std::string& column) const;
  // Null for ranges.
  [[nodiscard]] const std::vector<std::int64_t>* owners() const {
    return owners_ ? &*owners_ : nullptr;
  }

 private:
  std::optional<std::int64_t> after_, last_;
  std::optional<std::vector<std::int64_t>> owners_;
};

}  // namespace pelmora::calibration
