// Where our helper programs lie.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pelmora::os {

// Path of the executable `name` beside the library that this code is in, or in the libexec folder
// it is installed with; empty if there is none. Neither PATH nor the working folder counts, so that
// no other program can take its place.
[[nodiscard]] std::string helperProgram(const std::string& name);

}  // namespace pelmora::os
