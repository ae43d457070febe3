// Limits of what this process may use, whatever the file makes it do.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace pelmora::access {

// From now on: memory, time of the processor, 16 open files, no new files, no core file, no other
// processes. Errors: std::runtime_error.
void limitResources(std::size_t memoryMegabytes, std::size_t processorSeconds);

}  // namespace pelmora::access
