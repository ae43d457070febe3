// Whose turn it is to write.
//
// Whoever changes rows of a curve database first takes its turn, as the writers of a file do: an
// operation that reads, works things out and stores them never overwrites what another one has
// stored meanwhile. The server keeps the queue, in the order in which writers came, and gives the
// turn back at the end of a transaction however it ends. Readers never wait.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/patience.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>

namespace pelmora::postgres {

class WritingTurn {
 public:
  explicit WritingTurn(Patience patience) : patience_(std::move(patience)) {}

  [[nodiscard]] const Patience& patience() const { return patience_; }
  void setLimit(std::chrono::milliseconds limit) { patience_.limit = limit; }

  // The statement that lets those behind it wait for other programs' locks as long as may be.
  [[nodiscard]] std::string waitAsLongAsMayBe() const;
  // Calls `attempt` with the statement that lets those behind it wait briefly for other programs'
  // locks, again after each time-out of a lock until the patience ends.
  //
  // Errors: ServerError of the last attempt.
  void waitForLocks(const std::function<void(const std::string& waitBriefly)>& attempt) const;
  // Calls `attempt` with the statements that take the turn for the rest of the transaction, again
  // after each time-out of a lock until the patience ends.
  //
  // schema: the server's number of the schema with the tables.
  // Errors: ServerError of the last attempt.
  void wait(std::int64_t schema,
            const std::function<void(const std::string& takeTurn)>& attempt) const;

 private:
  [[nodiscard]] bool goesOnAfter(std::chrono::steady_clock::time_point begin) const;

  Patience patience_;
};

}  // namespace pelmora::postgres
