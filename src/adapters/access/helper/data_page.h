// The rows of one page.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/access/helper/page_file.h"

namespace pelmora::access {

// A page of rows: a header, a table of where each row begins, and the rows, the first of them at
// the end of the page. Two bits of a row's entry say what the row is.
class DataPage {
 public:
  enum class RowKind {
    own = 0x0000,
    elsewhere = 0x4000,  // a reference to where the row lies now: it had outgrown its place
    target = 0x8000,     // a row that another entry refers to, or a deleted one
    deleted = 0xC000
  };
  // Owner of the pages that hold long texts.
  static constexpr std::uint32_t longValues = 0x4C41564C;  // "LVAL"

  // Errors: Damage if the page is not one of `owner`, a table's page number or longValues.
  DataPage(const PageFile& file, std::uint32_t number, std::uint32_t owner);

  [[nodiscard]] std::size_t rowCount() const { return rowCount_; }
  [[nodiscard]] RowKind kind(std::size_t row) const;
  // Valid as long as the page. Errors: Damage.
  [[nodiscard]] Bytes row(std::size_t row) const;

 private:
  Page page_;
  std::size_t rowCount_;
};

}  // namespace pelmora::access
