// Whether anybody else has changed the database since a series was read.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"
#include "store/foreign_changes.h"

#include <atomic>
#include <cstdint>
#include <optional>

namespace pelmora::calibration {

// Where the engine counts what others store, what was read need not be read a second time before it
// is replaced.
class ForeignWatch {
 public:
  // Errors: Error, genericFailure if the database is locked.
  explicit ForeignWatch(Connection& writer) : counter_(dynamic_cast<ForeignChanges*>(&writer)) {
    if (counter_ != nullptr) version_ = counter_->foreignChanges();
  }

  // For any thread, before it reads.
  [[nodiscard]] std::uint64_t noticed() const { return noticed_; }
  // In a transaction of the writer. What was read when noticed() was what it is behind this call
  // has been changed by nobody else since. Errors: as for the constructor.
  void look() {
    const auto before = version_;
    if (counter_ != nullptr) version_ = counter_->foreignChanges();
    if (!version_ || version_ != before) ++noticed_;
  }

 private:
  ForeignChanges* counter_;  // null if the engine does not count
  std::optional<std::int64_t> version_;
  std::atomic<std::uint64_t> noticed_ = 0;
};

}  // namespace pelmora::calibration
