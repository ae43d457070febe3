// SPDX-License-Identifier: MIT
#include "adapters/os/module_path.h"
#include "base/file_text.h"
#include "ui/executable_name.h"

namespace pelmora {

std::string executableName() { return utf8Text(os::modulePath(nullptr).filename()); }

}  // namespace pelmora
