// SPDX-License-Identifier: MIT
#include "calibration/copying/row_portion.h"

namespace pelmora::calibration {

std::string RowPortion::where(const std::string& column) const {
  const std::string name = "[" + column + "]";
  if (owners_) {
    if (owners_->empty()) return " where False";
    std::string list;
    for (const std::int64_t owner : *owners_)
      list += (list.empty() ? "" : ", ") + std::to_string(owner);
    return " where " + name + " in (" + list + ")";
  }
  if (!after_ && !last_) return {};
  if (!after_) return " where " + name + "<=" + std::to_string(*last_) + " or " + name + " is null";
  const std::string behind = " where " + name + ">" + std::to_string(*after_);
  return last_ ? behind + " and " + name + "<=" + std::to_string(*last_) : behind;
}

}  // namespace pelmora::calibration
