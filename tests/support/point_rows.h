// Rows of points for scripted statements.
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/scripted_connection.h"

#include <pelmora/types.h>

#include <memory>
#include <utility>

namespace pelmora::test {

// Points as rows of the fields roshko and strouhal.
inline Rows pointRows(const PointArray& points) {
  Rows rows{{"roshko", "strouhal"}, {}};
  for (std::size_t i = 0; i < points.size(); ++i) rows.rows.push_back({points(i, 0), points(i, 1)});
  return rows;
}

inline std::unique_ptr<Recordset> recordsetOf(Rows rows) {
  auto script = std::make_shared<Script>();
  script->answer("rows", std::move(rows));
  return std::make_unique<ScriptedRecordset>(script, "rows");
}

}  // namespace pelmora::test
