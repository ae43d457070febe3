// The equations that a fit tries.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace pelmora::calibration::steps {

// `expression` is in the variable x with parameters a, b, c, ...
struct Equation {
  std::string name, expression;
  bool operator==(const Equation&) const = default;
};

// Logarithmic polynomials of order 6 to 10 and one equation with reciprocal powers of ln(x).
[[nodiscard]] std::vector<Equation> builtInEquations();

// Of a trusted fit, in the order of a catalogue: runs walk it from the last entry down.
//
// Torque balances: the driving torque less the drag of the blades, laminar (with the power -1/2 of
// Reynolds' number, for which Roshko stands) or turbulent (with the power -1/5), less the drag of
// the bearing, viscous (1/x) and static (1/x^2).
// Source: Lee, Evans: Density effect and Reynolds number effect on gas turbine flowmeters, J. Basic
// Eng. 87 (1965) 1043; Pope, Wright, Johnson, Crowley: Extended Lee model for the turbine
// meter and calibrations with surrogate fluids, Flow Meas. Instrum. 24 (2012) 71-82.
[[nodiscard]] std::vector<Equation> trustedEquations();

// An equation file: one equation a line as name TAB expression, ";" begins a comment line.
struct EquationFile {
  std::string text;                 // without doubled and closing line breaks
  std::vector<Equation> equations;  // the last line first: runs walk from the last entry down
};

// Line breaks are CR LF; a text without any CR has its line feeds taken for them. Lines that hold
// no equation are skipped, fields beyond the second ignored.
[[nodiscard]] EquationFile parseEquationFile(std::string text);

// "equations.txt", or "ratio equations.txt" for ratio curves.
[[nodiscard]] const char* equationFileName(bool ratioCurve);

}  // namespace pelmora::calibration::steps
