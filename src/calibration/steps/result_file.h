// Points fitted by the outside program TableCurve.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/steps/observer.h"

#include <pelmora/types.h>

#include <string>

namespace pelmora::calibration::steps {

// Reads a result file and renames it to its path with ".sav" behind it, in place of an earlier one.
// False, after a status text, if there is no such file.
// Errors: Error 75 and its like if the file cannot be read or renamed.
bool takeResultFile(const std::string& sResultPath, std::string& text,
                    const Observer& observer = {});

// The points of a result file: three header lines, then a line per point with Roshko and Strouhal
// between blanks, in the number format of the process's locale. They come sorted by Roshko; of an
// empty text, none.
//
// Errors: Error 9 or 13 for a line that is not a point; `points` then holds those before it, in the
//         order of the file. Error 6 for more than 32767 points.
void parseResultFile(std::string text, PointArray& points, const Observer& observer = {});

}  // namespace pelmora::calibration::steps
