// Threads that wait for work, so that a short call need not start one.
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace pelmora::python {

// Calls work() and then done() in another thread, which takes other work as soon as done() is
// called. Neither may throw. A few threads stay when their work has ended.
//
// Errors: std::system_error if no thread can be started; then neither is called.
void inAnotherThread(std::function<void()> work, std::function<void()> done);

// For a process that has just been forked: threads do not go along.
void beginWithoutThreads();

}  // namespace pelmora::python
