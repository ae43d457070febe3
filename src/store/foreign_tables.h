// The tables of another database program's file, read from beginning to end.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>
#include <pelmora/own_tables.h>
#include <pelmora/types.h>

#include <cstdint>
#include <span>
#include <string>

namespace pelmora {

struct ForeignTable {
  OwnTable Design;         // without columns if none can be read
  std::uint64_t Rows = 0;  // as the file itself counts them
};

// A part of a file that could not be read.
struct LeftOut {
  enum class Kind {
    damage,      // rows, or the place they were in
    value,       // one value; it is null in its row
    unsupported  // nothing is damaged, but this reader cannot read it
  };
  Kind What = Kind::damage;
  std::uint64_t Rows = 0;  // that are missing because of it, if known
  std::string Place;       // in the table or, outside a table, in the file; may be empty
  std::string Reason;
};

// Receives what is read. Tables come one after the other.
class ForeignTables {
 public:
  virtual ~ForeignTables() = default;
  virtual void beginTable(const ForeignTable& table) = 0;
  // In the order of the table's columns.
  virtual void addRow(std::span<const Value> values) = 0;
  virtual void endTable() = 0;
  // Inside a table, or between tables if it concerns the whole file.
  virtual void leaveOut(const LeftOut& part) = 0;
};

// Reads all tables of the Access file at `path`, in a process of its own: a damaged file can crash
// that process, but not this one. Everything in the file that cannot be read is reported to `into`.
// Exceptions of `into` end the reading.
//
// Errors: Error 53 if the file is missing; 321 if it is not an Access file, or if none of it can be
//         read because of damage or its version; 91 if this build cannot read Access files. The
//         description says what to do.
PELMORA_API void readAccessFile(const std::string& path, ForeignTables& into);

}  // namespace pelmora
