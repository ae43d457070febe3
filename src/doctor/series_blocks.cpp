// SPDX-License-Identifier: MIT
#include "doctor/series_blocks.h"

#include "store/curve_schema.h"

#include <pelmora/own_tables.h>

namespace pelmora::doctor {
namespace {

// Some thousands of points.
constexpr const char* blockSize = "200";

}  // namespace

SeriesBlocks::SeriesBlocks(const ConnectionPtr& curves) : curves_(curves) {
  for (const char* table : pointTables)
    isIndexed_ = isIndexed_ && hasIndex(curves, table, {"seriesID"});
}

bool SeriesBlocks::next() {
  if (!isFirst_ && (ids_.empty() || !isIndexed_)) return false;
  std::string statement =
      "Select " + (isIndexed_ ? std::string("TOP ") + blockSize + " " : "") + "ID from series";
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
