// SPDX-License-Identifier: MIT
#include "apps/pelmora/input/fit_input.h"

#include "apps/pelmora/input/input_file.h"
#include "apps/pelmora/trouble.h"
#include "base/suggestion.h"

#include <algorithm>
#include <filesystem>

namespace pelmora::cli {
namespace {

std::string equationFile(const std::string& source, const std::string& name) {
  namespace fs = std::filesystem;
  std::error_code ignored;
  if (!fs::is_directory(source, ignored)) return source;
  const fs::path file = fs::path(source) / name;
  if (fs::exists(file, ignored)) return file.string();
  throw Trouble(ExitCode::badInput, "folder '" + source + "' has no file '" + name + "'",
                "put one there, or name an equation file");
}

bool hasReferenceCurve(const calibration::FitSettings& settings) {
  const auto isNamed = [](const std::vector<std::string>& names) {
    return std::ranges::find(names, calibration::referenceCurveName) != names.end();
  };
  return settings.choice == calibration::Choice::trusted &&
         (settings.only.empty() || isNamed(settings.only)) && !isNamed(settings.without);
}

void requireEquations(const calibration::FitSettings& settings) {
  calibration::FitSettings all = settings;
  all.only.clear();
  all.without.clear();
  all.maxOrder.reset();
  std::vector<std::string> known;
  for (const ModelDefinition& equation : calibration::equationsToTry(all))
    known.push_back(equation.Name);
  if (settings.choice == calibration::Choice::trusted)
    known.emplace_back(calibration::referenceCurveName);
  const auto requireKnown = [&](const char* option, const std::vector<std::string>& names) {
    for (const std::string& name : names) {
      if (std::ranges::find(known, name) != known.end()) continue;
      throw Trouble(ExitCode::usage, std::string(option) + ": there is no equation '" + name + "'",
                    suggestion(name, known) + "; 'pelmora equations' lists them");
    }
  };
  requireKnown("--only", settings.only);
  requireKnown("--without", settings.without);
  if (hasReferenceCurve(settings) || !calibration::equationsToTry(settings).empty()) return;
  throw Trouble(ExitCode::usage, "the options leave no equation to try",
                "leave out --only, --without or --max-order");
}

}  // namespace

calibration::EquationList readEquations(const std::string& source, bool ratio) {
  if (source.empty()) return {};
  const std::string file = equationFile(source, ratio ? "ratio equations.txt" : "equations.txt");
  return calibration::EquationList::parse(readInputFile(file), "file '" + file + "'");
}

calibration::FitSettings fitSettings(const FitTests& tests, const FitChoices& choices, bool ratio) {
  calibration::FitSettings settings = choices.change().appliedTo({});
  settings.band = tests.band.value_or(settings.band);
  settings.points = tests.points.value_or(settings.points);
  settings.ratio = ratio;
  settings.equations = readEquations(tests.equations, ratio);
  requireEquations(settings);
  return settings;
}

}  // namespace pelmora::cli
