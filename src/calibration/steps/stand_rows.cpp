// SPDX-License-Identifier: MIT
#include "calibration/steps/stand_rows.h"

#include "base/number_text.h"
#include "base/run_time_error.h"
#include "store/curve_schema.h"
#include "store/name_text.h"
#include "store/reading.h"

#include <array>
#include <charconv>
#include <vector>

namespace pelmora::calibration::steps {
namespace {

bool isWholeNumber(const std::string& text) {
  std::int64_t number = 0;
  const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), number);
  return code == std::errc() && end == text.data() + text.size();
}

std::string joined(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "" : ", ") + name;
  return list;
}

std::string literal(const Value& value) {
  if (std::holds_alternative<std::monostate>(value)) return "NULL";
  if (const auto* text = std::get_if<std::string>(&value)) return NameText::quoted(*text).literal();
  std::array<char, 32> buffer{};
  const auto digits = [&](auto number) {
    return std::string(buffer.data(),
                       std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr);
  };
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return digits(*whole);
  return digits(std::get<double>(value));
}

// A text in a column of numbers that nothing is derived from: a record set refuses it, a statement
// stores it as it is.
void insertRow(Connection& curves, const std::string& names, const std::vector<Value>& values) {
  std::string list;
  for (const Value& value : values) list += (list.empty() ? "" : ", ") + literal(value);
  curves.execute("INSERT INTO CalDataPoint (" + names + ") VALUES (" + list + ")");
}

}  // namespace

void copyStandRows(Connection& stand, Connection& curves, std::int32_t CalSetupID,
                   const std::string& job, const std::function<void()>& goOn) {
  if (!isWholeNumber(job)) throw makeError(RunTimeError::typeMismatch);
  curves.execute("Delete * from CalDataPoint where CalDataPoint.calsetupid=" +
                 numberText(CalSetupID));
  std::vector<std::string> measured;
  for (const OwnColumn& column : standTableColumns()) measured.push_back(column.Name);
  const auto from =
      readRows(stand, "Select " + joined(measured) + " from DataPoint where JobRecordID=" + job);

  std::vector<std::string> all{"CalSetupID"};
  all.insert(all.end(), measured.begin(), measured.end());
  const std::string names = joined(all);
  const std::vector<std::string_view> fields(all.begin(), all.end());
  const auto to = openForBatch(curves, "Select " + names + " from CalDataPoint where 1=0");
  std::vector<Value> values(fields.size());
  values[0] = std::int64_t{CalSetupID};
  for (; !from->atEnd(); from->moveNext()) {
    if (goOn) goOn();
    for (std::size_t i = 1; i < values.size(); ++i) values[i] = from->value(i - 1);
    try {
      to->addRow(fields, values);
    } catch (const Error& error) {
      if (error.number() != static_cast<std::int32_t>(RunTimeError::typeMismatch)) throw;
      to->updateBatch();  // what was added before stays before
      insertRow(curves, names, values);
    }
  }
  if (goOn) goOn();
  to->updateBatch();
}

}  // namespace pelmora::calibration::steps
