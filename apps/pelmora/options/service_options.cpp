// SPDX-License-Identifier: MIT
#include "apps/pelmora/options/service_options.h"

#include "apps/pelmora/input/input_file.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/recorded_expansion.h"
#include "apps/pelmora/trouble.h"

namespace pelmora::cli {

double measureOption(const std::string& option, const std::string& text, const std::string& unit) {
  if (const auto plain = strictNumber(text)) return *plain;
  try {
    return calibration::measureIn(text, unit);
  } catch (const calibration::BadData& failure) {
    throw Trouble(ExitCode::usage, option + ": " + failure.what(), failure.remedy());
  }
}

double celsiusOption(const std::string& option, const std::string& text) {
  if (const auto fahrenheit = strictNumber(text)) return (*fahrenheit - 32) / 1.8;
  return measureOption(option, text, "C");
}

calibration::StandStatement readStatement(const std::string& file) {
  calibration::StandStatement statement{readInputFile(file), file};
  try {
    (void)calibration::checkStandStatement(statement);
  } catch (const calibration::BadData& failure) {
    throw Trouble(ExitCode::badInput, "file '" + file + "', " + failure.what(), failure.remedy());
  }
  return statement;
}

void requireUnit(const std::string& option, const std::string& unit, const std::string& from) {
  try {
    (void)calibration::conversionFactor(from, unit);
  } catch (const calibration::BadData& failure) {
    throw Trouble(ExitCode::usage, option + ": " + failure.what(), failure.remedy());
  }
}

void addReading(Command& command, const std::string& help, calibration::ReadAs& reading) {
  command.addChoice({"--read", "linear|log|cubic", help}, [&reading](const std::string& word) {
    reading = *calibration::tableReadingOf(word);
  });
}

void addFluid(Command& command, FluidOptions& options) {
  command.addText({"--viscosity", "NU",
                   "Kinematic viscosity, such as '1.2 cSt' (a bare number: "
                   "cSt)"},
                  [&options](const std::string& text) {
                    options.viscosity = measureOption("--viscosity", text, "cSt");
                  });
  command.addText({"--fluid", "NAME", "Fluid whose viscosity law is stored, see 'pelmora fluid'"},
                  options.fluid);
  command.addText({"--temperature", "T",
                   "Temperature, such as '35 C' (a bare number: F; default "
                   "70 F)"},
                  [&options](const std::string& text) {
                    options.celsius = celsiusOption("--temperature", text);
                  });
  command.addText(
      {"--expansion", "ALPHA",
       "Linear thermal expansion of the meter's body per K (default: as recorded with 'pelmora "
       "meter set', else 1.728e-5, stainless steel)"},
      [&options](const std::string& text) {
        options.expansionPerKelvin = numberOption("--expansion", text);
      });
}

std::optional<double> viscosityOf(const FluidOptions& options, const calibration::Database& lab) {
  if (options.fluid.empty()) return options.viscosity;
  if (options.viscosity) {
    throw Trouble(ExitCode::usage, "--viscosity and --fluid exclude each other",
                  "give one of them");
  }
  if (!options.celsius) {
    throw Trouble(ExitCode::usage, "the viscosity of a fluid depends on its temperature",
                  "give --temperature as well");
  }
  return lab.fluidLaw(options.fluid).viscosity(*options.celsius);
}

std::optional<double> expansionOf(const FluidOptions& options, const calibration::Database& lab,
                                  const calibration::Meter& meter) {
  if (options.expansionPerKelvin) return options.expansionPerKelvin;
  return recordedExpansion(lab, meter);
}

double celsiusOf(const FluidOptions& options) {
  return options.celsius.value_or(calibration::ServiceReading().celsius);
}

}  // namespace pelmora::cli
