// What a damaged curve database still holds.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pelmora {

// One kind of damage to the file.
struct IntegrityProblem {
  std::string Text;       // for people: "Index raw1_series does not agree with its table"
  std::size_t Count = 0;  // how often it was found
  std::string Example;    // the engine's own words, once

  bool operator==(const IntegrityProblem&) const = default;
};

struct SalvagedTable {
  std::string Name;
  std::uint64_t Read = 0;       // rows that can be read, all of them as they were stored
  std::uint64_t FromIndex = 0;  // of these, rows that an index alone still holds
  // Rows that cannot be read; nothing if their number is not known.
  std::optional<std::uint64_t> Lost;
  std::uint64_t KnownLost = 0;  // at least this many
  [[nodiscard]] bool isWhole() const { return Lost == 0U; }

  bool operator==(const SalvagedTable&) const = default;
};

// Rows of one series in one table, where they are not known to be whole.
struct SalvagedPart {
  std::string Table;
  std::uint64_t Read = 0;
  std::optional<std::uint64_t> Lost;  // nothing: not known

  bool operator==(const SalvagedPart&) const = default;
};

struct SalvagedSeries {
  std::int64_t SeriesID = 0;
  std::string Name, SerialNumber;  // empty where the row of the series or the meter is lost
  std::optional<std::int64_t> ReCalID;
  std::vector<SalvagedPart> Parts;
  [[nodiscard]] bool isKnownIncomplete() const {
    for (const SalvagedPart& part : Parts) {
      if (part.Lost) return true;
    }
    return false;
  }
};

// How many series of a calibration are whole, known to be incomplete, or neither.
struct SalvagedMeter {
  std::string SerialNumber;
  std::int64_t ReCalID = 0;
  std::uint64_t WholeSeries = 0, IncompleteSeries = 0, UncertainSeries = 0;
};

struct SalvageReport {
  std::vector<std::string> Damage;  // for people: "Page 7 of table raw1 is damaged"
  std::vector<SalvagedTable> Tables;
  std::vector<SalvagedMeter> Meters;
  std::vector<SalvagedSeries> Series;  // those that are not known to be whole
  std::vector<std::string> LostNames;  // meters and series of which only the name is left
  std::uint64_t StrayPages = 0;        // of tables of which not even the name is left
  std::uint64_t OrphanedRows = 0;      // copied, although their series or meter is lost
  std::vector<std::string> Others;     // views, triggers, tables that are not copied

  // Whether nothing is missing, as far as the file can tell.
  [[nodiscard]] bool isWhole() const;
};

inline bool SalvageReport::isWhole() const {
  for (const SalvagedTable& table : Tables) {
    if (!table.isWhole()) return false;
  }
  return Series.empty() && LostNames.empty() && StrayPages == 0;
}

}  // namespace pelmora
