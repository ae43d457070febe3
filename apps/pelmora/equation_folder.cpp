// SPDX-License-Identifier: MIT
#include "apps/pelmora/equation_folder.h"

#include "apps/pelmora/input/input_file.h"
#include "apps/pelmora/trouble.h"

#include <pelmora/platform.h>

#include <filesystem>
#include <sstream>

namespace pelmora::cli {
namespace {

namespace fs = std::filesystem;

std::string fileName(bool ratio) { return ratio ? "ratio equations.txt" : "equations.txt"; }

fs::path sourceFile(const std::string& equations, const std::string& name) {
  std::error_code ignored;
  if (!fs::is_directory(equations, ignored)) return equations;
  const fs::path file = fs::path(equations) / name;
  if (fs::exists(file, ignored)) return file;
  throw Trouble(ExitCode::badInput, "folder '" + equations + "' has no file '" + name + "'",
                "put one there, or name an equation file");
}

}  // namespace

// The component knows CR LF alone as a line end.
std::string cleanedEquations(std::string text, const std::string& place) {
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
  throw Trouble(ExitCode::badInput, place + " holds no equation",
                "write one in each line: name, TAB, expression");
}

std::optional<std::string> equationsOf(const std::string& source, bool ratio) {
  if (source.empty()) return std::nullopt;
  const std::string file = sourceFile(source, fileName(ratio)).string();
  return cleanedEquations(readInputFile(file), "file '" + file + "'");
}

EquationFolder::Use::Use(const std::string& folder) : before_(platform().componentFolder) {
  platform().componentFolder = folder;
}

EquationFolder::Use::~Use() { platform().componentFolder.swap(before_); }

EquationFolder::Use EquationFolder::use(const std::optional<std::string>& text, bool ratio) {
  const auto wanted = text ? std::optional(File{fileName(ratio), *text}) : std::nullopt;
  if (file_ != wanted) {
    if (file_) folder_.remove(file_->name);
    file_.reset();
    if (wanted) folder_.write(wanted->name, wanted->text);
    file_ = wanted;
  }
  return Use(folder_.path());
}

}  // namespace pelmora::cli
