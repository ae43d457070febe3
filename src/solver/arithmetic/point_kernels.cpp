// SPDX-License-Identifier: MIT
#include "solver/arithmetic/point_kernels.h"

#include <atomic>

namespace pelmora::solver {
namespace {

std::atomic<const PointKernels*> forced = nullptr;

}  // namespace

std::vector<const PointKernels*> runnablePointKernels() {
  std::vector<const PointKernels*> runnable{&plainPointKernels()};
#ifdef PELMORA_HAS_WIDE_KERNELS
  __builtin_cpu_init();
  if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")) {
    runnable.push_back(&avx2PointKernels());
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
        __builtin_cpu_supports("avx512vl")) {
      runnable.push_back(&avx512PointKernels());
    }
  }
#endif
  return runnable;
}

const PointKernels& pointKernels() {
  static const PointKernels& best = *runnablePointKernels().back();
  const PointKernels* const wanted = forced.load(std::memory_order_acquire);
  return wanted != nullptr ? *wanted : best;
}

void forcePointKernels(const PointKernels* kernels) {
  forced.store(kernels, std::memory_order_release);
}

}  // namespace pelmora::solver
