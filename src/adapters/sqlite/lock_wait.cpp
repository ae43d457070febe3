// SPDX-License-Identifier: MIT
#include "adapters/sqlite/lock_wait.h"

#include <sqlite3.h>

#include <algorithm>
#include <thread>

namespace pelmora::sqlite {

namespace {

using namespace std::chrono_literals;
using std::chrono::microseconds;

// Short enough for a lock that is held while a disk writes.
constexpr microseconds shortest = 2ms;

}  // namespace

microseconds pauseAfter(microseconds waited, microseconds limit) {
  microseconds pause = shortest;
  if (waited < 500ms) {
    pause = 25ms;
  } else if (waited < 2s) {
    pause = 12ms;
  } else if (waited < 8s) {
    pause = 5ms;
  }
  return std::clamp((limit - waited) / 20, shortest, pause);
}

microseconds LockWait::scattered(microseconds pause) {
  if (!random_) random_.emplace(std::random_device()());
  return std::uniform_int_distribution<microseconds::rep>(pause.count() / 2,
                                                          pause.count() * 3 / 2)(*random_) *
         1us;
}

void LockWait::handle(sqlite3* database) {
  database_ = database;
  sqlite3_busy_handler(database, call, this);
}

// No exception may cross SQLite.
int LockWait::call(void* self, int count) noexcept {
  try {
    return static_cast<LockWait*>(self)->wait(count == 0) ? 1 : 0;
  } catch (...) {
    return 0;
  }
}

bool LockWait::wait(bool isFirst) {
  using std::chrono::duration_cast;
  const auto now = std::chrono::steady_clock::now();
  if (isFirst) begin_ = now;
  const auto waited = duration_cast<microseconds>(now - begin_);
  if (waited >= patience_.limit) return false;
  if (patience_.goesOn && !patience_.goesOn(duration_cast<std::chrono::milliseconds>(waited))) {
    return false;
  }
  // A writer whose commit waits for readers keeps everybody out: it takes the first moment.
  const bool isCommit = sqlite3_txn_state(database_, nullptr) == SQLITE_TXN_WRITE;
  const microseconds pause =
      scattered(isFirst || isCommit ? shortest : pauseAfter(waited, patience_.limit));
  std::this_thread::sleep_for(
      std::min(pause, duration_cast<microseconds>(patience_.limit - waited)));
  return true;
}

}  // namespace pelmora::sqlite
