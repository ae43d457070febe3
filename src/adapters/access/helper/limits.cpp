// SPDX-License-Identifier: MIT
#include "adapters/access/helper/limits.h"

#include <sys/resource.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

namespace pelmora::access {
namespace {

constexpr rlim_t mostOpenFiles = 16;

template <class Resource>
void limit(Resource resource, rlim_t most, rlim_t grace = 0) {
  const rlimit both{most, most + grace};
  if (setrlimit(resource, &both) != 0)
    throw std::runtime_error(std::string("its resources cannot be limited: ") +
                             std::strerror(errno));
}

}  // namespace

void limitResources([[maybe_unused]] std::size_t memoryMegabytes, std::size_t processorSeconds) {
  // Sanitizers reserve terabytes for themselves and start threads of their own.
#ifndef PELMORA_SANITIZED
  limit(RLIMIT_AS, memoryMegabytes << 20);
  limit(RLIMIT_NPROC, 0);
#endif
  limit(RLIMIT_CPU, processorSeconds, 1);  // SIGXCPU first, which tells the host why
  limit(RLIMIT_NOFILE, mostOpenFiles);
  limit(RLIMIT_FSIZE, 0);
  limit(RLIMIT_CORE, 0);
}

}  // namespace pelmora::access
