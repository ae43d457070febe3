// A fit with the settings of the stored curve, some of them changed.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/database.h>

namespace pelmora::calibration {

// As Database::repeat(), but `change` is applied to the settings first.
[[nodiscard]] Repeated repeatWith(const Database& lab, const StoredSeries& series,
                                  const UnkeptSettings& unkept, const SettingsChange& change,
                                  const Observer& observer);

}  // namespace pelmora::calibration
