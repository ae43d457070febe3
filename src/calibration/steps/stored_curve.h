// A series' fitted curve with its merged points and its report, in the curve database.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/steps/observer.h"
#include "store/connection.h"

#include <pelmora/types.h>

#include <cstdint>
#include <functional>
#include <string>

namespace pelmora::calibration::steps {

// The series that is written; the name stands in texts.
struct StoredSeries {
  std::int32_t SeriesID;
  std::string SeriesName;
};

// Removes curve, summary and merged points.
void removeStoredCurve(Connection& connection, const StoredSeries& series,
                       const Observer& observer = {});

// Adds curve, summary and merged points, in this order; points from two on.
// Errors: those of writePoints; what was added by then stays.
void insertStoredCurve(Connection& connection, const StoredSeries& series, const PointArray& merged,
                       const PointArray& fitted, const std::string& details,
                       const Observer& observer = {});

void insertSummary(Connection& connection, const StoredSeries& series, const std::string& details,
                   const Observer& observer = {});

// Takes over the points of an outside program: removes the curve and adds the points to the merged
// ones, where hosts that read them look.
void storeImportedPoints(Connection& connection, const StoredSeries& series,
                         const PointArray& points, const Observer& observer = {});

// How a curve is read.
struct CurveForm {
  std::string order = " ORDER BY Roshko ASC";  // with its leading blank; empty: as it comes
  bool compact = false;                        // at most 40 points in single precision
  bool strouhalFirst = false;                  // of the compact form
};

enum class StoredPart { merged, summary };

// Fills Fitted, RoshkoFirst or StrouhalFirst, then Merged and Summary of the series
// `into.SeriesID`. `wasRead` hears of the last two before the next text. Where it throws, what was
// read stays.
void readStoredCurve(Connection& connection, const CurveForm& form, const std::string& SeriesName,
                     SeriesInfo& into, const Observer& observer = {},
                     const std::function<void(StoredPart)>& wasRead = {});

}  // namespace pelmora::calibration::steps
