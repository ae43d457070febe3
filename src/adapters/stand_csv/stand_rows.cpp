// SPDX-License-Identifier: MIT
#include "adapters/stand_csv/stand_rows.h"

#include "base/run_time_error.h"
#include "base/text_case.h"
#include "base/text_flaw.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string_view>
#include <system_error>
#include <utility>

namespace pelmora::stand {

namespace {

constexpr const char* headerRemedy =
    "the header must name JobRecordID and the columns V1 to V5 and V12; others of V1 to V37 may be "
    "left out";

// What every series is derived from: V1 to V5 and the temperature.
constexpr std::array<std::size_t, 7> requiredColumns{0, 1, 2, 3, 4, 5, 12};
constexpr std::size_t viscosity = 5, temperature = 12;

// In seconds: a header with one of the other units of time is refused. Any other unit, such as "-",
// is ignored.
constexpr std::array<std::size_t, 3> timeColumns{1, 3, 20};
constexpr std::array<std::string_view, 5> otherTimes{"ms", "us", "min", "h", "hr"};

constexpr auto wrongFile = static_cast<std::int32_t>(RunTimeError::invalidFileFormat);

std::optional<std::size_t> columnNamed(std::string_view name) {
  for (std::size_t column = 0; column < columnCount; ++column) {
    if (equalNames(columnName(column), name)) return column;
  }
  return std::nullopt;
}

bool isInOtherTime(std::size_t column, std::string_view unit) {
  return std::ranges::find(timeColumns, column) != timeColumns.end() &&
         std::ranges::any_of(otherTimes,
                             [&](std::string_view other) { return equalNames(other, unit); });
}

Value jobOf(std::string_view text) {
  std::int64_t number = 0;
  std::string_view digits = text;
  if (digits.starts_with('+') && !digits.starts_with("+-")) digits.remove_prefix(1);
  const char* const last = digits.data() + digits.size();
  const auto [end, code] = std::from_chars(digits.data(), last, number);
  if (code == std::errc() && end == last) return number;
  return std::string(text);
}

}  // namespace

std::string columnName(std::size_t column) { return standTableColumns()[column].Name; }

StandRows::StandRows(std::string path, std::string bytes, const sheets::Style& style)
    : path_(std::move(path)) {
  if (bytes.empty())
    throw sheets::SheetError("", "it is empty", headerRemedy).inFile(path_, wrongFile);
  sheets::Style named = style;
  named.names = {columnName(0)};
  try {
    sheet_.emplace(std::move(bytes), named);
  } catch (const sheets::SheetError& error) {
    throw error.inFile(path_, error.number());
  }
  readHeader();
}

void StandRows::readHeader() {
  const std::size_t line = recognised().headerLine;
  const auto refuse = [&](const std::string& problem, const std::string& remedy) {
    throw sheets::SheetError(line == 0 ? "" : "line " + std::to_string(line), problem, remedy)
        .inFile(path_, wrongFile);
  };
  std::array<bool, columnCount> isFound{};
  for (const sheets::Column& field : sheet_->columns()) {
    const auto column = columnNamed(field.name);
    if (!column) {
      refuse("'" + shortened(field.text) + "' is not a column of a stand export",
             "remove it, or name it as one of JobRecordID and V1 to V37");
    }
    if (std::exchange(isFound[*column], true))
      refuse("column " + columnName(*column) + " appears twice", "remove one of them");
    if (isInOtherTime(*column, field.unit)) {
      refuse("column " + columnName(*column) + " is in " + field.unit,
             "give the times V1, V3 and V20 in seconds");
    }
    columns_.push_back(*column);
  }
  std::string missing;
  for (const std::size_t column : requiredColumns) {
    if (!isFound[column]) missing += (missing.empty() ? "" : ", ") + columnName(column);
  }
  if (!missing.empty()) refuse("missing column " + missing, headerRemedy);
}

bool StandRows::next(std::array<Value, columnCount>& row) {
  try {
    if (!sheet_->next(row_)) return false;
    row.fill(Value());
    for (std::size_t i = 0; i < columns_.size(); ++i) row[columns_[i]] = value(columns_[i], i);
    return true;
  } catch (const sheets::SheetError& error) {
    throw error.inFile(path_, error.number());
  }
}

Value StandRows::value(std::size_t column, std::size_t field) const {
  const std::string& text = row_.fields[field];
  if (text.empty()) return {};
  if (column == 0) return jobOf(text);
  if (column == viscosity) return sheet_->requireNumber(row_, field, "cSt");
  if (column == temperature) return sheet_->requireNumber(row_, field, "F");
  return sheet_->requireNumber(row_, field);
}

}  // namespace pelmora::stand
