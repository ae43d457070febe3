// One thread of a refit: an apartment with its own connection, which reads and fits and stores
// nothing. SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/refit/bounded_queue.h"
#include "apps/pelmora/refit/refit_task.h"

#include <atomic>
#include <cstddef>
#include <shared_mutex>
#include <string>

namespace pelmora::cli {

// What the threads of a refit have in common.
struct RefitWork {
  const DatabaseOption curves;
  const RefitRequest& request;
  std::atomic<std::size_t> next = 0;  // task
  BoundedQueue<RefitCurve> queue;
  // Held shared by those who read the database, alone by the one that ends a transaction: that
  // needs the file for itself, and how long depends on the disk.
  std::shared_mutex file;
};

// Takes tasks one by one and sends what became of each; ends when all are taken or nobody receives.
//
// Errors: Trouble where the database cannot be opened or used.
void fitTasks(RefitWork& work);

}  // namespace pelmora::cli
