// SPDX-License-Identifier: MIT
#include "history/row_access.h"

#include <pelmora/error.h>

namespace pelmora::history {
namespace {

constexpr std::int32_t noObject = 91;

}  // namespace

std::unique_ptr<Recordset> read(const ConnectionPtr& curves, const std::string& statement) {
  if (!curves)
    throw Error(noObject, "pelmora:history", "Object variable or With block variable not set");
  return curves->openRecordset(statement, CursorType::forwardOnly, LockType::optimistic);
}

std::int64_t wholeOf(const Value& value) {
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return *whole;
  const auto* real = std::get_if<double>(&value);
  return real == nullptr ? 0 : static_cast<std::int64_t>(*real);
}

std::string textOf(const Value& value) {
  const auto* text = std::get_if<std::string>(&value);
  return text == nullptr ? std::string() : *text;
}

Ids idsOf(const ConnectionPtr& curves, const std::string& statement) {
  Ids ids;
  for (const auto rows = read(curves, statement); !rows->atEnd(); rows->moveNext()) {
    if (!std::holds_alternative<std::monostate>(rows->value(0)))
      ids.push_back(wholeOf(rows->value(0)));
  }
  return ids;
}

std::int64_t countOf(const ConnectionPtr& curves, const std::string& tableAndCondition) {
  return wholeOf(read(curves, "Select COUNT(*) AS n from " + tableAndCondition)->value(0));
}

std::string isIn(const std::string& key, const Ids& ids) {
  if (ids.empty()) return "1=0";
  std::string list;
  for (const std::int64_t id : ids) list += (list.empty() ? "" : ", ") + std::to_string(id);
  return "[" + key + "] IN (" + list + ")";
}

std::string whereIn(const std::string& key, const Ids& ids) { return " where " + isIn(key, ids); }

}  // namespace pelmora::history
