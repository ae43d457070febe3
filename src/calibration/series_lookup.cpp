// SPDX-License-Identifier: MIT
#include "calibration/series_lookup.h"

#include "base/suggestion.h"
#include "store/field_value.h"
#include "store/name_text.h"
#include "store/reading.h"

namespace pelmora::calibration {

std::vector<std::string> seriesNames(Session& session, const Meter& meter) {
  return session.asking("listing the series of " + placeOf(meter), [&] {
    std::vector<std::string> names;
    const auto rows = readRows(
        session.connection(),
        "Select name from series where meterid = " + std::to_string(meter.id) + " ORDER BY ID ASC");
    for (; !rows->atEnd(); rows->moveNext()) {
      const Value& name = rows->value(0);
      if (isNull(name)) throw namelessSeries(meter, session.location());
      names.push_back(toText(name));
    }
    return names;
  });
}

std::optional<std::int32_t> findSeries(Session& session, const Meter& meter,
                                       const std::string& name) {
  return session.asking("looking up " + placeOf(meter, name), [&]() -> std::optional<std::int32_t> {
    const auto rows =
        readRows(session.connection(),
                 "Select ID, name from series where meterid = " + std::to_string(meter.id) +
                     " and name = " + NameText::quoted(name).literal());
    if (rows->atEnd()) return std::nullopt;
    return toInt32(rows->value(0));
  });
}

std::int32_t requireSeries(Session& session, const Meter& meter, const std::string& name) {
  if (const auto id = findSeries(session, meter, name)) return *id;
  const auto known = seriesNames(session, meter);
  throw NotFound({placeOf(meter) + " has no series '" + name + "' in '" + session.location() + "'",
                  session.location(),
                  known.empty() ? "it has no series yet: import or store points first"
                                : suggestion(name, known)});
}

}  // namespace pelmora::calibration
