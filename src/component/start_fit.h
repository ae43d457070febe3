// Running one fitting object over merged points.
// SPDX-License-Identifier: MIT
#pragma once

#include "component/fit_host.h"
#include "component/operation_context.h"

#include <pelmora/types.h>

#include <string>

namespace pelmora {

// Fits `merged` on a fitting object of its own and leaves merged points, curve and report in the
// shared fit record; the report and the outcome go to the host's object too. Returns the curve.
//
// Errors: shown; ArrayIsEmpty is then true, curve and report are empty.
PointArray startFit(const OperationContext& context, FitHost& host, const PointArray& merged,
                    bool& ArrayIsEmpty, double Predicted_Xmin, double Predicted_Xmax,
                    const std::string& Label_Xaxis, const std::string& Label_Yaxis);

}  // namespace pelmora
