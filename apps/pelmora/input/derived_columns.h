// Roshko and Strouhal from the columns of flow, frequency, viscosity and temperature.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/derivation.h>
#include <pelmora/sheet.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::cli {

// A column as --columns gives it: "Flow", "Flow:gpm", "Flow [gpm]" or "3:gpm".
using ColumnText = std::string;

// "q=Flow,f=Frequency,nu=Viscosity,t=Temperature".
struct ColumnChoice {
  ColumnText flow, frequency, viscosity, temperature;  // the temperature may be empty
};

// Errors: Trouble usage.
[[nodiscard]] ColumnChoice columnChoice(const std::string& text);

// The names that the header should have.
[[nodiscard]] std::vector<std::string> namesIn(const ColumnChoice& choice);

class DerivedColumns {
 public:
  // Finds the columns and their units.
  // Errors: Trouble badInput for a column that does not exist or has no unit.
  DerivedColumns(const std::string& path, sheets::Sheet& sheet, const ColumnChoice& choice);

  // Errors: SheetError for a value that is not positive or a unit that does not fit.
  [[nodiscard]] calibration::DerivedPoint point(const sheets::Row& row) const;
  [[nodiscard]] std::size_t viscosity() const { return viscosity_; }
  // "Roshko in Hz/cSt and Strouhal in pulses/gal, from Flow (l/min) and ...".
  [[nodiscard]] std::string words() const;

 private:
  [[nodiscard]] std::size_t column(const char* key, const ColumnText& text,
                                   const char* withUnit) const;
  [[nodiscard]] double positive(const sheets::Row& row, std::size_t column, const char* unit,
                                const char* quantity) const;

  const std::string& path_;
  sheets::Sheet& sheet_;
  std::size_t flow_ = 0, frequency_ = 0, viscosity_ = 0;
  std::optional<std::size_t> temperature_;
};

}  // namespace pelmora::cli
