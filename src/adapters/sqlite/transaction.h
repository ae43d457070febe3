// A write transaction that is undone unless it is committed.
// SPDX-License-Identifier: MIT
#pragma once

namespace pelmora::sqlite {

class DatabaseHandle;

// Inside a transaction that is open already it is a part of that one, which can be undone alone.
class Transaction {
 public:
  // Errors: Error, genericFailure if another user writes.
  explicit Transaction(const DatabaseHandle& database);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  // Errors: Error; the transaction is then undone with this object.
  void commit();

 private:
  const DatabaseHandle& database_;
  bool isPart_;
  bool isOpen_ = true;
};

}  // namespace pelmora::sqlite
