// SPDX-License-Identifier: MIT
#include "apps/pelmora/progress.h"

#include "apps/pelmora/text_table.h"
#include "apps/pelmora/trouble.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace pelmora::cli {
namespace {

bool canRewriteLines() {
  const char* terminal = std::getenv("TERM");
  return isatty(STDERR_FILENO) == 1 && terminal != nullptr && std::string_view(terminal) != "dumb";
}

std::size_t terminalWidth() {
  winsize size{};
  const bool isKnown = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1;
  return isKnown ? size.ws_col : terminalColumns;
}

}  // namespace

Progress::Progress() : isTerminal_(canRewriteLines()) {}

Progress::~Progress() { clear(); }

void Progress::show(const std::string& text) {
  if (!isTerminal_) return;
  std::string line = oneLine(text);
  // One column stays free, so that the terminal does not wrap.
  while (displayWidth(line) >= terminalWidth()) line.pop_back();
  std::fprintf(stderr, "\r\033[K%s", line.c_str());
  std::fflush(stderr);
  isShown_ = true;
}

void Progress::clear() {
  if (!isShown_) return;
  std::fputs("\r\033[K", stderr);
  std::fflush(stderr);
  isShown_ = false;
}

}  // namespace pelmora::cli
