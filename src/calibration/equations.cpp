// SPDX-License-Identifier: MIT
#include "calibration/steps/equation_catalogue.h"
#include "solver/equations/expression_parser.h"

#include <pelmora/calibration/equations.h>
#include <pelmora/calibration/failure.h>

#include <sstream>

namespace pelmora::calibration {
namespace {

// Runs walk a catalogue from its last entry to the first.
std::vector<ModelDefinition> inOrderOfTrial(const std::vector<steps::Equation>& catalogue) {
  std::vector<ModelDefinition> list;
  for (auto equation = catalogue.rbegin(); equation != catalogue.rend(); ++equation)
    list.push_back({equation->name, equation->expression});
  return list;
}

// Equation files end their lines with CR LF.
std::string withLineEnds(std::string text) {
  constexpr const char* byteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(byteOrderMark)) text.erase(0, 3);
  std::istringstream lines(text);
  std::string result;
  for (std::string line; std::getline(lines, line);) {
    if (line.ends_with('\r')) line.pop_back();
    result += line + "\r\n";
  }
  return result;
}

}  // namespace

EquationList::EquationList() : equations_(inOrderOfTrial(steps::builtInEquations())) {}

EquationList EquationList::parse(const std::string& text, const std::string& place) {
  EquationList list;
  list.text_ = withLineEnds(text);
  list.equations_ = inOrderOfTrial(steps::parseEquationFile(*list.text_).equations);
  if (!list.equations_.empty()) return list;
  throw BadData(
      {place + " holds no equation", place, "write one in each line: name, TAB, expression"});
}

std::optional<std::size_t> parameterCount(const std::string& expression) {
  try {
    return solver::parseExpression(expression).letters().size();
  } catch (const solver::ParseFailure&) {
    return std::nullopt;
  }
}

}  // namespace pelmora::calibration
