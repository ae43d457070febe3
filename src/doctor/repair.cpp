// SPDX-License-Identifier: MIT
#include "doctor/repair.h"

#include "doctor/checks.h"
#include "doctor/orphans.h"
#include "history/deleting.h"

namespace pelmora::doctor {

std::vector<std::int64_t> repair(const ConnectionPtr& curves, history::KeptChange& change) {
  history::createHistoryTables(curves);
  for (const TableIndex& index : neededIndexes(curves)) {
    if (!hasIndex(curves, index.Table, index.Columns)) createIndex(curves, index);
  }
  std::vector<std::int64_t> entries;
  for (const OrphanGroup& group : orphanGroups(curves)) {
    const auto outcome = history::removeKept(curves, change, group.Rows);
    if (outcome.KeptAs != 0) entries.push_back(outcome.KeptAs);
  }
  return entries;
}

}  // namespace pelmora::doctor
