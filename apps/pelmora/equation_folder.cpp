// SPDX-License-Identifier: MIT
#include "apps/pelmora/equation_folder.h"

#include "apps/pelmora/input_file.h"
#include "apps/pelmora/trouble.h"

#include <pelmora/platform.h>

#include <filesystem>
#include <sstream>

namespace pelmora::cli {
namespace {

namespace fs = std::filesystem;

fs::path sourceFile(const std::string& equations, const std::string& name) {
  std::error_code ignored;
  if (!fs::is_directory(equations, ignored)) return equations;
  const fs::path file = fs::path(equations) / name;
  if (fs::exists(file, ignored)) return file;
  throw Trouble(ExitCode::badInput, "folder '" + equations + "' has no file '" + name + "'",
                "put one there, or name an equation file");
}

// The component knows CR LF alone as a line end. Errors: Trouble where no line is an equation.
std::string cleanedEquations(const fs::path& file) {
  std::string text = readInputFile(file.string());
  if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
  std::istringstream lines(text);
  std::string result;
  bool hasEquation = false;
  for (std::string line; std::getline(lines, line);) {
    if (line.ends_with('\r')) line.pop_back();
    hasEquation |= !line.starts_with(';') && line.find('\t') != std::string::npos;
    result += line + "\r\n";
  }
  if (hasEquation) return result;
  throw Trouble(ExitCode::badInput, "file '" + file.string() + "' holds no equation",
                "write one in each line: name, TAB, expression");
}

}  // namespace

EquationFolder::EquationFolder(const std::string& equations, bool ratio)
    : before_(platform().componentFolder) {
  const std::string name = ratio ? "ratio equations.txt" : "equations.txt";
  if (!equations.empty()) {
    text_ = cleanedEquations(sourceFile(equations, name));
    folder_.write(name, *text_);
  }
  platform().componentFolder = folder_.path();
}

EquationFolder::~EquationFolder() { platform().componentFolder = before_; }

}  // namespace pelmora::cli
