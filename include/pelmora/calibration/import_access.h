// Copying a whole curve database from an Access file, with a proof of what was copied.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/database.h>
#include <pelmora/calibration/examination.h>
#include <pelmora/calibration/failure.h>
#include <pelmora/calibration/observer.h>
#include <pelmora/export.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::calibration {

struct ProofTable {
  std::string name;
  // Rows, as the file itself counts them; absent if damage has made the count unreadable.
  std::optional<std::uint64_t> expected{};
  std::uint64_t read = 0;     // rows that could be read
  std::uint64_t written = 0;  // rows that the new database gives back
  // Empty values in the rows that were written. Access files have no checksums: a value that damage
  // has marked as empty looks like one that always was.
  std::uint64_t empty = 0;
  // Of every number and text that was read for this table, and of those that the new database gives
  // back. Equal for equal values, whatever the order of the rows; numbers must agree bit for bit.
  std::uint64_t checksumRead = 0, checksumWritten = 0;

  [[nodiscard]] bool isWhole() const {
    return read == expected && written == expected && checksumWritten == checksumRead;
  }
};

// A row, a value, a table or a page of the file that was not copied.
struct ProofGap {
  std::string table;  // empty: it concerns the whole file
  std::string place;  // "page 33, row 4, column V5"; may be empty
  std::string reason;
};

struct ProofSheet {
  std::vector<ProofTable> tables;  // all tables of a curve database
  std::vector<ProofGap> missing;
  // What Database::examine() finds in the copied rows, except notes. The file has the same
  // problems. Orphaned rows may be a trace of damage that no count shows.
  std::vector<Finding> problems;
  // Tables of the file that are not part of a curve database. They are read and counted but not
  // copied: `written`, `empty` and `checksumWritten` are 0.
  std::vector<ProofTable> otherTables;

  [[nodiscard]] bool isComplete() const;
};

inline bool ProofSheet::isComplete() const {
  for (const ProofTable& table : tables) {
    if (!table.isWhole()) return false;
  }
  return missing.empty();
}

// The file does not hold a curve database, or damage hides its tables.
class PELMORA_API NoCurveDatabase : public BadData {
 public:
  NoCurveDatabase(FailureText text, ProofSheet sheet);
  ~NoCurveDatabase() override;

  // What the file holds instead.
  [[nodiscard]] const ProofSheet& sheet() const noexcept { return sheet_; }

 private:
  ProofSheet sheet_;
};

// Copies the curve database in the Access file at `path` to `location` in one transaction and keeps
// all ids. If the file at `location` does not exist, it is created as a new curve database. If it
// exists, it must be an empty curve database. A row or value that cannot be read or stored is left
// out and listed; everything else is copied.
//
// Errors: NotFound if the file at `path` does not exist; Damaged if that file is not an Access file
//         or if no part of it can be read; Unusable if this build cannot read Access files;
//         NoCurveDatabase; Exists if the curve database at `location` holds rows; Locked;
//         Cancelled. After any of them, nothing is stored.
PELMORA_API ProofSheet importAccess(const std::string& path, const std::string& location,
                                    OpenOptions options = {}, const Observer& observer = {});

}  // namespace pelmora::calibration
