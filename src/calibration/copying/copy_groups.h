// Which tables are copied together.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/curve_schema.h"

#include <string>
#include <vector>

namespace pelmora::calibration {

struct GroupTable {
  const SchemaTable* schema = nullptr;
  std::string owner;  // the column with the owner's id
};

// Tables whose rows belong to the rows of one of them, which is the first.
struct CopyGroup {
  std::string owner;  // the first table; empty: the rows belong to nothing
  std::vector<GroupTable> tables;
};

// Of a whole curve database. Groups come after those that they refer to.
[[nodiscard]] const std::vector<CopyGroup>& copyGroups();
// The group of that owner.
[[nodiscard]] const CopyGroup& copyGroup(const std::string& owner);

}  // namespace pelmora::calibration
