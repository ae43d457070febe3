// SPDX-License-Identifier: MIT
#include "report/printed_values.h"

#include "base/readable_number.h"
#include "base/text_case.h"
#include "report/markup.h"

#include <algorithm>
#include <cmath>

namespace pelmora::report {
namespace {

constexpr int valueDigits = 7, flowDigits = 6, viscosityDigits = 5;
constexpr int uncertaintyDigits = 2;
constexpr int errorDigits = 2, mostDigits = 17;

std::string aligned(const std::optional<double>& value, int digits) {
  return value && std::isfinite(*value) ? alignedText(*value, digits) : "-";
}

}  // namespace

std::string printedRoshko(double value) { return aligned(value, valueDigits); }
std::string printedFactor(double value) { return aligned(value, valueDigits); }
std::string printedNominalFlow(const std::optional<double>& value) {
  return value ? significantText(*value, flowDigits) : "-";
}
std::string printedFlow(const std::optional<double>& value) { return aligned(value, flowDigits); }
std::string printedFrequency(const std::optional<double>& value) {
  return aligned(value, flowDigits);
}
std::string printedTemperature(const std::optional<double>& value) {
  return value ? fixedText(*value, 2) : "-";
}
std::string printedViscosity(const std::optional<double>& value) {
  return aligned(value, viscosityDigits);
}
std::string printedDeviation(const std::optional<double>& percent) {
  return percent ? percentText(*percent) : "-";
}
std::string printedUncertainty(double rounded) { return aligned(rounded, uncertaintyDigits); }
std::string printedCoverageFactor(double value) { return fixedText(value, 2); }

std::string printedParameter(double value, double standardError) {
  const double error = std::fabs(standardError), size = std::fabs(value);
  if (!(error > 0) || !std::isfinite(error) || !std::isfinite(value)) return exactNumber(value);
  if (size < error) return significantText(value, errorDigits);
  const int digits =
      static_cast<int>(std::floor(std::log10(size)) - std::floor(std::log10(error))) + errorDigits;
  return alignedText(value, std::clamp(digits, errorDigits, mostDigits));
}

bool isQuotient(const SeriesReport& series) {
  return series.settings.RatioCurve || equalNames(series.name, "Ratio") ||
         equalNames(series.name, "Rotor Sum");
}

}  // namespace pelmora::report
