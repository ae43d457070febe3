// SPDX-License-Identifier: MIT
#include "base/ascii_character.h"
#include "base/run_time_error.h"
#include "store/connection.h"
#include "store/curve_schema.h"
#include "store/row_text.h"

#include <pelmora/stand.h>

#include <algorithm>

namespace pelmora {
namespace {

std::unique_ptr<Recordset> readStand(const ConnectionPtr& stand, const std::string& statement) {
  if (!stand) throw makeError(RunTimeError::noObject);
  return stand->openRecordset(statement, CursorType::forwardOnly, LockType::optimistic);
}

bool isWholeNumber(const std::string& text) {
  const std::size_t sign = text.starts_with('-') ? 1 : 0;
  return text.size() > sign &&
         std::all_of(text.begin() + static_cast<std::ptrdiff_t>(sign), text.end(), isDigit);
}

}  // namespace

std::vector<std::string> standJobs(const ConnectionPtr& stand) {
  const auto rows =
      readStand(stand, "Select DISTINCT JobRecordID from DataPoint ORDER BY JobRecordID ASC");
  if (rows->recordCount() == 0) return {};
  return rowsAsTexts(*rows);
}

ValueTable standPoints(const ConnectionPtr& stand, const std::string& JobRecordID,
                       const std::function<void()>& goOn) {
  if (!isWholeNumber(JobRecordID)) throw makeError(RunTimeError::typeMismatch);
  std::string columns;
  for (std::size_t i = 1; i <= measuredValues; ++i) {
    columns += (i == 1 ? "V" : ", V") + std::to_string(i);
  }
  const auto rows =
      readStand(stand, "Select " + columns + " from DataPoint where JobRecordID=" + JobRecordID);
  ValueTable points(measuredValues, static_cast<std::size_t>(rows->recordCount()));
  for (std::size_t row = 0; row < points.rows(); ++row, rows->moveNext()) {
    if (goOn) goOn();
    for (std::size_t i = 0; i < measuredValues; ++i) points(i, row) = rows->value(i);
  }
  return points;
}

}  // namespace pelmora
