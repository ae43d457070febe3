// SPDX-License-Identifier: MIT
#include "history/deleting.h"

namespace pelmora::history {

DeleteOutcome removeKept(const ConnectionPtr& curves, KeptChange& change, const Scope& scope) {
  DeleteOutcome outcome{change.keep(scope), {}};
  // All conditions first: removing series and set-ups would change them.
  std::vector<std::string> statements;
  for (const std::string& name : scope.Tables) {
    if (!isThere(curves, keptTable(name))) continue;
    const std::string from = "[" + name + "]" + condition(curves, scope, keptTable(name));
    const auto rows = static_cast<std::size_t>(countOf(curves, from));
    if (rows == 0) continue;
    outcome.Rows.push_back({name, rows});
    statements.push_back("DELETE FROM " + from);
  }
  for (const std::string& statement : statements) curves->execute(statement);
  return outcome;
}

}  // namespace pelmora::history
