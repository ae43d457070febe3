// The digits of a certificate: the page and the digital certificate carry the same ones.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_model.h"

#include <optional>
#include <string>

namespace pelmora::report {

// "-" for a value that is absent or not finite.
[[nodiscard]] std::string printedRoshko(double value);
[[nodiscard]] std::string printedFactor(double value);
[[nodiscard]] std::string printedNominalFlow(const std::optional<double>& value);
[[nodiscard]] std::string printedFlow(const std::optional<double>& value);
[[nodiscard]] std::string printedFrequency(const std::optional<double>& value);
[[nodiscard]] std::string printedTemperature(const std::optional<double>& value);
[[nodiscard]] std::string printedViscosity(const std::optional<double>& value);
// With a sign, in per cent.
[[nodiscard]] std::string printedDeviation(const std::optional<double>& percent);
// A rounded expanded uncertainty with both of its digits: "0.10".
[[nodiscard]] std::string printedUncertainty(double rounded);
[[nodiscard]] std::string printedCoverageFactor(double value);

// A parameter with the digits that its standard error leaves: down to the second digit of the
// error. All digits if there is no error.
[[nodiscard]] std::string printedParameter(double value, double standardError);

// Whether the values of the series are quotients of the two rotors, which have no unit.
[[nodiscard]] bool isQuotient(const SeriesReport& series);

}  // namespace pelmora::report
