// The file that a loaded module came from (Windows).
// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

struct HINSTANCE__;

namespace pelmora::os {

// Null: the running program. Empty where the system does not say.
[[nodiscard]] std::filesystem::path modulePath(HINSTANCE__* module);

}  // namespace pelmora::os
