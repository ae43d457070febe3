// The equations that a fit tries.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/choice.h>
#include <pelmora/export.h>
#include <pelmora/fit_engine.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::calibration {

// The number of parameters of an expression; nothing if it cannot be read.
[[nodiscard]] PELMORA_API std::optional<std::size_t> parameterCount(const std::string& expression);
// The order of a polynomial in ln(x), log(x) or x; nothing for any other expression.
[[nodiscard]] PELMORA_API std::optional<int> polynomialOrder(const std::string& expression);

// A catalogue of equations.
class PELMORA_API EquationList {
 public:
  // Logarithmic polynomials of order 6 to 10 and one equation with reciprocal powers of ln(x).
  EquationList();
  // The equations that a fit by this rule tries unless it is given others. For a trusted fit:
  // logarithmic polynomials of order 1 to 10, the equation with reciprocal powers of ln(x), and the
  // torque balances of a turbine meter.
  [[nodiscard]] static EquationList builtIn(Choice choice);
  // The text of an equation file: one equation per line as name TAB expression; a line that starts
  // with ";" is a comment. A byte order mark and any kind of line end are allowed.
  //
  // place: what a message calls the text, for example "file 'my.txt'".
  // Errors: BadData if it holds no equation.
  [[nodiscard]] static EquationList parse(const std::string& text, const std::string& place);

  // In the order in which they are tried, that of the file.
  [[nodiscard]] const std::vector<ModelDefinition>& equations() const { return equations_; }
  // What is kept with a stored curve: the text of the file with CR LF line ends; absent for the
  // built-in equations.
  [[nodiscard]] const std::optional<std::string>& text() const { return text_; }
  // The text of an equation file with these equations, as a start for your own.
  [[nodiscard]] std::string asFile() const;

 private:
  std::vector<ModelDefinition> equations_;
  std::optional<std::string> text_;
};

}  // namespace pelmora::calibration
