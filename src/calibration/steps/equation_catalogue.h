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
