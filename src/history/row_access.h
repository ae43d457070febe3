// Reading rows of a connection, and the statements that select them.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include "store/connection.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace pelmora::history {

using Ids = std::vector<std::int64_t>;

[[nodiscard]] PELMORA_API std::unique_ptr<Recordset> read(const ConnectionPtr& curves,
                                                          const std::string& statement);
// 0 and "" where the value is null or of another kind.
[[nodiscard]] PELMORA_API std::int64_t wholeOf(const Value& value);
[[nodiscard]] PELMORA_API std::string textOf(const Value& value);
// The first column of all rows, without nulls.
[[nodiscard]] PELMORA_API Ids idsOf(const ConnectionPtr& curves, const std::string& statement);
// The number that "Select COUNT(*) ..." delivers.
[[nodiscard]] PELMORA_API std::int64_t countOf(const ConnectionPtr& curves,
                                               const std::string& tableAndCondition);

// The condition "[key] IN (1, 2)"; for no ids one that no row meets.
[[nodiscard]] PELMORA_API std::string isIn(const std::string& key, const Ids& ids);
// The same with " where " before it.
[[nodiscard]] PELMORA_API std::string whereIn(const std::string& key, const Ids& ids);

}  // namespace pelmora::history
