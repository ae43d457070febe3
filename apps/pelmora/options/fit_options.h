// What the commands that fit have in common on the command line.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/options/command.h"

#include <pelmora/calibration/fit.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::cli {

// Table, band and equations. Absent: not given.
struct FitTests {
  std::optional<double> band{};
  std::optional<std::int16_t> points{};
  std::string equations{};  // folder or file; empty: the built-in equations
};
void addFitTests(Command& command, FitTests& options);

// Which curve is chosen, and of which points.
struct FitChoices {
  calibration::SettingsChange given{};         // but for the names of equations
  std::vector<std::string> only{}, without{};  // names of equations
  bool isStrict = false;

  // Errors: Trouble usage for a name that cannot be one.
  [[nodiscard]] calibration::SettingsChange change() const;
};
// The rule of new curves, as --choose calls it.
[[nodiscard]] std::string usualChoice();
// otherwise: the rule that applies without --choose, for its help.
void addFitChoices(Command& command, FitChoices& options, const std::string& otherwise);
// --choose alone.
void addChoose(Command& command, std::optional<calibration::Choice>& choice,
               const std::string& help);

}  // namespace pelmora::cli
