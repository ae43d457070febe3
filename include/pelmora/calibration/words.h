// Verdicts and warnings of a fit, in words and as the names that files use.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>
#include <pelmora/fit_outcome.h>

#include <string>

namespace pelmora::calibration {

// Names in JSON and CSV never change; the words for people may.
[[nodiscard]] PELMORA_API const char* verdictKey(EquationVerdict verdict);
[[nodiscard]] PELMORA_API const char* warningKey(CurveWarningKind kind);

// "chosen", "outside band" ...
[[nodiscard]] PELMORA_API std::string verdictText(EquationVerdict verdict);
// Which test rejected an equation and at which point, in words; empty for an accepted one.
[[nodiscard]] PELMORA_API std::string rejection(const EquationOutcome& equation);
// Whether the engine found parameters, so that the statistics are meaningful.
[[nodiscard]] PELMORA_API bool hasSolution(const EquationOutcome& equation);

}  // namespace pelmora::calibration
