// Telling whether somebody has changed rows since they were read.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/word_mixer.h"
#include "history/scope.h"

#include <pelmora/export.h>

#include <cstdint>
#include <functional>
#include <string>

namespace pelmora::history {

// Kind and exact bits of a value.
PELMORA_API void mixValue(WordMixer& mixer, const Value& value);

// Mixes every row of `table` that belongs to the scope, and their number, and shows each row to
// `see`, which may be empty. Our own tables may be missing, which counts as no rows, or have been
// made with fewer columns.
//
// Errors: Error if the table cannot be read or a given one lacks a column; those of `see`.
PELMORA_API void mixRows(WordMixer& mixer, const ConnectionPtr& curves, const Scope& scope,
                         const std::string& table,
                         const std::function<void(const Recordset&)>& see = {});

// A number made from all rows of the scope: exact bits, kinds of values, and the
// order in which they are read. Two equal numbers mean the same rows, but for one chance in 2^64. A
// table that may be missing counts as one without rows. It is meant to be compared soon, and is not
// kept.
//
// Errors: Error if a table cannot be read.
[[nodiscard]] PELMORA_API std::uint64_t fingerprint(const ConnectionPtr& curves,
                                                    const Scope& scope);

// What a fit of the series depends on: the calibration and the series by name and id, and its raw
// parts.
[[nodiscard]] PELMORA_API Scope fittedPoints(std::int32_t MeterID, std::int32_t SeriesID);
// The same and the curve, merged points, report and settings of the last fit.
[[nodiscard]] PELMORA_API Scope fittedPointsAndCurve(std::int32_t MeterID, std::int32_t SeriesID);

}  // namespace pelmora::history
