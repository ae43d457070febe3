// Where the component's own library lies.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pelmora {

// The folder from which this code was loaded, without a closing separator; "." where the system
// does not say.
[[nodiscard]] std::string libraryFolder();

}  // namespace pelmora
