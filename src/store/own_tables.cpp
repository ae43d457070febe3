// SPDX-License-Identifier: MIT
#include "base/run_time_error.h"
#include "store/connection.h"
#include "store/table_design.h"
#include "store/transactions.h"

#include <pelmora/own_tables.h>

#include <utility>

namespace pelmora {
namespace {

constexpr std::int32_t notSupported = 3251;

template <class Role>
Role& roleOf(const ConnectionPtr& curves, const char* lack) {
  if (!curves) throw makeError(RunTimeError::noObject);
  auto* role = dynamic_cast<Role*>(curves.get());
  if (role == nullptr) throw Error(notSupported, "Pelmora", lack);
  return *role;
}

TableDesign& designOf(const ConnectionPtr& curves) {
  return roleOf<TableDesign>(curves, "This database cannot be given tables or indexes.");
}

Transactions& transactionsOf(const ConnectionPtr& curves) {
  return roleOf<Transactions>(curves, "This database cannot hold changes together.");
}

}  // namespace

bool hasTable(const ConnectionPtr& curves, const std::string& name) {
  return designOf(curves).hasTable(name);
}

void createTable(const ConnectionPtr& curves, const OwnTable& table) {
  designOf(curves).createTable(table);
}

bool hasIndex(const ConnectionPtr& curves, const std::string& table,
              const std::vector<std::string>& columns) {
  return designOf(curves).hasIndex(table, columns);
}

void createIndex(const ConnectionPtr& curves, const TableIndex& index) {
  designOf(curves).createIndex(index);
}

bool isReadOnly(const ConnectionPtr& curves) { return designOf(curves).isReadOnly(); }

ReadView::ReadView(ConnectionPtr curves) : curves_(std::move(curves)) {
  transactionsOf(curves_).beginReading();
}

ReadView::~ReadView() { dynamic_cast<Transactions&>(*curves_).rollback(); }

Transaction::Transaction(ConnectionPtr curves) : curves_(std::move(curves)) {
  transactionsOf(curves_).begin();
}

Transaction::~Transaction() {
  if (isOpen_) dynamic_cast<Transactions&>(*curves_).rollback();
}

void Transaction::commit() {
  transactionsOf(curves_).commit();
  isOpen_ = false;  // last: a commit that is refused is still undone
}

}  // namespace pelmora
