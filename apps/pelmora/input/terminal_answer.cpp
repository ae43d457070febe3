// SPDX-License-Identifier: MIT
#include "apps/pelmora/input/terminal_answer.h"

#include "apps/pelmora/interruption.h"

#include <poll.h>
#include <unistd.h>

namespace pelmora::cli {
namespace {

// A signal that comes just before the wait is noticed this much later.
constexpr int longestWait_ms = 100;

}  // namespace

std::optional<std::string> terminalAnswer() {
  std::string line;
  for (;;) {
    requireNotInterrupted();
    pollfd input{STDIN_FILENO, POLLIN, 0};
    if (poll(&input, 1, longestWait_ms) <= 0) continue;
    char c = 0;  // one at a time: the rest belongs to the next question
    const ssize_t count = read(STDIN_FILENO, &c, 1);
    if (count < 0) continue;
    if (count == 0) return line.empty() ? std::nullopt : std::optional(line);
    if (c == '\n') return line;
    line += c;
  }
}

}  // namespace pelmora::cli
