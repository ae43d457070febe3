// The settings of a fit as the first version kept them, without a rule of choice.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/own_tables.h>

#include <cstdint>
#include <string>

namespace pelmora::test {

// Makes the table of that version with one row: a band of `bandPercent`, a table of 30 points.
inline void keepEarlierSettings(const ConnectionPtr& curves, std::int64_t seriesID,
                                const std::string& bandPercent) {
  createTable(curves, {"pelmora_fit_settings",
                       {{"SeriesID", OwnColumnType::whole},
                        {"BandPercent", OwnColumnType::real},
                        {"Points", OwnColumnType::whole},
                        {"MinRoshko", OwnColumnType::real},
                        {"MaxRoshko", OwnColumnType::real},
                        {"RatioCurve", OwnColumnType::whole},
                        {"Inverted", OwnColumnType::whole},
                        {"IgnoreResiduals", OwnColumnType::whole},
                        {"Equations", OwnColumnType::text},
                        {"SoftwareVersion", OwnColumnType::text},
                        {"FittedAt", OwnColumnType::text}}});
  curves->execute(
      "Insert into pelmora_fit_settings (SeriesID, BandPercent, Points, SoftwareVersion, FittedAt) "
      "VALUES (" +
      std::to_string(seriesID) + ", " + bandPercent + ", 30, '1.0', 'then')");
}

}  // namespace pelmora::test
