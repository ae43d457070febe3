// SPDX-License-Identifier: MIT
#include "adapters/ado/ado_connection.h"

#include "adapters/ado/ado_recordset.h"
#include "adapters/ado/late_bound.h"
#include "store/connection.h"

#include <utility>

namespace pelmora {
namespace ado {
namespace {

constexpr LONG clientSide = 3;
constexpr LONG unspecifiedOption = -1;
constexpr LONG openState = 1;

class AdoConnection : public Connection {
 public:
  explicit AdoConnection(LateBound connection) : connection_(std::move(connection)) {}

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

 private:
  LateBound connection_;
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
