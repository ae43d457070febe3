// SPDX-License-Identifier: MIT
#include "rawdata/series_row.h"

#include "base/number_text.h"
#include "store/field_value.h"

#include <array>

namespace pelmora {

std::int32_t findOrAddSeriesRow(const OperationConnection& connection,
                                const std::string& SeriesName, std::int32_t MeterID) {
  auto rows = connection.read("select * from series where name = '" + SeriesName +
                              "' and meterid=" + numberText(MeterID));
  if (rows->recordCount() == 0) {
    constexpr std::array<std::string_view, 2> fields{"name", "meterid"};
    const std::array<Value, 2> values{SeriesName, std::int64_t{MeterID}};
    rows->addRow(fields, values);
  }
  return toInt32(rows->value("id"));
}

}  // namespace pelmora
