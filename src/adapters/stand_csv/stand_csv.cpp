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

namespace pelmora {

namespace {

// An export is read into memory as a whole. This is a quarter of a million points.
constexpr std::uintmax_t mostBytes = 100'000'000;

bool isRegularFile(const std::string& path) {
  std::error_code ignored;
  return path.find('\0') == std::string::npos &&
         std::filesystem::is_regular_file(filePath(path), ignored);
}

std::string contents(const std::string& path) {
  if (!isRegularFile(path)) {
    throw Error(static_cast<std::int32_t>(RunTimeError::fileNotFound), "Pelmora",
                "Could not find file '" + path + "'. Check the folder and the name.");
  }
  std::error_code ignored;
  if (std::filesystem::file_size(filePath(path), ignored) > mostBytes && !ignored) {
    throw Error(static_cast<std::int32_t>(RunTimeError::pathAccess), "Pelmora",
                "File '" + path + "' is larger than 100 MB. Export fewer jobs at a time.");
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

void readRows(const std::string& path, MemoryTables& tables) {
  const std::string text = contents(path);
  stand::StandRows rows(path, text);
  std::array<Value, stand::columnCount> row;
  tables.beginTable({"DataPoint", standTableColumns()});
  while (rows.next(row)) tables.addRow(row);
}

}  // namespace

bool isStandCsv(const std::string& path) {
  constexpr std::size_t enough = 64;
  const auto start = sqlite::startOfFile(path, enough);
  if (!start) return false;
  // The rest of the record may be cut anywhere; only its first field counts.
  const std::size_t end = start->find_first_of(",\r\n");
  CsvReader reader(std::string_view(*start).substr(0, end));
  std::vector<CsvField> fields;
  try {
    return reader.next(fields) && stand::isFirstColumn(fields.front().text);
  } catch (const Error&) {
    return false;
  }
}

ConnectionPtr standCsvConnection(const std::string& path) {
  return memoryConnection({[path](MemoryTables& tables) { readRows(path, tables); },
                           "The tables of this database can only be read."});
}

}  // namespace pelmora
