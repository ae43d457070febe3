// What changes have replaced or deleted, and how to bring it back.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/values.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::calibration {

// Rows as they were before a change, kept in our own tables beside those of the curve database.
struct HistoryEntry {
  HistoryEntryId id = 0;
  std::string command;    // "fit", "delete" ...
  std::string changedAt;  // UTC, ISO 8601: 2026-11-21T14:05:09Z
  std::string userName, version;
  std::string serial, series;  // series is empty for a whole calibration
  int calibration = 0;
  std::map<std::string, std::size_t> rows;  // kept, by table; no tables without rows
};

// What Database::remove() would delete.
struct Removal {
  Meter meter;
  std::string series;  // empty: the whole calibration
  std::int32_t seriesID = 0;
  std::map<std::string, std::size_t> rows;  // by table; no tables without rows
  std::uint64_t basis = 0;                  // fingerprint of these rows
};

// Empty: any.
struct HistoryFilter {
  std::string serial{}, series{};
  std::optional<int> calibration{};
  std::size_t newest = 0;  // at most this many entries; 0: all
};

struct HistoryPruning {
  std::optional<std::string> before{};  // ISO 8601, UTC: only entries that are older
  std::size_t keep = 0;                 // this many of the newest are always kept
};

struct RestoredTable {
  std::string name;
  std::size_t rowsBefore = 0, rowsNow = 0;
};

struct Restored {
  HistoryEntry entry;
  HistoryEntryId keptAs = 0;  // the entry of what the restored rows replaced
  std::vector<RestoredTable> tables;
};

}  // namespace pelmora::calibration
