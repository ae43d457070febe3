// What the history holds: its entries, what each keeps, and taking old ones out.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include "history/kept_change.h"

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::history {

struct Entry {
  std::int64_t ID = 0;
  ChangeNote Note;
  std::string SerialNumber, SeriesName;  // SeriesName is empty for a whole calibration
  std::int32_t ReCalID = 0;
  Scope Kept;
  std::map<std::string, std::size_t> Rows;  // kept, by table; no tables without rows

  [[nodiscard]] PELMORA_API std::size_t rowsOf(const std::string& table) const;
};

struct EntryFilter {
  std::string SerialNumber, SeriesName;  // empty: any
  std::optional<std::int32_t> ReCalID;
  std::size_t Newest = 0;  // at most this many entries; 0: all
};

using EntryVisitor = std::function<void(const Entry&)>;

// Calls `visit` with each entry, from the newest to the oldest; with none if the database has no
// history. Only some are in memory at a time. With a series, entries of whole calibrations count
// the rows of that series alone. Entries are certain to be of one moment only in a transaction.
PELMORA_API void visitEntries(const ConnectionPtr& curves, const EntryFilter& filter,
                              const EntryVisitor& visit);
// All of them.
[[nodiscard]] PELMORA_API std::vector<Entry> entries(const ConnectionPtr& curves,
                                                     const EntryFilter& filter = {});

// Nothing if there is no such entry.
[[nodiscard]] PELMORA_API std::optional<Entry> findEntry(const ConnectionPtr& curves,
                                                         std::int64_t entryID);

struct Pruning {
  std::optional<std::string> Before;  // ISO 8601, UTC: only entries that are older
  std::size_t Keep = 0;               // this many of the newest always stay
};

// The entries that `pruning` takes out, from the newest to the oldest.
[[nodiscard]] PELMORA_API std::vector<Entry> prunable(const ConnectionPtr& curves,
                                                      const Pruning& pruning);
// Removes an entry with its rows; begin a transaction first. This is not kept anywhere.
PELMORA_API void removeEntry(const ConnectionPtr& curves, std::int64_t entryID);

}  // namespace pelmora::history
