// Checking and repairing a curve database, and reading a damaged one.
// SPDX-License-Identifier: MIT
#include "base/run_time_error.h"
#include "calibration/session.h"
#include "doctor/examination.h"
#include "doctor/integrity.h"
#include "doctor/repair.h"
#include "store/salvage.h"

#include <pelmora/calibration/examination.h>

#include <algorithm>

namespace pelmora::calibration {
namespace {

bool isNumber(const Error& error, RunTimeError number) {
  return error.number() == static_cast<std::int32_t>(number);
}

// Runs `body`, which reads the file itself rather than an open database.
template <class Body>
auto readingFile(const std::string& doing, const std::string& location, Body&& body) {
  try {
    return body();
  } catch (const Error& error) {
    if (isNumber(error, RunTimeError::fileNotFound))
      throw NotFound({error.what(), location, "name a curve database"}, error.number());
    if (isNumber(error, RunTimeError::fileExists))
      throw Exists({doing + ": " + error.what(), location, "choose another name"}, error.number());
    if (isNumber(error, RunTimeError::invalidFileFormat))
      throw Unusable({doing + ": " + error.what(), location, ""}, error.number());
    throwFailure(doing, location, error);
  }
}

}  // namespace

bool hasProblems(const std::vector<Finding>& findings) {
  return std::ranges::any_of(
      findings, [](const Finding& finding) { return finding.severity != Severity::note; });
}

std::vector<IntegrityProblem> damageOf(const std::string& location, const Patience& patience) {
  return readingFile("the curve database cannot be opened", location,
                     [&] { return doctor::damageOf(location, patience); });
}

SalvageReport salvage(const std::string& location, const std::string& newLocation,
                      const Patience& patience) {
  return readingFile("salvaging '" + location + "'", location,
                     [&] { return salvageDatabase(location, newLocation, patience); });
}

std::vector<Finding> Database::examine() const {
  return session_->asking("examining '" + location() + "'",
                          [&] { return doctor::examine(session_->curves()); });
}

Repaired Database::repair() {
  return session_->changing("doctor", "repairing '" + location() + "'", [&] {
    Repaired repaired;
    repaired.before = doctor::examine(session_->curves());
    for (const HistoryEntryId entry : doctor::repair(session_->curves(), session_->change()))
      session_->note(entry);
    repaired.after = doctor::examine(session_->curves());
    return repaired;
  });
}

}  // namespace pelmora::calibration
