// A curve database with one meter, two calibrations and their series, for the tests of what is
// kept. SPDX-License-Identifier: MIT
#pragma once

#include "history/deleting.h"
#include "history/entries.h"
#include "history/kept_change.h"
#include "history/restoring.h"
#include "tests/support/curve_file.h"
#include "tests/support/plain_sqlite.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace pelmora::test {

// All rows of a table as texts, in the order in which they are read.
using Rows = std::vector<std::string>;

class HistoryTest : public testing::Test {
 protected:
  HistoryTest() {
    PlainSqlite sqlite(curves.path);
    sqlite.run("BEGIN");
    for (const std::string statement :
         {"Insert into meter (SerialNumber, SerialNumberAdjusted, ReCalID) VALUES ('M1', 'M1a', 0)",
          "Insert into meter (SerialNumber, SerialNumberAdjusted, ReCalID) VALUES ('M1', 'M1b', 1)",
          "Insert into series (name, meterid) VALUES ('Rotor A', 1)",
          "Insert into series (name, meterid) VALUES ('Rotor B', 1)",
          "Insert into series (name, meterid) VALUES ('Rotor A', 2)",
          "Insert into CalSetup (MeterID, Stand, FluidID) VALUES (1, 3, 1)",
          "Insert into CalDataPoint (CalSetupID, JobRecordID, V1) VALUES (1, '0017', 0.1)",
          "Insert into CalDataPoint (CalSetupID, JobRecordID, V37) VALUES (1, 17, -2.5)",
          "Insert into DataFitResults (seriesID, summary) VALUES (1, 'it''s; a \"report\"')"}) {
      sqlite.run(statement);
    }
    for (const char* table : {"raw1", "raw2", "merge", "curve"}) {
      for (const char* values : {"(1, 3.0000000000000004, 1e300)", "(1, 2, -5e-324)", "(1, 2, 7)",
                                 "(2, 9, 9)", "(3, 8, 8)"}) {
        sqlite.run("Insert into " + std::string(table) + " (seriesID, Roshko, Strouhal) VALUES " +
                   values);
      }
    }
    sqlite.run("COMMIT");
  }

  [[nodiscard]] Rows rows(const std::string& table) const {
    Rows list;
    for (const auto set = curves.select("Select * from " + table); !set->atEnd(); set->moveNext()) {
      std::string row;
      for (std::size_t i = 0; i < set->fieldCount(); ++i) row += textOf(set->value(i)) + "|";
      list.push_back(row);
    }
    return list;
  }
  // Every given table; rows sorted, because those that come back stand behind the rows of others.
  [[nodiscard]] std::map<std::string, Rows> everything() const {
    std::map<std::string, Rows> all;
    for (const history::KeptTable& table : history::keptTables()) {
      if (!hasTable(curves.connection, table.Name)) continue;
      Rows& list = all[table.Name] = rows(table.Name);
      std::sort(list.begin(), list.end());
    }
    return all;
  }

  static history::ChangeNote note(const std::string& command,
                                  const std::string& at = "2026-01-02T03:04:05Z") {
    return {command, at, "ada", "1.2.3"};
  }
  // Keeps the scope, runs statements and stores both.
  std::int64_t change(const std::string& command, const history::Scope& scope,
                      const std::vector<std::string>& statements,
                      const std::string& at = "2026-01-02T03:04:05Z") const {
    history::KeptChange kept(curves.connection, note(command, at));
    const std::int64_t id = kept.keep(scope);
    for (const std::string& statement : statements) curves.execute(statement);
    kept.commit();
    return id;
  }
  std::int64_t removed(const history::Scope& scope) const {
    history::KeptChange kept(curves.connection, note("delete"));
    const auto outcome = history::removeKept(curves.connection, kept, scope);
    kept.commit();
    return outcome.KeptAs;
  }
  history::RestoreOutcome restored(std::int64_t id) const {
    history::KeptChange kept(curves.connection, note("restore"));
    auto outcome = history::restore(curves.connection, kept, id);
    kept.commit();
    return outcome;
  }

  CurveFile curves;

 private:
  static std::string textOf(const Value& value) {
    if (const auto* whole = std::get_if<std::int64_t>(&value)) return "i" + std::to_string(*whole);
    if (const auto* real = std::get_if<double>(&value)) {
      char text[40];
      std::snprintf(text, sizeof text, "r%a", *real);  // every bit
      return text;
    }
    const auto* text = std::get_if<std::string>(&value);
    return text == nullptr ? "null" : "t" + *text;
  }
};

}  // namespace pelmora::test
