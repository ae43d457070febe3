// Options for a meter in service: the fluid in it, numbers with units, and how tables are read.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/options/command.h"

#include <pelmora/calibration.h>

#include <optional>
#include <string>

namespace pelmora::cli {

// A number with or without its unit: "1.2 cSt", "35C", "120". Without one it is in `unit`.
//
// Result: in `unit`.  Errors: Trouble usage that names the option.
[[nodiscard]] double measureOption(const std::string& option, const std::string& text,
                                   const std::string& unit);

// A temperature: "35 C", "308 K"; without a unit in degrees F, as in a stand's rows.
//
// Result: in degrees C.  Errors: as above.
[[nodiscard]] double celsiusOption(const std::string& option, const std::string& text);

// A file that states the uncertainty of a stand, or of the instruments in service.
//
// Errors: Trouble badInput that names the file, and the line that is not understood.
[[nodiscard]] calibration::StandStatement readStatement(const std::string& file);

// Errors: Trouble usage that names the option if values in `from` cannot be given in `unit`.
void requireUnit(const std::string& option, const std::string& unit, const std::string& from);

// --read: how a stored table is read between its points.
void addReading(Command& command, const std::string& help, calibration::ReadAs& reading);

// The fluid in the meter. Absent: not given.
struct FluidOptions {
  std::optional<double> viscosity;  // cSt
  std::optional<double> celsius;
  std::optional<double> expansionPerKelvin;
  std::string fluid;
};
void addFluid(Command& command, FluidOptions& options);

// The viscosity that the options give, if they give one.
//
// Errors: Trouble usage for a fluid without a temperature, or together with a viscosity; NotFound
//         for an unknown fluid.
[[nodiscard]] std::optional<double> viscosityOf(const FluidOptions& options,
                                                const calibration::Database& lab);
// Linear expansion of the meter's body per K: of the options, else as it is recorded with the
// calibration; absent if neither is known.
[[nodiscard]] std::optional<double> expansionOf(const FluidOptions& options,
                                                const calibration::Database& lab,
                                                const calibration::Meter& meter);
// In degrees C; 70 F if none is given.
[[nodiscard]] double celsiusOf(const FluidOptions& options);

}  // namespace pelmora::cli
