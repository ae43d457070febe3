// Changes of a database that are made together or not at all.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

namespace pelmora {

// A connection that can hold several statements together fills this role too.
class PELMORA_API Transactions {
 public:
  virtual ~Transactions() = default;
  // Takes the lock for writing at once. Errors: Error, genericFailure if another user has it.
  virtual void begin() = 0;
  // What is read from now on is of one moment, until rollback(). Others may change rows meanwhile,
  // but not end their transactions.
  virtual void beginReading() = 0;
  // Whether one of either kind has begun and not ended.
  [[nodiscard]] virtual bool hasTransaction() const noexcept = 0;
  // Errors: Error; the transaction is then still open, or undone already.
  virtual void commit() = 0;
  // Does nothing where no transaction is open.
  virtual void rollback() noexcept = 0;
};

}  // namespace pelmora
