// SPDX-License-Identifier: MIT
#include "doctor/series_blocks.h"

#include "store/curve_schema.h"

#include <pelmora/own_tables.h>

#include <algorithm>

namespace pelmora::doctor {
namespace {

// Some thousands of points where an index finds the rows of a block.
constexpr std::int64_t indexedBlock = 200;
// Without it each block reads whole tables: as few as memory allows.
constexpr std::int64_t mostPoints = 200'000;

std::int64_t blockWithoutIndex(const ConnectionPtr& curves) {
  std::int64_t points = 0;
  for (const char* table : pointTables)
    points += history::countOf(curves, "[" + std::string(table) + "]");
  const std::int64_t blocks = points / mostPoints + 1;
  return std::max(indexedBlock, history::countOf(curves, "series") / blocks);
}

}  // namespace

SeriesBlocks::SeriesBlocks(const ConnectionPtr& curves) : curves_(curves) {
  bool isIndexed = true;
  for (const char* table : pointTables)
    isIndexed = isIndexed && hasIndex(curves, table, {"seriesID"});
  size_ = isIndexed ? indexedBlock : blockWithoutIndex(curves);
}

bool SeriesBlocks::next() {
  if (!isFirst_ && ids_.empty()) return false;
  std::string statement = "Select TOP " + std::to_string(size_) + " ID from series";
  if (!isFirst_) statement += " where ID>" + std::to_string(ids_.back());
  if (!isFirst_) after_ = ids_.back();
  ids_ = history::idsOf(curves_, statement + " ORDER BY ID");
  if (isFirst_ && !ids_.empty()) after_ = ids_.front() - 1;
  isFirst_ = false;
  return !ids_.empty();
}

std::string SeriesBlocks::condition() const {
  return "seriesID>" + std::to_string(after_) + " AND seriesID<=" + std::to_string(ids_.back());
}

}  // namespace pelmora::doctor
