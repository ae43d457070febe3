// SPDX-License-Identifier: MIT
#include "history/deleting.h"

namespace pelmora::history {
namespace {

std::string selection(const ConnectionPtr& curves, const Scope& scope, const std::string& table) {
  return "[" + table + "]" + condition(curves, scope, keptTable(table));
}

}  // namespace

std::vector<DeletedRows> rowsOf(const ConnectionPtr& curves, const Scope& scope) {
  std::vector<DeletedRows> list;
  for (const std::string& name : scope.Tables) {
    if (!hasTable(curves, name)) continue;
    const auto rows = static_cast<std::size_t>(countOf(curves, selection(curves, scope, name)));
    if (rows > 0) list.push_back({name, rows});
  }
  return list;
}

DeleteOutcome removeKept(const ConnectionPtr& curves, KeptChange& change, const Scope& scope) {
  DeleteOutcome outcome{change.keep(scope), rowsOf(curves, scope)};
  // All conditions first: removing series and set-ups would change them.
  std::vector<std::string> statements;
  for (const auto& [name, rows] : outcome.Rows)
    statements.push_back("DELETE FROM " + selection(curves, scope, name));
  for (const std::string& statement : statements) curves->execute(statement);
  return outcome;
}

}  // namespace pelmora::history
