// One job of a stand's export with its four series as a plain program stores it: split lines, kept
// statements, one transaction.
// SPDX-License-Identifier: MIT
#pragma once

#include "bench/plain_database.h"
#include "bench/plain_statement.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>
#include <tuple>
#include <vector>

namespace pelmora::bench {

// JobRecordID, V1 to V37.
using StandRow = std::array<double, 38>;

inline std::vector<StandRow> plainStandRows(const std::string& stand) {
  std::ifstream file(stand);
  std::string line;
  std::vector<StandRow> rows;
  std::getline(file, line);
  while (std::getline(file, line)) {
    StandRow& row = rows.emplace_back();
    const char* at = line.data();
    for (double& value : row) at = std::from_chars(at, line.data() + line.size(), value).ptr + 1;
  }
  return rows;
}

// The id of a row with this name, which is added where it is missing.
inline std::int64_t plainNamed(const PlainDatabase& database, const std::string& table,
                               const std::string& name) {
  PlainStatement find(database, "SELECT ID FROM " + table + " WHERE Name = ?");
  if (find.with(name).hasRow()) return find.whole(0);
  PlainStatement(database, "INSERT INTO " + table + " (Name) VALUES (?)").with(name).run();
  return database.lastId();
}

inline std::int64_t plainSetUp(const PlainDatabase& database, std::int64_t meter) {
  const std::int64_t fluid = plainNamed(database, "Fluids", "Oil");
  const std::int64_t person = plainNamed(database, "Operator", "Ada");
  PlainStatement find(database, "SELECT ID FROM CalSetup WHERE MeterID = ? AND FluidID = ?");
  if (find.with(meter, fluid).hasRow()) return find.whole(0);
  PlainStatement(database, "INSERT INTO CalSetup (MeterID, OperatorID, FluidID) VALUES (?, ?, ?)")
      .with(meter, person, fluid)
      .run();
  return database.lastId();
}

inline void plainImport(const std::string& curves, const std::string& stand) {
  const std::vector<StandRow> rows = plainStandRows(stand);
  const PlainDatabase database(curves);
  database.run("BEGIN IMMEDIATE");
  PlainStatement meter(database, "SELECT ID FROM meter WHERE SerialNumber = 'M1'");
  require(meter.hasRow(), "the meter");
  const std::int64_t meterId = meter.whole(0), setUp = plainSetUp(database, meterId);
  std::string columns = "CalSetupID, JobRecordID", marks = "?, ?";
  for (int i = 1; i <= 37; ++i) {
    columns += ", V" + std::to_string(i);
    marks += ", ?";
  }
  PlainStatement(database, "DELETE FROM CalDataPoint WHERE CalSetupID = ?").with(setUp).run();
  PlainStatement point(database,
                       "INSERT INTO CalDataPoint (" + columns + ") VALUES (" + marks + ")");
  for (const StandRow& row : rows)
    std::apply([&](const auto&... values) { point.with(setUp, values...).run(); }, row);
  PlainStatement find(database, "SELECT ID FROM series WHERE meterid = ? AND name = ?");
  PlainStatement remove(database, "DELETE FROM raw1 WHERE seriesID = ?");
  PlainStatement insert(database, "INSERT INTO raw1 VALUES (?, ?, ?)");
  for (const std::string name : {"Rotor A", "Rotor B", "Rotor Sum", "Ratio"}) {
    const bool isThere = find.with(meterId, name).hasRow();
    std::int64_t series = isThere ? find.whole(0) : 0;
    if (!isThere) {
      PlainStatement(database, "INSERT INTO series (meterid, name) VALUES (?, ?)")
          .with(meterId, name)
          .run();
      series = database.lastId();
    }
    remove.with(series).run();
    for (const StandRow& v : rows) {
      const double warmer = v[12] - 70, a = v[4] / v[3], b = v[21] / v[20], flow = v[2] / v[1];
      const double toRoshko = (1 + 0.0000192 * warmer) / v[5];
      const double roshko = (name == "Rotor A" ? a : name == "Rotor B" ? b : a + b) * toRoshko;
      const double strouhal = name == "Rotor A"     ? a / flow * (1 + 0.0000288 * warmer)
                              : name == "Rotor B"   ? b / flow * (1 + 0.0000288 * warmer)
                              : name == "Rotor Sum" ? a / b
                                                    : b / a;
      insert.with(series, roshko, strouhal).run();
    }
  }
  database.run("COMMIT");
}

}  // namespace pelmora::bench
