// What ends a command: told in one line that names the thing, the place and the remedy.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/exit_code.h"

#include <pelmora/error.h>

#include <stdexcept>
#include <string>
#include <string_view>

namespace pelmora::cli {

class Trouble : public std::runtime_error {
 public:
  // `remedy` may be empty where `what` says what to do already.
  Trouble(ExitCode code, const std::string& what, std::string remedy)
      : std::runtime_error(what), code_(code), remedy_(std::move(remedy)) {}

  [[nodiscard]] ExitCode code() const noexcept { return code_; }
  [[nodiscard]] const std::string& remedy() const noexcept { return remedy_; }

 private:
  ExitCode code_;
  std::string remedy_;
};

// A text for one line of a terminal: line breaks and tabs become blanks, bytes that are no UTF-8
// and characters that could mislead a reader (flawOf) '?'.
[[nodiscard]] std::string oneLine(std::string_view text);

// What every error line begins with.
inline constexpr std::string_view errorLabel = "pelmora: error:";

// "pelmora: error: what; remedy", without a line end.
[[nodiscard]] std::string errorLine(const Trouble& trouble);

// Writes "pelmora: note: text" to standard error, in one line.
void printNote(std::string_view text);

// The remedy where stored data cannot be read.
inline constexpr const char* lookForCause = "look for the cause with 'pelmora doctor'";

// Errors: std::bad_alloc where that is what `error` tells, whatever met it.
void requireMemory(const Error& error);

}  // namespace pelmora::cli
