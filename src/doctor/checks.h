// The checks, each of which adds what it finds.
// SPDX-License-Identifier: MIT
#pragma once

#include "doctor/finding.h"

#include <pelmora/database.h>
#include <pelmora/own_tables.h>

#include <vector>

namespace pelmora::doctor {

using Findings = std::vector<Finding>;

// Indexes that look-ups need, those of tables that are there.
[[nodiscard]] std::vector<TableIndex> neededIndexes(const ConnectionPtr& curves);

void checkTables(const ConnectionPtr& curves, Findings& findings);   // missing-history-tables
void checkIndexes(const ConnectionPtr& curves, Findings& findings);  // missing-indexes
void checkOrphans(const ConnectionPtr& curves, Findings& findings);  // orphaned-rows, stray-rows
void checkNumbers(const ConnectionPtr& curves, Findings& findings);  // unusable-numbers
void checkNaming(const ConnectionPtr& curves,
                 Findings& findings);  // unnamed-series, unusable-calibration-numbers
void checkNames(const ConnectionPtr& curves,
                Findings& findings);  // duplicate-series, duplicate-calibrations
void checkPoints(const ConnectionPtr& curves, Findings& findings);         // series-without-points
void checkSalvagedParts(const ConnectionPtr& curves, Findings& findings);  // incomplete-series
void checkExclusions(const ConnectionPtr& curves,
                     Findings& findings);                              // exclusions-not-in-force
void checkCurveAges(const ConnectionPtr& curves, Findings& findings);  // outdated-curves

}  // namespace pelmora::doctor
