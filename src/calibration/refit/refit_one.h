// One series of a refit: read and fitted, and stored where it is still what was fitted.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/session.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stop_token>

namespace pelmora::calibration {

// A result with what is to be stored.
struct RefitCurve {
  std::size_t index = 0;  // of the task
  RefitResult result;
  Fit fit;                    // without a curve where none came out
  bool isSame = false;        // curve, merged points and report are those that are stored
  std::uint64_t basis = 0;    // fingerprint of what was read: points, curve and settings
  std::uint64_t noticed = 0;  // of ForeignWatch, before it was read

  [[nodiscard]] bool isToBeStored() const { return fit.accepted() && !isSame; }
};

// A series as it is read for a refit; nothing in `stored` if it cannot be: the result says why.
struct RefitReading {
  RefitCurve curve;
  std::optional<StoredSeries> stored;
};

// The number of a calibration as it is stored; -1 if it cannot be read.
[[nodiscard]] int calibrationNumber(const Value& value);

// Errors: Locked, Unusable.
[[nodiscard]] RefitReading readAgain(const Database& lab, Session& session, const RefitTask& task);

// Fits what was read, with the settings of its curve after options.change. Does not use the
// database and stores nothing. The result gives the reason if the series cannot be fitted.
[[nodiscard]] RefitCurve fitAgain(const Database& lab, RefitReading reading,
                                  const RefitOptions& options, const std::stop_token& stop = {});

// Frees what storing does not need of a fit, for those who hold many.
void keepOnlyWhatIsStored(Fit& fit);

// In the change that is open, where nobody else can write: where the series, its curve or its
// settings have been changed since they were read, it is fitted again as it is now, and the result
// says so.
void bringUpToDate(const Database& lab, Session& session, const RefitOptions& options,
                   RefitCurve& curve);

// The same; then stores the curve, if there still is one to be stored.
void storeAgain(const Database& lab, Session& session, const RefitOptions& options,
                RefitCurve& curve);

}  // namespace pelmora::calibration
