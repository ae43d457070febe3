// The indexes of the open database.
// SPDX-License-Identifier: MIT
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace pelmora::postgres {

class PostgresSession;

// Whether an index of the table, or its key, starts with these columns in this order.
// table: as the database spells it. Errors: Error.
[[nodiscard]] bool hasIndexOn(PostgresSession& session, std::string_view table,
                              std::span<const std::string> columns);

}  // namespace pelmora::postgres
