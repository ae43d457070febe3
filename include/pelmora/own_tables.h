// Tables of a host's own beside those of a curve database, and changes that belong together.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/database.h>
#include <pelmora/export.h>

#include <string>
#include <vector>

namespace pelmora {

enum class OwnColumnType {
  key,      // whole number that the database makes; none is used twice
  whole,    // whole number
  real,     // number
  text,     // compares without regard to case
  anything  // keeps the form, number or text, that a value has
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
};

// Names compare without regard to case.
//
// Errors, of all of them: Error 91 for a null connection, 3251 where the database cannot be
// designed
//         (a stand's export), 0x80004005 where it is locked; another one where it cannot be used.
[[nodiscard]] PELMORA_API bool hasTable(const ConnectionPtr& curves, const std::string& name);
// Does nothing where there is a table of that name.
PELMORA_API void createTable(const ConnectionPtr& curves, const OwnTable& table);
// Whether an index of the table, or its key, begins with these columns in this order.
[[nodiscard]] PELMORA_API bool hasIndex(const ConnectionPtr& curves, const std::string& table,
                                        const std::vector<std::string>& columns);
// Does nothing where there is an index of that name.
PELMORA_API void createIndex(const ConnectionPtr& curves, const TableIndex& index);

// What is changed through this connection while the object lives: all of it from commit() on, and
// none of it otherwise, even where the program is killed. Others cannot write meanwhile, but read
// what there was before.
//
//     pelmora::Transaction transaction(curves);
//     ...
//     transaction.commit();
class PELMORA_API Transaction {
 public:
  // Errors: as above; Error where the connection is in a transaction already.
  explicit Transaction(ConnectionPtr curves);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  // Errors: Error; the changes are then undone with this object.
  void commit();

 private:
  ConnectionPtr curves_;
  bool isOpen_ = true;
};

// What is read through this connection while the object lives is of one moment, and many small
// reads cost less. Keep it short: others cannot store changes meanwhile.
//
// Errors: as of Transaction.
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
