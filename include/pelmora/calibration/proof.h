// What a copy of a curve database read and wrote, table by table, and what it left out.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/examination.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::calibration {

struct ProofTable {
  std::string name;
  // Rows, as the source itself counts them; absent if damage has made the count unreadable.
  std::optional<std::uint64_t> expected{};
  std::uint64_t read = 0;     // rows that could be read
  std::uint64_t written = 0;  // rows that the target gives back
  // Empty values in the rows that were written. Access files have no checksums: a value that damage
  // has marked as empty looks like one that always was.
  std::uint64_t empty = 0;
  // Of every number and text that was read for this table, and of those that the target gives back.
  // Equal for equal values, and numbers must agree bit for bit. The order of the rows counts,
  // except for an Access file.
  std::uint64_t checksumRead = 0, checksumWritten = 0;

  [[nodiscard]] bool isWhole() const {
    return read == expected && written == expected && checksumWritten == checksumRead;
  }
};

// A row, a value, a table or a page of the source that was not copied.
struct ProofGap {
  std::string table;  // empty: it concerns the whole source
  std::string place;  // "page 33, row 4, column V5"; may be empty
  std::string reason;
};

struct ProofSheet {
  std::vector<ProofTable> tables;  // all tables of a curve database
  std::vector<ProofGap> missing;
  // For an Access file: what Database::examine() finds in the copied rows, except notes. The file
  // has the same problems. Orphaned rows may be a trace of damage that no count shows.
  std::vector<Finding> problems;
  // Tables of an Access file that are not part of a curve database. They are read and counted but
  // not copied: `written`, `empty` and `checksumWritten` are 0.
  std::vector<ProofTable> otherTables;

  [[nodiscard]] bool isComplete() const {
    for (const ProofTable& table : tables) {
      if (!table.isWhole()) return false;
    }
    return missing.empty();
  }
};

}  // namespace pelmora::calibration
