// SPDX-License-Identifier: MIT
#include "calibration/steps/equation_catalogue.h"
#include "solver/equations/expression_parser.h"
#include "solver/equations/power_basis.h"

#include <pelmora/calibration/equations.h>
#include <pelmora/calibration/failure.h>
#include <pelmora/calibration/fit.h>

#include <algorithm>
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

EquationList EquationList::builtIn(Choice choice) {
  EquationList list;
  if (choice == Choice::trusted) list.equations_ = inOrderOfTrial(steps::trustedEquations());
  return list;
}

std::string EquationList::asFile() const {
  std::string text =
      "; One equation in each line: name, TAB, expression in x with parameters a, "
      "b, c ...\r\n; A line that starts with a semicolon is a comment.\r\n";
  for (const ModelDefinition& equation : equations_)
    text += equation.Name + "\t" + equation.Expression + "\r\n";
  return text;
}

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

std::optional<int> polynomialOrder(const std::string& text) {
  try {
    solver::Expression expression = solver::parseExpression(text);
    const auto form = solver::linearForm(expression, expression.letters());
    if (!form) return std::nullopt;
    const auto powers = solver::powerBasis(expression, *form);
    if (!powers || powers->lowest != 0) return std::nullopt;
    return static_cast<int>(powers->factor.size()) - 1;
  } catch (const solver::ParseFailure&) {
    return std::nullopt;
  }
}

std::vector<ModelDefinition> equationsToTry(const FitSettings& settings) {
  const EquationList list =
      settings.equations.text() ? settings.equations : EquationList::builtIn(settings.choice);
  const auto requireKnown = [&](const std::string& name) {
    if (settings.choice == Choice::trusted && name == referenceCurveName) return;
    const auto& known = list.equations();
    if (std::ranges::any_of(known, [&](const auto& own) { return own.Name == name; })) return;
    std::string names;
    for (const ModelDefinition& own : known)
      names += (names.empty() ? "'" : ", '") + own.Name + "'";
    throw BadData({"there is no equation '" + name + "'", "", "choose among " + names});
  };
  std::ranges::for_each(settings.only, requireKnown);
  std::ranges::for_each(settings.without, requireKnown);
  const auto isNamed = [](const std::vector<std::string>& names, const std::string& name) {
    return std::ranges::find(names, name) != names.end();
  };
  std::vector<ModelDefinition> chosen;
  for (const ModelDefinition& equation : list.equations()) {
    if (!settings.only.empty() && !isNamed(settings.only, equation.Name)) continue;
    if (isNamed(settings.without, equation.Name)) continue;
    const auto order = settings.maxOrder ? polynomialOrder(equation.Expression) : std::nullopt;
    if (order && *order > *settings.maxOrder) continue;
    chosen.push_back(equation);
  }
  return chosen;
}

}  // namespace pelmora::calibration
