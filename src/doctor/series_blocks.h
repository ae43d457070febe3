// All series of a database, some at a time, so that memory does not grow with their number.
// SPDX-License-Identifier: MIT
#pragma once

#include "history/row_access.h"

#include <string>

namespace pelmora::doctor {

//     for (SeriesBlocks block(curves); block.next();)
//       read(curves, "Select ... where " + block.condition());
class SeriesBlocks {
 public:
  explicit SeriesBlocks(const ConnectionPtr& curves);
  // The next block; false after the last one.
  [[nodiscard]] bool next();
  // In rising order.
  [[nodiscard]] const history::Ids& ids() const { return ids_; }
  // "seriesID>5 AND seriesID<=205": the rows of these series in a table of points.
  [[nodiscard]] std::string condition() const;

 private:
  ConnectionPtr curves_;
  std::int64_t size_;  // most series of a block
  bool isFirst_ = true;
  std::int64_t after_ = 0;
  history::Ids ids_;
};

}  // namespace pelmora::doctor
