// What an examination has found.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace pelmora::doctor {

enum class Severity {
  note = 0,     // slower or less than it could be; all numbers are right
  warning = 1,  // somebody should look at it
  error = 2     // numbers are missing or cannot be used
};

// The result of one check that found something.
struct Finding {
  std::string ID;  // of the check; never changed: "orphaned-rows"
  Severity Level = Severity::note;
  std::size_t Count = 0;       // rows, series, tables ... as Text says
  std::string Text;            // one line in words
  std::string Example;         // one place; empty if there is none to name
  bool CanBeRepaired = false;  // by repair()
  std::string Remedy;          // what to do; empty if repair() does it
};

}  // namespace pelmora::doctor
