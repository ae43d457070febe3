// A stand's CSV export as a database with the one table DataPoint.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/database.h>

#include <string>

namespace pelmora {

// Whether the first line of the file at `path` (UTF-8) begins with the column name JobRecordID,
// after an optional byte-order mark. False where the file cannot be read.
[[nodiscard]] bool isStandCsv(const std::string& path);

// A connection to the export, not yet opened. open() reads the whole file into memory; the file
// itself is never changed, and statements that would change DataPoint are errors.
//
// Errors: of open(): 53 if the file is missing, 70 if it cannot be read, 321 if it is
// empty
//         or its header is wrong, 13 where a row is; the description names file, line, column and
//         what to do.
[[nodiscard]] ConnectionPtr standCsvConnection(const std::string& path);

}  // namespace pelmora
