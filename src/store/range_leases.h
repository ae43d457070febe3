// Leasing ranges of a fleet's job, for engines that many workers reach at the same time.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace pelmora {

struct LeasedRange {
  std::int64_t id = 0, job = 0, token = 0;
  std::int64_t after = 0, last = 0;  // ids of series: those above `after`, up to `last`
};

// A connection whose engine leases a range without waiting for other workers fills this role too.
class PELMORA_API RangeLeases {
 public:
  virtual ~RangeLeases() = default;
  // The first range that is free or, without one, whose lease has ended; nothing if there is none
  // or the job does not run. Each lease of a range has a higher token.
  [[nodiscard]] virtual std::optional<LeasedRange> leaseRange(std::int64_t job,
                                                              const std::string& worker,
                                                              std::chrono::seconds time) = 0;
  // From now on for so long. False if the lease is no longer the caller's or the job was cancelled.
  [[nodiscard]] virtual bool extendLease(const LeasedRange& range, std::chrono::seconds time) = 0;
  // Undoes the transaction that is open, and gives its turn to write back, when its worker gives no
  // sign for so long.
  virtual void limitTransaction(std::chrono::seconds time) = 0;
  // By the engine's clock: those of the workers' machines may differ.
  [[nodiscard]] virtual std::int64_t secondsSince1970() = 0;
};

}  // namespace pelmora
