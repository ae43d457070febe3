// SPDX-License-Identifier: MIT
#include "adapters/postgresql/writing_turn.h"

#include "adapters/postgresql/client.h"
#include "adapters/postgresql/server_error.h"

#include <algorithm>
#include <limits>

namespace pelmora::postgres {

namespace {

using std::chrono::milliseconds;

// Tells these locks from those of other programs: "PELM".
constexpr const char* lockClass = "1346718797";
// A wait is cut so that the one who waits can be asked whether it goes on. Each time the place in
// the queue is lost: long enough for twenty writers before it.
constexpr milliseconds longestAttempt{500};

std::string takeTurn(std::int64_t schema, milliseconds limit) {
  return "SET LOCAL lock_timeout TO " + std::to_string(limit.count()) +
         "; SELECT pg_advisory_xact_lock(" + lockClass + ", (" + std::to_string(schema) +
         " & 2147483647)::integer); ";
}

}  // namespace

std::string WritingTurn::waitAsLongAsMayBe() const {
  // 0 would mean without end to the server, as would more than its numbers hold.
  const milliseconds limit =
      std::clamp(patience_.limit, milliseconds(1), milliseconds(std::numeric_limits<int>::max()));
  return "SET LOCAL lock_timeout TO " + std::to_string(limit.count()) + "; ";
}

bool WritingTurn::goesOnAfter(std::chrono::steady_clock::time_point begin) const {
  if (!patience_.goesOn) return true;
  return patience_.goesOn(
      std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - begin));
}

void WritingTurn::wait(std::int64_t schema,
                       const std::function<void(const std::string&)>& attempt) const {
  const auto begin = std::chrono::steady_clock::now();
  for (;;) {
    const auto waited =
        std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - begin);
    const milliseconds limit =
        std::clamp(patience_.limit - waited, milliseconds(1), longestAttempt);
    try {
      attempt(takeTurn(schema, limit));
      return;
    } catch (const ServerError& error) {
      const bool isOver = waited + limit >= patience_.limit;
      if (!isLockTimeout(error) || isOver || !goesOnAfter(begin)) throw;
    }
  }
}

}  // namespace pelmora::postgres
