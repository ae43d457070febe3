// Limits what this process can use, whatever the file makes it do.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace pelmora::access {

// From now on this process has limited memory and processor time and at most 16 open files. It
// cannot write files, leave a core file or start other processes. Errors: std::runtime_error.
void limitResources(std::size_t memoryMegabytes, std::size_t processorSeconds);

}  // namespace pelmora::access
