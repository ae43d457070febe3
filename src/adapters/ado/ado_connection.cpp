// SPDX-License-Identifier: MIT
#include "adapters/ado/ado_connection.h"

#include "adapters/ado/ado_recordset.h"
#include "adapters/ado/late_bound.h"
#include "base/run_time_error.h"
#include "store/connection.h"
#include "store/transactions.h"

#include <utility>

namespace pelmora {
namespace ado {
namespace {

constexpr LONG clientSide = 3;
constexpr LONG unspecifiedOption = -1;
constexpr LONG openState = 1;

// Transactions are the provider's: one for writing takes the lock with its first change, and what
// others change is seen as the connection's isolation level says.
class AdoConnection : public Connection, public Transactions {
 public:
  explicit AdoConnection(LateBound connection) : connection_(std::move(connection)) {
    connection_.isPartOf(connection_);
  }

  void open() override {
    const std::string none;
    connection_.call(L"Open",
                     {Variant(none), Variant(none), Variant(none), Variant(unspecifiedOption)});
  }
  [[nodiscard]] bool isOpen() const override {
    return (LateBound(connection_).numberProperty(L"State") & openState) != 0;
  }
  void close() override { connection_.call(L"Close"); }
  void execute(const std::string& statement) override {
    connection_.call(L"Execute", {Variant(statement)});
  }
  [[nodiscard]] std::unique_ptr<Recordset> openRecordset(const std::string& statement,
                                                         CursorType cursor,
                                                         LockType lock) override {
    return std::make_unique<AdoRecordset>(connection_, statement, cursor, lock);
  }

  void begin() override {
    if (inTransaction_) {
      throw Error(static_cast<std::int32_t>(RunTimeError::invalidArgument), "Pelmora",
                  "This connection is in a transaction already");
    }
    connection_.call(L"BeginTrans");
    inTransaction_ = true;
  }
  void beginReading() override { begin(); }
  [[nodiscard]] bool hasTransaction() const noexcept override { return inTransaction_; }
  void commit() override {
    connection_.call(L"CommitTrans");
    inTransaction_ = false;
  }
  void rollback() noexcept override {
    if (!std::exchange(inTransaction_, false)) return;
    try {
      connection_.call(L"RollbackTrans");
    } catch (...) {  // the provider undoes at the latest when the connection is closed
    }
  }

 private:
  LateBound connection_;
  bool inTransaction_ = false;
};

}  // namespace
}  // namespace ado

ConnectionPtr adoConnection(IDispatch* connection) {
  return std::make_shared<ado::AdoConnection>(
      ado::LateBound(os::Reference<IDispatch>::to(connection)));
}

ConnectionPtr accessConnection(const std::string& location) {
  ado::LateBound connection = ado::LateBound::create(L"ADODB.Connection");
  connection.setProperty(L"CursorLocation", ado::Variant(ado::clientSide));
  connection.setProperty(L"ConnectionString",
                         ado::Variant("Provider=Microsoft.Jet.OLEDB.4.0;Data Source='" + location +
                                      "';Persist Security Info=False;User ID=Admin"));
  return std::make_shared<ado::AdoConnection>(std::move(connection));
}

}  // namespace pelmora
