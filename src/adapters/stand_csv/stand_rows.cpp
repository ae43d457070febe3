// SPDX-License-Identifier: MIT
#include "adapters/stand_csv/stand_rows.h"

#include "base/run_time_error.h"
#include "base/text_flaw.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

namespace pelmora::stand {

namespace {

Error fileError(std::int32_t number, const std::string& description) {
  return {number, "Pelmora", description};
}

Error rowError(const std::string& description) {
  return fileError(static_cast<std::int32_t>(RunTimeError::typeMismatch), description);
}

std::string_view trimmed(std::string_view text) {
  const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

std::string lowerCase(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return result;
}

std::optional<std::size_t> columnNamed(std::string_view name) {
  const std::string wanted = lowerCase(trimmed(name));
  for (std::size_t column = 0; column < columnCount; ++column) {
    if (lowerCase(columnName(column)) == wanted) return column;
  }
  return std::nullopt;
}

template <typename Number>
std::optional<Number> wholeText(std::string_view text) {
  Number number{};
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (code != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

}  // namespace

std::string columnName(std::size_t column) { return standTableColumns()[column].Name; }

bool isFirstColumn(std::string_view headerField) {
  return columnNamed(headerField) == std::size_t{0};
}

StandRows::StandRows(std::string path, std::string_view text)
    : path_(std::move(path)), reader_(text) {
  try {
    readHeader();
  } catch (const Error& error) {
    throw fileError(static_cast<std::int32_t>(RunTimeError::invalidFileFormat), error.what());
  }
}

std::string StandRows::place() const {
  return "File '" + path_ + "', line " + std::to_string(reader_.line());
}

void StandRows::readHeader() {
  constexpr const char* remedy = " The first line must name JobRecordID and V1 to V37.";
  if (!readRecord()) throw rowError("File '" + path_ + "' is empty." + remedy);
  std::array<bool, columnCount> isFound{};
  for (const CsvField& field : fields_) {
    const auto column = columnNamed(field.text);
    if (!column)
      throw rowError(place() + ": '" + shortened(field.text) +
                     "' is not a column of a stand export." + remedy);
    if (std::exchange(isFound[*column], true)) {
      throw rowError(place() + ": column " + columnName(*column) + " is there twice." + remedy);
    }
    columns_.push_back(*column);
  }
  std::string missing;
  for (std::size_t column = 0; column < columnCount; ++column) {
    if (!isFound[column]) missing += (missing.empty() ? "" : ", ") + columnName(column);
  }
  if (!missing.empty()) throw rowError(place() + ": missing column " + missing + "." + remedy);
}

bool StandRows::readRecord() {
  try {
    return reader_.next(fields_);
  } catch (const CsvError& error) {
    throw rowError("File '" + path_ + "', " + error.place() + ": " + error.problem() + "; " +
                   error.remedy() + ".");
  }
}

bool StandRows::next(std::array<Value, columnCount>& row) {
  if (!readRecord()) return false;
  if (fields_.size() != columnCount) {
    throw rowError(place() + ": " + std::to_string(fields_.size()) + " fields instead of " +
                   std::to_string(columnCount) +
                   ". Write numbers with a decimal point and one field for each column.");
  }
  for (std::size_t i = 0; i < columnCount; ++i) row[columns_[i]] = value(columns_[i], fields_[i]);
  return true;
}

Value StandRows::value(std::size_t column, const CsvField& field) const {
  const std::string_view text = trimmed(field.text);
  if (text.empty()) return {};
  if (column == 0) {
    if (const auto job = wholeText<std::int64_t>(text)) return *job;
    return std::string(text);
  }
  const auto number = wholeText<double>(text);
  if (number && std::isfinite(*number)) return *number;
  throw rowError(
      place() + ", column " + columnName(column) + ": '" + shortened(field.text) +
      "' is not a number. Write a number with a decimal point, or leave the field empty.");
}

}  // namespace pelmora::stand
