// The units of Roshko and Strouhal numbers: as they are recorded, or converted on request.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/options/command.h"

#include <pelmora/calibration.h>

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace pelmora::cli {

struct ShownUnit {
  std::string recorded;  // empty if it is not recorded
  std::string shown;     // the same, or the one that was asked for
  double factor = 1;     // how many shown ones make a recorded one
};

// Of one series. The values of a quotient of two rotors have no unit.
struct ShownUnits {
  ShownUnit roshko, strouhal;
  bool isQuotient = false;
};

// --unit, which may be repeated.
void addUnits(Command& command, std::vector<std::string>& units);

// wanted: the values of --unit.
// Errors: Trouble usage for a unit of neither quantity, two units of one, a unit of Strouhal for a
//         quotient, and a quantity whose unit is not recorded.
[[nodiscard]] ShownUnits shownUnits(const calibration::Database& lab,
                                    const calibration::StoredSeries& series,
                                    const std::vector<std::string>& wanted);

void convert(PointArray& points, const ShownUnits& units);
void convert(calibration::StoredSeries& series, const ShownUnits& units);
void convert(std::vector<calibration::RawPoint>& points, const ShownUnits& units);

// "Units: Roshko Hz/cSt, Strouhal pulses/l (converted from pulses/gal)."; empty if none is known.
[[nodiscard]] std::string unitsLine(const ShownUnits& units);
// Those that are shown; null where they are not recorded.
[[nodiscard]] nlohmann::json unitsJson(const ShownUnits& units);

}  // namespace pelmora::cli
