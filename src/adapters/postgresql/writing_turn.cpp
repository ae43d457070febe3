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

std::string waitUpTo(milliseconds limit) {
  return "SET LOCAL lock_timeout TO " + std::to_string(limit.count()) + "; ";
}

}  // namespace

std::string WritingTurn::waitAsLongAsMayBe() const {
  // 0 would mean without end to the server, as would more than its numbers hold.
  const milliseconds limit =
      std::clamp(patience_.limit, milliseconds(1), milliseconds(std::numeric_limits<int>::max()));
  return waitUpTo(limit);
}

bool WritingTurn::goesOnAfter(std::chrono::steady_clock::time_point begin) const {
  if (!patience_.goesOn) return true;
  return patience_.goesOn(
      std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - begin));
}

void WritingTurn::waitForLocks(const std::function<void(const std::string&)>& attempt) const {
  const auto begin = std::chrono::steady_clock::now();
  for (;;) {
    const auto waited =
        std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - begin);
    const milliseconds limit =
        std::clamp(patience_.limit - waited, milliseconds(1), longestAttempt);
    try {
      attempt(waitUpTo(limit));
      return;
    } catch (const ServerError& error) {
      const bool isOver = waited + limit >= patience_.limit;
      if (!isLockTimeout(error) || isOver || !goesOnAfter(begin)) throw;
    }
  }
}

void WritingTurn::wait(std::int64_t schema,
                       const std::function<void(const std::string&)>& attempt) const {
  const std::string turn = std::string("SELECT pg_advisory_xact_lock(") + lockClass + ", (" +
                           std::to_string(schema) + " & 2147483647)::integer); ";
  waitForLocks([&](const std::string& waitBriefly) { attempt(waitBriefly + turn); });
}

}  // namespace pelmora::postgres
