// What is wrong with a curve database, and what a damaged one still holds.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>
#include <pelmora/patience.h>
#include <pelmora/salvage.h>

#include <cstddef>
#include <string>
#include <vector>

namespace pelmora::calibration {

enum class Severity {
  note = 0,     // slower or less than it could be; all numbers are right
  warning = 1,  // somebody should look at it
  error = 2     // numbers are missing or cannot be used
};

// The result of one check that found something.
struct Finding {
  std::string id;  // of the check; never changed: "orphaned-rows"
  Severity severity = Severity::note;
  std::size_t count = 0;       // rows, series, tables ... as `text` says
  std::string text;            // one line in words
  std::string example;         // one place; empty if there is none to name
  bool canBeRepaired = false;  // by Database::repair()
  std::string remedy;          // what to do; empty if a repair does it
};

// Whether there is a finding that is more than a note.
[[nodiscard]] PELMORA_API bool hasProblems(const std::vector<Finding>& findings);

// The findings before a repair and those that it left.
struct Repaired {
  std::vector<Finding> before, after;
};

// Damage to the file itself, grouped; nothing if it is whole. Look at it before anything else: a
// damaged file may fail to open, and other checks may stumble over the damage. Reads the whole
// file.
//
// Errors: NotFound; Locked; Cancelled; Unusable if the file is not a database at all.
[[nodiscard]] PELMORA_API std::vector<IntegrityProblem> damageOf(const std::string& location,
                                                                 const Patience& patience = {});

// Reads everything of a damaged curve database that can still be read. With `newLocation`, creates
// a curve database there that contains it, with rows and ids as they were; rows with any damage are
// left out. The damaged file is not changed. If it fails, nothing is left behind.
//
// Errors: NotFound; Exists for `newLocation`; Locked; Cancelled; Unusable if no part of it is a
//         database.
[[nodiscard]] PELMORA_API SalvageReport salvage(const std::string& location,
                                                const std::string& newLocation = {},
                                                const Patience& patience = {});

}  // namespace pelmora::calibration
