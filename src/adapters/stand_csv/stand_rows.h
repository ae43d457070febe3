// The data points of a stand's CSV export.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/csv_reader.h"
#include "store/curve_schema.h"

#include <pelmora/types.h>

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora::stand {

// JobRecordID, then V1 to V37.
inline constexpr std::size_t columnCount = measuredValues + 1;
[[nodiscard]] std::string columnName(std::size_t column);
// Whether a header's field names the job column, without regard to case.
[[nodiscard]] bool isFirstColumn(std::string_view headerField);

class StandRows {
 public:
  // Reads the header. `path` is for messages only; `text` must outlive this object.
  // Errors: Error 321 for an empty text or a wrong header.
  StandRows(std::string path, std::string_view text);

  // The next row in the order of columnName; an empty field is null. A job identity that is a whole
  // number is an integer, any other a text. False at the end.
  // Errors: Error 13 for a row with too few or too many fields or a text in place of a number.
  bool next(std::array<Value, columnCount>& row);

 private:
  bool readRecord();
  void readHeader();
  [[nodiscard]] Value value(std::size_t column, const CsvField& field) const;
  [[nodiscard]] std::string place() const;

  std::string path_;
  CsvReader reader_;
  std::vector<CsvField> fields_;
  std::vector<std::size_t> columns_;  // of each field of a line
};

}  // namespace pelmora::stand
