// A stand's CSV export as a database with the one table DataPoint.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/database.h>
#include <pelmora/sheet.h>

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace pelmora {

// Whether one of the first lines of the file at `path` (UTF-8) has the column name JobRecordID.
// False where the file cannot be read.
[[nodiscard]] bool isStandCsv(const std::string& path);

// "an Excel workbook (.xlsx)" and the like, for a file that is neither text nor a database; else
// empty.
[[nodiscard]] std::string workbookKind(const std::string& path);

// How an export was read.
struct StandReading {
  sheets::Recognised recognised;
  std::map<std::string, std::vector<std::size_t>> lines;  // of each job's points
};

// A connection to the export, not yet opened. open() reads the whole file into memory; the file
// itself is never changed, and statements that would change DataPoint are errors.
//
// reading: filled by open() unless it is null.
// Errors: of open(): 53 if the file is missing, 70 if it cannot be read, 321 if it is empty or its
//         header is wrong, 13 where a row is; the description names file, line, column and what to
//         do.
[[nodiscard]] ConnectionPtr standCsvConnection(const std::string& path,
                                               const sheets::Style& style = {},
                                               std::shared_ptr<StandReading> reading = {});

}  // namespace pelmora
