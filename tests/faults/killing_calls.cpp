// Loaded in front of a program, this ends it with SIGKILL at one of its calls that change or lock
// files. The environment has the number of the call; if it is a write, a part of it is done, which
// another number chooses.
// SPDX-License-Identifier: MIT
#ifndef _GNU_SOURCE
#define _GNU_SOURCE
#endif
#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cstdarg>
#include <cstdlib>

namespace {

std::atomic<long> calls{0};

long given(const char* name) {
  const char* text = std::getenv(name);
  return text == nullptr ? -1 : std::atol(text);
}

bool isTime() {
  static const long number = given("PELMORA_TEST_KILL_AT");
  return calls++ == number;
}

void end() { (void)kill(getpid(), SIGKILL); }

template <class Function>
Function* next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

ssize_t pwrite64(int file, const void* bytes, size_t size, off64_t at) {
  static auto* const real = next<ssize_t(int, const void*, size_t, off64_t)>("pwrite64");
  if (isTime()) {
    const auto chosen = static_cast<size_t>(given("PELMORA_TEST_KILL_SEED") + 1) * 7919 +
                        static_cast<size_t>(calls.load()) * 104729;
    (void)real(file, bytes, chosen % (size + 1), at);
    end();
  }
  return real(file, bytes, size, at);
}
int ftruncate64(int file, off64_t size) noexcept {
  static auto* const real = next<int(int, off64_t)>("ftruncate64");
  if (isTime()) end();
  return real(file, size);
}
int fdatasync(int file) {
  static auto* const real = next<int(int)>("fdatasync");
  if (isTime()) end();
  return real(file);
}
int fsync(int file) {
  static auto* const real = next<int(int)>("fsync");
  if (isTime()) end();
  return real(file);
}
int unlink(const char* path) noexcept {
  static auto* const real = next<int(const char*)>("unlink");
  if (isTime()) end();
  return real(path);
}
int fcntl64(int file, int command, ...) {
  static auto* const real = next<int(int, int, ...)>("fcntl64");
  va_list list;
  va_start(list, command);
  void* const argument = va_arg(list, void*);
  va_end(list);
  if (command == F_SETLK && isTime()) end();
  return real(file, command, argument);
}

}  // extern "C"
