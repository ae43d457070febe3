// Storing and reading back the results of a fit, as hosts know it.
// SPDX-License-Identifier: MIT
#pragma once

#include "component/operation_context.h"

#include <pelmora/database.h>
#include <pelmora/types.h>

#include <cstdint>
#include <string>

namespace pelmora {

struct FittedResult {
  const PointArray& arMerged;
  const PointArray& arFitted;
  const std::string& Details;
};

// Replaces the curve, merged points and summary of a series. Points are stored from two on. With
// `cleardb` no points are stored, and the summary only where there is one.
//
// True when everything asked for was stored; false where the series is unknown.
// Errors: shown; what was deleted by then stays deleted.
bool SetFitted(const OperationContext& context, const std::string& SeriesName,
               const std::string& MeterSerialNumber, const FittedResult& result, bool cleardb,
               std::int16_t ReCalID);

// The same for the last fitted series with what the shared fit record holds.
bool SetLastFitted(const OperationContext& context, bool cleardb);

struct FittedQuery {
  std::string SeriesName, MeterSN;
  std::int16_t ReCalID = -1;
  bool bDarvellFormat = false;  // the compact form instead of the point array
};

// The fitted curve in the first series entry: as points in the order the database returns them, or
// compact, Strouhal first and by rising Strouhal where the series name contains "ratio". Merged
// points and summary are left in the entry and in the shared fit record; the record becomes the
// last fitted series.
MeterInfo getFittedCurve(const OperationContext& context, const FittedQuery& query,
                         const ConnectionPtr& conn);

// The same with the raw parts and a curve that is always ordered: by Strouhal for the compact form
// of a series named "ratio", by Roshko otherwise. Compact curves are always Roshko first.
MeterInfo GetAllInfo(const OperationContext& context, const FittedQuery& query,
                     const ConnectionPtr& conn);

}  // namespace pelmora
