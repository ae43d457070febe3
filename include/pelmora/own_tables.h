// A host's own tables in a curve database, and changes that belong together.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/database.h>
#include <pelmora/export.h>

#include <string>
#include <vector>

namespace pelmora {

enum class OwnColumnType {
  key,      // whole number assigned by the database; none is used twice
  whole,    // whole number
  real,     // number
  text,     // compares without regard to case
  anything  // keeps each value as it is, number or text
};

struct OwnColumn {
  std::string Name;
  OwnColumnType Type = OwnColumnType::text;
};

struct OwnTable {
  std::string Name;
  std::vector<OwnColumn> Columns;
};

struct TableIndex {
  std::string Name, Table;
  std::vector<std::string> Columns;
  bool IsUnique = false;  // no two rows may have the same values in all columns
};

// Names compare without regard to case.
//
// Errors of all these functions: Error 91 for a null connection, 3251 if the database cannot have
//         tables added (a stand's export), 0x80004005 if it is locked; another Error if it cannot
//         be used.
[[nodiscard]] PELMORA_API bool hasTable(const ConnectionPtr& curves, const std::string& name);
// If a table of that name exists, adds the columns that it lacks, but no key; its rows have null
// there.
PELMORA_API void createTable(const ConnectionPtr& curves, const OwnTable& table);
// Whether an index of the table, or its key, starts with these columns in this order.
[[nodiscard]] PELMORA_API bool hasIndex(const ConnectionPtr& curves, const std::string& table,
                                        const std::vector<std::string>& columns);
// Does nothing if an index of that name exists.
PELMORA_API void createIndex(const ConnectionPtr& curves, const TableIndex& index);

// Makes all changes through this connection during the object's lifetime take effect together at
// commit(), or not at all, even if the program is killed. Meanwhile others cannot write; they read
// the previous state.
//
//     pelmora::Transaction transaction(curves);
//     ...
//     transaction.commit();
class PELMORA_API Transaction {
 public:
  // Errors: as above; Error if the connection is already in a transaction.
  explicit Transaction(ConnectionPtr curves);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  // Errors: Error; the destructor then undoes the changes.
  void commit();

 private:
  ConnectionPtr curves_;
  bool isOpen_ = true;
};

// Everything read through this connection during the object's lifetime is from one moment, and many
// small reads cost less. Keep it short: meanwhile others cannot store changes.
//
// Errors: as for Transaction.
class PELMORA_API ReadView {
 public:
  explicit ReadView(ConnectionPtr curves);
  ~ReadView();
  ReadView(const ReadView&) = delete;
  ReadView& operator=(const ReadView&) = delete;

 private:
  ConnectionPtr curves_;
};

}  // namespace pelmora
