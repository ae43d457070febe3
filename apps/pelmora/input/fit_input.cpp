// SPDX-License-Identifier: MIT
#include "apps/pelmora/input/fit_input.h"

#include "apps/pelmora/input/input_file.h"
#include "apps/pelmora/trouble.h"

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

}  // namespace

calibration::EquationList readEquations(const std::string& source, bool ratio) {
  if (source.empty()) return {};
  const std::string file = equationFile(source, ratio ? "ratio equations.txt" : "equations.txt");
  return calibration::EquationList::parse(readInputFile(file), "file '" + file + "'");
}

calibration::FitSettings fitSettings(const FitTests& tests, bool ratio) {
  calibration::FitSettings settings;
  settings.band = tests.band.value_or(settings.band);
  settings.points = tests.points.value_or(settings.points);
  settings.ratio = ratio;
  settings.equations = readEquations(tests.equations, ratio);
  return settings;
}

}  // namespace pelmora::cli
