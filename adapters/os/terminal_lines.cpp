// SPDX-License-Identifier: MIT
#include "adapters/os/terminal_lines.h"

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

namespace pelmora {

bool isTerminal(std::FILE* stream) noexcept {
#if defined(_WIN32)
  return _isatty(_fileno(stream)) != 0;
#else
  return isatty(fileno(stream)) == 1;
#endif
}

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
