// Where the helper program lies.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pelmora::dialog {

// Path of an executable pelmora-dialog beside the library that this code is in, or in the libexec
// folder it is installed with; empty if there is none. Neither PATH nor the working folder counts,
// so that no other program can take its place.
[[nodiscard]] std::string helperBesideLibrary();

}  // namespace pelmora::dialog
