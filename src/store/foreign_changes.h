// Noticing what other connections change.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <cstdint>

namespace pelmora {

// A connection whose engine counts the changes that others have made fills this role too.
class PELMORA_API ForeignChanges {
 public:
  virtual ~ForeignChanges() = default;
  // A number that stays the same for as long as no other connection, in this process or another
  // one, has stored anything in the database; those of two connections say nothing about each
  // other. Errors: Error, genericFailure if the database is locked.
  [[nodiscard]] virtual std::int64_t foreignChanges() = 0;
};

}  // namespace pelmora
