// Verdicts and warnings of a fit in words and as the names that JSON uses.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/fit_outcome.h>

#include <string>

namespace pelmora::report {

// Names in JSON and CSV are never changed; the words for people may be.
[[nodiscard]] const char* verdictKey(EquationVerdict verdict);
[[nodiscard]] const char* warningKey(CurveWarningKind kind);

// "chosen", "outside band" ...
[[nodiscard]] std::string verdictText(EquationVerdict verdict);
// Which test rejected an equation, at which point, in words; empty for an accepted one.
[[nodiscard]] std::string rejection(const EquationOutcome& equation);
// Whether the engine found parameters, so that statistics mean something.
[[nodiscard]] bool hasSolution(const EquationOutcome& equation);

}  // namespace pelmora::report
