// What the raw tables and the tables of excluded points hold.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"
#include "tests/calibration/service_fixture.h"

#include <pelmora/own_tables.h>

#include <cstdio>
#include <string>
#include <vector>

namespace pelmora::calibration::test {

// Every row of the raw tables and of the excluded points, bit by bit and in order.
inline std::string everyRow(const Database& db) {
  std::string text;
  for (const std::string table : {"raw1", "raw2", "raw3", "raw4", "pelmora_excluded1",
                                  "pelmora_excluded2", "pelmora_excluded3", "pelmora_excluded4"}) {
    text += table + "\n";
    if (!hasTable(db.connection(), table)) continue;
    const auto rows =
        db.connection()->openRecordset("Select * from [" + table + "] ORDER BY seriesID",
                                       CursorType::forwardOnly, LockType::optimistic);
    for (; !rows->atEnd(); rows->moveNext()) {
      for (std::size_t i = 0; i < rows->fieldCount(); ++i) {
        const Value& value = rows->value(i);
        char number[40];
        if (const auto* real = std::get_if<double>(&value))
          std::snprintf(number, sizeof number, "%a", *real);
        else if (const auto* whole = std::get_if<std::int64_t>(&value))
          std::snprintf(number, sizeof number, "i%lld", static_cast<long long>(*whole));
        else
          std::snprintf(number, sizeof number, "-");
        const auto* words = std::get_if<std::string>(&value);
        text += (words != nullptr ? *words : std::string(number)) + "|";
      }
      text += "\n";
    }
  }
  return text;
}

inline std::vector<std::size_t> excludedNumbers(const StoredSeries& series, int part = 1) {
  std::vector<std::size_t> numbers;
  for (const ExcludedPoint& point : series.excluded) {
    if (point.part == part) numbers.push_back(point.number);
  }
  return numbers;
}

// A series of two raw parts.
class Exclusions : public ServiceTest {
 protected:
  Exclusions() : db_(lab()), meter_(db_.registerMeter("M1")) {
    db_.storeRaw(meter_, "K", 1, points_);
    db_.storeRaw(meter_, "K", 2, smoothPoints(6, 900, 3000));
  }
  [[nodiscard]] StoredSeries stored(const std::string& name = "K") const {
    return db_.series(meter_, name);
  }

  PointArray points_ = smoothPoints(12);
  Database db_;
  Meter meter_;
};

}  // namespace pelmora::calibration::test
