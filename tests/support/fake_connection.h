// A database made of scripted answers: statement in, rows out, every call written down.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"
#include "tests/support/journal.h"

#include <pelmora/error.h>
#include <pelmora/types.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace pelmora::test {

struct FakeRows {
  std::vector<std::string> fields;
  std::vector<std::vector<Value>> rows;
};

// Points as rows of the fields roshko and strouhal.
[[nodiscard]] FakeRows pointRows(const PointArray& points);

// A record set over these rows that belongs to no database; rows cannot be added.
[[nodiscard]] std::unique_ptr<Recordset> recordsetOf(FakeRows rows);

// Journal lines: "open", "close", "execute: sql", "read: sql", "batch: sql" and "single: sql" for record sets by
// their cursor and lock, "add: field=value ..." and "send" for added rows.
//
// A statement that was not scripted to be read fails, so that no test passes by an unknown statement.
class FakeDatabase {
 public:
  explicit FakeDatabase(Journal& into) : journal(into) {}

  void answer(const std::string& statement, FakeRows rows) { answers[statement] = std::move(rows); }
  // Runs at the statement (or at "open", "send"); may throw.
  void at(const std::string& what, std::function<void()> hook) { hooks[what] = std::move(hook); }
  void failAt(const std::string& what, const std::string& description) {
    at(what, [description] { throw Error(-1, "fake", description); });
  }
  [[nodiscard]] ConnectionPtr connection();

  Journal& journal;
  std::map<std::string, FakeRows> answers;
  std::map<std::string, std::function<void()>> hooks;
  int openConnections = 0;
  int openRecordsets = 0;

  void run(const std::string& what) const;
};

}  // namespace pelmora::test
