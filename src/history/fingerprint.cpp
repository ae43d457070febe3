// SPDX-License-Identifier: MIT
#include "history/fingerprint.h"

#include "store/curve_schema.h"

#include <bit>
#include <string_view>
#include <utility>

namespace pelmora::history {
namespace {

Scope with(Scope scope, std::vector<std::string> tables) {
  scope.Tables.insert(scope.Tables.begin(), std::make_move_iterator(tables.begin()),
                      std::make_move_iterator(tables.end()));
  return scope;
}

}  // namespace

void mixValue(WordMixer& mixer, const Value& value) {
  mixer.add(std::uint64_t{value.index()});
  if (const auto* whole = std::get_if<std::int64_t>(&value)) {
    mixer.add(std::bit_cast<std::uint64_t>(*whole));
  }
  if (const auto* real = std::get_if<double>(&value)) mixer.add(*real);
  if (const auto* text = std::get_if<std::string>(&value)) mixer.add(std::string_view(*text));
}

void mixRows(WordMixer& mixer, const ConnectionPtr& curves, const Scope& scope,
             const std::string& name, const std::function<void(const Recordset&)>& see) {
  const KeptTable& table = keptTable(name);
  std::uint64_t count = 0;
  if (!table.MayBeMissing || hasTable(curves, name)) {
    const auto rows = read(curves, "Select " + (table.MayBeMissing ? "*" : table.columnList()) +
                                       " from [" + name + "]" + condition(curves, scope, table));
    for (; !rows->atEnd(); rows->moveNext(), ++count) {
      for (std::size_t field = 0; field < rows->fieldCount(); ++field)
        mixValue(mixer, rows->value(field));
      if (see) see(*rows);
    }
  }
  mixer.add(count);
}

std::uint64_t fingerprint(const ConnectionPtr& curves, const Scope& scope) {
  WordMixer mixer;
  for (const std::string& table : scope.Tables) mixRows(mixer, curves, scope, table);
  return mixer.state();
}

Scope fittedPoints(std::int32_t MeterID, std::int32_t SeriesID) {
  Scope scope{MeterID, SeriesID, {"meter", "series"}};
  scope.Tables.insert(scope.Tables.end(), rawTables.begin(), rawTables.end());
  return scope;
}

Scope fittedPointsAndCurve(std::int32_t MeterID, std::int32_t SeriesID) {
  return with(fittedCurve(MeterID, SeriesID), fittedPoints(MeterID, SeriesID).Tables);
}

}  // namespace pelmora::history
