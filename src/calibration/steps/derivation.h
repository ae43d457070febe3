// Roshko and Strouhal series from the stand's measurements, computed inside the database.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"
#include "store/name_text.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace pelmora::calibration::steps {

enum class DerivedSeries : std::size_t { rotorA = 0, rotorB = 1, rotorSum = 2, ratio = 3 };
// By DerivedSeries.
inline constexpr std::array<const char*, 4> derivedSeriesNames{"Rotor A", "Rotor B", "Rotor Sum",
                                                               "Ratio"};

// What a series is derived from, and the table that it goes to.
struct DerivationSource {
  std::string table;              // "Raw1" to "Raw4"; only "Raw1" finds or adds the series row
  std::string calSetupId;         // as text
  std::vector<std::string> jobs;  // the set-up's, ascending; more than one: rotor B ran by itself
};

// Replaces the points of the series in the table and leaves its id in SeriesID. With V1..V37 the
// columns of a measured row, f_A = V4/V3, f_B = V21/V20 and c(alpha) = 1 + alpha (V12 - 70):
//
//   rotor A    Roshko f_A/V5 c(1.92E-05)             Strouhal f_A/(V2/V1) c(2.88E-05)
//   rotor B    as A with f_B; with more than one job the rotor A columns of the second job
//   sum        Roshko of A plus Roshko of B          Strouhal f_A/f_B
//   ratio      as the sum                            Strouhal f_B/f_A
//
// Sum and ratio of more than one job always end in an error with the series empty: see the source.
// Errors: Error 11 or 6 for a row that divides by zero or overflows; nothing is then stored.
//         Error 9 without jobs where they matter.
void deriveSeries(Connection& connection, DerivedSeries series, const DerivationSource& source,
                  const NameText& SeriesName, std::int32_t MeterID, std::int32_t& SeriesID);

}  // namespace pelmora::calibration::steps
