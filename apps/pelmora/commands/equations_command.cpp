// SPDX-License-Identifier: MIT
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/input/fit_input.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/options/fit_options.h"
#include "apps/pelmora/output/output_file.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/trouble.h"
#include "report/json_null.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <memory>

namespace pelmora::cli {
namespace {

using calibration::Choice;
using calibration::EquationList;

struct EquationsRequest {
  std::optional<Choice> choice;
  std::string source, output;
  bool isRatio = false, asJson = false;
};

EquationList listOf(const EquationsRequest& request, Choice choice) {
  return request.source.empty() ? EquationList::builtIn(choice)
                                : readEquations(request.source, request.isRatio);
}

std::string parametersText(const ModelDefinition& equation) {
  const auto count = calibration::parameterCount(equation.Expression);
  return count ? counted(*count, "parameter") : "cannot be read";
}

std::string listText(const EquationsRequest& request, const EquationList& list, Choice choice) {
  const std::string rule = calibration::choiceKey(choice);
  std::string text = wrapped(
      "The " + counted(list.equations().size(), "equation") + " of " +
          (request.source.empty() ? "the rule '" + rule + "'" : "'" + request.source + "'") +
          ", in the order in which a fit tries them; x is Roshko, log the decimal logarithm:",
      0);
  for (const ModelDefinition& equation : list.equations())
    text += "\n" + equation.Name + " (" + parametersText(equation) + ")\n    " +
            equation.Expression + "\n";
  if (choice == Choice::trusted) {
    text += "\n" + wrapped(
                       "Where none of them is sound, the fit stores the smooth reference curve "
                       "itself, under the name '" +
                           std::string(calibration::referenceCurveName) + "'.",
                       0);
  }
  return text + "\n" +
         wrapped(
             "--only NAME and --without NAME choose among them; --write FILE starts a list of "
             "your own, for --equations FILE.",
             0);
}

std::string listJson(const EquationList& list, Choice choice) {
  nlohmann::json equations = nlohmann::json::array();
  for (const ModelDefinition& equation : list.equations()) {
    equations.push_back(
        {{"name", equation.Name},
         {"expression", equation.Expression},
         {"parameters", report::orNull(calibration::parameterCount(equation.Expression))},
         {"order", report::orNull(calibration::polynomialOrder(equation.Expression))}});
  }
  return report::jsonText({{"choose", calibration::choiceKey(choice)}, {"equations", equations}});
}

// Never overwrites a file: it may hold a user's own equations.
void writeList(const std::string& path, const EquationList& list) {
  requireOutputFile(path, {});
  std::error_code ignored;
  if (std::filesystem::exists(path, ignored))
    throw Trouble(ExitCode::usage, "--write: the file '" + path + "' exists already",
                  "name a new one");
  writeOutputFile(path, list.asFile());
  printData(wrapped("Wrote " + counted(list.equations().size(), "equation") + " to " + path +
                        ". Change them and fit with --equations " + path + ".",
                    0));
}

void printEquations(const EquationsRequest& request) {
  const Choice choice = request.choice.value_or(calibration::FitSettings().choice);
  const EquationList list = listOf(request, choice);
  if (!request.output.empty()) return writeList(request.output, list);
  printData(request.asJson ? listJson(list, choice) : listText(request, list, choice));
}

}  // namespace

void addEquationsCommand(Program& program) {
  Command command =
      program.add("equations",
                  "List the equations that a fit tries, or write them to a file to begin your own");
  const auto request = std::make_shared<EquationsRequest>();
  addChoose(command, request->choice,
            "The built-in equations of this rule (default: " + usualChoice() + ")");
  addPath(
      command,
      {"--equations", "PATH", "List this equation file, or a folder's 'equations.txt', instead"},
      request->source);
  command.addFlag("--ratio", request->isRatio, "Of a folder, list 'ratio equations.txt'");
  addPath(command, {"--write", "FILE", "Write them to a new equation file"}, request->output);
  addJson(command, request->asJson);
  command.onRun([request] { printEquations(*request); });
}

}  // namespace pelmora::cli
