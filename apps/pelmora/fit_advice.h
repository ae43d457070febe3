// What would help where a fit found no curve.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/verdict_words.h"

#include <pelmora/fit_outcome.h>

#include <optional>
#include <string>

namespace pelmora::cli {

struct SeriesFit;

using report::rejection;

// What would make this equation pass, or what to try; empty where nothing is known.
[[nodiscard]] std::string advice(const SeriesFit& fit, const EquationOutcome& equation);

// The band in per cent, rounded up to two digits, with which the predicted curve would pass the
// band test; nothing where none up to 100 % would.
[[nodiscard]] std::optional<double> passingBand(const SeriesFit& fit,
                                                const EquationOutcome& equation);

// For the one error line: the outcome of the equation that came nearest, and its remedy.
[[nodiscard]] std::string shortReason(const SeriesFit& fit);
[[nodiscard]] std::string shortAdvice(const SeriesFit& fit);

}  // namespace pelmora::cli
