// Reading back what is stored for a series.
// SPDX-License-Identifier: MIT
#pragma once

#include "component/operation_context.h"

#include <pelmora/database.h>
#include <pelmora/types.h>

#include <cstdint>
#include <string>

namespace pelmora {

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
