// SPDX-License-Identifier: MIT
#include "apps/pelmora/trouble.h"

namespace pelmora::cli {

std::string oneLine(std::string_view text) {
  std::string line;
  for (const char c : text) {
    const bool isBreak = c == '\r' || c == '\n' || c == '\t';
    if (isBreak) {
      if (!line.empty() && line.back() != ' ') line += ' ';
    } else {
      line += (static_cast<unsigned char>(c) < 32 || c == 127) ? '?' : c;
    }
  }
  while (!line.empty() && line.back() == ' ') line.pop_back();
  return line;
}

std::string errorLine(const Trouble& trouble) {
  std::string line = "pelmora: error: " + oneLine(trouble.what());
  if (trouble.remedy().empty()) return line;
  while (line.ends_with('.')) line.pop_back();
  return line + "; " + oneLine(trouble.remedy());
}

Trouble databaseTrouble(const std::string& doing, const Error& error) {
  return {ExitCode::database, doing + ": " + error.what(), ""};
}

}  // namespace pelmora::cli
