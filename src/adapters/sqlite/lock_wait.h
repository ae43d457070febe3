// Waiting for a lock that another user of the database has.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/patience.h>

#include <chrono>
#include <optional>
#include <random>
#include <utility>

struct sqlite3;

namespace pelmora::sqlite {

// How long to sleep before the next look, after `waited` of `limit`: the longer the wait has
// lasted, and the nearer its end, the shorter. Of several who wait, the one who looks most often
// finds the lock free: the oldest, or who would be refused next.
[[nodiscard]] std::chrono::microseconds pauseAfter(std::chrono::microseconds waited,
                                                   std::chrono::microseconds limit);

// The busy handler of a connection. It must outlive the connection, at one place.
class LockWait {
 public:
  explicit LockWait(Patience patience) : patience_(std::move(patience)) {}
  LockWait(const LockWait&) = delete;
  LockWait& operator=(const LockWait&) = delete;

  void handle(sqlite3* database);
  void setPatience(Patience patience) { patience_ = std::move(patience); }
  void setLimit(std::chrono::milliseconds limit) { patience_.limit = limit; }

 private:
  static int call(void* self, int count) noexcept;
  bool wait(bool isFirst);
  // Several who came at the same moment do not look at the same moment forever.
  std::chrono::microseconds scattered(std::chrono::microseconds pause);

  Patience patience_;
  sqlite3* database_ = nullptr;
  std::chrono::steady_clock::time_point begin_;
  std::optional<std::minstd_rand> random_;  // from the first wait on
};

}  // namespace pelmora::sqlite
