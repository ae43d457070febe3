// SPDX-License-Identifier: MIT
#include "apps/pelmora/input/question.h"

#include "apps/pelmora/input/terminal_answer.h"
#include "apps/pelmora/trouble.h"

#include <unistd.h>

#include <cstdio>

namespace pelmora::cli {

void requireConsent(const std::string& question, const Consent& consent) {
  if (consent.isGiven) return;
  if (consent.neverAsks || isatty(STDIN_FILENO) == 0 || isatty(STDERR_FILENO) == 0) {
    throw Trouble(ExitCode::usage, "this must be confirmed, and nobody can be asked",
                  "look at it with --dry-run and confirm it with --yes; nothing was changed");
  }
  std::fprintf(stderr, "%s [y/N] ", question.c_str());
  std::fflush(stderr);
  const std::string answer = terminalAnswer().value_or("");
  if (answer == "y" || answer == "Y" || answer == "yes") return;
  throw Trouble(ExitCode::declined, "not confirmed", "nothing was changed");
}

}  // namespace pelmora::cli
