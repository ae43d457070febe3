// Storing the result of a fit.
// SPDX-License-Identifier: MIT
#pragma once

#include "component/operation_context.h"

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

}  // namespace pelmora
