// A change of stored data together with a copy of what it replaces.
// SPDX-License-Identifier: MIT
#pragma once

#include "history/scope.h"

#include <pelmora/export.h>
#include <pelmora/own_tables.h>

#include <cstdint>
#include <string>
#include <vector>

namespace pelmora::history {

// Who changes what.
struct ChangeNote {
  std::string Command;    // "fit", "delete" ...
  std::string ChangedAt;  // UTC, ISO 8601: 2026-11-21T14:05:09Z
  std::string UserName, Version;

  bool operator==(const ChangeNote&) const = default;
};

// A series for an entry of the history.
struct KeptSeries {
  std::int32_t MeterID = 0, SeriesID = 0;
};

// Begins a transaction of the connection. What keep() copies and what is changed afterwards is
// stored by commit() together; without it, also where the program is killed, nothing of either is.
//
//     KeptChange change(curves, note);
//     change.keep(fittedCurve(meterID, seriesID));
//     ...                                     // changes through the same connection
//     change.commit();
class PELMORA_API KeptChange {
 public:
  // Errors: Error, 0x80004005 if another user writes.
  KeptChange(const ConnectionPtr& curves, ChangeNote note);

  // Copies the rows of the scope as they are now into an entry of their own and returns its id; 0,
  // and no entry, where there are none or this change has kept them before. Makes the history's
  // tables where they are missing.
  std::int64_t keep(const Scope& scope);
  // Copies the rows of many series into entries of their own, in few statements: all rows that
  // `tables` have of each. `series` are those that have any, and that this change has not kept.
  // Their entries, in the same order.
  std::vector<std::int64_t> keepEach(const std::vector<KeptSeries>& series,
                                     const std::vector<std::string>& tables);
  void commit() { transaction_.commit(); }

 private:
  ConnectionPtr curves_;
  ChangeNote note_;
  std::vector<Scope> kept_;
  bool hasTables_ = false;  // inside the transaction nobody else takes them away
  Transaction transaction_;
};

}  // namespace pelmora::history
