// Keeping what certificates state besides the measured numbers.
// SPDX-License-Identifier: MIT
#include "base/date_text.h"
#include "base/text_flaw.h"
#include "base/trimmed_text.h"
#include "calibration/session.h"
#include "history/scope.h"
#include "store/curve_schema.h"
#include "store/detail_rows.h"
#include "units/unit.h"

#include <algorithm>
#include <charconv>

namespace pelmora::calibration {
namespace {

[[noreturn]] void refuse(const DetailField& field, const std::string& value,
                         const std::string& remedy) {
  throw BadData({"'" + shortened(value) + "' is not a valid " + field.key, "", remedy});
}

void requireQuantity(const DetailField& field, const std::string& value, const units::Unit& unit) {
  if (units::quantityName(unit.quantity) == field.quantity) return;
  refuse(field, value,
         "'" + std::string(unit.symbol) + "' is a unit of " +
             std::string(units::quantityName(unit.quantity)) + "; give one of " + field.quantity);
}

// The number as it was written, and the unit in our spelling.
std::string measureText(const DetailField& field, const std::string& value) {
  const units::Measure measure = units::readMeasure(value);
  requireQuantity(field, value, *measure.unit);
  const std::string number = value.substr(0, value.find_first_not_of("+-.0123456789eE"));
  return number + " " + std::string(measure.unit->symbol);
}

std::string columnText(const DetailField& field, std::string value) {
  if (value.starts_with('v')) value[0] = 'V';
  int number = 0;
  const char* end = value.data() + value.size();
  if (value.starts_with('V')) {
    const auto [stop, trouble] = std::from_chars(value.data() + 1, end, number);
    if (trouble == std::errc() && stop == end && number >= 1 &&
        number <= static_cast<int>(measuredValues))
      return "V" + std::to_string(number);
  }
  refuse(field, value, "write V1 to V" + std::to_string(measuredValues));
}

void requireShowable(const DetailField& field, const std::string& value) {
  std::string lines = value;
  if (field.kind == DetailKind::list) std::ranges::replace(lines, '\n', ' ');
  if (flawOf(lines) == TextFlaw::none) return;
  throw BadData({"the " + field.key + " has a character that cannot be shown", "", "leave it out"});
}

// The value as it is stored.  Errors: BadData.
std::string cleanValue(const DetailField& field, const std::string& given) {
  requireShowable(field, given);
  const std::string value(trimmed(given));
  if (value.empty()) return {};
  switch (field.kind) {
    case DetailKind::text:
    case DetailKind::list: return value;
    case DetailKind::date:
      if (!isDay(value)) refuse(field, value, "write a day as 2026-11-20");
      return value;
    case DetailKind::country: {
      const auto isCapital = [](char c) { return c >= 'A' && c <= 'Z'; };
      if (value.size() != 2 || !std::ranges::all_of(value, isCapital))
        refuse(field, value, "write two capital letters (ISO 3166-1), such as US");
      return value;
    }
    case DetailKind::measure: return measureText(field, value);
    case DetailKind::unit: {
      const units::Unit& unit = units::unitOf(value);
      requireQuantity(field, value, unit);
      return std::string(unit.symbol);
    }
    case DetailKind::column: break;
  }
  return columnText(field, value);
}

Details cleanDetails(const Details& changes, bool areLaboratorys) {
  Details clean;
  for (const auto& [key, value] : changes) {
    const DetailField& field = detailField(key);
    if ((field.of == DetailOf::laboratory) != areLaboratorys) {
      throw BadData({"'" + key + "' is a detail of " +
                         (areLaboratorys ? "a meter" : "the laboratory") + ", not of " +
                         (areLaboratorys ? "the laboratory" : "a meter"),
                     "", "set it there"});
    }
    clean[key] = cleanValue(field, value);
  }
  return clean;
}

Details withoutEmpty(Details details) {
  std::erase_if(details, [](const auto& each) { return each.second.empty(); });
  return details;
}

}  // namespace

Details Database::laboratory() const {
  return session_->asking("the laboratory's data cannot be read",
                          [&] { return withoutEmpty(readLaboratory(session_->connection())); });
}

void Database::setLaboratory(const Details& changes) {
  const Details clean = cleanDetails(changes, true);
  session_->changing("laboratory", "storing the laboratory's data",
                     [&] { changeLaboratory(session_->connection(), clean); });
}

Details Database::details(const Meter& meter) const {
  const auto moment = session_->moment();
  return session_->asking("the details of " + placeOf(meter) + " cannot be read", [&] {
    Details details;
    for (const Meter& each : calibrations(meter.serial)) {
      if (each.calibration > meter.calibration) break;
      const bool isItself = each.id == meter.id;
      for (const auto& [key, value] : readDetails(session_->connection(), each.id)) {
        const auto& fields = detailFields();
        const auto field = std::ranges::find(fields, key, &DetailField::key);
        // A later version may have stored details that this one does not know.
        if (field == fields.end()) continue;
        if (isItself || field->of == DetailOf::meter) details[key] = value;
      }
    }
    return withoutEmpty(std::move(details));
  });
}

HistoryEntryId Database::setDetails(const Meter& meter, const Details& changes) {
  const Details clean = cleanDetails(changes, false);
  return session_->changing("meter", "storing the details of " + placeOf(meter), [&] {
    const HistoryEntryId kept = session_->keep({meter.id, 0, {detailTable}});
    changeDetails(session_->connection(), meter.id, clean);
    return kept;
  });
}

}  // namespace pelmora::calibration
