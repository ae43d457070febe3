// The drift of a meter as a picture and as a page.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/drift.h>

#include <string>

namespace pelmora::report {

// A panel for each Roshko number: the change since the first calibration with the expanded
// uncertainty of the shift, and the control limits. Colours and fonts are attributes, so that every
// program shows them.
//
// title: "Rotor A of meter M1".
[[nodiscard]] std::string driftPicture(const calibration::Drift& drift, const std::string& title);

// A page with the picture, its tables and the recommended interval; works offline.
[[nodiscard]] std::string driftPage(const calibration::Drift& drift, const std::string& title);

}  // namespace pelmora::report
