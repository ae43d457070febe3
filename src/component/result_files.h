// Points fitted by the outside program TableCurve.
// SPDX-License-Identifier: MIT
#pragma once

#include "component/operation_context.h"

#include <pelmora/types.h>

#include <cstdint>
#include <string>

namespace pelmora {

// Reads a result file: three header lines, then a line per point with Roshko and Strouhal between
// blanks, in the number format of the process's locale. The file is renamed to its path with ".sav"
// behind it, before it is parsed. Points come sorted by Roshko; where a line is not a point, the
// operator is informed and the points before it come back in the order of the file.
//
// ArrayIsEmpty is false exactly when points come back. A missing file is reported to the operator.
PointArray readTCresults(const OperationContext& context, const std::string& sResultPath,
                         bool& ArrayIsEmpty);

// Reads a result file for a series and stores its points: the series' curve goes, the points are
// added to its merged ones; of a file with a bad line, those before it. Without such a series
// nothing happens and the file stays.
PointArray ImportCurvedData(const OperationContext& context, const std::string& sFilepath,
                            const std::string& SeriesName, const std::string& MeterSN,
                            bool& ArrayIsEmpty, std::int16_t ReCalID);

}  // namespace pelmora
