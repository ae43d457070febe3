// One fit: from the stored raw parts of a series to a fitted curve in the shared fit record.
// SPDX-License-Identifier: MIT
#pragma once

#include "component/fit_host.h"
#include "component/operation_context.h"

#include <pelmora/types.h>

#include <cstdint>
#include <string>

namespace pelmora {

// Which series to fit and how the report names its axes.
struct FitRequest {
  std::string SeriesName, MeterSN;
  std::int16_t ReCalID = -1;
  std::string Label_Xaxis, Label_Yaxis;
  bool bInverted = false;
};

// Reads the raw parts, sorts and merges them, checks that Predicted_Xmin..Predicted_Xmax lies
// inside the merged points, fits the catalogue and leaves merged points, curve and report in the
// shared fit record. Nothing is stored in the database.
//
// A range outside the points is a question to the operator (Abort, Retry, Ignore); unattended, it
// aborts. Retry sets both ends to those of the points. An aborted fit leaves the last results in
// place. ArrayIsEmpty is false exactly when an equation was chosen; where an error came before the
// merge or the fit began, it stays as it was.
PointArray determineFittedCurve(const OperationContext& context, FitHost& host,
                                const FitRequest& request, bool& ArrayIsEmpty,
                                double& Predicted_Xmin, double& Predicted_Xmax);

}  // namespace pelmora
