// SPDX-License-Identifier: MIT
#include "adapters/postgresql/range_leases.h"

#include "adapters/postgresql/postgres_session.h"
#include "adapters/postgresql/statement_names.h"
#include "store/curve_schema.h"

namespace pelmora::postgres {

namespace {

constexpr const char* seconds = "extract(epoch FROM clock_timestamp())::bigint";

std::string jobHasState(std::int64_t job, const char* states) {
  return "EXISTS (SELECT FROM " + quotedName(fleetJobTable) +
         " AS j WHERE j.\"ID\" = " + std::to_string(job) + " AND j.\"State\" IN (" + states + "))";
}

// Rows that other workers hold are passed over. States: those of RangeState and FleetState.
std::string leaseStatement(std::int64_t job, const std::string& worker, std::chrono::seconds time,
                           const std::string& condition) {
  const std::string ranges = quotedName(fleetRangeTable);
  return "UPDATE " + ranges +
         " SET \"State\" = 1, \"Token\" = \"Token\" + 1, \"Worker\" = " + quotedText(worker) +
         ", \"LeaseEnds\" = " + seconds + " + " + std::to_string(time.count()) +
         " WHERE \"ID\" = (SELECT r.\"ID\" FROM " + ranges +
         " AS r WHERE r.\"JobID\" = " + std::to_string(job) + " AND " + condition + " AND " +
         jobHasState(job, "0") +
         " ORDER BY r.\"ID\" LIMIT 1 FOR UPDATE OF r SKIP LOCKED) RETURNING \"ID\", \"Token\", "
         "\"AfterID\", \"LastID\"";
}

std::int64_t wholeAt(const ServerRows& rows, std::size_t column) {
  const sql::CellView cell = rows.rows.cell(0, column);
  const auto* number = std::get_if<std::int64_t>(&cell);
  return number == nullptr ? 0 : *number;
}

}  // namespace

std::optional<LeasedRange> leaseRange(PostgresSession& session, std::int64_t job,
                                      const std::string& worker, std::chrono::seconds time) {
  const std::string isOver = "r.\"State\" = 1 AND r.\"LeaseEnds\" < " + std::string(seconds);
  for (const std::string& condition : {std::string("r.\"State\" = 0"), isOver}) {
    const ServerRows rows = session.writeWithoutTurn(leaseStatement(job, worker, time, condition));
    if (rows.rows.rows() == 0) continue;
    return LeasedRange{.id = wholeAt(rows, 0),
                       .job = job,
                       .token = wholeAt(rows, 1),
                       .after = wholeAt(rows, 2),
                       .last = wholeAt(rows, 3)};
  }
  return std::nullopt;
}

bool extendLease(PostgresSession& session, const LeasedRange& range, std::chrono::seconds time) {
  const ServerRows rows = session.writeWithoutTurn(
      "UPDATE " + quotedName(fleetRangeTable) + " SET \"LeaseEnds\" = " + seconds + " + " +
      std::to_string(time.count()) + " WHERE \"State\" = 1 AND \"ID\" = " +
      std::to_string(range.id) + " AND \"Token\" = " + std::to_string(range.token) + " AND " +
      jobHasState(range.job, "0, 1") + " RETURNING \"ID\"");
  return rows.rows.rows() == 1;
}

// A worker that is frozen while it sends rows is inside a statement, which may also be a long one.
void limitTransaction(PostgresSession& session, std::chrono::seconds time) {
  const auto limit = [](std::chrono::seconds most) {
    return " TO '" + std::to_string(most.count()) + "s'";
  };
  session.write("SET LOCAL idle_in_transaction_session_timeout" + limit(time) +
                "; SET LOCAL statement_timeout" + limit(10 * time));
}

std::int64_t serverSeconds(PostgresSession& session) {
  return wholeAt(session.read(std::string("SELECT ") + seconds), 0);
}

}  // namespace pelmora::postgres
