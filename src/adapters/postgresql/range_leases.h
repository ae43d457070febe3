// Leasing a range without taking a turn to write and without waiting for other workers.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/range_leases.h"

namespace pelmora::postgres {

class PostgresSession;

// As the role in store/range_leases.h.
//
// Errors: Error. A lease that is given while the connection is lost ends by itself.
[[nodiscard]] std::optional<LeasedRange> leaseRange(PostgresSession& session, std::int64_t job,
                                                    const std::string& worker,
                                                    std::chrono::seconds time);
[[nodiscard]] bool extendLease(PostgresSession& session, const LeasedRange& range,
                               std::chrono::seconds time);
void limitTransaction(PostgresSession& session, std::chrono::seconds time);
[[nodiscard]] std::int64_t serverSeconds(PostgresSession& session);

}  // namespace pelmora::postgres
