// SPDX-License-Identifier: MIT
#include "store/row_visits.h"

#include "store/reading.h"

#include <vector>

namespace pelmora {

void visitRows(Connection& connection, const std::string& statement, const RowVisitor& visit) {
  if (auto* visits = dynamic_cast<RowVisits*>(&connection)) {
    visits->visitRows(statement, visit);
    return;
  }
  const auto rows = readRows(connection, statement);
  std::vector<Value> values(rows->fieldCount());
  for (; !rows->atEnd(); rows->moveNext()) {
    for (std::size_t i = 0; i < values.size(); ++i) values[i] = rows->value(i);
    visit(values);
  }
}

}  // namespace pelmora
