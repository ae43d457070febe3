// Raw points that were left out of a series, in our own tables beside the raw ones.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace pelmora {

// A row of one of excludedTables (curve_schema.h).
struct ExcludedRow {
  std::int32_t Number = 0;  // place in the whole part, from 1, excluded points counted
  Value Roshko, Strouhal;   // as the raw table had them
  std::string Job;          // of the stand; empty for points that came from elsewhere
  std::string Reason, ExcludedBy, ExcludedAt;
  std::string Rest;  // fingerprint of the points that the raw table still has
};

// Whether points may have been left out of any series. False for a database that cannot have own
// tables.
[[nodiscard]] bool hasExcludedPoints(Connection& curves);
// part: 1 to 4. By number; none if the tables are missing.
[[nodiscard]] std::vector<ExcludedRow> readExcludedPoints(Connection& curves, int part,
                                                          std::int32_t SeriesID);
// Whether a part still has exactly the points that remained when `excluded` was left out: their
// number and their fingerprint. If not, another program has stored the part again since.
[[nodiscard]] bool areInForce(const std::vector<ExcludedRow>& excluded, std::size_t restPoints,
                              const std::string& restFingerprint);
// Makes the tables if there is something to store.
//
// Errors: Error 3251 if the database cannot have own tables.
void replaceExcludedPoints(Connection& curves, int part, std::int32_t SeriesID,
                           const std::vector<ExcludedRow>& rows);

}  // namespace pelmora
