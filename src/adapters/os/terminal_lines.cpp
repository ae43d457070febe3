// SPDX-License-Identifier: MIT
#include "adapters/os/terminal_lines.h"

#include <unistd.h>

namespace pelmora {

bool isTerminal(std::FILE* stream) noexcept { return isatty(fileno(stream)) == 1; }

std::optional<std::string> terminalLine() {
  std::string line;
  int c = 0;
  while ((c = std::fgetc(stdin)) != EOF && c != '\n') line += static_cast<char>(c);
  if (c == EOF) {
    // At a terminal the end of input is a key; what is typed later is input again.
    std::clearerr(stdin);
    if (line.empty()) return std::nullopt;
  }
  return line;
}

}  // namespace pelmora
