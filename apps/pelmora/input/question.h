// A question on the terminal before something goes.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pelmora::cli {

struct Consent {
  bool isGiven = false;    // --yes
  bool neverAsks = false;  // --no-input
};

// Returns where the user has said yes, beforehand or to "question [y/N]" on standard error.
//
// Errors: Trouble declined for any other answer; usage where nobody can be asked.
void requireConsent(const std::string& question, const Consent& consent);

}  // namespace pelmora::cli
