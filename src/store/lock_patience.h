// How long the statements of a connection wait for others.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <chrono>

namespace pelmora {

// A connection that waits for locks itself fills this role too.
class PELMORA_API LockPatience {
 public:
  virtual ~LockPatience() = default;
  [[nodiscard]] virtual std::chrono::milliseconds lockPatience() const = 0;
  // From now on; also where the connection is opened later.
  virtual void setLockPatience(std::chrono::milliseconds limit) = 0;
};

}  // namespace pelmora
