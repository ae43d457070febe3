// Options that the commands that fit have in common.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/options/command.h"

#include <pelmora/calibration/fit.h>

#include <cstdint>
#include <functional>
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

// Which curve is chosen, and which points it is fitted to.
struct FitChoices {
  calibration::SettingsChange given{};         // everything but the names of equations
  std::vector<std::string> only{}, without{};  // names of equations
  bool isStrict = false;

  // Errors: Trouble usage for an invalid name.
  [[nodiscard]] calibration::SettingsChange change() const;
};
// The default rule, as --choose calls it.
[[nodiscard]] std::string usualChoice();
// otherwise: the rule that applies without --choose, as the help shows it.
void addFitChoices(Command& command, FitChoices& options, const std::string& otherwise);
// --changed PERCENT, 0 or more: from which shift on a refitted curve counts as changed.
void addChangedPercent(Command& command, const std::string& help,
                       std::function<void(double percent)> take);
// --choose alone.
void addChoose(Command& command, std::optional<calibration::Choice>& choice,
               const std::string& help);

}  // namespace pelmora::cli
