// SPDX-License-Identifier: MIT
#include "adapters/stand_csv/stand_csv.h"

#include "adapters/sqlite/memory_table.h"
#include "adapters/sqlite/sqlite_file.h"
#include "adapters/stand_csv/stand_rows.h"
#include "base/file_text.h"
#include "base/plain_reading.h"
#include "base/run_time_error.h"
#include "store/curve_schema.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

namespace pelmora {

namespace {

// An export is read into memory as a whole. This is a quarter of a million points.
constexpr std::uintmax_t mostBytes = 100'000'000;

std::string contents(const std::string& path) {
  requireRegularFile(path);
  std::error_code ignored;
  if (std::filesystem::file_size(filePath(path), ignored) > mostBytes && !ignored) {
    throw sheets::SheetError("", "it is larger than 100 MB", "export fewer jobs at a time")
        .inFile(path, static_cast<std::int32_t>(RunTimeError::pathAccess));
  }
  const PlainReading reading(filePath(path));
  std::ifstream file(filePath(path), std::ios::binary);
  std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  if (!file.is_open() || file.bad()) {
    throw Error(static_cast<std::int32_t>(RunTimeError::permissionDenied), "Pelmora",
                "Could not open file '" + path + "': it cannot be read. Check its permissions.");
  }
  return text;
}

std::string jobText(const Value& job) {
  const auto* whole = std::get_if<std::int64_t>(&job);
  if (whole != nullptr) return std::to_string(*whole);
  const auto* text = std::get_if<std::string>(&job);
  return text == nullptr ? std::string() : *text;
}

void readRows(const std::string& path, const sheets::Style& style, StandReading* reading,
              MemoryTables& tables) {
  stand::StandRows rows(path, contents(path), style);
  if (reading != nullptr) *reading = {rows.recognised(), {}};
  std::array<Value, stand::columnCount> row;
  tables.beginTable({"DataPoint", standTableColumns()});
  while (rows.next(row)) {
    if (reading != nullptr) reading->lines[jobText(row[0])].push_back(rows.line());
    tables.addRow(row);
  }
}

}  // namespace

bool isStandCsv(const std::string& path) {
  constexpr std::size_t enough = 1U << 16U;
  const auto start = sqlite::startOfFile(path, enough);
  return start && sheets::namesColumn(*start, stand::columnName(0));
}

std::string workbookKind(const std::string& path) {
  constexpr std::size_t enough = 4096;
  const auto start = sqlite::startOfFile(path, enough);
  std::string kind = start ? sheets::foreignKind(*start) : std::string();
  return kind.find("database") == std::string::npos ? kind : std::string();
}

ConnectionPtr standCsvConnection(const std::string& path, const sheets::Style& style,
                                 std::shared_ptr<StandReading> reading) {
  return memoryConnection({[path, style, reading = std::move(reading)](MemoryTables& tables) {
                             readRows(path, style, reading.get(), tables);
                           },
                           "The tables of this database can only be read."});
}

}  // namespace pelmora
