// Tables of a curve for flow computers.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/fitted_curve.h>
#include <pelmora/export.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::calibration {

// What a flow computer looks up.
enum class TableForm {
  roshko = 0,  // Strouhal over Roshko
  uvc = 1,     // universal viscosity curve: K factor over frequency / viscosity
  linear = 2,  // K factor over frequency, in a fluid of one viscosity
};

// "roshko", "uvc", "linear".
[[nodiscard]] PELMORA_API const char* tableFormKey(TableForm form);

struct TableOptions {
  TableForm form = TableForm::roshko;
  std::size_t points = 40;
  // How the flow computer reads between the points; ReadAs::none means linear.
  ReadAs reading = ReadAs::linear;
  bool evenly = false;  // points evenly in the logarithm instead of where they serve best
  // Of the fluid; needed for TableForm::linear. Units: cSt, degrees C.
  std::optional<double> viscosity{};
  double celsius = 190.0 / 9;                  // 70 F
  std::optional<double> expansionPerKelvin{};  // absent: stainless steel
  // Units of the table. Empty: those of the curve, and Hz. K factors and Strouhal numbers have the
  // same unit.
  std::string xUnit{}, yUnit{};
};

// A row of a table, with the expanded uncertainty of the value read there.
struct TableRow {
  double x = 0, y = 0;
  std::optional<double> expandedPercent{};
};

struct FlowComputerTable {
  TableOptions options;
  std::string xName, yName, xUnit, yUnit;  // "Roshko", "Strouhal", "Hz/cSt", "pulses/gal"
  std::vector<TableRow> rows;
  double readingErrorPercent = 0, readingErrorAt = 0;  // the largest, and where, in xUnit
  bool hasStand = false;
  // The largest expanded uncertainty of any value read from the table, including the reading error;
  // absent if the uncertainty of the curve is not known.
  std::optional<double> expandedPercent{};
  std::optional<double> coverageFactor{}, probability{};
};

// A table over the range of the curve. Unless `evenly` is set, its points are placed so that the
// largest reading error is as small as that number of points allows.
//
// Errors: BadData for too few or too many points, a missing viscosity, a unit of another quantity,
//         and the series of a quotient with TableForm::linear or ::uvc.
[[nodiscard]] PELMORA_API FlowComputerTable tableFor(const FittedCurve& curve,
                                                     const TableOptions& options);

}  // namespace pelmora::calibration
